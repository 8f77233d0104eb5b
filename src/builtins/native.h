// Native functions: what a builtin is to the engines, and how it calls back into the engine that
// runs it.
#pragma once

#include "builtins/console.h"
#include "driver/errors/errors.h"
#include "value/string.h"
#include "value/value.h"

#include <limits>
#include <span>
#include <string>

namespace pellum {

// What a native is called with. The values are its own: it may move from them.
using Arguments = std::span<Value>;

// An engine as natives see it.
class Caller {
public:
    explicit Caller(Console& console) noexcept : console_(console) {}
    Caller(const Caller&) = delete;
    Caller& operator=(const Caller&) = delete;
    virtual ~Caller() = default;

    // Calls any function of the running engine, or another native, and returns its result. Takes
    // the arguments away from where they are. Errors of the call itself carry no position.
    virtual Value call(const Value& callee, Arguments args) = 0;

    // Leave a failure behind that the engine raises as soon as the native has returned: a
    // RuntimeError without a position, or a value that the program throws. A native that fails in
    // the ordinary course of a program does this rather than throw, which takes as long as a
    // hundred calls. Both answer nil, for the native to return.
    Value leaveError(std::string_view message) { return leave(Failure::Error, Value(message)); }
    Value leaveThrown(Value thrown) noexcept { return leave(Failure::Thrown, std::move(thrown)); }

    Console& console() const noexcept { return console_; }

    // For the engine: whether the native that has just returned left a failure behind. Exactly one
    // of the other two must follow if so.
    bool hasFailed() const noexcept { return failure_ != Failure::None; }
    [[noreturn]] void throwFailure();
    Value takeFailure() noexcept {  // what a `try` catches
        failure_ = Failure::None;
        return std::move(failed_);
    }

private:
    enum class Failure : std::uint8_t { None, Error, Thrown };

    Value leave(Failure failure, Value value) noexcept {
        failure_ = failure;
        failed_ = std::move(value);
        return {};
    }

    Console& console_;
    Failure failure_ = Failure::None;
    Value failed_;  // what was thrown, or the error's message
};

// The engine has checked the number of arguments. Fails by `Caller::leaveError` or
// `Caller::leaveThrown`, or by throwing a RuntimeError without a position. Where it makes something
// beyond the limits of strings and lists it may let std::length_error escape, and std::bad_alloc
// where memory is refused: `runNative` reports both in its name.
using NativeFunction = Value (*)(Caller&, Arguments args);

inline constexpr std::int32_t unlimited = -1;

// A function of a program that embeds an engine. Fails as natives do.
struct HostFunction {
    virtual Value call(Caller& caller, Arguments args) = 0;

    std::int32_t minArity = 0;
    std::int32_t maxArity = unlimited;

protected:
    ~HostFunction() = default;
};

struct NativeObj final : CallableObj {
    NativeObj(std::string_view nativeName, NativeFunction function, std::int32_t minimum,
              std::int32_t maximum)
        : CallableObj(ValueKind::Native),
          name(nativeName),
          fn(function),
          minArity(minimum),
          maxArity(maximum) {}
    // Stands for a function of the host. REQUIRES: that outlives this.
    NativeObj(std::string_view nativeName, HostFunction& function)
        : NativeObj(nativeName, nullptr, acceptsNone, acceptsNone) {
        host = &function;
    }

    std::string_view functionName() const noexcept override { return name; }

    bool accepts(std::size_t count) const noexcept {
        return count >= static_cast<std::size_t>(minArity) &&
               (maxArity == unlimited || count <= static_cast<std::size_t>(maxArity));
    }

    std::string name;
    NativeFunction fn;
    std::int32_t minArity;
    std::int32_t maxArity;  // or `unlimited`
    // Null for builtins. With it `accepts` is always false, so that nobody who calls a builtin has
    // to ask about this.
    HostFunction* host = nullptr;

private:
    static constexpr std::int32_t acceptsNone = std::numeric_limits<std::int32_t>::max();
};

// The error of a call with the wrong number of arguments, in either engine: "<name>() expects
// <expected> argument(s), got <count>".
RuntimeError arityError(std::string_view name, std::string_view expected, std::size_t count,
                        Position at);

// The same for a native.
RuntimeError arityError(const NativeObj& native, std::size_t count, Position at);

// Rethrows what a native has just thrown, in the language's terms.
[[noreturn]] void rethrowFrom(const NativeObj& native);

// Runs the native, which may leave a failure with the caller. REQUIRES: it accepts so many
// arguments.
inline Value runNative(const NativeObj& native, Caller& caller, Arguments args) {
    try {
        return native.fn(caller, args);
    } catch (...) {
        rethrowFrom(native);
    }
}

// Runs a native that does not accept so many arguments: the host's function behind it, which may
// leave a failure with the caller, or there is none that does, and that is an error at `at`.
Value runUnaccepted(const NativeObj& native, Caller& caller, Arguments args, Position at);

// Checks the number of arguments, runs the native, and throws whatever goes wrong. A wrong number
// is reported at `at`.
Value callNative(const NativeObj& native, Caller& caller, Arguments args, Position at);

}  // namespace pellum
