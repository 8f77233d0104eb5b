#include "value/parse_number.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>

namespace pellum::test {

namespace {

using namespace std::string_view_literals;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr std::int64_t maxInt = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t minInt = std::numeric_limits<std::int64_t>::min();

struct FloatRow {
    std::string_view text;
    double value;
    std::size_t consumed;
};

TEST(ParseFloat, ReadsTheLongestNumberAtTheFront) {
    const FloatRow rows[] = {
        {"0", 0, 1},
        {"12", 12, 2},
        {"1.5", 1.5, 3},
        {"1.", 1, 2},
        {".5", 0.5, 2},
        {"1.5.5", 1.5, 3},
        {"1e3", 1000, 3},
        {"1E-2x", 0.01, 4},
        {"1.e+2", 100, 5},
        {"1e", 1, 1},
        {"1e+", 1, 1},
        {"1_000", 1, 1},
        {"+7", 7, 2},
        {"-7", -7, 2},
        {" \t\n\v\f\r-2.5 ", -2.5, 10},
        {"12\0"
         "34"sv,
         12, 2},
        {"0e99999", 0, 7},
        {"0x10", 16, 4},
        {"0X.8p1", 1, 6},
        {"-0x1.8P+1", -3, 9},
        {"0x8.", 8, 4},
        {"0x1p", 1, 3},
        {"0x", 0, 1},
        {"0x.", 0, 1},
        {"0xg", 0, 1},
        {"0x-1", 0, 1},
        {"0xinf", 0, 1},
        {"inf", infinity, 3},
        {"-InFiNiTy!", -infinity, 9},
        {"infinit", infinity, 3},
    };
    for (const FloatRow& row : rows) {
        SCOPED_TRACE(row.text);
        const ParsedFloat parsed = parseFloatPrefix(row.text);
        EXPECT_EQ(parsed.value, row.value);
        EXPECT_EQ(parsed.consumed, row.consumed);
        EXPECT_FALSE(parsed.outOfRange);
    }
    EXPECT_TRUE(std::signbit(parseFloatPrefix("-0.0").value));
}

TEST(ParseFloat, KnowsNotANumber) {
    const FloatRow rows[] = {{"nan", 0, 3},       {"NaN(", 0, 3},  {"-nan", 0, 4},
                             {"nan(a_1) ", 0, 8}, {"nan()", 0, 5}, {"nan(-)", 0, 3}};
    for (const FloatRow& row : rows) {
        SCOPED_TRACE(row.text);
        const ParsedFloat parsed = parseFloatPrefix(row.text);
        EXPECT_TRUE(std::isnan(parsed.value));
        EXPECT_EQ(parsed.consumed, row.consumed);
    }
}

TEST(ParseFloat, ConsumesNothingWhereThereIsNoNumber) {
    for (const auto text : {""sv, std::string_view(), " "sv, "+"sv, "-"sv, "."sv, "e5"sv, ".e5"sv,
                            "abc"sv, "--1"sv, "+-1"sv, "- 1"sv, "in"sv,
                            "\0"
                            "1"sv,
                            "\xA0"
                            "1"sv}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(parseFloatPrefix(text).consumed, 0u);
        EXPECT_FALSE(parseFloatPrefix(text).outOfRange);
    }
}

TEST(ParseFloat, TellsWhatNoDoubleCanHold) {
    const auto smallest = std::numeric_limits<double>::denorm_min();
    for (const auto text : {"1e309", "-1e309", "1e99999999999999999999", "1.7976931348623159e308",
                            "1e-324", "-1e-400", "1e-99999999999999999999", "0x1p1024", "0x1p-1075",
                            "2.4703282292062327e-324"}) {
        SCOPED_TRACE(text);
        EXPECT_TRUE(parseFloatPrefix(text).outOfRange);
        EXPECT_EQ(parseFloatPrefix(text).consumed, std::string_view(text).size());
    }
    const FloatRow held[] = {{"1.7976931348623158e308", std::numeric_limits<double>::max(), 22},
                             {"2.2250738585072014e-308", std::numeric_limits<double>::min(), 23},
                             {"1e-310", 1e-310, 6},
                             {"3e-324", smallest, 6},
                             {"2.4703282292062328e-324", smallest, 23},
                             {"0x1p-1074", smallest, 9}};
    for (const FloatRow& row : held) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(parseFloatPrefix(row.text).value, row.value);
        EXPECT_FALSE(parseFloatPrefix(row.text).outOfRange);
    }
}

TEST(ParseFloat, RoundsLongTextsToTheNearestDouble) {
    const std::string zeros(900, '0');
    EXPECT_EQ(parseFloatPrefix("9007199254740993").value, 9007199254740992.0);
    EXPECT_EQ(parseFloatPrefix("9007199254740993." + zeros).value, 9007199254740992.0);
    EXPECT_EQ(parseFloatPrefix("9007199254740993." + zeros + "1").value, 9007199254740994.0);
    EXPECT_EQ(parseFloatPrefix("1" + zeros + "e-900").value, 1.0);
    EXPECT_EQ(parseFloatPrefix("0." + zeros + "1e901").value, 1.0);
    EXPECT_EQ(parseFloatPrefix("0x1.00000000000008").value, 1.0);
    EXPECT_EQ(parseFloatPrefix("0x1.00000000000008" + zeros + "1").value,
              1.0 + std::numeric_limits<double>::epsilon());
}

// The C library, which runs in the "C" locale here, is the yardstick.
TEST(ParseFloat, AgreesWithTheCLibrary) {
    std::mt19937_64 random(20240229);
    const std::string_view alphabet = "0123456789012345678901234567890123456789..eE+-xXpPaAfinn ";
    for (int round = 0; round < 20000; ++round) {
        std::string text;
        for (auto length = random() % 24; length > 0; --length) {
            text += alphabet[random() % alphabet.size()];
        }
        if (round % 2 == 0) text += "e" + std::to_string(static_cast<int>(random() % 700) - 350);
        SCOPED_TRACE(text);

        char* end = nullptr;
        const double wanted = std::strtod(text.c_str(), &end);
        const ParsedFloat parsed = parseFloatPrefix(text);
        ASSERT_EQ(parsed.consumed, static_cast<std::size_t>(end - text.c_str()));
        if (parsed.outOfRange) {
            ASSERT_TRUE(wanted == 0 || std::isinf(wanted));
        } else if (!std::isnan(wanted)) {
            ASSERT_EQ(std::bit_cast<std::uint64_t>(parsed.value),
                      std::bit_cast<std::uint64_t>(wanted));
        }
    }
}

struct IntRow {
    std::string_view text;
    int base;
    std::int64_t value;
    std::size_t consumed;
};

TEST(ParseInt, ReadsTheDigitsOfItsBase) {
    const IntRow rows[] = {
        {"0", 10, 0, 1},
        {"42abc", 10, 42, 2},
        {"007", 10, 7, 3},
        {"1.5", 10, 1, 1},
        {"1e3", 10, 1, 1},
        {"+5", 10, 5, 2},
        {"-5", 10, -5, 2},
        {" \t\n\v\f\r-8 ", 10, -8, 8},
        {"12\0"
         "34"sv,
         10, 12, 2},
        {"0x1F", 10, 0, 1},
        {"1012", 2, 5, 3},
        {"zZ!", 36, 35 * 36 + 35, 2},
        {"ff", 16, 255, 2},
        {"0xff", 16, 255, 4},
        {"-0XfF", 16, -255, 5},
        {"0x", 16, 0, 1},
        {"0xg", 16, 0, 1},
        {"0x10", 36, (33 * 36 + 1) * 36, 4},
        {"10", 0, 10, 2},
        {"0x10", 0, 16, 4},
        {"010", 0, 8, 3},
        {"-010", 0, -8, 4},
        {"08", 0, 0, 1},
        {"0x", 0, 0, 1},
        {"0", 0, 0, 1},
        {"9223372036854775807", 10, maxInt, 19},
        {"-9223372036854775808", 10, minInt, 20},
        {"-0x8000000000000000", 0, minInt, 19},
    };
    for (const IntRow& row : rows) {
        SCOPED_TRACE(std::string(row.text) + " in base " + std::to_string(row.base));
        const ParsedInt parsed = parseIntPrefix(row.text, row.base);
        EXPECT_EQ(parsed.value, row.value);
        EXPECT_EQ(parsed.consumed, row.consumed);
        EXPECT_FALSE(parsed.outOfRange);
    }
}

TEST(ParseInt, ConsumesNothingWhereThereIsNoInteger) {
    for (const auto text :
         {""sv, std::string_view(), "  "sv, "-"sv, "--1"sv, "+-1"sv, "- 1"sv, "x"sv, ".5"sv}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(parseIntPrefix(text, 10).consumed, 0u);
        EXPECT_EQ(parseIntPrefix(text, 0).consumed, 0u);
    }
    EXPECT_EQ(parseIntPrefix("2", 2).consumed, 0u);
}

TEST(ParseInt, ClampsWhatDoesNotFit) {
    const IntRow rows[] = {{"9223372036854775808x", 10, maxInt, 19},
                           {"-9223372036854775809", 10, minInt, 20},
                           {"99999999999999999999999", 10, maxInt, 23},
                           {"-ffffffffffffffffff ", 16, minInt, 19},
                           {"0x8000000000000000", 0, maxInt, 18}};
    for (const IntRow& row : rows) {
        SCOPED_TRACE(row.text);
        const ParsedInt parsed = parseIntPrefix(row.text, row.base);
        EXPECT_TRUE(parsed.outOfRange);
        EXPECT_EQ(parsed.value, row.value);
        EXPECT_EQ(parsed.consumed, row.consumed);
    }
}

}  // namespace

}  // namespace pellum::test
