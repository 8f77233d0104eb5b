// What the linter promises about all programs: places are right in every text, long and deep ones
// take time in proportion, and nothing that can be parsed is too much for it.
#include "lint/linter.h"

#include "lexer/lexer.h"
#include "parser/parser.h"
#include "support/files.h"
#include "support/findings.h"
#include "support/markdown.h"
#include "support/small_stack.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <string>
#include <vector>

namespace pellum::test {

namespace {

using Lines = std::vector<std::string>;

std::string repeated(const std::string& piece, std::size_t count) {
    std::string text;
    text.reserve(piece.size() * count);
    for (std::size_t i = 0; i < count; ++i) text += piece;
    return text;
}

std::string missing(const std::string& place, const std::string& name) {
    return place + ": undefined-name: nothing defines '" + name + "'";
}

TEST(LintPlaces, CountBytesFromBehindAByteOrderMark) {
    EXPECT_EQ(findingsIn("\xEF\xBB\xBFprint(x)"), Lines{missing("1:7", "x")});
    EXPECT_EQ(findingsIn("\xEF\xBB\xBFprint(\"${x}\")"), Lines{missing("1:10", "x")});
    EXPECT_EQ(findingsIn("\xEF\xBB\xBF\nprint(\"${x}\")"), Lines{missing("2:10", "x")});
    EXPECT_EQ(findingsIn("print(\"\xC3\xA4\", x)\r\nprint(y)\r\n"),
              (Lines{missing("1:13", "x"), missing("2:7", "y")}));
}

TEST(LintPlaces, AreTrueInsideOfStrings) {
    EXPECT_EQ(findingsIn("\n\tprint(\"a${ x }b${y}\\n${\"c${z}\" + w}\")"),
              (Lines{missing("2:13", "x"), missing("2:19", "y"), missing("2:29", "z"),
                     missing("2:35", "w")}));
    EXPECT_EQ(findingsIn("let m = {[\"${x}\"]: \"${y}\"}\nprint(m[\"${z}\"], \"${m}${m.a}\")"),
              (Lines{missing("1:14", "x"), missing("1:23", "y"), missing("2:12", "z")}));
    EXPECT_EQ(findingsIn("print(\"${(function(a, b) try b() catch e end end)(1, 2)}\")"),
              Lines{"1:40: unused-name: caught value 'e' is never used"});
}

TEST(LintPlaces, FindNamesBehindTheirKeywords) {
    EXPECT_EQ(findingsIn("function f(a,  b)  try for i = 1, 2 do try f(1, 2) catch  e end end\n"
                         "catch x end end"),
              (Lines{"1:10: unused-name: function 'f' is used by nothing but itself",
                     "1:12: unused-name: parameter 'a' is never used",
                     "1:16: unused-name: parameter 'b' is never used",
                     "1:28: unused-name: loop variable 'i' is never used",
                     "1:59: unused-name: caught value 'e' is never used",
                     "2:7: unused-name: caught value 'x' is never used"}));
}

TEST(LintPlaces, AreInOrder) {
    EXPECT_EQ(findingsIn("print(b, 1 == [])\nlet d = c\n"),
              (Lines{missing("1:7", "b"),
                     "1:12: constant-comparison: a number and a list are never equal",
                     "2:5: unused-name: variable 'd' is never used", missing("2:9", "c")}));
}

// Everything in the repository that parses.
TEST(Lint, ManagesEveryProgram) {
    std::size_t programs = 0, findings = 0;
    const auto tryOut = [&](const std::string& source) {
        try {
            parse(tokenize(std::string_view(source)));
        } catch (const std::exception&) {
            return;
        }
        findings += findingsIn(source).size();
        ++programs;
    };
    for (const char* folder : {"tests", "examples", "bench", "fuzz"}) {
        for (const char* extension : {".pellum", ".plm"}) {
            for (const auto& file : filesUnder(folder, extension)) tryOut(readFile(file));
        }
    }
    for (const auto& page : markdownPages()) {
        for (const MarkdownProgram& program : programsOf(readFile(page))) tryOut(program.source);
    }
    EXPECT_GT(programs, 1000U);
    EXPECT_GT(findings, 1000U);
}

struct Shape {
    const char* name;
    std::string (*ofSize)(std::size_t count);
};

const Shape shapes[] = {
    {"Lines", [](std::size_t n) { return repeated("let a = b + f(1, \"x\")\n", n); }},
    {"Functions",
     [](std::size_t n) { return repeated("function f(a)\nlet b = a\nreturn b\nend\n", n); }},
    {"Strings", [](std::size_t n) { return repeated("print(\"a ${b} c ${d + 1}\")\n", n); }},
    {"OneString", [](std::size_t n) { return "print(\"" + repeated("${a}b", n) + "\")"; }},
    {"Sums", [](std::size_t n) { return "print(1" + repeated(" + 1", n) + ")"; }},
    {"Calls", [](std::size_t n) { return "print" + repeated("(1).a[0]", n); }},
    {"Keys", [](std::size_t n) { return "print({" + repeated("a: 1, ", n) + "})"; }},
    {"OneScope",
     [](std::size_t n) { return "function f()\n" + repeated("let a = 1\n", n) + "end"; }},
    {"UsesBeforeDeclarations",
     [](std::size_t n) {
         return "function f()\nlet g = function()\n" + repeated("a()\n", n) + "end\n" +
                repeated("let a = 1\n", n) + "end";
     }},
    {"Comments", [](std::size_t n) { return repeated("# lint: allow no-effect\n", n) + "1"; }},
    {"Allowances", [](std::size_t n) { return repeated("1 # lint: allow no-effect\n", n); }},
};

class LintTime : public testing::TestWithParam<Shape> {};

// Ten times the text may take forty times the time, since caches are only so large, and some
// milliseconds for the noise; where every piece looked at every other it would be a hundred times.
TEST_P(LintTime, IsProportionalToTheText) {
    const auto timeOf = [](const std::string& source) {
        double best = 1e9;
        for (int round = 0; round < 3; ++round) {
            const std::clock_t start = std::clock();
            lint::lint(source);
            best = std::min(best, static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC);
        }
        return best;
    };
    const std::string small = GetParam().ofSize(1'000);
    const std::string large = GetParam().ofSize(10'000);
    EXPECT_LT(timeOf(large), 40 * timeOf(small) + 0.02);
}

INSTANTIATE_TEST_SUITE_P(Lint, LintTime, testing::ValuesIn(shapes),
                         [](const auto& shape) { return std::string(shape.param.name); });

const Shape deepShapes[] = {
    {"Ifs", [](std::size_t n) { return repeated("if a then\n", n) + repeated("end\n", n); }},
    {"Functions",
     [](std::size_t n) { return repeated("function f()\n", n) + repeated("end\n", n); }},
    {"Tries", [](std::size_t n) { return repeated("try\n", n) + repeated("catch a\nend\n", n); }},
    {"Groups",
     [](std::size_t n) { return "f(" + repeated("(", n) + "1" + repeated(")", n) + ")"; }},
    {"Lists", [](std::size_t n) { return "f(" + repeated("[", n) + repeated("]", n) + ")"; }},
    {"Nots", [](std::size_t n) { return "f(" + repeated("not ", n) + "1)"; }},
    {"Powers", [](std::size_t n) { return "f(" + repeated("2 ^ ", n) + "1)"; }},
    {"Arguments", [](std::size_t n) { return repeated("f(", n) + "1" + repeated(")", n); }},
    {"FunctionValues",
     [](std::size_t n) {
         return "f(" + repeated("function() return ", n) + "1" + repeated(" end", n) + ")";
     }},
    {"Sums", [](std::size_t n) { return "f(1" + repeated(" + 1", n) + ")"; }},
};

class LintDepth : public testing::TestWithParam<Shape> {};

// On a small stack every depth ends in findings or in an error of the parser's kind.
TEST_P(LintDepth, EndsInAnError) {
    for (std::size_t depth = 10; depth <= 100'000; depth *= 3) {
        const std::string source = GetParam().ofSize(depth);
        onSmallStack([&] {
            try {
                lint::lint(source);
            } catch (const ParseError& error) {
                EXPECT_EQ(error.message, "nesting too deep");
            }
        });
    }
}

INSTANTIATE_TEST_SUITE_P(Lint, LintDepth, testing::ValuesIn(deepShapes),
                         [](const auto& shape) { return std::string(shape.param.name); });

}  // namespace

}  // namespace pellum::test
