// A child process with its three standard streams in our hands.
#pragma once

#include "support/playing.h"

namespace pellum::test {

struct Process {
    std::filesystem::path executable;  // absolute
    std::vector<std::string> arguments;
    std::filesystem::path folder = ".";
    std::string input;
    std::filesystem::path outputFile;  // where standard output goes instead of into the outcome
    bool readsOutput = true;           // false: nobody reads from the pipe that standard output is
    bool mergesErrors = false;

    // Feeds the input, collects what comes out until both streams are closed, and waits for the
    // end. Throws std::system_error when the system refuses; an executable that cannot be started
    // ends with status 127.
    Outcome run() const;
};

}  // namespace pellum::test
