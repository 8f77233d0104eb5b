// Numbers read from the front of a text, by the rules of the C library's strtod and strtoll in the
// "C" locale whatever the locale of the process, correctly rounded. The lexer converts its literals
// with these, and the builtins `num`, `int`, `float` and `parse_int` the strings of programs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace pellum {

struct ParsedFloat {
    double value = 0;
    std::size_t consumed = 0;  // bytes from the start of the text; 0 when no number stands there
    bool outOfRange = false;   // not zero, but beyond all doubles or nearer to zero than any
};

// The number at the front of `text`: white space, a sign, then a decimal or hexadecimal ("0x1.8p3")
// float, "inf", "infinity", "nan" or "nan(chars)", letters in either case. What is out of range is
// consumed all the same, and its value is 0. A subnormal result is in range.
ParsedFloat parseFloatPrefix(std::string_view text);

struct ParsedInt {
    std::int64_t value = 0;
    std::size_t consumed = 0;  // as above
    bool outOfRange = false;   // does not fit 64 bits; `value` is then the limit on its side
};

// The integer at the front of `text`: white space, a sign, then digits of `base`. Base 16 allows
// "0x" before the digits; base 0 reads hexadecimal after "0x", octal after "0", else decimal.
// REQUIRES: base is 0 or 2 to 36.
ParsedInt parseIntPrefix(std::string_view text, int base);

}  // namespace pellum
