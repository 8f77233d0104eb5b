#include "builtins/console.h"
#include "driver/repl.h"
#include "driver/run_main.h"
#include "driver/source.h"
#include "support/playing.h"
#include "value/interrupt.h"
#include "value/limits.h"

#include <gtest/gtest.h>

#include <deque>
#include <optional>
#include <sstream>
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

TEST(IsIncomplete, InterpolationsNestedTooDeepAreNot) {
    std::string deep = "1";
    for (int depth = 0; depth < 1002; ++depth) deep = "\"${" + deep + "}\"";
    expectNotIncomplete({deep});
    expectIncomplete({"[" + deep});
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
    constexpr int lines = limit(300'000, 1'000);
    std::string input = "let xs = [\n";
    for (int i = 0; i < lines; ++i) input += "1, # one more\n";
    input += "]\nlen(xs)\n";
    const Outcome outcome = playInProcess({}, input);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_TRUE(outcome.output.ends_with(".. >> " + std::to_string(lines) + "\n>> \n"));
}

TEST(Repl, AnInputThatIsTooLongIsForgotten) {
    constexpr std::size_t lineLength = 1'000;
    const std::string comment = "#" + std::string(lineLength - 2, 'x') + "\n";
    std::string input = "[\n";
    for (std::size_t i = 1; i < maxSourceLength / lineLength; ++i) input += comment;
    const std::string oneTooMany = "#" + std::string(2 * lineLength, 'x') + "\n";
    const Outcome outcome = playInProcess({}, input + oneTooMany + "1 + 1\n");
    EXPECT_EQ(outcome.errors,
              "pellum: input longer than " + std::to_string(maxSourceLength) + " bytes\n");
    EXPECT_TRUE(outcome.output.ends_with(".. >> 2\n>> \n"));
    EXPECT_EQ(outcome.status, 0);
}

// Somebody who types Ctrl-C once more whenever it has been answered.
class ImpatientReader final : public PromptReader {
public:
    explicit ImpatientReader(std::deque<std::optional<std::string>> lines)
        : lines_(std::move(lines)) {}

    std::optional<std::string> readLine(std::string_view) override {
        std::optional<std::string> line = std::move(lines_.front());
        lines_.pop_front();
        if (line == "^C") throw Interrupted();
        return line;
    }
    std::optional<std::string> readInput(std::string_view prompt) override {
        return readLine(prompt);
    }
    void remember(std::string_view input) override { remembered += std::string(input) + ";"; }
    void completeWith(Completer) override {}
    void endInterruptedLine() override {
        ++interrupts;
        interruptIsWanted = true;
    }

    std::string remembered;
    int interrupts = 0;

private:
    std::deque<std::optional<std::string>> lines_;  // none stands for Ctrl-D
};

Outcome playWith(ImpatientReader& reader) {
    std::istringstream in;
    std::ostringstream out, errors;
    Outcome outcome;
    outcome.status = runMain({}, in, out, errors, {&reader, Look::Plain});
    interruptIsWanted = false;
    outcome.output = out.str();
    outcome.errors = errors.str();
    return outcome;
}

TEST(Repl, GoesOnHoweverManyInterruptsCome) {
    ImpatientReader reader({"^C", "1", "while true do end", "input()", "^C", std::nullopt, "2",
                            "function f()", "^C", "1)", "exit"});
    const Outcome outcome = playWith(reader);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "Pellum 6  --  type Ctrl-D (or 'exit') to quit\n");
    EXPECT_EQ(outcome.errors,
              "pellum: interrupted\npellum: interrupted\npellum: interrupted\n"
              "pellum: interrupted\n"
              "SyntaxError: expected end of statement, got ')'\n  --> <repl>:1:2\n1 | 1)\n"
              "     ^\n");
    EXPECT_EQ(reader.remembered, "1;while true do end;input();2;1);");
    EXPECT_EQ(reader.interrupts, 8);
}

TEST(Repl, StopsALongTextBetweenItsPieces) {
    // A stream that is interrupted as soon as something longer is written to it.
    class Interrupting final : public std::stringbuf {
        std::streamsize xsputn(const char* text, std::streamsize count) override {
            if (count > 100) interruptIsWanted = true;
            return std::stringbuf::xsputn(text, count);
        }
    };
    Interrupting buffer;
    std::ostream out(&buffer);
    std::istringstream in;
    Console console(in, out);
    EXPECT_THROW(console.write(std::string(1'000'000, 'x')), Interrupted);
    EXPECT_FALSE(interruptIsWanted);
    EXPECT_LT(buffer.str().size(), 100'000U);
}

}  // namespace

}  // namespace pellum::test
