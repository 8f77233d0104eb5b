#include "value/number.h"

#include <gtest/gtest.h>

#include <random>

namespace pellum::test {

namespace {

constexpr std::int64_t maxInt = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t minInt = std::numeric_limits<std::int64_t>::min();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

struct Row {
    std::int64_t a, b, result;
};

TEST(Number, SumsWrap) {
    const Row rows[] = {{1, 2, 3},
                        {-1, 1, 0},
                        {maxInt, 1, minInt},
                        {minInt, -1, maxInt},
                        {maxInt, maxInt, -2},
                        {minInt, minInt, 0},
                        {minInt, maxInt, -1},
                        {maxInt, 0, maxInt}};
    for (const Row& row : rows) {
        EXPECT_EQ(wrapAdd(row.a, row.b), row.result) << row.a << " + " << row.b;
        EXPECT_EQ(wrapAdd(row.b, row.a), row.result) << row.b << " + " << row.a;
    }
}

TEST(Number, DifferencesWrap) {
    const Row rows[] = {{3, 5, -2},          {minInt, 1, maxInt},  {maxInt, -1, minInt},
                        {0, minInt, minInt}, {-1, minInt, maxInt}, {minInt, minInt, 0},
                        {minInt, maxInt, 1}, {maxInt, minInt, -1}};
    for (const Row& row : rows) {
        EXPECT_EQ(wrapSubtract(row.a, row.b), row.result) << row.a << " - " << row.b;
    }
}

TEST(Number, ProductsWrap) {
    const Row rows[] = {{3, -4, -12},
                        {maxInt, 2, -2},
                        {maxInt, maxInt, 1},
                        {minInt, -1, minInt},
                        {minInt, 2, 0},
                        {minInt, minInt, 0},
                        {minInt, 3, minInt},
                        {1LL << 32, 1LL << 32, 0},
                        {1LL << 32, 1LL << 31, minInt},
                        {3037000499, 3037000499, 9223372030926249001},
                        {3037000500, 3037000500, -9223372036709301616}};
    for (const Row& row : rows) {
        EXPECT_EQ(wrapMultiply(row.a, row.b), row.result) << row.a << " * " << row.b;
        EXPECT_EQ(wrapMultiply(row.b, row.a), row.result) << row.b << " * " << row.a;
    }
}

TEST(Number, NegationWraps) {
    EXPECT_EQ(wrapNegate(0), 0);
    EXPECT_EQ(wrapNegate(5), -5);
    EXPECT_EQ(wrapNegate(maxInt), -maxInt);
    EXPECT_EQ(wrapNegate(-maxInt), maxInt);
    EXPECT_EQ(wrapNegate(minInt), minInt);
}

TEST(Number, FloorDivisionRoundsDown) {
    const Row rows[] = {{7, 2, 3},
                        {-7, 2, -4},
                        {7, -2, -4},
                        {-7, -2, 3},
                        {6, 2, 3},
                        {-6, 2, -3},
                        {6, -2, -3},
                        {-6, -2, 3},
                        {0, 5, 0},
                        {0, -5, 0},
                        {1, 2, 0},
                        {-1, 2, -1},
                        {1, -2, -1},
                        {5, 1, 5},
                        {5, -1, -5},
                        {maxInt, 1, maxInt},
                        {maxInt, -1, -maxInt},
                        {maxInt, 2, 4611686018427387903},
                        {maxInt, -2, -4611686018427387904},
                        {maxInt, maxInt, 1},
                        {maxInt, minInt, -1},
                        {minInt, 1, minInt},
                        {minInt, -1, minInt},
                        {minInt, 2, -4611686018427387904},
                        {minInt, -2, 4611686018427387904},
                        {minInt, 3, -3074457345618258603},
                        {minInt, -3, 3074457345618258602},
                        {minInt, maxInt, -2},
                        {minInt, minInt, 1},
                        {minInt + 1, minInt, 0},
                        {1, minInt, -1},
                        {-1, minInt, 0},
                        {1, maxInt, 0},
                        {-1, maxInt, -1}};
    for (const Row& row : rows) {
        EXPECT_EQ(floorDivide(row.a, row.b), row.result) << row.a << " // " << row.b;
    }
}

TEST(Number, RemainderHasTheSignOfTheLeft) {
    const Row rows[] = {{7, 3, 1},
                        {-7, 3, -1},
                        {7, -3, 1},
                        {-7, -3, -1},
                        {6, 3, 0},
                        {-6, 3, 0},
                        {2, 5, 2},
                        {-2, 5, -2},
                        {0, -5, 0},
                        {5, 1, 0},
                        {5, -1, 0},
                        {maxInt, -1, 0},
                        {maxInt, 10, 7},
                        {maxInt, minInt, maxInt},
                        {minInt, 1, 0},
                        {minInt, -1, 0},
                        {minInt, 10, -8},
                        {minInt, -10, -8},
                        {minInt, maxInt, -1},
                        {minInt, minInt, 0},
                        {minInt + 1, minInt, minInt + 1}};
    for (const Row& row : rows) {
        EXPECT_EQ(truncatedRemainder(row.a, row.b), row.result) << row.a << " % " << row.b;
    }
}

// One rounds down, the other truncates; together they tell the whole story all the same.
TEST(Number, FloorDivisionAndRemainderFitTogether) {
    std::mt19937_64 random(31415);
    const auto anyInt = [&] { return static_cast<std::int64_t>(random()) >> (random() % 64); };
    for (int round = 0; round < 20'000; ++round) {
        const std::int64_t a = anyInt();
        const std::int64_t b = anyInt();
        if (b == 0) continue;
        const std::int64_t quotient = floorDivide(a, b);
        const std::int64_t remainder = truncatedRemainder(a, b);
        const bool wasRoundedDown = remainder != 0 && (a < 0) != (b < 0);
        const std::int64_t truncated = wasRoundedDown ? quotient + 1 : quotient;
        ASSERT_EQ(wrapAdd(wrapMultiply(truncated, b), remainder), a) << a << " by " << b;
        ASSERT_TRUE(remainder == 0 || (remainder < 0) == (a < 0)) << a << " by " << b;
    }
}

TEST(Number, FloatsDivideTheSameWay) {
    EXPECT_EQ(floorDivide(7.0, 2.0), 3.0);
    EXPECT_EQ(floorDivide(-7.0, 2.0), -4.0);
    EXPECT_EQ(floorDivide(7.5, -2.0), -4.0);
    EXPECT_EQ(floorDivide(1.0, infinity), 0.0);
    EXPECT_EQ(floorDivide(-1.0, infinity), -0.0);
    EXPECT_TRUE(std::isnan(floorDivide(infinity, infinity)));
    EXPECT_TRUE(std::signbit(floorDivide(-0.0, 1.0)));

    EXPECT_EQ(truncatedRemainder(7.5, 2.0), 1.5);
    EXPECT_EQ(truncatedRemainder(-7.5, 2.0), -1.5);
    EXPECT_EQ(truncatedRemainder(7.5, -2.0), 1.5);
    EXPECT_EQ(truncatedRemainder(5.0, infinity), 5.0);
    EXPECT_TRUE(std::signbit(truncatedRemainder(-6.0, 3.0)));
    EXPECT_TRUE(std::isnan(truncatedRemainder(infinity, 3.0)));
}

TEST(Number, Powers) {
    const Row rows[] = {{2, 0, 1},
                        {0, 0, 1},
                        {0, 1, 0},
                        {0, maxInt, 0},
                        {1, maxInt, 1},
                        {-1, maxInt, -1},
                        {-1, maxInt - 1, 1},
                        {2, 10, 1024},
                        {-2, 3, -8},
                        {-2, 4, 16},
                        {7, 1, 7},
                        {10, 18, 1'000'000'000'000'000'000},
                        {10, 19, -8446744073709551616},
                        {2, 62, 1LL << 62},
                        {2, 63, minInt},
                        {-2, 63, minInt},
                        {2, 64, 0},
                        {2, maxInt, 0},
                        {3, 39, 4052555153018976267},
                        {3, 41, -420491770248316829},
                        {-3, 41, 420491770248316829},
                        {3, 1LL << 32, 2491309678558969857},
                        {maxInt, 2, 1},
                        {maxInt, 3, maxInt},
                        {minInt, 1, minInt},
                        {minInt, 2, 0}};
    for (const Row& row : rows) {
        EXPECT_EQ(intPower(row.a, row.b), row.result) << row.a << " ^ " << row.b;
    }
}

TEST(Number, PowersAreRepeatedProducts) {
    for (std::int64_t base = -12; base <= 12; ++base) {
        std::int64_t product = 1;
        for (std::int64_t exponent = 0; exponent <= 130; ++exponent) {
            ASSERT_EQ(intPower(base, exponent), product) << base << " ^ " << exponent;
            product = wrapMultiply(product, base);
        }
    }
}

TEST(Number, TruncationToAnInteger) {
    struct {
        double x;
        std::int64_t result;
    } const rows[] = {{0.0, 0},
                      {-0.0, 0},
                      {0.9, 0},
                      {-0.9, 0},
                      {1.5, 1},
                      {-1.5, -1},
                      {5e-324, 0},
                      {9007199254740993.0, 9007199254740992},
                      {0x1p62, 1LL << 62},
                      {0x1.fffffffffffffp62, 9223372036854774784},
                      {0x1p63, minInt},
                      {0x1.0000000000001p63, minInt},
                      {-0x1.fffffffffffffp62, -9223372036854774784},
                      {-0x1p63, minInt},
                      {-0x1.0000000000001p63, minInt},
                      {1e300, minInt},
                      {-1e300, minInt},
                      {infinity, minInt},
                      {-infinity, minInt},
                      {nan, minInt},
                      {-nan, minInt}};
    for (const auto& row : rows) EXPECT_EQ(truncateToInt(row.x), row.result) << row.x;
}

TEST(Number, IntegersAreEqualWhereTheirDoublesAre) {
    constexpr std::int64_t border = 1LL << 53;
    struct {
        std::int64_t a, b;
        bool equal;
    } const rows[] = {{0, 0, true},
                      {1, 2, false},
                      {border - 1, border, false},
                      {border, border + 1, true},
                      {border + 1, border + 2, false},
                      {border + 3, border + 4, true},
                      {-border, -border - 1, true},
                      {-border, -border + 1, false},
                      {border, -border, false},
                      {maxInt, maxInt - 511, true},
                      {maxInt, maxInt - 512, false},
                      {minInt, minInt + 512, true},
                      {minInt, minInt + 513, false},
                      {minInt, maxInt, false}};
    for (const auto& row : rows) {
        EXPECT_EQ(equalAsDoubles(row.a, row.b), row.equal) << row.a << " and " << row.b;
        EXPECT_EQ(equalAsDoubles(row.b, row.a), row.equal) << row.b << " and " << row.a;
    }
}

}  // namespace

}  // namespace pellum::test
