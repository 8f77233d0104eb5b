// What a process finds around itself: its standard streams, its environment, the limits that the
// system sets it.
#pragma once

#include <sys/resource.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pellum::test {

// Nothing opened; what reads or writes there fails.
inline constexpr std::string_view closedStream = "(closed)";

struct Surroundings {
    struct Limit {
        decltype(RLIMIT_STACK) resource;
        rlim_t value;
    };

    // Where standard input, output and error lead: a path, `closedStream`, or empty for the pipes
    // of the test.
    std::string input, output, errors;
    std::vector<Limit> limits;
    // All of it, as NAME=VALUE; none: that of the test.
    std::optional<std::vector<std::string>> environment;

    // Adds a limit such as "stack 256K", "memory 100M", "written 0" or "stack unlimited". Throws
    // std::runtime_error for a text that is none.
    void addLimit(std::string_view text);

    bool areUsual() const;
    // Makes these the surroundings of this process, which is about to become another program. False
    // when the system refuses.
    bool enter() const;

    // Why a program cannot be played in these surroundings here; null when it can.
    const char* whyImpossible() const;
};

}  // namespace pellum::test
