// The engines against each other, on random programs. The suite plays a fixed list of seeds; more
// are asked for by the environment:
//
//   PELLUM_AGREEMENT_SEEDS=5000-100000 pellum_tests --gtest_filter='Agreement.*'
//
// A single seed prints its program too. PELLUM_AGREEMENT_SECONDS ends a range early, and
// PELLUM_AGREEMENT_SAVE names a folder into which what differs is written, shrunk, as a case for
// tests/regression.
#include "agreement/comparison.h"
#include "agreement/generator.h"
#include "support/expectations.h"
#include "support/files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string>

namespace pellum::test {
namespace {

constexpr std::uint64_t fixedSeeds = 2000;
constexpr std::uint64_t slice = 50;

void expectAgreement(std::uint64_t seed) {
    const Ground ground = groundOf(seed);
    const Block program = generateProgram(seed);
    if (compareEngines(textOf(program), ground).agrees()) return;
    const std::string smaller = textOf(shrink(program, ground));
    ADD_FAILURE() << "the engines disagree about the program of seed " << seed
                  << "; shrunk, it is\n"
                  << smaller << compareEngines(smaller, ground).difference();
    const char* const folder = std::getenv("PELLUM_AGREEMENT_SAVE");
    if (!folder) return;
    const auto path = std::filesystem::path(folder) / ("seed_" + std::to_string(seed) + ".pellum");
    std::filesystem::create_directories(folder);
    writeFile(path, regressionCase(smaller, ground));
    std::cout << "saved as " << path.string() << std::endl;
}

// A slice of the fixed list, so that the slices run side by side.
class FixedSeeds : public testing::TestWithParam<std::uint64_t> {};

TEST_P(FixedSeeds, GiveTheSameOnBothEngines) {
    std::cout << "seeds " << GetParam() << " to " << GetParam() + slice - 1 << std::endl;
    for (std::uint64_t seed = GetParam(); seed < GetParam() + slice; ++seed) expectAgreement(seed);
}

INSTANTIATE_TEST_SUITE_P(Agreement, FixedSeeds,
                         testing::Range<std::uint64_t>(1, fixedSeeds + 1, slice),
                         [](const auto& first) { return "from" + std::to_string(first.param); });

TEST(Agreement, OfTheSeedsAskedFor) {
    const char* const asked = std::getenv("PELLUM_AGREEMENT_SEEDS");
    if (!asked) GTEST_SKIP() << "PELLUM_AGREEMENT_SEEDS asks for none";
    char* rest = nullptr;
    const std::uint64_t first = std::strtoull(asked, &rest, 10);
    const std::uint64_t last = *rest == '-' ? std::strtoull(rest + 1, &rest, 10) : first;
    ASSERT_TRUE(rest != asked && *rest == '\0' && first <= last)
        << "PELLUM_AGREEMENT_SEEDS is a seed or a range such as 1-100";
    if (first == last) std::cout << textOf(generateProgram(first));

    using Clock = std::chrono::steady_clock;
    const char* const seconds = std::getenv("PELLUM_AGREEMENT_SECONDS");
    const auto end = Clock::now() + std::chrono::seconds(seconds ? std::atol(seconds) : 1L << 30);
    std::uint64_t seed = first;
    for (; seed <= last && Clock::now() < end; ++seed) {
        // Where a crash would have to be looked for.
        if ((seed - first) % 100 == 0) std::cout << "from seed " << seed << std::endl;
        expectAgreement(seed);
    }
    std::cout << seed - first << " programs" << std::endl;
}

TEST(Agreement, ProgramsAreTheSameForTheSameSeed) {
    EXPECT_EQ(textOf(generateProgram(7)), textOf(generateProgram(7)));
    EXPECT_NE(textOf(generateProgram(7)), textOf(generateProgram(8)));
}

// Most programs come to their end, and say something on the way; otherwise they would test little.
TEST(Agreement, ProgramsRunForAWhile) {
    int finished = 0;
    std::size_t lines = 0;
    for (std::uint64_t seed = 1; seed <= 100; ++seed) {
        const Outcome outcome =
            playInProcess({"-c", textOf(generateProgram(seed))}, "a line of input\n");
        EXPECT_EQ(outcome.errors.find("SyntaxError"), std::string::npos) << outcome.errors;
        EXPECT_EQ(outcome.errors.find("CompileError"), std::string::npos) << outcome.errors;
        if (outcome.status == 0) ++finished;
        lines += static_cast<std::size_t>(
            std::count(outcome.output.begin(), outcome.output.end(), '\n'));
    }
    EXPECT_GE(finished, 60);
    EXPECT_GE(lines, 100u * 10);
}

// A known difference is noticed where both engines matter, and only there, and what does not belong
// to it is left out.
TEST(Agreement, FindsAreShrunk) {
    const Block program = {
        simple("let unused = [1, 2]"),
        simple("let kept = []"),
        {{{"for i = 1, 3 do",
           {simple("push(unused, i)"), simple("push(kept, function() return i end)")}}},
         "end"},
        {{{"if len(unused) > 2 then", {simple("print(map(function(f) return f() end, kept))")}}},
         "end"},
    };
    EXPECT_TRUE(compareEngines(textOf(program), Ground::MachineAlone).agrees());
    ASSERT_FALSE(compareEngines(textOf(program), Ground::BothEngines).agrees());
    EXPECT_EQ(textOf(shrink(program, Ground::BothEngines)),
              "let kept = []\n"
              "for i = 1, 3 do\n"
              "    push(kept, function() return i end)\n"
              "end\n"
              "print(map(function(f) return f() end, kept))\n");
}

// What is saved of a find is a case that expects what the yardstick does.
TEST(Agreement, FindsBecomeCases) {
    for (const std::string source :
         {"print(1)\nprint(\"  a \")\n", "let x = 1\n", "print(1)\nprint(nil + 1)\n", "pop([])\n",
          "error(\"two\\nlines\")\n", "print(input(\"ask \"))\ninput(\"again\")\n",
          "print(\"a\\nb # c\")\n"}) {
        for (const Ground ground : {Ground::BothEngines, Ground::MachineAlone}) {
            const std::string text = regressionCase(source, ground);
            SCOPED_TRACE(text);
            const Expectations expectations = expectationsOf(text);
            const Engine engine = ground == Ground::BothEngines ? Engine::Tree : Engine::Vm;
            EXPECT_EQ(expectations.onlyEngine.has_value(), ground == Ground::MachineAlone);
            const Outcome given = playInProcess(onEngine(engine, {"-c", text}), expectations.input);
            std::string output;
            for (const ExpectedLine& line : expectations.on(engine).output) output += line.text;
            EXPECT_EQ(given.output, output);
            const auto& error = expectations.on(engine).error;
            EXPECT_EQ(given.errors, error ? wantedErrors(*error, text, "<-c>") : "");
        }
    }
}

}  // namespace
}  // namespace pellum::test
