#include "driver/repl.h"
#include "driver/source.h"
#include "support/playing.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace pellum::test {

namespace {

void expectIncomplete(std::initializer_list<std::string_view> texts) {
    for (const std::string_view text : texts) {
        SCOPED_TRACE(text);
        EXPECT_TRUE(isIncomplete(text));
    }
}

void expectNotIncomplete(std::initializer_list<std::string_view> texts) {
    for (const std::string_view text : texts) {
        SCOPED_TRACE(text);
        EXPECT_FALSE(isIncomplete(text));
    }
}

TEST(IsIncomplete, BracketsThatAreOpen) {
    expectIncomplete({"(", "[", "{", "f(1,", "xs[", "{a: 1,", "f(g(1)", "[[1], [2]", "(\n\n"});
    expectNotIncomplete({"()", "[]", "{}", "f(1)", "xs[0]", "{a: 1}", "([{}])"});
}

TEST(IsIncomplete, BlocksThatAreOpen) {
    expectIncomplete({"function", "if", "while", "for", "try", "function f", "if x then",
                      "while x do", "for i = 1, 2 do", "for x in xs do", "try\nf()",
                      "if x then\nelse", "function f()\nif x then\nend"});
    expectNotIncomplete({"function f() end", "if x then end", "while x do end",
                         "for i = 1, 2 do end", "try catch e end",
                         "function f()\nif x then\nend\nend"});
}

TEST(IsIncomplete, OtherWordsDoNotCount) {
    expectNotIncomplete({"then", "do",      "else",    "elif",     "catch", "in",
                         "let",  "return",  "break",   "continue", "and",   "or",
                         "not",  "let x =", "x = 1 +", "return",   ",",     ":",
                         ".",    "",        "\n",      "x"});
    expectIncomplete({"if x then else elif catch do"});
}

TEST(IsIncomplete, WhatClosesTooMuchIsNotIncomplete) {
    expectNotIncomplete({")", "]", "}", "end", "f())", "end if", ")(", "end end if"});
    expectIncomplete({"end if if", ") ((", "] end ({["});
}

TEST(IsIncomplete, BracketsAndBlocksShareOneCounter) {
    expectNotIncomplete({"(end", "[ end", "if )", "function }", "(]", "{)"});
    expectIncomplete({"if ( end", "[ function )", "(( end"});
}

TEST(IsIncomplete, NamesThatBeginLikeWordsDoNotCount) {
    expectNotIncomplete({"iffy", "If", "ending", "trying", "forest", "functions", "_if"});
    expectIncomplete({"(ending", "if iffy then ending"});
}

TEST(IsIncomplete, StringsAndRemarksDoNotCount) {
    expectNotIncomplete({"\"(\"", "'if'", "\"${[1]}\"", "\"${function() end}\"", "1 # (", "# if",
                         "\"${{a: 1}.a\"}\""});
    expectIncomplete({"[\")\"", "( # )", "if 'end'", "[\"${x})\""});
}

TEST(IsIncomplete, CodeInInterpolationsIsNotLookedAt) {
    expectNotIncomplete({"\"${(}\"", "\"${if}\"", "\"${@}\""});
    expectIncomplete({"[\"${)}\"", "[\"${@}\""});
}

TEST(IsIncomplete, WhatCannotBeLexedIsNotIncomplete) {
    expectNotIncomplete(
        {"(\"", "if 'open", "[ @", "( !", "{ 1e", "if x then\n\"${", "[\"\\q\"", "function \xFF"});
}

// Looked at anew with each of its lines, this would take hours.
TEST(Repl, AnOpenInputOfManyLinesTakesTimeInProportion) {
    constexpr int lines = 300'000;
    std::string input = "let xs = [\n";
    for (int i = 0; i < lines; ++i) input += "1, # one more\n";
    input += "]\nlen(xs)\n";
    const Outcome outcome = playInProcess({}, input);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_TRUE(outcome.output.ends_with(".. >> 300000\n>> \n"));
}

TEST(Repl, AnInputThatIsTooLongIsForgotten) {
    const std::string comment = "#" + std::string(maxSourceLength, 'x');
    const Outcome outcome = playInProcess({}, "[\n" + comment + "\n1 + 1\n");
    EXPECT_EQ(outcome.errors, "pellum: input longer than 67108864 bytes\n");
    EXPECT_TRUE(outcome.output.ends_with("\n>> .. >> 2\n>> \n"));
    EXPECT_EQ(outcome.status, 0);
}

}  // namespace

}  // namespace pellum::test
