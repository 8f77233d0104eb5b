// How the process is made to end from outside, which each system does in its own way. For process.h
// and those systems alone.
#pragma once

#include "driver/descriptor_buffers.h"

namespace pellum::ending {

inline OutputBuffer* output = nullptr;  // standard output, while there is an object for it

// What was asked for by onForcedEnd. A signal handler may do it.
void beforeForcedEnd() noexcept;

// Lets a failed write be an error instead of ending the process, and sees to it that closed
// standard streams stay unusable.
void prepareProcess() noexcept;

// From now on whoever asks the process to end is answered as StandardStreams promises, for as long
// as there is an `output`.
void handleRequests() noexcept;

}  // namespace pellum::ending
