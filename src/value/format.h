// Every text that a value can become: the display form, in which a string stands as its own bytes,
// and the repr form, in which it is quoted. Containers show their elements in repr form, nested to
// any depth without using the host's stack; a container that meets itself shows as "[...]" or
// "{...}". Texts longer than maxStringLength throw std::length_error.
#pragma once

#include "value/value.h"

#include <span>

namespace pellum {

std::string toDisplayString(const Value& value);
std::string toReprString(const Value& value);

// As above, appended to `out`.
void appendDisplay(std::string& out, const Value& value);
void appendRepr(std::string& out, const Value& value);

// How long the display forms of all `values` are together, and the repr form of one. That takes no
// more time than the values are large, however often a text shows what they share; where containers
// hold each other in circles, each is walked once for each set of others it is shown in.
std::size_t displayLength(std::span<const Value> values);
std::size_t reprLength(const Value& value);

// `text` in double quotes; tab, line feed, carriage return, quote and backslash are escaped, every
// other byte stays.
std::string quoteString(std::string_view text);

// What stands behind the backslash for a byte that is escaped in quotes, else 0.
constexpr char escapeLetter(char byte) noexcept {
    switch (byte) {
        case '\t': return 't';
        case '\n': return 'n';
        case '\r': return 'r';
        case '"':
        case '\\': return byte;
        default: return 0;
    }
}

std::string formatInt(std::int64_t n);

// The shortest decimal digits that read back as the same double, in fixed or scientific notation,
// whichever is shorter, with ".0" where the text would look like an integer; "nan", "inf", "-inf".
std::string formatFloat(double x);

}  // namespace pellum
