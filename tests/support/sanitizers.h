// What the sanitizer build has to be told.
#pragma once

namespace pellum::test {

#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool usesAddressSanitizer = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
inline constexpr bool usesAddressSanitizer = true;
#else
inline constexpr bool usesAddressSanitizer = false;
#endif
#else
inline constexpr bool usesAddressSanitizer = false;
#endif

// Objects that refer to each other in a circle live until the program ends, by design, so leaks are
// no mistake of this process and those that it starts. ASAN_OPTIONS=detect_leaks=1 asks for them.
void allowCycles();

}  // namespace pellum::test
