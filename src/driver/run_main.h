// The whole program behind `main`: every mode, with its arguments and streams handed in, so that
// each can be tested in process as well as from outside.
#pragma once

#include "driver/terminal.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace pellum {

enum ExitStatus : int {
    exitSuccess = 0,
    exitFailure = 1,  // a reported error: of the program run, of a file, of the output
    exitUsage = 2,    // an option without its argument
};

// Runs the program with `args` (without the program's own name) and returns its exit status.
// Program output goes to `out`, diagnostics to `err`. Throws nothing.
int runMain(std::vector<std::string> args, std::istream& in, std::ostream& out, std::ostream& err,
            Terminal terminal = {});

}  // namespace pellum
