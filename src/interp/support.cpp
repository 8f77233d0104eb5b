#include "interp/support.h"

namespace pellum {

void fail(Position at, std::string message) { throw RuntimeError(std::move(message), at); }

void failCallStackOverflow(Position at) { fail(at, "call stack overflow (too much recursion)"); }

}  // namespace pellum
