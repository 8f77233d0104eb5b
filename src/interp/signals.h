// A `break` or `continue` that leaves the body of a function without having met a loop there. It
// crosses the call, so it travels as an exception, up to the innermost loop that is running: `try`
// lets it pass, and outside every loop it becomes an error of the program.
#pragma once

#include "driver/errors/errors.h"

namespace pellum {

struct BreakSignal {
    Position from;
};

struct ContinueSignal {
    Position from;
};

}  // namespace pellum
