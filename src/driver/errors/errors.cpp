#include "driver/errors/errors.h"

#include "driver/errors/utf8.h"

#include <algorithm>
#include <optional>

namespace pellum {

namespace {

// Line number `line` (from 1) of `source` without its carriage returns; none beyond the last line.
// The text after the last newline is a line too, even when it is empty.
std::optional<std::string> lineOf(std::string_view source, std::uint32_t line) {
    for (; line > 1; --line) {
        const std::size_t newline = source.find('\n');
        if (newline == source.npos) return std::nullopt;
        source.remove_prefix(newline + 1);
    }
    std::string text(source.substr(0, source.find('\n')));
    std::erase(text, '\r');
    return text;
}

// How the things stand out that the eye looks for first.
constexpr std::string_view kindMark = "\x1b[1;31m";
constexpr std::string_view placeMark = "\x1b[36m";
constexpr std::string_view caretMark = "\x1b[1;31m";
constexpr std::string_view endOfMark = "\x1b[0m";

void appendMarked(std::string& out, std::string_view mark, std::string_view text, Look look) {
    if (look == Look::Coloured) out += mark;
    out += text;
    if (look == Look::Coloured) out += endOfMark;
}

// What reaches on a terminal from the first column to below the character at `byteOffset`: a tab
// below each tab, and blanks below everything else.
std::string blanksBelow(std::string_view excerpt, std::size_t byteOffset) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";  // from behind which columns count
    if (excerpt.starts_with(byteOrderMark)) excerpt.remove_prefix(byteOrderMark.size());
    std::string blanks;
    for (std::size_t at = 0; at < byteOffset;) {
        if (at >= excerpt.size()) {
            blanks.append(byteOffset - at, ' ');
            break;
        }
        const Utf8Character character = firstCharacter(excerpt.substr(at));
        if (character.code == U'\t') {
            blanks += '\t';
        } else {
            blanks.append(columnsOf(character.code), ' ');
        }
        at += character.length;
    }
    return blanks;
}

}  // namespace

std::string renderError(const PellumError& error, std::string_view source, std::string_view name,
                        Look look) {
    std::string out;
    appendMarked(out, kindMark, error.kind, look);
    out += ": " + error.message;
    if (error.line == 0) return out;

    const std::string line = std::to_string(error.line);
    out += "\n  --> ";
    appendMarked(out, placeMark,
                 std::string(name) + ":" + line + ":" + std::to_string(error.column), look);
    if (source.empty()) return out;

    const std::optional<std::string> excerpt = lineOf(source, error.line);
    if (!excerpt) return out;
    const std::string gutter = line + " | ";
    const std::size_t beforeCaret = error.column == 0 ? 0 : error.column - 1;
    out += "\n" + gutter + *excerpt;
    out += "\n" + std::string(gutter.size(), ' ');
    out += look == Look::Plain ? std::string(beforeCaret, ' ') : blanksBelow(*excerpt, beforeCaret);
    appendMarked(out, caretMark, "^", look);
    return out;
}

std::string renderThrown(std::string_view text, Look look) {
    std::string out;
    appendMarked(out, kindMark, "Error", look);
    out += ": ";
    out += text;
    return out;
}

}  // namespace pellum
