#include "builtins/families.h"

#include "value/number.h"

#include <cmath>

namespace pellum::library {

namespace {

// The values of `min` and `max`: the elements of a single list, otherwise the arguments.
Arguments candidates(Arguments args) {
    return args.size() == 1 && args[0].isList() ? Arguments(args[0].asList().items) : args;
}

// The winner of the candidates: the first that no later one beats.
template <typename Beats>
Value best(Arguments args, const char* name, Beats beats) {
    const Value* winner = nullptr;
    for (const Value& candidate : candidates(args)) {
        const double number = numberArg(candidate, name);
        if (!winner || beats(number, winner->asNumber())) winner = &candidate;
    }
    if (!winner) throw RuntimeError(std::string(name) + ": no arguments");
    return *winner;
}

}  // namespace

Value floor(Caller&, Arguments args) {
    return Value(truncateToInt(std::floor(numberArg(args[0], "floor"))));
}

Value ceil(Caller&, Arguments args) {
    return Value(truncateToInt(std::ceil(numberArg(args[0], "ceil"))));
}

Value round(Caller&, Arguments args) {
    const double x = numberArg(args[0], "round");
    if (args.size() == 1) return Value(truncateToInt(std::round(x)));
    const double scale = std::pow(10.0, numberArg(args[1], "round"));
    return Value(std::round(x * scale) / scale);
}

Value abs(Caller&, Arguments args) {
    const Value& x = args[0];
    if (x.isInt()) return Value(x.asInt() < 0 ? wrapNegate(x.asInt()) : x.asInt());
    return Value(std::fabs(numberArg(x, "abs")));
}

Value sign(Caller&, Arguments args) {
    const double x = numberArg(args[0], "sign");
    return Value((x > 0) - (x < 0));
}

Value clamp(Caller&, Arguments args) {
    const double x = numberArg(args[0], "clamp");
    const double low = numberArg(args[1], "clamp");
    const double high = numberArg(args[2], "clamp");
    if (low > high) throw RuntimeError("clamp: low must be <= high");
    const Value& chosen = x < low ? args[1] : x > high ? args[2] : args[0];
    const bool allIntegers = args[0].isInt() && args[1].isInt() && args[2].isInt();
    return allIntegers ? chosen : Value(chosen.asNumber());
}

Value min(Caller&, Arguments args) {
    return best(args, "min", [](double a, double b) { return a < b; });
}

Value max(Caller&, Arguments args) {
    return best(args, "max", [](double a, double b) { return a > b; });
}

// Integers are summed apart, so that they are exact until the one conversion at the end.
Value sum(Caller&, Arguments args) {
    std::int64_t integers = 0;
    double floats = 0;
    bool hasFloat = false;
    for (const Value& element : listArg(args[0], "sum: expected a list")) {
        if (element.isInt()) {
            integers = wrapAdd(integers, element.asInt());
        } else if (element.isFloat()) {
            floats += element.asFloat();
            hasFloat = true;
        } else {
            throw RuntimeError(std::string("sum: list has a non-number (") + typeName(element) +
                               ")");
        }
    }
    return hasFloat ? Value(static_cast<double>(integers) + floats) : Value(integers);
}

Value sqrt(Caller&, Arguments args) { return Value(std::sqrt(numberArg(args[0], "sqrt"))); }
Value exp(Caller&, Arguments args) { return Value(std::exp(numberArg(args[0], "exp"))); }
Value sin(Caller&, Arguments args) { return Value(std::sin(numberArg(args[0], "sin"))); }
Value cos(Caller&, Arguments args) { return Value(std::cos(numberArg(args[0], "cos"))); }
Value tan(Caller&, Arguments args) { return Value(std::tan(numberArg(args[0], "tan"))); }

Value pow(Caller&, Arguments args) {
    const double base = numberArg(args[0], "pow");
    return Value(std::pow(base, numberArg(args[1], "pow")));
}

Value log(Caller&, Arguments args) {
    const double logarithm = std::log(numberArg(args[0], "log"));
    if (args.size() == 1) return Value(logarithm);
    return Value(logarithm / std::log(numberArg(args[1], "log")));
}

}  // namespace pellum::library
