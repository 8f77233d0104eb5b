// Lays pieces out on a page: decides which constructs are broken over lines, and writes everything.
#pragma once

#include "format/structure.h"

#include <cstddef>
#include <stdexcept>
#include <string>

namespace pellum::tools {

// The laid out text would be longer than `mostBytes`.
struct TextTooLong : std::length_error {
    using std::length_error::length_error;
};

// The columns that a line should keep to, and those by which a block stands further in.
inline constexpr Index lineWidth = 100;
inline constexpr Index indentStep = 4;

// REQUIRES: the pieces know their places and their blanks.
std::string print(const Pieces& pieces, const Structure& structure, std::size_t mostBytes);

}  // namespace pellum::tools
