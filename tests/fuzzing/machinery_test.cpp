// What the fuzzers rely on: that every program ends, that rewriting takes the known differences
// away, and that a difference that is left would be noticed.
#include "support/files.h"
#include "support/markdown.h"

#include "fuzz/common_ground.h"
#include "fuzz/fuel.h"
#include "fuzz/mutator.h"
#include "fuzz/playing.h"
#include "fuzz/targets.h"

#include "driver/errors/errors.h"
#include "lexer/lexer.h"
#include "parser/parser.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace pellum::test {

namespace {

using fuzz::Engine;
using fuzz::Played;

Played playBounded(Engine engine, std::string_view source) {
    Block program = parse(tokenize(source));
    fuzz::boundSteps(program);
    return fuzz::play(engine, program, source);
}

constexpr Engine allEngines[] = {Engine::Tree, Engine::Register, Engine::Stack};

TEST(Fuzzing, EndlessProgramsRunOutOfFuel) {
    for (const char* source :
         {"while true do end", "function f() return f() end\nf()",
          "function f()\nf()\nf()\nend\nf()", "for i = 1, 1e300 do end",
          "let f = function(f) return f(f) end\nf(f)",
          "while true do\ntry\nerror(1)\ncatch e\nend\nend",
          "map(function(x)\nwhile true do end\nend, [1])", "for x in range(2000) do end"}) {
        for (const Engine engine : allEngines) {
            EXPECT_EQ(playBounded(engine, source).ending, "out of fuel") << source;
        }
    }
}

TEST(Fuzzing, GrowingProgramsRunOutOfMemory) {
    for (const char* source :
         {"let s = \"ab\"\nwhile true do s += s end", "let s = [1]\nwhile true do s = s + s end",
          "print(len(repeat(\"x\", 1000000000)))", "print(len(range(100000000)))"}) {
        for (const Engine engine : allEngines) {
            const Played played = playBounded(engine, source);
            EXPECT_TRUE(played.ranOutOfMemory) << source << " ends with " << played.ending;
        }
    }
}

TEST(Fuzzing, TooMuchOutputIsCutShort) {
    for (const Engine engine : allEngines) {
        const Played played =
            playBounded(engine, "for i = 1, 50 do print(repeat(\"x\", 1000)) end");
        EXPECT_EQ(played.ending, "too much output");
        EXPECT_FALSE(played.ranOutOfMemory);
    }
}

TEST(Fuzzing, ChanceIsTakenAway) {
    for (const Engine engine : allEngines) {
        EXPECT_EQ(playBounded(engine, "print(random(), randint(3, 9), clock())").output,
                  "0.625 3 1.5\n");
        EXPECT_EQ(playBounded(engine, "randint(9, 3)").ending,
                  "RuntimeError: randint: low must be <= high");
    }
}

// Each program of the page shows a difference, and none of them is left on the common ground.
TEST(Fuzzing, CommonGroundHasNoneOfTheKnownDifferences) {
    int differences = 0;
    for (const MarkdownProgram& program : programsOf(readFile("docs/engines.md"))) {
        SCOPED_TRACE(program.heading);
        const auto* bytes = reinterpret_cast<const std::uint8_t*>(program.source.data());
        EXPECT_NO_THROW(fuzz::fuzzEngines({bytes, program.source.size()}));
        const Played tree = playBounded(Engine::Tree, program.source);
        const Played vm = playBounded(Engine::Register, program.source);
        if (tree.output != vm.output || tree.ending != vm.ending) ++differences;
    }
    EXPECT_GE(differences, 50);
}

TEST(Fuzzing, MessagesAreEvened) {
    EXPECT_EQ(fuzz::evenMessage("operator '//' needs numbers, got nil and string"),
              "arithmetic needs numbers, got nil and string");
    EXPECT_EQ(
        fuzz::evenMessage("cannot assign to undefined variable 'x' (use 'let' to declare it)"),
        "undefined variable 'x'");
    EXPECT_EQ(fuzz::evenMessage("pop: list is empty"), "pop: list is empty");
}

TEST(Fuzzing, MutationsAreDifferentButBounded) {
    const std::string source = "let x = 1\nwhile x < 9 do\n    x += 1\nend\nprint(x)\n";
    int parsed = 0;
    for (std::uint32_t seed = 0; seed < 200; ++seed) {
        const std::string mutated = fuzz::mutatedCode(source, 60, seed);
        EXPECT_EQ(mutated, fuzz::mutatedCode(source, 60, seed));
        EXPECT_LE(mutated.size(), 60u);
        try {
            const std::string longer = fuzz::mutatedCode(source, 4096, seed);
            parse(tokenize(longer));
            ++parsed;
        } catch (const PellumError&) {
        }
    }
    EXPECT_GE(parsed, 40);
}

}  // namespace

}  // namespace pellum::test
