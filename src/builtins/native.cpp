#include "builtins/native.h"

#include <new>
#include <stdexcept>

namespace pellum {

namespace {

// "1+", "1-3" or "2".
std::string expectedCount(std::int32_t least, std::int32_t most) {
    const std::string minimum = std::to_string(least);
    if (most == unlimited) return minimum + "+";
    if (most == least) return minimum;
    return minimum + "-" + std::to_string(most);
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
    return arityError(native.name, expectedCount(native.minArity, native.maxArity), count, at);
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

Value runUnaccepted(const NativeObj& native, Caller& caller, Arguments args, Position at) {
    if (!native.host) throw arityError(native, args.size(), at);
    HostFunction& host = *native.host;
    const bool isEnough = args.size() >= static_cast<std::size_t>(host.minArity);
    const bool isTooMany =
        host.maxArity != unlimited && args.size() > static_cast<std::size_t>(host.maxArity);
    if (!isEnough || isTooMany) {
        throw arityError(native.name, expectedCount(host.minArity, host.maxArity), args.size(), at);
    }
    try {
        return host.call(caller, args);
    } catch (...) {
        rethrowFrom(native);
    }
}

Value callNative(const NativeObj& native, Caller& caller, Arguments args, Position at) {
    Value result = native.accepts(args.size()) ? runNative(native, caller, args)
                                               : runUnaccepted(native, caller, args, at);
    if (caller.hasFailed()) caller.throwFailure();
    return result;
}

}  // namespace pellum
