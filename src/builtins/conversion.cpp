#include "builtins/families.h"

#include "value/format.h"
#include "value/heap.h"
#include "value/limits.h"
#include "value/number.h"
#include "value/parse_number.h"

#include <charconv>

namespace pellum::library {

namespace {

std::optional<double> parseWholeFloat(std::string_view text) {
    const ParsedFloat parsed = parseFloatPrefix(text);
    const bool isWhole = parsed.consumed > 0 && parsed.consumed == text.size();
    if (!isWhole || parsed.outOfRange) return std::nullopt;
    return parsed.value;
}

// The number that all of `text` spells, or nil. Where an integer does not take it all, a float may:
// "inf", "nan" and "0x10" are numbers. An integer that is too large is none, rather than a float
// with other digits.
Value parseWholeNumber(std::string_view text) {
    if (text.find_first_of(".eE") == text.npos) {
        const ParsedInt parsed = parseIntPrefix(text, 10);
        if (parsed.outOfRange) return Value();
        if (parsed.consumed > 0 && parsed.consumed == text.size()) return Value(parsed.value);
    }
    const std::optional<double> parsed = parseWholeFloat(text);
    return parsed ? Value(*parsed) : Value();
}

// The text as it is, not in repr form. A message is a string to whoever catches it, so one that
// would be too long is refused like any other.
std::string inQuotes(std::string_view text) {
    constexpr std::size_t roomForTheRest = limit(64, 1);
    checkStringLength(text.size() + roomForTheRest);
    requireRoom(text.size());
    std::string quoted;
    quoted.reserve(text.size() + roomForTheRest);
    quoted += '"';
    quoted += text;
    quoted += '"';
    return quoted;
}

Value failConversion(Caller& caller, const char* name, const Value& given, const char* target) {
    std::string message(name);
    message += ": cannot convert ";
    if (given.isString()) {
        message += inQuotes(given.asText());
    } else {
        message += typeName(given);
    }
    message += " to ";
    message += target;
    return caller.leaveError(message);
}

Value inBase(std::int64_t n, int base, std::string_view prefix) {
    std::string text = n < 0 ? "-" : "";
    text += prefix;
    const auto bits = static_cast<std::uint64_t>(n);
    const std::uint64_t magnitude = n < 0 ? 0 - bits : bits;
    char digits[64];
    text.append(digits, std::to_chars(digits, digits + sizeof digits, magnitude, base).ptr);
    return Value(text);
}

}  // namespace

Value type(Caller&, Arguments args) { return Value(typeName(args[0])); }

Value str(Caller&, Arguments args) {
    if (args[0].isString()) return std::move(args[0]);
    return Value(toDisplayString(args[0]));
}

Value repr(Caller&, Arguments args) { return Value(toReprString(args[0])); }

Value toNumber(Caller& caller, Arguments args) {
    const Value& given = args[0];
    if (given.isNumber()) return given;
    if (given.isBool()) return Value(given.asBool() ? 1 : 0);
    Value parsed = given.isString() ? parseWholeNumber(given.asText()) : Value();
    if (parsed.isNil()) return failConversion(caller, "num", given, "a number");
    return parsed;
}

Value toInteger(Caller& caller, Arguments args) {
    const Value& given = args[0];
    if (given.isInt()) return given;
    if (given.isFloat()) return Value(truncateToInt(given.asFloat()));
    if (given.isBool()) return Value(given.asBool() ? 1 : 0);
    Value parsed = given.isString() ? parseWholeNumber(given.asText()) : Value();
    if (parsed.isNil()) return failConversion(caller, "int", given, "an integer");
    return parsed.isFloat() ? Value(truncateToInt(parsed.asFloat())) : parsed;
}

Value toFloat(Caller& caller, Arguments args) {
    const Value& given = args[0];
    if (given.isNumber()) return Value(given.asNumber());
    if (given.isBool()) return Value(given.asBool() ? 1.0 : 0.0);
    std::optional<double> parsed;
    if (given.isString()) parsed = parseWholeFloat(given.asText());
    if (!parsed) return failConversion(caller, "float", given, "a float");
    return Value(*parsed);
}

Value toBool(Caller&, Arguments args) { return Value(isTruthy(args[0])); }

Value parseInt(Caller& caller, Arguments args) {
    require(args[0].isString(), "parse_int: first argument must be a string");
    const std::string_view text = args[0].asText();
    const std::int64_t base = args.size() > 1 ? truncatedArg(args[1], "parse_int") : 10;
    if (base == 0 || (base >= 2 && base <= 36)) {
        const ParsedInt parsed = parseIntPrefix(text, static_cast<int>(base));
        const bool isWhole = text.find_first_not_of(whiteSpace, parsed.consumed) == text.npos;
        if (parsed.consumed > 0 && isWhole && !parsed.outOfRange) return Value(parsed.value);
    }
    return caller.leaveError("parse_int: invalid integer " + inQuotes(text));
}

Value hex(Caller&, Arguments args) { return inBase(truncatedArg(args[0], "hex"), 16, "0x"); }
Value bin(Caller&, Arguments args) { return inBase(truncatedArg(args[0], "bin"), 2, "0b"); }
Value oct(Caller&, Arguments args) { return inBase(truncatedArg(args[0], "oct"), 8, "0o"); }

Value isNumber(Caller&, Arguments args) { return Value(args[0].isNumber()); }
Value isString(Caller&, Arguments args) { return Value(args[0].isString()); }
Value isList(Caller&, Arguments args) { return Value(args[0].isList()); }
Value isMap(Caller&, Arguments args) { return Value(args[0].isMap()); }
Value isNil(Caller&, Arguments args) { return Value(args[0].isNil()); }
Value isBool(Caller&, Arguments args) { return Value(args[0].isBool()); }
Value isFunction(Caller&, Arguments args) { return Value(args[0].isFunction()); }

}  // namespace pellum::library
