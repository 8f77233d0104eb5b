// The linter from its command line: output, statuses, and what it says where it cannot work.
#include "lint/command.h"
#include "lint/finding.h"
#include "lint/json.h"

#include "structure/cpp_source.h"
#include "support/files.h"
#include "support/process.h"
#include "support/text.h"

#include <gtest/gtest.h>

#include <sstream>

namespace fs = std::filesystem;

namespace pellum::test {

namespace {

Outcome play(const std::vector<std::string>& arguments, const std::string& input = "") {
    std::istringstream in(input);
    std::ostringstream out, err;
    const int status = tools::runTool(lint::lintTool, arguments, in, out, err);
    return {status, out.str(), err.str()};
}

class LintCommand : public testing::Test {
protected:
    void write(const std::string& name, std::string_view contents) { writeFile(name, contents); }

private:
    TemporaryFolder folder_;
    CurrentFolder current_{folder_.path()};
};

TEST_F(LintCommand, WritesALineForEachFinding) {
    write("a.pellum", "let b = 1\nlet a = 1\n");
    write("clean.pellum", "print(1)\n");
    write("c.pellum", "print(y)\n");
    EXPECT_EQ(play({"a.pellum", "clean.pellum", "./c.pellum"}),
              (Outcome{1,
                       "a.pellum:1:5: unused-name: variable 'b' is never used\n"
                       "a.pellum:2:5: unused-name: variable 'a' is never used\n"
                       "./c.pellum:1:7: undefined-name: nothing defines 'y'\n",
                       ""}));
    EXPECT_EQ(play({"clean.pellum"}), (Outcome{0, "", ""}));
}

TEST_F(LintCommand, ReadsTheStandardInput) {
    EXPECT_EQ(play({"-"}, "print(y)\n"),
              (Outcome{1, "<stdin>:1:7: undefined-name: nothing defines 'y'\n", ""}));
    EXPECT_EQ(play({"-"}), (Outcome{0, "", ""}));
}

TEST_F(LintCommand, TakesWhatFollowsTwoDashesForFiles) {
    write("--json", "print(y)\n");
    EXPECT_EQ(play({"--", "--json"}),
              (Outcome{1, "--json:1:7: undefined-name: nothing defines 'y'\n", ""}));
}

TEST_F(LintCommand, WritesJson) {
    write("a.pellum", "print(x, y)\n");
    EXPECT_EQ(play({"a.pellum", "--json"}),
              (Outcome{1,
                       "[\n"
                       "{\"file\": \"a.pellum\", \"line\": 1, \"column\": 7, "
                       "\"rule\": \"undefined-name\", \"text\": \"nothing defines 'x'\"},\n"
                       "{\"file\": \"a.pellum\", \"line\": 1, \"column\": 10, "
                       "\"rule\": \"undefined-name\", \"text\": \"nothing defines 'y'\"}\n"
                       "]\n",
                       ""}));
    EXPECT_EQ(play({"--json", "-"}, "print(1)\n"), (Outcome{0, "[]\n", ""}));
    write("\xFF.pellum", "print({\"\xE9\x01\": 1, \"\xE9\x01\": 2})\n");
    EXPECT_EQ(play({"--json", "\xFF.pellum"}).output,
              "[\n"
              "{\"file\": \"\xEF\xBF\xBD.pellum\", \"line\": 1, \"column\": 17, "
              "\"rule\": \"duplicate-key\", \"text\": \"the key \\\"\xEF\xBF\xBD\\u0001\\\" comes "
              "twice, and the last value counts\"}\n"
              "]\n");
}

TEST_F(LintCommand, GoesOnBehindAFileThatItCannotUse) {
    write("bad.pellum", "let = 1\n");
    write("lexed.pellum", "print(\"open)\n");
    write("huge.pellum", "print(1e999)\n");
    write("good.pellum", "print(y)\n");
    EXPECT_EQ(play({"bad.pellum", "missing.pellum", "lexed.pellum", "huge.pellum", "good.pellum"}),
              (Outcome{1, "good.pellum:1:7: undefined-name: nothing defines 'y'\n",
                       "SyntaxError: expected a variable name after 'let', got '='\n"
                       "  --> bad.pellum:1:5\n"
                       "1 | let = 1\n"
                       "        ^\n"
                       "pellum-lint: cannot open missing.pellum\n"
                       "SyntaxError (lexing): unterminated string literal\n"
                       "  --> lexed.pellum:1:7\n"
                       "1 | print(\"open)\n"
                       "          ^\n"
                       "pellum-lint: huge.pellum: number literal out of range: 1e999\n"}));
    EXPECT_EQ(play({"--json", "missing.pellum"}),
              (Outcome{1, "[]\n", "pellum-lint: cannot open missing.pellum\n"}));
    EXPECT_EQ(play({"."}), (Outcome{1, "", "pellum-lint: cannot open .\n"}));
}

TEST_F(LintCommand, ComplainsOfItsArguments) {
    EXPECT_EQ(play({}),
              (Outcome{2, "", "pellum-lint: no file is given; try \"pellum-lint --help\"\n"}));
    EXPECT_EQ(play({"--json"}).status, 2);
    EXPECT_EQ(play({"--jsn", "-"}),
              (Outcome{2, "", "pellum-lint: unknown option --jsn; try \"pellum-lint --help\"\n"}));
    EXPECT_EQ(play({"-x"}).status, 2);
}

TEST_F(LintCommand, TellsAboutItself) {
    EXPECT_EQ(play({"--version"}), (Outcome{0, "pellum-lint 6\n", ""}));
    EXPECT_EQ(play({"-v"}), play({"--version"}));
    EXPECT_TRUE(play({"--help"}).output.starts_with("usage: pellum-lint "));
    EXPECT_EQ(play({"-h"}), play({"--help"}));
    const Outcome rules = play({"--rules"});
    const std::vector<std::string> lines = splitLines(rules.output);
    ASSERT_EQ(lines.size(), lint::ruleCatalogue().size());
    for (std::size_t i = 0; i < lines.size(); ++i) {
        EXPECT_TRUE(lines[i].starts_with(std::string(lint::ruleCatalogue()[i].name) + "  "));
        EXPECT_TRUE(lines[i].ends_with("  " + std::string(lint::ruleCatalogue()[i].summary)));
    }
}

TEST(LintProgram, DoesAllThatFromOutside) {
    const TemporaryFolder folder;
    writeFile(folder.path() / "a.pellum", "print(y)\n");
    Process linter;
    linter.executable = fs::path(PELLUM_BUILD) / "pellum-lint";
    linter.folder = folder.path();
    linter.arguments = {"a.pellum"};
    EXPECT_EQ(linter.run(),
              (Outcome{1, "a.pellum:1:7: undefined-name: nothing defines 'y'\n", ""}));
    linter.arguments = {"-"};
    linter.input = "print(1)\n";
    EXPECT_EQ(linter.run(), (Outcome{0, "", ""}));
    linter.arguments = {};
    EXPECT_EQ(linter.run().status, 2);
    linter.arguments = {"--rules"};
    linter.outputFile = "/dev/full";
    EXPECT_EQ(linter.run(), (Outcome{1, "", "pellum-lint: cannot write to standard output\n"}));
}

TEST(LintOptions, StandInTheHelpTheManualAndTheCompletions) {
    const std::string help = play({"--help"}).output;
    const std::string manual = readFile("man/pellum-lint.1");
    const std::string page = readFile("docs/lint.md");
    std::size_t options = 0;
    for (const CppLiteral& literal : stringLiterals(readFile("tools/lint/command.cpp"))) {
        if (!literal.text.starts_with("--") || literal.text.size() < 3) continue;
        ++options;
        EXPECT_NE(help.find("  " + literal.text + "  "), help.npos) << literal.text;
        EXPECT_NE(manual.find(".It Fl " + literal.text.substr(1) + "\n"), manual.npos)
            << literal.text;
        EXPECT_NE(page.find(literal.text), page.npos) << literal.text;
        for (const char* name : {"pellum-lint.bash", "_pellum-lint"}) {
            const std::string shell = readFile("completions/" + std::string(name));
            EXPECT_NE(shell.find(literal.text), shell.npos) << name << ": " << literal.text;
        }
        const std::string fish = readFile("completions/pellum-lint.fish");
        EXPECT_NE(fish.find("-l " + literal.text.substr(2) + " "), fish.npos) << literal.text;
    }
    EXPECT_EQ(options, 2U);
}

std::string asJson(std::string_view text) {
    std::string out;
    lint::appendJson(out, text);
    return out;
}

TEST(LintJson, KeepsCharactersAndReplacesOtherBytes) {
    EXPECT_EQ(asJson("a\"b\\c/\n\t\x7F"), "\"a\\\"b\\\\c/\\u000a\\u0009\\u007f\"");
    EXPECT_EQ(asJson(std::string_view("\0", 1)), "\"\\u0000\"");
    const std::string whole =
        "\xC2\x80 \xDF\xBF \xE0\xA0\x80 \xED\x9F\xBF \xEE\x80\x80 "
        "\xEF\xBF\xBF \xF0\x90\x80\x80 \xF4\x8F\xBF\xBF";
    EXPECT_EQ(asJson(whole), "\"" + whole + "\"");
    const std::string replaced = "\xEF\xBF\xBD";
    for (const std::string_view bytes : {"\x80", "\xBF", "\xC0", "\xC2", "\xF8", "\xFF"}) {
        EXPECT_EQ(asJson(bytes), "\"" + replaced + "\"");
        EXPECT_EQ(asJson(std::string(bytes) + "a"), "\"" + replaced + "a\"");
    }
    // Too long, half a pair, beyond the last character, cut off.
    EXPECT_EQ(asJson("\xC0\x80"), "\"" + replaced + replaced + "\"");
    EXPECT_EQ(asJson("\xC1\xBF"), "\"" + replaced + replaced + "\"");
    EXPECT_EQ(asJson("\xE0\x9F\xBF"), "\"" + replaced + replaced + replaced + "\"");
    EXPECT_EQ(asJson("\xED\xA0\x80"), "\"" + replaced + replaced + replaced + "\"");
    EXPECT_EQ(asJson("\xF4\x90\x80\x80"), "\"" + replaced + replaced + replaced + replaced + "\"");
    EXPECT_EQ(asJson("\xE2\x82"), "\"" + replaced + replaced + "\"");
}

}  // namespace

}  // namespace pellum::test
