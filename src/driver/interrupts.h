// Ctrl-C at the prompt.
#pragma once

namespace pellum {

// While an object lives, Ctrl-C asks the running program to stop (value/interrupt.h) instead of
// ending the process, and ends waiting for input. There is at most one at a time.
class InterruptsStopPrograms {
public:
    InterruptsStopPrograms() noexcept;
    ~InterruptsStopPrograms();
    InterruptsStopPrograms(const InterruptsStopPrograms&) = delete;
    InterruptsStopPrograms& operator=(const InterruptsStopPrograms&) = delete;
};

}  // namespace pellum
