// Characters of texts in UTF-8, for whoever has to know where the eye sees them: the caret of a
// diagnostic on a terminal, and the line editor. To the language itself a string is its bytes.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace pellum {

struct Utf8Character {
    char32_t code;       // or `rawByte` plus the byte, where it begins no character
    std::size_t length;  // in bytes
};

// No character has such a code.
inline constexpr char32_t rawByte = 0xDC00;

// REQUIRES: the text is not empty.
Utf8Character firstCharacter(std::string_view text) noexcept;

// How many bytes a character has that begins with this one; 1 for what begins none.
std::size_t lengthFromFirstByte(char first) noexcept;

// The reverse, also for raw bytes.
void appendUtf8(std::string& text, char32_t code);

// How many columns of a terminal the character takes. Control characters count as none.
std::size_t columnsOf(char32_t code) noexcept;

}  // namespace pellum
