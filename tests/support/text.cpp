#include "support/text.h"

#include <algorithm>
#include <stdexcept>

namespace pellum::test {

std::vector<std::string> splitKeepingNewlines(std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const std::size_t newline = text.find('\n');
        const std::size_t length = newline == text.npos ? text.size() : newline + 1;
        lines.emplace_back(text.substr(0, length));
        text.remove_prefix(length);
    }
    return lines;
}

std::vector<std::string> splitLines(std::string_view text) {
    std::vector<std::string> lines = splitKeepingNewlines(text);
    for (std::string& line : lines) {
        if (line.ends_with('\n')) line.pop_back();
    }
    return lines;
}

std::string visible(std::string_view text) {
    constexpr char digits[] = "0123456789abcdef";
    std::string out = "\"";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '\n') {
            out += "\\n";
        } else if (c == '\r') {
            out += "\\r";
        } else if (c == '\t') {
            out += "\\t";
        } else if (byte < 0x20 || byte >= 0x7F) {
            out += {'\\', 'x', digits[byte >> 4], digits[byte & 15]};
        } else {
            out += c;
        }
    }
    return out + "\"";
}

namespace {

unsigned hexDigit(char c) {
    if (c >= '0' && c <= '9') return static_cast<unsigned>(c - '0');
    if (c >= 'a' && c <= 'f') return static_cast<unsigned>(c - 'a') + 10;
    if (c >= 'A' && c <= 'F') return static_cast<unsigned>(c - 'A') + 10;
    throw std::runtime_error(std::string("not a hexadecimal digit: ") + c);
}

}  // namespace

std::string unescape(std::string_view text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            out += text[i];
            continue;
        }
        const char c = ++i < text.size() ? text[i] : ' ';
        switch (c) {
            case 'n': out += '\n'; break;
            case 'r': out += '\r'; break;
            case 't': out += '\t'; break;
            case '0': out += '\0'; break;
            case '\\':
            case '"':
            case '\'': out += c; break;
            case 'x':
                if (i + 2 >= text.size()) throw std::runtime_error("\\x needs two digits");
                out += static_cast<char>(hexDigit(text[i + 1]) * 16 + hexDigit(text[i + 2]));
                i += 2;
                break;
            default: throw std::runtime_error(std::string("unknown escape \\") + c);
        }
    }
    return out;
}

std::string_view trim(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    if (first == text.npos) return {};
    return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

std::optional<std::string> firstDifference(std::string_view what, std::string_view wanted,
                                           std::string_view given) {
    if (wanted == given) return std::nullopt;
    const std::vector<std::string> wantedLines = splitKeepingNewlines(wanted);
    const std::vector<std::string> givenLines = splitKeepingNewlines(given);
    const auto [w, g] =
        std::mismatch(wantedLines.begin(), wantedLines.end(), givenLines.begin(), givenLines.end());
    const auto show = [](auto line, auto end) {
        return line == end ? std::string("nothing more") : visible(*line);
    };
    return std::string(what) + " differs in line " + std::to_string(w - wantedLines.begin() + 1) +
           "\n  wanted: " + show(w, wantedLines.end()) + "\n  given:  " + show(g, givenLines.end());
}

}  // namespace pellum::test
