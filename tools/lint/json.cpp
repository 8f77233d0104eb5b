#include "lint/json.h"

#include <cstdint>

namespace pellum::lint {

namespace {

// How many bytes the character at the front of `text` takes, or 0 where none is spelled. Forms that
// are longer than needed, halves of pairs and numbers beyond the last character are none.
std::size_t characterLength(std::string_view text) noexcept {
    const auto byte = [&](std::size_t i) -> std::uint32_t {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : 0;
    };
    const std::uint32_t first = byte(0);
    if (first < 0x80) return 1;
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    std::uint32_t number = first & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80) return 0;
        number = number << 6 | (byte(i) & 0x3F);
    }
    constexpr std::uint32_t least[] = {0x80, 0x800, 0x10000};
    const bool isCharacter = first >= 0xC0 && first < 0xF8 && number >= least[length - 2] &&
                             number <= 0x10FFFF && (number < 0xD800 || number > 0xDFFF);
    return isCharacter ? length : 0;
}

void appendEscaped(std::string& out, char control) {
    constexpr char digits[] = "0123456789abcdef";
    const auto number = static_cast<unsigned char>(control);
    out += "\\u00";
    out += digits[number >> 4];
    out += digits[number & 0xF];
}

}  // namespace

void appendJson(std::string& out, std::string_view text) {
    out += '"';
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        const auto first = static_cast<unsigned char>(text.front());
        if (length == 0) {
            out += "\xEF\xBF\xBD";
        } else if (first < 0x20 || first == 0x7F) {
            appendEscaped(out, text.front());
        } else {
            if (first == '"' || first == '\\') out += '\\';
            out += text.substr(0, length);
        }
        text.remove_prefix(length == 0 ? 1 : length);
    }
    out += '"';
}

}  // namespace pellum::lint
