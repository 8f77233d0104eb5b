#include "value/format.h"

#include "value/limits.h"
#include "value/map.h"
#include "value/number.h"
#include "value/string.h"

#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>

namespace pellum::test {

namespace {

using namespace std::string_view_literals;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr std::int64_t maxInt = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t minInt = std::numeric_limits<std::int64_t>::min();

struct FloatText {
    double value;
    const char* text;
};

void expectTexts(std::initializer_list<FloatText> rows) {
    for (const FloatText& row : rows) EXPECT_EQ(formatFloat(row.value), row.text);
}

TEST(FormatFloat, OneDigitIsFixedFromAThousandthToTenThousand) {
    expectTexts(
        {{1e-05, "1e-05"},       {0.0001, "1e-04"},   {0.0009, "9e-04"},  {0.001, "0.001"},
         {0.002, "0.002"},       {0.009, "0.009"},    {0.01, "0.01"},     {0.05, "0.05"},
         {0.1, "0.1"},           {0.5, "0.5"},        {0.9, "0.9"},       {1.0, "1.0"},
         {2.0, "2.0"},           {3.0, "3.0"},        {9.0, "9.0"},       {10.0, "10.0"},
         {50.0, "50.0"},         {90.0, "90.0"},      {100.0, "100.0"},   {300.0, "300.0"},
         {900.0, "900.0"},       {1000.0, "1000.0"},  {7000.0, "7000.0"}, {10000.0, "10000.0"},
         {90000.0, "90000.0"},   {1e5, "1e+05"},      {9e5, "9e+05"},     {1e6, "1e+06"},
         {1e7, "1e+07"},         {-0.0001, "-1e-04"}, {-0.001, "-0.001"}, {-1.0, "-1.0"},
         {-10000.0, "-10000.0"}, {-1e5, "-1e+05"}});
}

TEST(FormatFloat, SeveralDigitsAreFixedWhileTheZerosAreFew) {
    expectTexts({{1.5, "1.5"},
                 {2.5, "2.5"},
                 {0.15, "0.15"},
                 {0.015, "0.015"},
                 {0.0015, "0.0015"},
                 {0.00015, "0.00015"},
                 {0.000015, "1.5e-05"},
                 {0.12, "0.12"},
                 {0.00012, "0.00012"},
                 {0.000012, "1.2e-05"},
                 {1.23, "1.23"},
                 {0.123, "0.123"},
                 {0.0123, "0.0123"},
                 {0.00123, "0.00123"},
                 {0.000123, "0.000123"},
                 {0.0000123, "1.23e-05"},
                 {12.0, "12.0"},
                 {120.0, "120.0"},
                 {1200.0, "1200.0"},
                 {12000.0, "12000.0"},
                 {120000.0, "120000.0"},
                 {1200000.0, "1200000.0"},
                 {12000000.0, "1.2e+07"},
                 {120000000.0, "1.2e+08"},
                 {11.0, "11.0"},
                 {110.0, "110.0"},
                 {99.0, "99.0"},
                 {9900000.0, "9900000.0"},
                 {99000000.0, "9.9e+07"},
                 {123.0, "123.0"},
                 {12300000.0, "12300000.0"},
                 {123000000.0, "1.23e+08"},
                 {1234.5, "1234.5"},
                 {12345.678, "12345.678"},
                 {123456.789, "123456.789"},
                 {0.00012345, "0.00012345"},
                 {0.000012345, "1.2345e-05"},
                 {123456789.0, "123456789.0"},
                 {1234567800000.0, "1234567800000.0"},
                 {12345678000000.0, "1.2345678e+13"},
                 {0.0001234567890123, "0.0001234567890123"},
                 {0.00001234567890123, "1.234567890123e-05"},
                 {1234567890123456.0, "1234567890123456.0"},
                 {-1.5, "-1.5"},
                 {-0.00015, "-0.00015"},
                 {-0.000015, "-1.5e-05"},
                 {-1200000.0, "-1200000.0"},
                 {-12000000.0, "-1.2e+07"},
                 {101.0, "101.0"},
                 {1010000.0, "1010000.0"},
                 {10100000.0, "10100000.0"},
                 {101000000.0, "1.01e+08"}});
}

TEST(FormatFloat, ShortestDigitsReadBack) {
    expectTexts({{0.3, "0.3"},
                 {0.1 + 0.2, "0.30000000000000004"},
                 {1.0 / 3, "0.3333333333333333"},
                 {2.0 / 3, "0.6666666666666666"},
                 {0.7, "0.7"},
                 {1.1, "1.1"},
                 {3.141592653589793, "3.141592653589793"},
                 {2.718281828459045, "2.718281828459045"},
                 {1.4142135623730951, "1.4142135623730951"},
                 {4.35, "4.35"},
                 {434.99999999999994, "434.99999999999994"},
                 {0.30000000000000004, "0.30000000000000004"},
                 {0.010000000000000002, "0.010000000000000002"},
                 {5e-05, "5e-05"},
                 {123e-7, "1.23e-05"},
                 {9.5, "9.5"},
                 {0.99, "0.99"},
                 {0.9999999999999999, "0.9999999999999999"},
                 {1.0000000000000002, "1.0000000000000002"},
                 {1.7976931348623155e308, "1.7976931348623155e+308"},
                 {9007199254740991.0, "9007199254740991.0"},
                 {9007199254740992.0, "9007199254740992.0"},
                 {4503599627370495.5, "4503599627370495.5"},
                 {4503599627370497.5, "4503599627370498.0"},
                 {1e15, "1e+15"},
                 {1e16, "1e+16"},
                 {1e17, "1e+17"},
                 {123456789012345.6, "123456789012345.6"}});
}

TEST(FormatFloat, LargeAndSmallOnesAreScientific) {
    expectTexts({{1e10, "1e+10"},
                 {1e21, "1e+21"},
                 {1e22, "1e+22"},
                 {1e23, "1e+23"},
                 {1e99, "1e+99"},
                 {1e100, "1e+100"},
                 {1e101, "1e+101"},
                 {1.5e300, "1.5e+300"},
                 {1e308, "1e+308"},
                 {1.25e200, "1.25e+200"},
                 {6.02214076e23, "6.02214076e+23"},
                 {1e-10, "1e-10"},
                 {1e-99, "1e-99"},
                 {1e-100, "1e-100"},
                 {1.5e-7, "1.5e-07"},
                 {2.5e-07, "2.5e-07"},
                 {6.62607015e-34, "6.62607015e-34"},
                 {1e-300, "1e-300"},
                 {-1e100, "-1e+100"},
                 {-2.5e-100, "-2.5e-100"},
                 {1.2345678901234567e300, "1.2345678901234567e+300"},
                 {1.2345678901234567e-300, "1.2345678901234568e-300"},
                 {9.109e-31, "9.109e-31"},
                 {1.5e9, "1.5e+09"},
                 {1.5e10, "1.5e+10"},
                 {1e9, "1e+09"}});
}

TEST(FormatFloat, ExtremesAndSubnormals) {
    expectTexts({{1.7976931348623157e308, "1.7976931348623157e+308"},
                 {-1.7976931348623157e308, "-1.7976931348623157e+308"},
                 {8.98846567431158e307, "8.98846567431158e+307"},
                 {2.2250738585072014e-308, "2.2250738585072014e-308"},
                 {2.225073858507201e-308, "2.225073858507201e-308"},
                 {1.1125369292536007e-308, "1.1125369292536007e-308"},
                 {5e-324, "5e-324"},
                 {-5e-324, "-5e-324"},
                 {1e-323, "1e-323"},
                 {1.5e-323, "1.5e-323"},
                 {2e-323, "2e-323"},
                 {2.5e-323, "2.5e-323"},
                 {5e-323, "5e-323"},
                 {1e-322, "1e-322"},
                 {1.24e-322, "1.24e-322"},
                 {5e-321, "5e-321"},
                 {1e-320, "1e-320"},
                 {1.2345e-315, "1.2345e-315"},
                 {1e-310, "1e-310"},
                 {4.9e-322, "4.9e-322"}});
}

// From 2^53 on not every whole number is a float, and the digits behind the shortest ones are those
// of the number itself, not zeros.
TEST(FormatFloat, LargeWholeNumbersInFixedNotationAreExact) {
    expectTexts({{9007199254740994.0, "9007199254740994.0"},
                 {0x1p54, "18014398509481984.0"},
                 {0x1p60, "1152921504606846976.0"},
                 {0x1p63, "9223372036854775808.0"},
                 {-0x1p64, "-18446744073709551616.0"},
                 {123456789012345678901.0, "123456789012345683968.0"},
                 {0x1p70, "1180591620717411303424.0"},
                 {9e15, "9e+15"},
                 {9.5e20, "9.5e+20"}});
}

TEST(FormatFloat, ZerosInfinitiesAndNaN) {
    expectTexts({{0.0, "0.0"},
                 {-0.0, "-0.0"},
                 {infinity, "inf"},
                 {-infinity, "-inf"},
                 {nan, "nan"},
                 {-nan, "nan"},
                 {std::bit_cast<double>(0xFFF8'0000'DEAD'BEEFu), "nan"},
                 {std::bit_cast<double>(0x7FF0'0000'0000'0001u), "nan"}});
}

// The rule, applied to the shortest digits of `x`, the number being the digits times ten to the
// power of `exponent`. REQUIRES: x is finite and not zero.
std::string textByRule(double x) {
    char buffer[64];
    const auto end =
        std::to_chars(buffer, buffer + sizeof buffer, std::abs(x), std::chars_format::scientific);
    const std::string scientific(buffer, end.ptr);
    const std::size_t mark = scientific.find('e');
    std::string digits;
    for (const char c : scientific.substr(0, mark)) {
        if (c != '.') digits += c;
    }
    const int count = static_cast<int>(digits.size());
    const int exponent = std::stoi(scientific.substr(mark + 1)) - (count - 1);
    const bool isFixed =
        count == 1 ? exponent >= -3 && exponent <= 4 : exponent >= -(count + 3) && exponent <= 5;
    std::string text;
    if (!isFixed) {
        text = scientific;
    } else if (exponent >= 0) {
        char whole[32];
        std::snprintf(whole, sizeof whole, "%.1f", std::abs(x));
        text = whole;
    } else if (-exponent < count) {
        text = digits.insert(digits.size() - static_cast<std::size_t>(-exponent), ".");
    } else {
        text = "0." + std::string(static_cast<std::size_t>(-exponent - count), '0') + digits;
    }
    return (x < 0 ? "-" : "") + text;
}

TEST(FormatFloat, FollowsTheRuleAndReadsBack) {
    std::mt19937_64 random(2718);
    for (int round = 0; round < 60'000; ++round) {
        double x = 0;
        switch (round % 3) {
            case 0: x = std::bit_cast<double>(random()); break;  // any bits at all
            case 1: {                                            // few digits
                const auto digits = static_cast<double>(random() % 100'000);
                x = digits * std::pow(10.0, static_cast<int>(random() % 30) - 20);
                break;
            }
            default: {  // many digits near the borders
                const auto digits = static_cast<double>(random() % 10'000'000'000'000'000u);
                x = digits * std::pow(10.0, static_cast<int>(random() % 40) - 30);
            }
        }
        if (x == 0 || !std::isfinite(x)) continue;
        const std::string text = formatFloat(x);
        ASSERT_EQ(text, textByRule(x));
        ASSERT_EQ(std::strtod(text.c_str(), nullptr), x) << text;
        ASSERT_NE(text.find_first_of(".e"), text.npos) << text;
    }
}

TEST(FormatInt, ShowsTheWholeRange) {
    struct {
        std::int64_t value;
        const char* text;
    } const rows[] = {{0, "0"},
                      {7, "7"},
                      {-7, "-7"},
                      {10, "10"},
                      {-10, "-10"},
                      {99, "99"},
                      {100, "100"},
                      {1'000'000, "1000000"},
                      {-1'000'001, "-1000001"},
                      {1LL << 53, "9007199254740992"},
                      {(1LL << 53) + 1, "9007199254740993"},
                      {999'999'999'999'999'999, "999999999999999999"},
                      {1'000'000'000'000'000'000, "1000000000000000000"},
                      {maxInt - 1, "9223372036854775806"},
                      {maxInt, "9223372036854775807"},
                      {-maxInt, "-9223372036854775807"},
                      {minInt, "-9223372036854775808"}};
    for (const auto& row : rows) EXPECT_EQ(formatInt(row.value), row.text);

    for (int zeros = 0; zeros <= 18; ++zeros) {
        const std::int64_t power = intPower(10, zeros);
        const auto width = static_cast<std::size_t>(zeros);
        EXPECT_EQ(formatInt(power), "1" + std::string(width, '0'));
        EXPECT_EQ(formatInt(-power), "-1" + std::string(width, '0'));
        EXPECT_EQ(formatInt(power - 1), zeros == 0 ? "0" : std::string(width, '9'));
    }
}

TEST(QuoteString, EscapesFiveBytes) {
    struct {
        std::string_view text;
        const char* quoted;
    } const rows[] = {
        {"", R"("")"},         {"plain", R"("plain")"},   {"a\tb", R"("a\tb")"},
        {"a\nb", R"("a\nb")"}, {"a\rb", R"("a\rb")"},     {"\"", R"("\"")"},
        {"\\", R"("\\")"},     {"\\n", R"("\\n")"},       {"\t\n\r\"\\", R"("\t\n\r\"\\")"},
        {"it's", R"("it's")"}, {"${x} $", R"("${x} $")"}, {R"("quoted")", R"("\"quoted\"")"}};
    for (const auto& row : rows) EXPECT_EQ(quoteString(row.text), row.quoted);
}

TEST(QuoteString, CopiesEveryOtherByte) {
    for (int code = 0; code < 256; ++code) {
        const char byte = static_cast<char>(code);
        if ("\t\n\r\"\\"sv.find(byte) != std::string_view::npos) continue;
        EXPECT_EQ(quoteString(std::string(1, byte)), std::string("\"") + byte + "\"") << code;
    }
    EXPECT_EQ(quoteString("a\0b"sv), "\"a\0b\""sv);
    EXPECT_EQ(quoteString("\a\b\f\v\x1B\x7F"), "\"\a\b\f\v\x1B\x7F\"");
    EXPECT_EQ(quoteString("é\xFF"), "\"é\xFF\"");
}

struct NamedFunction final : CallableObj {
    NamedFunction(ValueKind kind, std::string_view text) : CallableObj(kind), name(text) {}
    std::string_view functionName() const noexcept override { return name; }
    std::string name;
};

Value functionOf(ValueKind kind, std::string_view name) {
    return Value(Ref<CallableObj>(makeRef<NamedFunction>(kind, name)));
}

TEST(Format, EachKind) {
    struct {
        Value value;
        const char* display;
        const char* repr;  // null: the same
    } const rows[] = {
        {Value(), "nil", nullptr},
        {Value(true), "true", nullptr},
        {Value(false), "false", nullptr},
        {Value(2), "2", nullptr},
        {Value(2.0), "2.0", nullptr},
        {Value(""), "", R"("")"},
        {Value("a\"b"), "a\"b", R"("a\"b")"},
        {makeList({}), "[]", nullptr},
        {makeList({Value(2), Value(2.0)}), "[2, 2.0]", nullptr},
        {makeList({Value(1), Value("a"), makeList({Value(2.5), Value()})}),
         R"([1, "a", [2.5, nil]])", nullptr},
        {Value(makeRef<MapData>()), "{}", nullptr},
        {functionOf(ValueKind::Function, "f"), "<function f>", nullptr},
        {functionOf(ValueKind::Function, "<anonymous>"), "<function <anonymous>>", nullptr},
        {functionOf(ValueKind::Native, "f"), "<native function f>", nullptr},
        {functionOf(ValueKind::Closure, "f"), "<function f>", nullptr},
        {functionOf(ValueKind::Closure, ""), "<function >", nullptr},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(toDisplayString(row.value), row.display);
        EXPECT_EQ(toReprString(row.value), row.repr ? row.repr : row.display);
    }
}

TEST(Format, MapsShowEntriesInOrderAndKeysWithTheirKind) {
    auto map = makeRef<MapData>();
    map->set(Value("x"), Value(1));
    map->set(Value("y"), Value("z"));
    map->set(Value(1), Value());
    map->set(Value("1"), makeList({Value("in")}));
    map->set(Value(-0.0), Value(true));
    map->set(Value("a\tb"), Value(0.5));
    EXPECT_EQ(toDisplayString(Value(map)),
              R"({"x": 1, "y": "z", 1: nil, "1": ["in"], -0.0: true, "a\tb": 0.5})");
    EXPECT_EQ(toReprString(Value(map)), toDisplayString(Value(map)));
}

TEST(Format, AppendsBehindWhatIsThere) {
    std::string out = "text: ";
    appendDisplay(out, Value("a\n"));
    appendRepr(out, Value("a\n"));
    appendRepr(out, makeList({Value("b")}));
    EXPECT_EQ(out, "text: a\n\"a\\n\"[\"b\"]");
}

// Lists and maps that hold themselves are never freed by counting, so each test takes them apart.
TEST(Format, AListThatHoldsItself) {
    const Value list = makeList({Value(1)});
    list.asList().items.push_back(list);
    list.asList().items.push_back(makeList({list, Value(2)}));
    EXPECT_EQ(toDisplayString(list), "[1, [...], [[...], 2]]");
    EXPECT_EQ(toDisplayString(list), "[1, [...], [[...], 2]]") << "the first time left a mark";
    EXPECT_EQ(toReprString(makeList({list, list})),
              "[[1, [...], [[...], 2]], [1, [...], [[...], 2]]]");
    list.asList().items.clear();
}

TEST(Format, AMapThatHoldsItself) {
    const Value map(makeRef<MapData>());
    map.asMap().set(Value("self"), Value(map));
    map.asMap().set(Value("list"), makeList({map}));
    EXPECT_EQ(toDisplayString(map), R"({"self": {...}, "list": [{...}]})");
    EXPECT_EQ(toDisplayString(map), R"({"self": {...}, "list": [{...}]})");
    map.asMap().remove(Value("self"));
    map.asMap().remove(Value("list"));
}

TEST(Format, ContainersThatHoldEachOther) {
    const Value list = makeList({});
    const Value map(makeRef<MapData>());
    list.asList().items.push_back(map);
    map.asMap().set(Value("list"), Value(list));
    EXPECT_EQ(toDisplayString(list), R"([{"list": [...]}])");
    EXPECT_EQ(toDisplayString(map), R"({"list": [{...}]})");
    list.asList().items.clear();
}

TEST(Format, AContainerMetTwiceSideBySideIsShownTwice) {
    const Value inner = makeList({Value("x")});
    EXPECT_EQ(toDisplayString(makeList({inner, inner, makeList({inner})})),
              R"([["x"], ["x"], [["x"]]])");
}

TEST(Format, ListsDeepInEachOther) {
    constexpr std::size_t depth = limit(1'000'000, 5'000);
    Value deep = makeList({});
    for (std::size_t i = 1; i < depth; ++i) {
        Values elements;
        elements.push_back(std::move(deep));
        deep = makeList(std::move(elements));
    }
    const std::string text = toDisplayString(deep);
    EXPECT_TRUE(text == std::string(depth, '[') + std::string(depth, ']'));
}

TEST(Format, MapsAndListsDeepInEachOther) {
    constexpr std::size_t pairs = limit(500'000, 999);
    Value deep(1);
    for (std::size_t i = 0; i < pairs; ++i) {
        auto map = makeRef<MapData>();
        map->set(Value("k"), std::move(deep));
        Values elements;
        elements.push_back(Value(std::move(map)));
        deep = makeList(std::move(elements));
    }
    const std::string text = toReprString(deep);
    const std::string_view opening = R"([{"k": )";
    ASSERT_EQ(text.size(), pairs * (opening.size() + 2) + 1);
    for (std::size_t i = 0; i < pairs; ++i) {
        ASSERT_TRUE(text.compare(i * opening.size(), opening.size(), opening) == 0) << i;
    }
    EXPECT_EQ(text.substr(pairs * opening.size(), 5), "1}]}]");
}

}  // namespace

}  // namespace pellum::test
