// Counts what a program does, where its host wants to stop it: register code then says STEP at the
// start of a function and at the end of a loop. Without that there is nothing to count with.
#pragma once

#include <atomic>
#include <cstdint>

namespace pellum {

class StepCounter {
public:
    bool areCounted() const noexcept { return areCounted_; }
    void count() noexcept { areCounted_ = true; }

    // What may still be done from now on.
    void allow(std::uint64_t steps) noexcept {
        left_ = steps;
        untilCheck_ = 0;
    }
    std::uint64_t left() const noexcept { return left_ + untilCheck_; }

    // Ends the program soon. From any thread; holds until it is taken back.
    std::atomic<bool> isInterrupted = false;

    // Throws LimitReached where no step is left.
    void take() {
        if (untilCheck_ == 0) [[unlikely]]
            check();
        --untilCheck_;
    }

private:
    void check();

    bool areCounted_ = false;
    std::uint64_t left_ = 0;        // behind the next check
    std::uint64_t untilCheck_ = 0;  // the steps to the next check
};

}  // namespace pellum
