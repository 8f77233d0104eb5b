// The runner of language cases believes what it reads in comments, so that reading has tests of its
// own.
#include "support/comments.h"
#include "support/expectations.h"

#include <gtest/gtest.h>

namespace pellum::test {

namespace {

std::string outputOf(const Wanted& wanted) {
    std::string text;
    for (const ExpectedLine& line : wanted.output) text += line.text;
    return text;
}

std::size_t lineOfMistake(std::string_view source) {
    try {
        expectationsOf(source);
    } catch (const BadExpectation& mistake) {
        return mistake.line;
    }
    return 0;
}

TEST(Comments, BeginOutsideStringsOnly) {
    const auto texts = [](std::string_view source) {
        std::vector<std::string> all;
        for (const Comment& comment : commentsOf(source)) all.emplace_back(comment.text);
        return all;
    };
    using Texts = std::vector<std::string>;
    EXPECT_EQ(texts("x # a # b\n#c"), (Texts{" a # b", "c"}));
    EXPECT_EQ(texts("'# no' \"# no\" # yes"), Texts{" yes"});
    EXPECT_EQ(texts("'it\\'s # no' # yes"), Texts{" yes"});
    EXPECT_EQ(texts("\"${ f(\"# no }\", '}') } # no\" # yes"), Texts{" yes"});
    EXPECT_EQ(texts("'${' # yes"), Texts{" yes"});
    EXPECT_EQ(texts("\"\\${\" # yes"), Texts{" yes"});
    EXPECT_EQ(texts("\"${ 'two\nlines # no' }\" # yes"), Texts{" yes"});
}

TEST(Comments, AreFoundBehindBrokenStrings) {
    const auto lines = [](std::string_view source) {
        std::vector<std::size_t> all;
        for (const Comment& comment : commentsOf(source)) all.push_back(comment.line);
        return all;
    };
    using Lines = std::vector<std::size_t>;
    EXPECT_EQ(lines("\"open\n# one"), Lines{2});
    EXPECT_EQ(lines("\"open ${ \"\n# one"), Lines{2});
    EXPECT_EQ(lines("\"open ${ {\n# one"), Lines{2});
    EXPECT_EQ(lines("'open \\\n# one"), Lines{2});
    EXPECT_EQ(lines("'open \\"), Lines{});
}

TEST(Expectations, CollectOutputInOrder) {
    const Expectations found = expectationsOf(
        "print(1)   # expect: 1\n"
        "# expect:\n"
        "# a remark # expect:  two  \n"
        "# expect (tree): tree\n"
        "# expect (vm): vm\n"
        "# expect without newline: name? ");
    EXPECT_EQ(outputOf(found.tree), "1\n\n two  \ntree\nname? ");
    EXPECT_EQ(outputOf(found.vm), "1\n\n two  \nvm\nname? ");
    EXPECT_FALSE(found.areOneForBoth);
}

TEST(Expectations, PlaceRuntimeErrorsByEngine) {
    const Expectations found = expectationsOf("# expect error 2:7: no: good");
    EXPECT_EQ(found.tree.error->message, "no: good");
    EXPECT_EQ(found.tree.error->line, 2U);
    EXPECT_EQ(found.tree.error->column, 7U);
    EXPECT_EQ(found.vm.error->line, 2U);
    EXPECT_EQ(found.vm.error->column, 0U);
    EXPECT_TRUE(found.areOneForBoth);

    const Expectations apart = expectationsOf(
        "# expect error (tree) 2:12: star\n"
        "# expect error (vm)   2:    arithmetic\n");
    EXPECT_EQ(apart.tree.error->column, 12U);
    EXPECT_EQ(apart.tree.error->message, "star");
    EXPECT_EQ(apart.vm.error->line, 2U);
    EXPECT_EQ(apart.vm.error->message, "arithmetic");

    EXPECT_EQ(expectationsOf("# expect error: lost").tree.error->line, 0U);
    EXPECT_EQ(expectationsOf("# expect syntax error 3:4: x").vm.error->column, 4U);
    EXPECT_FALSE(expectationsOf("# expect compile error (vm) 0: x").tree.error);
}

TEST(Expectations, ReadInputAndEngine) {
    const Expectations found = expectationsOf(
        "# input: one\n# input:\n# input:  two\n# only ever\n# only (vm)\n# expect nothing");
    EXPECT_EQ(found.input, "one\n\n two\n");
    EXPECT_FALSE(found.runsOn(Engine::Tree));
    EXPECT_TRUE(found.runsOn(Engine::Vm));
}

TEST(Expectations, ReadTheLimitsThatAreNeeded) {
    const Expectations both = expectationsOf("# needs ordinary limits: room\n# expect nothing");
    EXPECT_TRUE(both.tree.needsOrdinaryLimits);
    EXPECT_TRUE(both.vm.needsOrdinaryLimits);
    EXPECT_FALSE(both.needsSmallLimits);
    const Expectations one =
        expectationsOf("# needs ordinary limits (vm): room\n# needs no more\n# expect nothing");
    EXPECT_FALSE(one.tree.needsOrdinaryLimits);
    EXPECT_TRUE(one.vm.needsOrdinaryLimits);
    EXPECT_TRUE(expectationsOf("# needs small limits: edges\n# expect: 1").needsSmallLimits);
}

TEST(Expectations, MistakesAreNamed) {
    EXPECT_EQ(lineOfMistake("print(1)\n# nothing of the kind"), 1U);
    EXPECT_EQ(lineOfMistake("\n# expects: 1"), 2U);
    EXPECT_EQ(lineOfMistake("\n# expect 1"), 2U);
    EXPECT_EQ(lineOfMistake("\n# expect error 1:2 no colon"), 2U);
    EXPECT_EQ(lineOfMistake("# expect error: a\n# expect error: b"), 2U);
    EXPECT_EQ(lineOfMistake("# expect: 1\n# only (wm)"), 2U);
    EXPECT_EQ(lineOfMistake("# expect: 1\n# needs small limits"), 2U);
    EXPECT_EQ(lineOfMistake("# expect: 1\n# needs ordinary limits:"), 2U);
}

TEST(Expectations, RenderDiagnostics) {
    ExpectedError error;
    error.kind = "RuntimeError";
    error.message = "oh";
    error.line = 2;
    error.column = 3;
    EXPECT_EQ(wantedErrors(error, "a\r\nb c\r\nd", "f"),
              "RuntimeError: oh\n  --> f:2:3\n2 | b c\n      ^\n");
    error.column = 0;
    EXPECT_EQ(wantedErrors(error, "a\nb", "f"), "RuntimeError: oh\n  --> f:2:0\n2 | b\n    ^\n");
    EXPECT_EQ(wantedErrors(error, "a\n", "f"), "RuntimeError: oh\n  --> f:2:0\n2 | \n    ^\n");
    EXPECT_EQ(wantedErrors(error, "a", "f"), "RuntimeError: oh\n  --> f:2:0\n");
    EXPECT_EQ(wantedErrors(error, "", "f"), "RuntimeError: oh\n  --> f:2:0\n");
    error.line = 0;
    EXPECT_EQ(wantedErrors(error, "a", "f"), "RuntimeError: oh\n");
    error = {"Error", "thrown", false};
    error.line = 2;
    EXPECT_EQ(wantedErrors(error, "a\nb", "f"), "Error: thrown\n");
}

}  // namespace

}  // namespace pellum::test
