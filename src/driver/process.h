// What the process as a whole needs before anything runs, its standard streams, and the ways in
// which it may end from outside. Not for programs that embed the rest.
#pragma once

#include "driver/descriptor_buffers.h"

#include <istream>
#include <ostream>

namespace pellum {

// Makes room for recursion on the stack, lets a failed write be an error instead of killing the
// process, and sees to it that what is thrown and caught by nobody ends with a line and status 1.
// Standard streams that are closed stay unusable: no file that is opened later gets their number.
void prepareProcess() noexcept;

// What is done first when the process is forced to end, by a signal or for want of memory. Null:
// nothing. REQUIRES: a signal handler may do it.
void onForcedEnd(void (*action)() noexcept) noexcept;

// The standard streams; output to a terminal appears at once. While the object lives, a signal that
// asks the process to end (SIGINT, SIGTERM, SIGHUP) lets it end by that signal, but only after the
// output that is still held has been written out; a reader who takes none of it for a second, or a
// second signal, ends the wait. Where standard error is a terminal, SIGINT leaves a line there.
// Used up processor time (SIGXCPU) ends with a line and status 1. Signals that are ignored at the
// start stay ignored.
class StandardStreams {
    OutputBuffer outBuffer_, errBuffer_;
    InputBuffer inBuffer_;

public:
    StandardStreams();
    ~StandardStreams();
    StandardStreams(const StandardStreams&) = delete;
    StandardStreams& operator=(const StandardStreams&) = delete;

    std::istream in;
    std::ostream out, err;
};

}  // namespace pellum
