// The target for numbers: doubles and integers as text and back, and texts as numbers, beside what
// the C library makes of the same.
#include "fuzz/targets.h"

#include "builtins/builtins.h"
#include "lexer/lexer.h"
#include "value/format.h"
#include "value/number.h"
#include "value/parse_number.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cinttypes>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <sstream>

namespace pellum::fuzz {

namespace {

bool areSame(double a, double b) {
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

// --- Numbers to text.

int significantDigits(std::string_view text) {
    std::string digits;
    for (const char byte : text.substr(0, text.find('e'))) {
        if (byte >= '0' && byte <= '9') digits += byte;
    }
    const std::size_t first = digits.find_first_not_of('0');
    return first == digits.npos ? 1 : static_cast<int>(digits.find_last_not_of('0') + 1 - first);
}

void checkDouble(double x) {
    const std::string text = formatFloat(x);
    if (std::isnan(x)) return require(text == "nan", "NaN shows as nan");
    if (std::isinf(x)) return require(text == (x < 0 ? "-inf" : "inf"), "infinities show as inf");
    require(areSame(std::strtod(text.c_str(), nullptr), x), text, " reads back as the same double");
    const ParsedFloat parsed = parseFloatPrefix(text);
    require(parsed.consumed == text.size() && !parsed.outOfRange && areSame(parsed.value, x), text,
            " is read back by our own reader");
    require(text.find_first_of(".e") != text.npos, text, " looks like a float");
    // Nothing with a digit less does. (A large integer may show more digits than it takes.)
    const int digits = significantDigits(text);
    char scientific[40];
    if (digits > 1 && std::fabs(x) < 9007199254740992.0) {
        std::snprintf(scientific, sizeof scientific, "%.*e", digits - 2, x);
        require(!areSame(std::strtod(scientific, nullptr), x), text, " is longer than ",
                scientific);
    }
    std::snprintf(scientific, sizeof scientific, "%.*e", std::min(digits, 17) - 1, x);
    require(text.size() <= std::strlen(scientific) + 2, text, " is longer than ", scientific);
}

void checkInteger(std::int64_t n) {
    char wanted[32];
    std::snprintf(wanted, sizeof wanted, "%" PRId64, n);
    require(formatInt(n) == wanted, wanted, " shows as the C library shows it");
    const ParsedInt parsed = parseIntPrefix(wanted, 10);
    require(parsed.value == n && parsed.consumed == std::strlen(wanted) && !parsed.outOfRange,
            wanted, " is read back");
}

// --- Text to numbers.

struct CNumber {
    double real = 0;
    long long integer = 0;
    std::size_t consumed = 0;
    bool outOfRange = false;
};

CNumber cFloat(const std::string& text) {
    errno = 0;
    char* end = nullptr;
    CNumber number;
    number.real = std::strtod(text.c_str(), &end);
    number.consumed = static_cast<std::size_t>(end - text.c_str());
    // The C library may call a subnormal result out of range; it is none.
    number.outOfRange = errno == ERANGE && (number.real == 0 || std::isinf(number.real));
    return number;
}

CNumber cInteger(const std::string& text, int base) {
    errno = 0;
    char* end = nullptr;
    CNumber number;
    number.integer = std::strtoll(text.c_str(), &end, base);
    number.consumed = static_cast<std::size_t>(end - text.c_str());
    number.outOfRange = errno == ERANGE;
    return number;
}

void checkFloatText(const std::string& text) {
    const CNumber wanted = cFloat(text);
    const ParsedFloat given = parseFloatPrefix(text);
    require(given.consumed == wanted.consumed, "a float takes as many bytes of '", text, "'");
    require(given.outOfRange == wanted.outOfRange, "'", text, "' is in range or not");
    if (given.outOfRange) return;
    require(
        areSame(given.value, wanted.real) || (std::isnan(given.value) && std::isnan(wanted.real)),
        "'", text, "' is the same float");
}

void checkIntegerText(const std::string& text, int base) {
    // Newer C libraries read "0b" as a prefix.
    if ((base == 0 || base == 2) && text.find_first_of("bB") != text.npos) return;
    const CNumber wanted = cInteger(text, base);
    const ParsedInt given = parseIntPrefix(text, base);
    const std::string inBase = "' in base " + std::to_string(base);
    require(given.consumed == wanted.consumed, "an integer takes as many bytes of '", text, inBase);
    require(given.outOfRange == wanted.outOfRange, "'", text, inBase, " is in range or not");
    require(given.value == wanted.integer, "'", text, inBase, " is the same integer");
}

// --- The builtins.

class Nobody final : public Caller {
public:
    using Caller::Caller;
    Value call(const Value&, std::span<Value>) override { return {}; }
};

// What a builtin gives, as its repr, or its message.
std::string resultOf(const Builtin& builtin, Values args) {
    static std::istringstream in;
    static std::ostringstream out;
    static Console console(in, out);
    static Nobody nobody(console);
    try {
        const Value result = builtin.fn(nobody, args);
        if (nobody.hasFailed()) nobody.throwFailure();
        return toReprString(result);
    } catch (const RuntimeError& error) {
        return error.message;
    }
}

const Builtin& builtin(std::string_view name) {
    for (const Builtin& row : builtinCatalogue()) {
        if (row.name == name) return row;
    }
    throw Finding("no such builtin");
}

// What `num` gives: an integer where no sign of a float stands in the text and an integer takes all
// of it, else a float that takes all of it.
std::string wantedNum(const std::string& text, const std::string& failure) {
    const bool isInteger = text.find_first_of(".eE") == text.npos;
    const CNumber integer = cInteger(text, 10);
    if (isInteger && integer.outOfRange) return failure;
    if (isInteger && integer.consumed > 0 && integer.consumed == text.size()) {
        return formatInt(integer.integer);
    }
    const CNumber real = cFloat(text);
    const bool isWhole = real.consumed > 0 && real.consumed == text.size() && !real.outOfRange;
    return isWhole ? formatFloat(real.real) : failure;
}

void checkConversions(const std::string& text, int base) {
    static const Builtin& toNum = builtin("num");
    static const Builtin& toFloat = builtin("float");
    static const Builtin& toInt = builtin("parse_int");
    const auto failure = [&](const char* name, const char* target) {
        return std::string(name) + ": cannot convert \"" + text + "\" to " + target;
    };
    const std::string num = resultOf(toNum, {Value(text)});
    require(num == wantedNum(text, failure("num", "a number")), "num of '", text, "', not ", num);

    const CNumber real = cFloat(text);
    const bool isFloat = real.consumed > 0 && real.consumed == text.size() && !real.outOfRange;
    require(resultOf(toFloat, {Value(text)}) ==
                (isFloat ? formatFloat(real.real) : failure("float", "a float")),
            "float of '", text, "'");

    if ((base == 0 || base == 2) && text.find_first_of("bB") != text.npos) return;
    const CNumber integer = cInteger(text, base);
    const bool isWhole = text.find_first_not_of(" \t\n\v\f\r", integer.consumed) == text.npos;
    const std::string parsed = resultOf(toInt, {Value(text), Value(base)});
    require(parsed == (integer.consumed > 0 && isWhole && !integer.outOfRange
                           ? formatInt(integer.integer)
                           : "parse_int: invalid integer \"" + text + "\""),
            "parse_int of '", text, "', not ", parsed);
}

// A literal of the language is what the C library says it is.
void checkLiteral(const std::string& text) {
    try {
        const auto tokens = tokenize(text);
        if (tokens[0].kind != TokenKind::Number) return;
        const std::string literal(tokens[0].text);
        require(areSame(tokens[0].number, std::strtod(literal.c_str(), nullptr)), "the literal ",
                literal);
    } catch (const std::exception&) {
    }
}

}  // namespace

// A byte for the base, then eight for a double and an integer, then text.
void fuzzNumber(Bytes input) {
    if (input.empty()) return;
    const int base = input[0] % 37 == 1 ? 10 : input[0] % 37;
    input = input.subspan(1);
    if (input.size() >= 8) {
        std::uint64_t bits = 0;
        std::memcpy(&bits, input.data(), sizeof bits);
        const double x = std::bit_cast<double>(bits);
        checkDouble(x);
        checkInteger(static_cast<std::int64_t>(bits));
        const double truncated = static_cast<double>(truncateToInt(x));
        const bool isInRange = x >= -9223372036854775808.0 && x < 9223372036854775808.0;
        require(areSame(truncated + 0.0, isInRange ? std::trunc(x) + 0.0 : -9223372036854775808.0),
                "a truncated double");
    }
    // A number ends at a NUL for the C library, and the rest would not be looked at.
    std::string text(textOf(input));
    text.erase(std::min(text.find('\0'), text.size()));
    checkFloatText(text);
    checkIntegerText(text, base);
    checkConversions(text, base);
    checkLiteral(text);
}

}  // namespace pellum::fuzz
