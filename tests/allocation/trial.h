// A run of the program in which an allocation fails, and what has to come of it: the run as it is
// without the failure, an error that says "out of memory", or an end in one line. Anything else,
// memory that is not given back included, is a defect.
#pragma once

#include "allocation/failing_memory.h"
#include "support/playing.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace pellum::test {

// How the program is called, and what it reads.
struct Call {
    std::vector<std::string> arguments;
    std::string input;
};

// What a program does about a refused allocation that it can catch.
enum class Handling {
    Again,    // says "again: " and the error, and does that step again
    Shown,    // nothing, or shows the error before it goes its own way
    Unknown,  // perhaps something else: its `catch` is meant for another error
};

class Trials {
public:
    // Runs the call without a failure, to compare with.
    Trials(Call call, Handling handling);

    // How many allocations a run makes.
    std::uint64_t allocations() const { return allocations_; }
    const Outcome& normal() const { return normal_; }
    // What came of the last failure.
    const Outcome& given() const { return given_; }
    // Whether a run leaves circles behind, which nothing collects.
    bool leavesCircles() const { return leavesCircles_; }
    std::chrono::nanoseconds duration() const { return duration_; }

    // Circles of a program that takes them apart at its end are left when it does not get there.
    void ignoreWhatIsLeft() { leavesCircles_ = true; }

    // Lets the `nth` allocation fail. None when all is well, else what is wrong.
    std::optional<std::string> fail(std::uint64_t nth, Failing failing);

    // The same in a thread of its own, in which nothing is remembered from earlier runs: no name
    // is interned, no shared string made.
    std::optional<std::string> failInFreshThread(std::uint64_t nth, Failing failing);

private:
    template <typename Play>
    std::optional<std::string> failBy(Play play, std::uint64_t nth, Failing failing);
    std::optional<std::string> judge(const Outcome& given, Failing failing) const;

    Call call_;
    Handling handling_;
    Outcome normal_;
    Outcome given_;
    std::uint64_t allocations_ = 0;
    std::chrono::nanoseconds duration_{};
    bool leavesCircles_ = false;
};

}  // namespace pellum::test
