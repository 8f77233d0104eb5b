#include "builtins/native.h"

#include <new>
#include <stdexcept>

namespace pellum {

namespace {

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

RuntimeError arityError(const NativeObj& native, std::size_t count, Position at) {
    return arityError(native.name, expectedCount(native), count, at);
}

void Caller::throwFailure() {
    const bool isError = failure_ == Failure::Error;
    Value failed = takeFailure();
    if (isError) throw RuntimeError(std::string(failed.asText()));
    throw ThrownValue{std::move(failed)};
}

void rethrowFrom(const NativeObj& native) {
    try {
        throw;
    } catch (const std::length_error&) {
        throw RuntimeError(native.name + ": result too large");
    } catch (const std::bad_alloc&) {
        throw RuntimeError(native.name + ": out of memory");
    }
}

Value callNative(const NativeObj& native, Caller& caller, Arguments args, Position at) {
    if (!native.accepts(args.size())) throw arityError(native, args.size(), at);
    Value result = runNative(native, caller, args);
    if (caller.hasFailed()) caller.throwFailure();
    return result;
}

}  // namespace pellum
