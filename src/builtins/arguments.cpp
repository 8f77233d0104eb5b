#include "builtins/arguments.h"

#include "value/format.h"
#include "value/number.h"

#include <stdexcept>

namespace pellum {

void failGot(std::string_view complaint, const Value& given) {
    throw RuntimeError(std::string(complaint) + ", got " + typeName(given));
}

double numberArg(const Value& value, std::string_view name) {
    if (!value.isNumber()) failGot(std::string(name) + ": expected a number", value);
    return value.asNumber();
}

std::int64_t truncatedArg(const Value& value, std::string_view name) {
    return truncateToInt(numberArg(value, name));
}

Values& listArg(const Value& value, std::string_view complaint) {
    if (!value.isList()) failGot(complaint, value);
    return value.asList().items;
}

MapData& mapArg(const Value& value, std::string_view complaint) {
    if (!value.isMap()) failGot(complaint, value);
    return value.asMap();
}

std::string_view textArg(const Value& value, std::string_view complaint) {
    if (!value.isString()) failGot(complaint, value);
    return value.asText();
}

std::optional<std::size_t> placeFor(std::int64_t index, std::size_t length) noexcept {
    const auto count = static_cast<std::int64_t>(length);
    const std::int64_t place = index < 0 ? index + count : index;
    if (place < 0 || place > count) return std::nullopt;
    return static_cast<std::size_t>(place);
}

void failTooLarge() { throw std::length_error("too large"); }

void checkListLength(std::size_t length) {
    if (length > maxListLength) failTooLarge();
}

void checkStringLength(std::size_t length) {
    if (length > maxStringLength) failTooLarge();
}

Values pairOf(Value first, Value second) {
    Values both;
    both.reserve(2);
    both.push_back(std::move(first));
    both.push_back(std::move(second));
    return both;
}

DisplayText::DisplayText(const Value& value)
    : made_(value.isString() ? std::string() : toDisplayString(value)),
      view_(value.isString() ? value.asText() : std::string_view(made_)) {}

}  // namespace pellum
