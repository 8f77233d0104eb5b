// A child process with its three standard streams in our hands.
#pragma once

#include "support/playing.h"

#include <sys/types.h>

#include <functional>

namespace pellum::test {

struct Process {
    std::filesystem::path executable;  // absolute
    std::vector<std::string> arguments;
    std::filesystem::path folder = ".";
    std::string input;
    std::filesystem::path outputFile;  // where standard output goes instead of into the outcome
    bool readsOutput = true;           // false: nobody reads from the pipe that standard output is
    bool readsOnce = false;            // the reader leaves when something has come
    bool mergesErrors = false;
    // Called in the child, at the last moment before the program starts; false lets the child end
    // with status 126.
    std::function<bool()> prepare;
    // Called once the program has been started, before anything is fed to it or collected.
    std::function<void(pid_t child)> started;
    // Called whenever something has come out, with all of it so far.
    std::function<void(pid_t child, const Outcome& soFar)> watch;

    // Feeds the input, collects what comes out until both streams are closed, and waits for the
    // end. Throws std::system_error when the system refuses; an executable that cannot be started
    // ends with status 127.
    Outcome run() const;
};

// A command that is looked for in the PATH, with its arguments; status 127 when it is not there.
Outcome runCommand(std::vector<std::string> words);

}  // namespace pellum::test
