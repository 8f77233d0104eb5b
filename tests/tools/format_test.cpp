// The formatter over every program of the repository and over random ones. More random programs are
// asked for by the environment:
//
//   PELLUM_FORMAT_SEEDS=1-20000 pellum_tests --gtest_filter='Formatter.*AskedFor*'
#include "format/format.h"

#include "agreement/generator.h"
#include "format/printer.h"
#include "support/files.h"
#include "support/markdown.h"
#include "tools/format_checks.h"

#include "driver/source.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

namespace pellum::test {

namespace {

using tools::format;

struct Source {
    std::string name;
    std::string text;
};

// Every program below these folders that fits into the limits of the build.
std::vector<Source> programsUnder(const std::vector<std::string>& folders) {
    std::vector<Source> programs;
    for (const std::string& folder : folders) {
        for (const auto& file : filesUnder(folder, "")) {
            if (file.extension() != ".pellum" && file.extension() != ".plm") continue;
            std::string text = readFile(file);
            if (text.size() > maxSourceLength / 2 || !isProgram(text)) continue;
            programs.push_back({file.generic_string(), std::move(text)});
        }
    }
    return programs;
}

std::vector<Source> programsOfThePages() {
    std::vector<Source> programs;
    for (const auto& page : markdownPages()) {
        for (const MarkdownProgram& program : programsOf(readFile(page))) {
            if (!isProgram(program.source)) continue;
            programs.push_back(
                {page.generic_string() + ":" + std::to_string(program.line), program.source});
        }
    }
    return programs;
}

// As it is, and in other layouts.
void checkProgram(const std::string& source, const std::string& name, std::uint64_t seed) {
    checkedFormat(source, name);
    const std::string other = scrambled(source, seed);
    if (other.size() > maxSourceLength / 4) return;
    checkedFormat(other, name + ", scrambled");
}

std::string nameOf(std::uint64_t seed) { return "the program of seed " + std::to_string(seed); }

void checkSeed(std::uint64_t seed) {
    const std::string source = textOf(generateProgram(seed));
    if (source.size() <= maxSourceLength / 4) checkProgram(source, nameOf(seed), seed);
}

void playSeed(std::uint64_t seed) {
    const std::string source = textOf(generateProgram(seed));
    const std::string other = scrambled(source, seed);
    if (other.size() > maxSourceLength / 4) return;
    expectSameBehaviour(source, format(other), nameOf(seed));
}

// Calls `check` for each of the seeds that the environment asks for.
void forSeedsAskedFor(void (*check)(std::uint64_t seed)) {
    const char* const asked = std::getenv("PELLUM_FORMAT_SEEDS");
    if (!asked) GTEST_SKIP() << "PELLUM_FORMAT_SEEDS asks for none";
    char* rest = nullptr;
    const std::uint64_t first = std::strtoull(asked, &rest, 10);
    const std::uint64_t last = *rest == '-' ? std::strtoull(rest + 1, &rest, 10) : first;
    ASSERT_TRUE(rest != asked && *rest == '\0' && first <= last)
        << "PELLUM_FORMAT_SEEDS is a seed or a range such as 1-100";
    for (std::uint64_t seed = first; seed <= last && !testing::Test::HasFailure(); ++seed) {
        check(seed);
    }
    std::cout << last - first + 1 << " programs" << std::endl;
}

TEST(Formatter, KeepsEveryProgramOfTheTests) {
    const std::vector<Source> programs = programsUnder({"tests", "bench", "examples"});
    EXPECT_GE(programs.size(), 1000U);
    std::uint64_t seed = 0;
    for (const Source& program : programs) checkProgram(program.text, program.name, ++seed);
}

TEST(Formatter, KeepsEveryProgramOfThePages) {
    const std::vector<Source> programs = programsOfThePages();
    EXPECT_GE(programs.size(), 300U);
    std::uint64_t seed = 0;
    for (const Source& program : programs) checkProgram(program.text, program.name, ++seed);
}

// The tree says so already, so a few will do.
TEST(Formatter, LetsProgramsDoTheSame) {
    const std::vector<Source> programs = programsUnder({"tests/lang", "tests/builtins"});
    for (std::size_t i = 0; i < programs.size(); i += 10) {
        expectSameBehaviour(programs[i].text, format(programs[i].text), programs[i].name);
    }
}

TEST(Formatter, KeepsRandomPrograms) {
    for (std::uint64_t seed = 1; seed <= 200; ++seed) checkSeed(seed);
}

TEST(Formatter, LetsRandomProgramsDoTheSame) {
    for (std::uint64_t seed = 1; seed <= 10; ++seed) playSeed(seed);
}

TEST(Formatter, KeepsTheRandomProgramsAskedFor) { forSeedsAskedFor(checkSeed); }

TEST(Formatter, LetsTheRandomProgramsAskedForDoTheSame) { forSeedsAskedFor(playSeed); }

TEST(Formatter, ExamplesAreLaidOutAsItWould) {
    for (const auto& file : filesUnder("examples", ".plm")) {
        const std::string text = readFile(file);
        EXPECT_EQ(format(text), text) << file;
    }
}

// `count` times `before`, a 1, and as many times `after`.
std::string nested(int count, const std::string& before, const std::string& after) {
    std::string text;
    for (int i = 0; i < count; ++i) text += before;
    text += "1";
    for (int i = 0; i < count; ++i) text += after;
    return text;
}

// Deep nesting is no reason to fail where the parser does not, nor to fill pages with blanks.
TEST(Formatter, KeepsDeepNesting) {
    constexpr int depth = limit(5'000, 200);
    for (const auto& [before, after] :
         std::vector<std::pair<std::string, std::string>>{{"[", "]"},
                                                          {"[\n", "\n]"},
                                                          {"{a: ", "}"},
                                                          {"(", ")"},
                                                          {"- ", ""},
                                                          {"f(", ")"},
                                                          {"function() return ", " end"},
                                                          {"function()\nreturn ", "\nend"},
                                                          {"[0, ", "]"},
                                                          {"", " ^ 1"},
                                                          {"", "[0]"}}) {
        SCOPED_TRACE(before);
        const std::string source = "x = " + nested(depth, before, after) + "\n";
        std::string result;
        try {
            result = format(source);
        } catch (const tools::TextTooLong&) {
            EXPECT_LT(maxSourceLength, source.size() * 250);
            continue;
        }
        EXPECT_NO_THROW(tools::checkSameProgram(source, result));
        EXPECT_EQ(format(result), result);
        EXPECT_LE(result.size(), source.size() * 250);
    }
    std::string blocks;
    for (int i = 0; i < depth; ++i) blocks += "if a then\n";
    for (int i = 0; i < depth; ++i) blocks += "end\n";
    if (blocks.size() * 40 > maxSourceLength) return;
    EXPECT_EQ(format(format(blocks)), format(blocks));
}

TEST(Formatter, AResultThatIsTooLongIsRefused) {
    std::string source;
    for (int i = 0; i < 50; ++i) source += "if a then\n";
    const std::string statement = "f()\n";
    while (source.size() < maxSourceLength / 30 + 1500) source += statement;
    for (int i = 0; i < 50; ++i) source += "end\n";
    EXPECT_THROW(format(source), tools::TextTooLong);
}

TEST(Formatter, NoticesWhenAProgramHasBecomeAnother) {
    const auto faultOf = [](std::string_view before, std::string_view after) -> std::string {
        try {
            tools::checkSameProgram(before, after);
        } catch (const tools::FormatterFault& fault) {
            return fault.what();
        }
        return "";
    };
    EXPECT_EQ(faultOf("f(1)  # c", "f ( 1 )\n\n# c "), "");
    EXPECT_EQ(faultOf("[1, 2,\n]", "[1,\n2]"), "");
    EXPECT_EQ(faultOf("f(1)", "f(2)"), "a token got lost");
    EXPECT_EQ(faultOf("f('1')", "f(\"1\")"), "a token got lost");
    EXPECT_EQ(faultOf("f()\ng()", "f()\n"), "a token got lost");
    EXPECT_EQ(faultOf("f()", "f()\ng()"), "a token came up");
    EXPECT_EQ(faultOf("f() # a", "f() # b"), "a comment got lost");
    EXPECT_EQ(faultOf("f() # a", "f()"), "a comment got lost");
    EXPECT_EQ(faultOf("#pragma x\nf()", "f()\n#pragma x"), "a pragma got lost");
    EXPECT_EQ(faultOf("f\n(x)", "f(x)"), "the tree has changed");
    EXPECT_EQ(faultOf("f(x)", "f(\nx)"),
              "the result is no program: unexpected end of line in expression");
}

}  // namespace

}  // namespace pellum::test
