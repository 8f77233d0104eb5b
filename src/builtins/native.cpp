#include "builtins/native.h"

#include <new>
#include <stdexcept>

namespace pellum {

namespace {

bool accepts(const NativeObj& native, std::size_t count) noexcept {
    return count >= static_cast<std::size_t>(native.minArity) &&
           (native.maxArity == unlimited || count <= static_cast<std::size_t>(native.maxArity));
}

// "1+", "1-3" or "2".
std::string expectedCount(const NativeObj& native) {
    const std::string minimum = std::to_string(native.minArity);
    if (native.maxArity == unlimited) return minimum + "+";
    if (native.maxArity == native.minArity) return minimum;
    return minimum + "-" + std::to_string(native.maxArity);
}

}  // namespace

RuntimeError arityError(std::string_view name, std::string_view expected, std::size_t count,
                        Position at) {
    std::string message(name);
    message += "() expects ";
    message += expected;
    message += " argument(s), got " + std::to_string(count);
    return RuntimeError(std::move(message), at);
}

Value callNative(const NativeObj& native, Caller& caller, std::vector<Value>& args, Position at) {
    if (!accepts(native, args.size())) {
        throw arityError(native.name, expectedCount(native), args.size(), at);
    }
    try {
        return native.fn(caller, args);
    } catch (const std::length_error&) {
        throw RuntimeError(native.name + ": result too large");
    } catch (const std::bad_alloc&) {
        throw RuntimeError(native.name + ": out of memory");
    }
}

}  // namespace pellum
