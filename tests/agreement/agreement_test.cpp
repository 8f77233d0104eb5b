// The engines against each other, on random programs. The suite plays a fixed list of seeds;
// PELLUM_AGREEMENT_SEEDS asks for more:
//
//   PELLUM_AGREEMENT_SEEDS=1000-100000 pellum_tests --gtest_filter='Agreement.*'
//
// A single seed prints its program too.
#include "agreement/comparison.h"
#include "agreement/generator.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>

namespace pellum::test {
namespace {

void expectAgreement(std::uint64_t seed) {
    const Block program = generateProgram(seed);
    if (compareEngines(textOf(program)).agrees()) return;
    const std::string smaller = textOf(shrink(program));
    ADD_FAILURE() << "the engines disagree about the program of seed " << seed
                  << "; shrunk, it is\n"
                  << smaller << compareEngines(smaller).difference();
}

// A slice of the fixed list, so that the slices run side by side.
class FixedSeeds : public testing::TestWithParam<std::uint64_t> {};

TEST_P(FixedSeeds, GiveTheSameOnBothEngines) {
    for (std::uint64_t seed = GetParam(); seed < GetParam() + 50; ++seed) expectAgreement(seed);
}

INSTANTIATE_TEST_SUITE_P(Agreement, FixedSeeds, testing::Range<std::uint64_t>(1, 401, 50),
                         [](const auto& slice) { return "from" + std::to_string(slice.param); });

TEST(Agreement, OfTheSeedsAskedFor) {
    const char* const asked = std::getenv("PELLUM_AGREEMENT_SEEDS");
    if (!asked) GTEST_SKIP() << "PELLUM_AGREEMENT_SEEDS asks for none";
    char* rest = nullptr;
    const std::uint64_t first = std::strtoull(asked, &rest, 10);
    const std::uint64_t last = *rest == '-' ? std::strtoull(rest + 1, &rest, 10) : first;
    ASSERT_TRUE(rest != asked && *rest == '\0' && first <= last)
        << "PELLUM_AGREEMENT_SEEDS is a seed or a range such as 1-100";
    if (first == last) std::cout << textOf(generateProgram(first));
    for (std::uint64_t seed = first; seed <= last; ++seed) expectAgreement(seed);
}

TEST(Agreement, ProgramsAreTheSameForTheSameSeed) {
    EXPECT_EQ(textOf(generateProgram(7)), textOf(generateProgram(7)));
    EXPECT_NE(textOf(generateProgram(7)), textOf(generateProgram(8)));
}

// Most programs come to their end, and say something on the way; otherwise they would test little.
TEST(Agreement, ProgramsRunForAWhile) {
    int finished = 0;
    std::size_t lines = 0;
    for (std::uint64_t seed = 1; seed <= 50; ++seed) {
        const Outcome outcome =
            playInProcess({"-c", textOf(generateProgram(seed))}, "a line of input\n");
        EXPECT_EQ(outcome.errors.find("SyntaxError"), std::string::npos) << outcome.errors;
        EXPECT_EQ(outcome.errors.find("CompileError"), std::string::npos) << outcome.errors;
        if (outcome.status == 0) ++finished;
        lines += static_cast<std::size_t>(
            std::count(outcome.output.begin(), outcome.output.end(), '\n'));
    }
    EXPECT_GE(finished, 25);
    EXPECT_GE(lines, 50u * 10);
}

}  // namespace
}  // namespace pellum::test
