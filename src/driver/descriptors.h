// The descriptors behind the standard streams, and what the system does with them. Signal handlers
// may do all of it.
#pragma once

#include <cstddef>
#include <string_view>

namespace pellum {

inline constexpr int inDescriptor = 0;
inline constexpr int outDescriptor = 1;
inline constexpr int errDescriptor = 2;

// Whether somebody sits there.
bool isTerminal(int descriptor) noexcept;

// Moves some of the bytes, at least one where there are any, and says how many. Reading answers 0
// at the end; a negative answer leaves the reason in `errno`. Bytes are not changed on their way,
// but terminals that have an encoding of their own are spoken to in that one.
std::ptrdiff_t readFrom(int descriptor, char* bytes, std::size_t size) noexcept;
std::ptrdiff_t writeTo(int descriptor, std::string_view bytes) noexcept;

enum class Direction { Read, Write };

// After a call that has failed: whether to try again. Waits where the descriptor does not.
bool mayTryAgain(int descriptor, Direction direction) noexcept;

// Writes until nothing is left; false when that fails. Signals do not stop it.
bool writeAll(int descriptor, std::string_view bytes) noexcept;

}  // namespace pellum
