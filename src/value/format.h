// Every text that a value can become: the display form, in which a string stands as its own bytes,
// and the repr form, in which it is quoted. Containers show their elements in repr form, nested to
// any depth without using the host's stack; a container that meets itself shows as "[...]" or
// "{...}". Texts longer than maxStringLength throw std::length_error.
#pragma once

#include "value/value.h"

namespace pellum {

std::string toDisplayString(const Value& value);
std::string toReprString(const Value& value);

// As above, appended to `out`.
void appendDisplay(std::string& out, const Value& value);
void appendRepr(std::string& out, const Value& value);

// `text` in double quotes; tab, line feed, carriage return, quote and backslash are escaped, every
// other byte stays.
std::string quoteString(std::string_view text);

std::string formatInt(std::int64_t n);

// The shortest decimal digits that read back as the same double, in fixed or scientific notation,
// whichever is shorter, with ".0" where the text would look like an integer; "nan", "inf", "-inf".
std::string formatFloat(double x);

}  // namespace pellum
