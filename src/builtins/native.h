// Native functions: what a builtin is to the engines, and how it calls back into the engine that
// runs it.
#pragma once

#include "builtins/console.h"
#include "driver/errors/errors.h"
#include "value/string.h"
#include "value/value.h"

#include <span>
#include <string>
#include <vector>

namespace pellum {

// An engine as natives see it.
class Caller {
public:
    explicit Caller(Console& console) noexcept : console_(console) {}
    Caller(const Caller&) = delete;
    Caller& operator=(const Caller&) = delete;
    virtual ~Caller() = default;

    // Calls any function of the running engine, or another native, and returns its result. Takes
    // the arguments away from where they are. Errors of the call itself carry no position.
    virtual Value call(const Value& callee, std::span<Value> args) = 0;

    Console& console() const noexcept { return console_; }

private:
    Console& console_;
};

// Takes its arguments from the vector, whose length the engine has checked; it may move from them.
// Fails with a RuntimeError without a position. Where it makes something beyond the limits of
// strings and lists it may let std::length_error escape, and std::bad_alloc where memory is
// refused: `callNative` reports both in its name.
using NativeFunction = Value (*)(Caller&, std::vector<Value>& args);

inline constexpr std::int32_t unlimited = -1;

struct NativeObj final : CallableObj {
    NativeObj(std::string_view nativeName, NativeFunction function, std::int32_t minimum,
              std::int32_t maximum)
        : CallableObj(ValueKind::Native),
          name(nativeName),
          fn(function),
          minArity(minimum),
          maxArity(maximum) {}

    std::string_view functionName() const noexcept override { return name; }

    std::string name;
    NativeFunction fn;
    std::int32_t minArity;
    std::int32_t maxArity;  // or `unlimited`
};

// The error of a call with the wrong number of arguments, in either engine: "<name>() expects
// <expected> argument(s), got <count>".
RuntimeError arityError(std::string_view name, std::string_view expected, std::size_t count,
                        Position at);

// Checks the number of arguments and runs the native. A wrong number is reported at `at`.
Value callNative(const NativeObj& native, Caller& caller, std::vector<Value>& args, Position at);

}  // namespace pellum
