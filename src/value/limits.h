// How limits and thresholds are written. Each stands where it belongs, as `limit(ordinary, small)`:
// the first number is the one that programs meet, the second that of a build in which every edge is
// near, so that ordinary programs keep crossing them (PELLUM_SMALL_LIMITS, for tests alone).
#pragma once

namespace pellum {

#if defined(PELLUM_SMALL_LIMITS)
inline constexpr bool hasSmallLimits = true;
#else
inline constexpr bool hasSmallLimits = false;
#endif

template <typename Number>
constexpr Number limit(Number ordinary, Number small) noexcept {
    return hasSmallLimits ? small : ordinary;
}

}  // namespace pellum
