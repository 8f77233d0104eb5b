#include "driver/errors/errors.h"

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

}  // namespace

std::string renderError(const PellumError& error, std::string_view source, std::string_view name) {
    std::string out = error.kind + ": " + error.message;
    if (error.line == 0) return out;

    const std::string line = std::to_string(error.line);
    out += "\n  --> ";
    out += name;
    out += ":" + line + ":" + std::to_string(error.column);
    if (source.empty()) return out;

    const std::optional<std::string> excerpt = lineOf(source, error.line);
    if (!excerpt) return out;
    const std::string gutter = line + " | ";
    const std::size_t beforeCaret = error.column == 0 ? 0 : error.column - 1;
    out += "\n" + gutter + *excerpt;
    out += "\n" + std::string(gutter.size() + beforeCaret, ' ') + "^";
    return out;
}

}  // namespace pellum
