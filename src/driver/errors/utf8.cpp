#include "driver/errors/utf8.h"

#include <algorithm>
#include <iterator>

namespace pellum {

namespace {

struct Range {
    char32_t first, last;
};

bool isIn(const Range& range, char32_t code) noexcept {
    return range.first <= code && code <= range.last;
}

// Marks that stand above or below their neighbour, and what is not seen at all.
constexpr Range withoutWidth[] = {
    {0x0000, 0x001F}, {0x007F, 0x009F}, {0x0300, 0x036F}, {0x0483, 0x0489},   {0x0591, 0x05BD},
    {0x0610, 0x061A}, {0x064B, 0x065F}, {0x200B, 0x200F}, {0x202A, 0x202E},   {0x20D0, 0x20FF},
    {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F}, {0xFEFF, 0xFEFF}, {0xE0100, 0xE01EF},
};

// The scripts of East Asia, and pictures.
constexpr Range ofDoubleWidth[] = {
    {0x1100, 0x115F},   {0x2E80, 0x303E},   {0x3041, 0x33FF},   {0x3400, 0x4DBF},
    {0x4E00, 0x9FFF},   {0xA000, 0xA4CF},   {0xA960, 0xA97F},   {0xAC00, 0xD7A3},
    {0xF900, 0xFAFF},   {0xFE30, 0xFE6F},   {0xFF00, 0xFF60},   {0xFFE0, 0xFFE6},
    {0x1F300, 0x1F64F}, {0x1F680, 0x1F6FF}, {0x1F900, 0x1F9FF}, {0x20000, 0x3FFFD},
};

char32_t byteOf(char c) noexcept { return static_cast<unsigned char>(c); }

}  // namespace

std::size_t lengthFromFirstByte(char first) noexcept {
    const char32_t byte = byteOf(first);
    if (byte >= 0xF0 && byte <= 0xF4) return 4;
    if (byte >= 0xE0 && byte < 0xF0) return 3;
    return byte >= 0xC2 && byte < 0xE0 ? 2 : 1;
}

Utf8Character firstCharacter(std::string_view text) noexcept {
    const char32_t first = byteOf(text.front());
    const std::size_t length = lengthFromFirstByte(text.front());
    const Utf8Character raw{first < 0x80 ? first : rawByte + first, 1};
    if (length == 1 || text.size() < length) return raw;
    char32_t code = first & (0x7Fu >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((byteOf(text[i]) & 0xC0u) != 0x80) return raw;
        code = code << 6 | (byteOf(text[i]) & 0x3Fu);
    }
    constexpr char32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    if (code < smallest[length] || code > 0x10FFFF || (code >= 0xD800 && code < 0xE000)) return raw;
    return {code, length};
}

void appendUtf8(std::string& text, char32_t code) {
    const auto append = [&](char32_t byte) { text += static_cast<char>(byte); };
    if (code < 0x80) return append(code);
    if (code >= rawByte + 0x80 && code <= rawByte + 0xFF) return append(code - rawByte);
    if (code < 0x800) {
        append(0xC0 | code >> 6);
    } else if (code < 0x10000) {
        append(0xE0 | code >> 12);
        append(0x80 | (code >> 6 & 0x3F));
    } else {
        append(0xF0 | code >> 18);
        append(0x80 | (code >> 12 & 0x3F));
        append(0x80 | (code >> 6 & 0x3F));
    }
    append(0x80 | (code & 0x3F));
}

std::size_t columnsOf(char32_t code) noexcept {
    const auto contains = [&](const Range& range) { return isIn(range, code); };
    if (std::any_of(std::begin(withoutWidth), std::end(withoutWidth), contains)) return 0;
    return std::any_of(std::begin(ofDoubleWidth), std::end(ofDoubleWidth), contains) ? 2 : 1;
}

}  // namespace pellum
