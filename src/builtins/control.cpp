#include "builtins/families.h"

#include "value/format.h"

#include <chrono>

namespace pellum::library {

// The builtin `assert`.
Value raiseUnless(Caller& caller, Arguments args) {
    if (isTruthy(args[0])) return std::move(args[0]);
    return caller.leaveError(args.size() > 1 ? toDisplayString(args[1]) : "assertion failed");
}

// The builtin `error`.
Value raise(Caller& caller, Arguments args) {
    return caller.leaveThrown(args.empty() ? Value("error") : std::move(args[0]));
}

Value clock(Caller&, Arguments) {
    const std::chrono::duration<double> now = std::chrono::steady_clock::now().time_since_epoch();
    return Value(now.count());
}

}  // namespace pellum::library
