// The bare rules of numbers, as pure functions on plain integers and doubles: integers wrap around
// at 64 bits, floor division rounds down while the remainder truncates, and no conversion is ever
// undefined. Both engines and the builtins compute with these and nothing else.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

namespace pellum {

inline std::int64_t wrapAdd(std::int64_t a, std::int64_t b) noexcept {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) + static_cast<std::uint64_t>(b));
}
inline std::int64_t wrapSubtract(std::int64_t a, std::int64_t b) noexcept {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) - static_cast<std::uint64_t>(b));
}
inline std::int64_t wrapMultiply(std::int64_t a, std::int64_t b) noexcept {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) * static_cast<std::uint64_t>(b));
}
// The smallest integer is its own negation.
inline std::int64_t wrapNegate(std::int64_t a) noexcept { return wrapSubtract(0, a); }

// The quotient rounded toward minus infinity; -2^63 // -1 wraps to -2^63. REQUIRES: b != 0.
inline std::int64_t floorDivide(std::int64_t a, std::int64_t b) noexcept {
    if (b == -1) return wrapNegate(a);
    const std::int64_t quotient = a / b;
    return (a % b != 0 && (a < 0) != (b < 0)) ? quotient - 1 : quotient;
}
inline double floorDivide(double a, double b) noexcept { return std::floor(a / b); }

// The remainder with the sign of `a`; the mismatch with floorDivide is intended. REQUIRES: b != 0.
inline std::int64_t truncatedRemainder(std::int64_t a, std::int64_t b) noexcept {
    return b == -1 ? 0 : a % b;
}
inline double truncatedRemainder(double a, double b) noexcept { return std::fmod(a, b); }

// base to the power of exponent, wrapping, in O(log exponent) steps. REQUIRES: exponent >= 0.
inline std::int64_t intPower(std::int64_t base, std::int64_t exponent) noexcept {
    std::int64_t result = 1;
    for (; exponent > 0; exponent >>= 1) {
        if (exponent & 1) result = wrapMultiply(result, base);
        base = wrapMultiply(base, base);
    }
    return result;
}

// Truncation toward zero; NaN and everything outside the 64-bit range give -2^63.
inline std::int64_t truncateToInt(double x) noexcept {
    constexpr double limit = 9223372036854775808.0;  // 2^63
    return x >= -limit && x < limit ? static_cast<std::int64_t>(x)
                                    : std::numeric_limits<std::int64_t>::min();
}

// The double comparison of two integers. Below 2^53 in magnitude it is the integer comparison.
inline bool equalAsDoubles(std::int64_t a, std::int64_t b) noexcept {
    return a == b || static_cast<double>(a) == static_cast<double>(b);
}

}  // namespace pellum
