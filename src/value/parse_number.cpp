#include "value/parse_number.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

namespace pellum {

namespace {

// White space and a sign, which both kinds of number may begin with.
struct Lead {
    std::size_t length;
    bool isNegative;
};

Lead readLead(std::string_view text) noexcept {
    const std::size_t blanks = text.find_first_not_of(" \t\n\v\f\r");
    if (blanks == text.npos) return {text.size(), false};
    const char first = text[blanks];
    const bool hasSign = first == '+' || first == '-';
    return {blanks + (hasSign ? 1 : 0), first == '-'};
}

bool startsWithHexPrefix(std::string_view text) noexcept {
    return text.size() >= 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
}

bool isHexDigit(char byte) noexcept {
    return (byte >= '0' && byte <= '9') || (byte >= 'a' && byte <= 'f') ||
           (byte >= 'A' && byte <= 'F');
}

bool startsWithHexDigit(std::string_view text) noexcept {
    return !text.empty() && isHexDigit(text.front());
}

// A "0x" counts only where a digit follows it; otherwise the number is the "0" alone.
bool startsWithHexFloat(std::string_view text) noexcept {
    if (!startsWithHexPrefix(text)) return false;
    text.remove_prefix(2);
    return startsWithHexDigit(text) ||
           (text.starts_with('.') && startsWithHexDigit(text.substr(1)));
}

bool startsWithHexInteger(std::string_view text) noexcept {
    return startsWithHexPrefix(text) && startsWithHexDigit(text.substr(2));
}

}  // namespace

ParsedFloat parseFloatPrefix(std::string_view text) {
    const Lead lead = readLead(text);
    std::size_t start = lead.length;
    const bool isHex = startsWithHexFloat(text.substr(start));
    if (isHex) start += 2;
    // from_chars would accept a second minus here.
    if (text.substr(start).starts_with('-')) return {};

    double magnitude = 0;
    const char* first = text.data() + start;
    const auto [end, error] =
        std::from_chars(first, text.data() + text.size(), magnitude,
                        isHex ? std::chars_format::hex : std::chars_format::general);
    if (end == first) return {};
    const auto consumed = static_cast<std::size_t>(end - text.data());
    if (error == std::errc::result_out_of_range) return {0, consumed, true};
    // Whatever stands in the brackets of "nan(...)", there is one NaN.
    if (std::isnan(magnitude)) magnitude = std::numeric_limits<double>::quiet_NaN();
    return {lead.isNegative ? -magnitude : magnitude, consumed, false};
}

ParsedInt parseIntPrefix(std::string_view text, int base) {
    const Lead lead = readLead(text);
    std::size_t start = lead.length;
    if ((base == 0 || base == 16) && startsWithHexInteger(text.substr(start))) {
        start += 2;
        base = 16;
    } else if (base == 0) {
        base = text.substr(start).starts_with('0') ? 8 : 10;
    }

    std::uint64_t magnitude = 0;
    const char* first = text.data() + start;
    const auto [end, error] = std::from_chars(first, text.data() + text.size(), magnitude, base);
    if (end == first) return {};
    const auto consumed = static_cast<std::size_t>(end - text.data());

    using Limits = std::numeric_limits<std::int64_t>;
    const std::uint64_t limit =
        static_cast<std::uint64_t>(Limits::max()) + (lead.isNegative ? 1U : 0U);
    if (error == std::errc::result_out_of_range || magnitude > limit) {
        return {lead.isNegative ? Limits::min() : Limits::max(), consumed, true};
    }
    return {static_cast<std::int64_t>(lead.isNegative ? 0 - magnitude : magnitude), consumed,
            false};
}

}  // namespace pellum
