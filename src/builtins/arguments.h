// What the builtins ask of their arguments. Each check names who complains and what it wanted; a
// failed one is a RuntimeError without a position. Used by the family files of the library alone.
#pragma once

#include "builtins/native.h"
#include "value/map.h"

#include <optional>

namespace pellum {

// What separates words, and may stand around a number.
inline constexpr std::string_view whiteSpace = " \t\n\v\f\r";

// A number as a double, otherwise "<name>: expected a number, got <type>".
double numberArg(const Value& value, std::string_view name);

// A number truncated toward zero. An integer passes through a double like any other number, so
// beyond 2^53 its last bits are lost.
std::int64_t truncatedArg(const Value& value, std::string_view name);

// The contents of an argument of one kind, otherwise "<complaint>, got <type>".
Values& listArg(const Value& value, std::string_view complaint);
MapData& mapArg(const Value& value, std::string_view complaint);
std::string_view textArg(const Value& value, std::string_view complaint);

// For checks whose message does not name what was given.
inline void require(bool holds, const char* message) {
    if (!holds) throw RuntimeError(message);
}

[[noreturn]] void failGot(std::string_view complaint, const Value& given);

// The place that `index` means in a list of `length` elements: a negative one counts from the end.
// None when it lies before the first place or behind `length`, the place after the last element.
std::optional<std::size_t> placeFor(std::int64_t index, std::size_t length) noexcept;

// A result would be too large: throws std::length_error, which is reported in the builtin's name.
// The length of a result is checked before anything is allocated for it.
[[noreturn]] void failTooLarge();
void checkListLength(std::size_t length);
void checkStringLength(std::size_t length);

// Two values as the elements of a list or the arguments of a call.
Values pairOf(Value first, Value second);

// The display form of an argument, without a copy where the argument is a string.
// REQUIRES: the argument outlives it.
class DisplayText {
public:
    explicit DisplayText(const Value& value);
    DisplayText(const DisplayText&) = delete;
    DisplayText& operator=(const DisplayText&) = delete;

    std::string_view view() const noexcept { return view_; }

private:
    std::string made_;  // empty where the argument is a string
    std::string_view view_;
};

}  // namespace pellum
