#include "driver/pragmas.h"

#include <algorithm>
#include <limits>

namespace pellum {

namespace {

constexpr std::string_view whitespace = " \t\n\v\f\r";
constexpr std::string_view pragmaBlanks = " \t\r\n";
constexpr std::string_view pragmaWord = "#pragma";

std::string_view trimFront(std::string_view text, std::string_view blanks) noexcept {
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    return text;
}

std::string_view trim(std::string_view text, std::string_view blanks) noexcept {
    text = trimFront(text, blanks);
    return text.substr(0, text.find_last_not_of(blanks) + 1);
}

// Takes what stands before the first `separator` off the front of `text`, and the separator too.
std::string_view takeUntil(std::string_view& text, std::string_view separators) noexcept {
    const std::size_t end = text.find_first_of(separators);
    const std::string_view taken = text.substr(0, end);
    text.remove_prefix(end == text.npos ? text.size() : end + 1);
    return taken;
}

Pragma parsePragma(std::string_view line, std::int32_t number) {
    std::string_view rest = trim(line.substr(pragmaWord.size()), pragmaBlanks);
    const std::string_view name = takeUntil(rest, " \t");
    return {std::string(name), std::string(trim(rest, pragmaBlanks)), number};
}

// Blanks, an optional sign and digits; 0 without digits.
std::int64_t leadingInteger(std::string_view text) noexcept {
    text = trimFront(text, whitespace);
    const bool isNegative = text.starts_with('-');
    if (isNegative || text.starts_with('+')) text.remove_prefix(1);
    std::int64_t number = 0;
    for (const char digit : text) {
        if (digit < '0' || digit > '9') break;
        number = std::min<std::int64_t>(number * 10 + (digit - '0'),
                                        std::numeric_limits<std::int32_t>::max());
    }
    return isNegative ? -number : number;
}

}  // namespace

bool isPragma(std::string_view comment) noexcept {
    if (!comment.starts_with(pragmaWord)) return false;
    return comment.size() == pragmaWord.size() ||
           whitespace.find(comment[pragmaWord.size()]) != whitespace.npos;
}

PragmaInfo scanPragmas(std::string_view source) {
    PragmaInfo info;
    if (source.starts_with("\xEF\xBB\xBF")) source.remove_prefix(3);
    for (std::int32_t number = 1; !source.empty(); ++number) {
        const std::string_view line = trimFront(takeUntil(source, "\n"), whitespace);
        if (line.empty()) continue;
        if (!line.starts_with('#')) break;  // the first line of code
        if (!isPragma(line)) continue;
        Pragma pragma = parsePragma(line, number);
        if (pragma.name == "version") {
            info.requiredVersion = pragma.value;
        } else {
            info.unknown.push_back(pragma);
        }
        info.pragmas.push_back(std::move(pragma));
    }
    return info;
}

bool checkPragmas(const PragmaInfo& info, std::string_view fileName, Session& session) {
    const std::string name(fileName);
    for (const Pragma& pragma : info.unknown) {
        session.diagnose("pellum: warning: unknown pragma '" + pragma.name + "' at " + name + ":" +
                         std::to_string(pragma.line));
    }
    if (info.requiredVersion.empty() || versionAtLeast(version, info.requiredVersion)) return true;
    session.diagnose("pellum: " + name + " requires Pellum >= " + info.requiredVersion +
                     " (this is " + std::string(version) + ")");
    return false;
}

bool versionAtLeast(std::string_view current, std::string_view required) noexcept {
    while (!required.empty()) {
        const std::int64_t have = leadingInteger(takeUntil(current, "."));
        const std::int64_t need = leadingInteger(takeUntil(required, "."));
        if (have != need) return have > need;
    }
    return true;
}

}  // namespace pellum
