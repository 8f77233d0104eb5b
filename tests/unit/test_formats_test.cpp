// Transcripts, cases of the command line, pages and C++ sources, as the runners read them.
#include "structure/cpp_source.h"
#include "support/command_case.h"
#include "support/markdown.h"
#include "support/playing.h"
#include "support/process.h"
#include "support/text.h"
#include "support/transcript.h"

#include <gtest/gtest.h>

namespace pellum::test {

namespace {

TEST(Text, FirstDifference) {
    EXPECT_EQ(firstDifference("text", "a\nb\n", "a\nb\n"), std::nullopt);
    EXPECT_EQ(firstDifference("text", "a\nb\n", "a\nb"),
              "text differs in line 2\n  wanted: \"b\\n\"\n  given:  \"b\"");
    EXPECT_EQ(firstDifference("text", "", "\x01"),
              "text differs in line 1\n  wanted: nothing more\n  given:  \"\\x01\"");
}

TEST(Text, Unescape) {
    EXPECT_EQ(unescape("a\\n\\x41\\\\"), "a\nA\\");
    EXPECT_THROW(unescape("\\q"), std::runtime_error);
    EXPECT_THROW(unescape("\\x4"), std::runtime_error);
    EXPECT_THROW(unescape("\\"), std::runtime_error);
}

TEST(Transcript, SeparatesWhatIsTypedFromWhatIsShown) {
    const Transcript transcript = parseTranscript(
        "# a remark\n"
        "$ pellum --tree\n"
        "banner\n"
        ">> 1 + 2\n"
        "3\n"
        ">> input(\"? \")\n"
        "~ ? \n"
        "< Ann\n"
        "| # Ann\n"
        ">> bad\n"
        "! error\n"
        ">> f(\n"
        ".. )^D\n"
        ">> ^D\n");
    EXPECT_EQ(transcript.arguments, std::vector<std::string>{"--tree"});
    EXPECT_EQ(transcript.input, "1 + 2\ninput(\"? \")\nAnn\nbad\nf(\n)");
    EXPECT_EQ(transcript.output, "banner\n>> 3\n>> ? # Ann\n>> >> .. >> \n");
    EXPECT_EQ(transcript.errors, "error\n");
    EXPECT_EQ(transcript.merged, "banner\n>> 3\n>> ? # Ann\n>> error\n>> .. >> \n");
}

TEST(CommandCase, ReadsItsSections) {
    const CommandCase found = parseCommandCase(
        "# A remark.\n"
        "$ pellum -c 'a \"b\"' \"x\\ny\"\n"
        "--- file a/b.pellum (escaped)\n"
        "\\xEF\n"
        "--- directory d\n"
        "--- input (no newline)\n"
        "one\ntwo\n"
        "--- errors (pattern)\n"
        "<number> ms\n"
        "--- status 2\n");
    EXPECT_EQ(found.program, "pellum");
    EXPECT_EQ(found.arguments, (std::vector<std::string>{"-c", "a \"b\"", "x\ny"}));
    ASSERT_EQ(found.files.size(), 1U);
    EXPECT_EQ(found.files[0].name, "a/b.pellum");
    EXPECT_EQ(found.files[0].contents, "\xEF\n");
    EXPECT_EQ(found.directories, std::vector<std::string>{"d"});
    EXPECT_EQ(found.input, "one\ntwo");
    EXPECT_EQ(found.output.text, "");
    EXPECT_EQ(found.status, 2);
    EXPECT_TRUE(found.errors.matches("1.5e-05 ms\n"));
    EXPECT_FALSE(found.errors.matches(" ms\n"));
    EXPECT_FALSE(found.errors.matches("1 ms"));
}

TEST(CommandCase, MistakesAreNamed) {
    EXPECT_THROW(parseCommandCase("--- output\n"), std::runtime_error);
    EXPECT_THROW(parseCommandCase("$ pellum\noutput\n"), std::runtime_error);
    EXPECT_THROW(parseCommandCase("$ pellum\n--- outputs\n"), std::runtime_error);
    EXPECT_THROW(parseCommandCase("$ pellum 'open\n"), std::runtime_error);
}

TEST(Markdown, FindsProgramsAndWhatTheyPrint) {
    const std::vector<MarkdownProgram> programs = programsOf(
        "# One\n"
        "```pellum\n# not a heading\nprint(1)\n```\n"
        "prints\n"
        "```output\n1\n```\n"
        "  ```pellum\n  f()\n    g()\n  ```\n"
        "```sh\nls\n```\n"
        "## Two\n"
        "```pellum fragment\n...\n```\n"
        "```pellum\nx\n```\n"
        "```input\nin\n```\n"
        "```tree\na\n```\n"
        "```vm\nb\n```\n"
        "# One\n"
        "```pellum\n```\n");
    ASSERT_EQ(programs.size(), 4U);
    EXPECT_EQ(programs[0].heading, "One");
    EXPECT_EQ(programs[0].number, 1U);
    EXPECT_EQ(programs[0].line, 3U);
    EXPECT_EQ(programs[0].source, "# not a heading\nprint(1)\n");
    EXPECT_EQ(programs[0].treeOutput->text, "1\n");
    EXPECT_EQ(programs[0].vmOutput->text, "1\n");
    EXPECT_EQ(programs[1].source, "f()\n  g()\n");
    EXPECT_FALSE(programs[1].treeOutput);
    EXPECT_EQ(programs[2].heading, "Two");
    EXPECT_EQ(programs[2].input, "in\n");
    EXPECT_EQ(programs[2].treeOutput->text, "a\n");
    EXPECT_EQ(programs[2].vmOutput->text, "b\n");
    EXPECT_EQ(programs[3].number, 3U);
}

TEST(Markdown, FindsSectionsAndWhatIsMarkedInThem) {
    const std::vector<MarkdownSection> sections = sectionsOf(
        "above\n"
        "# One\n"
        "prose\n"
        "```pellum writer\nprint(1)\n```\n"
        "```output (beginning)\nfirst\n```\n"
        "more\n"
        "## Two\n"
        "```pellum\nx\n```\n"
        "```tokens\nt\n```\n"
        "```syntax\ns\n```\n"
        "```listing\nbytes\n```\n"
        "```command\n$ pellum\n```\n"
        "```transcript\n>> ^D\n```\n");
    ASSERT_EQ(sections.size(), 3U);
    EXPECT_EQ(sections[0].level, 0U);
    EXPECT_EQ(sections[0].prose, "above\n");
    EXPECT_EQ(sections[1].level, 1U);
    EXPECT_EQ(sections[1].heading, "One");
    EXPECT_EQ(sections[1].line, 2U);
    EXPECT_EQ(sections[1].prose, "prose\nmore\n");
    ASSERT_EQ(sections[1].programs.size(), 1U);
    const MarkdownProgram& writer = sections[1].programs[0];
    EXPECT_TRUE(writer.isWriter);
    EXPECT_TRUE(writer.vmOutput->matches("first\nsecond\n"));
    EXPECT_FALSE(writer.vmOutput->matches("firs"));
    ASSERT_EQ(sections[2].programs.size(), 1U);
    EXPECT_FALSE(sections[2].programs[0].isWriter);
    EXPECT_EQ(sections[2].programs[0].tokens, "t\n");
    EXPECT_EQ(sections[2].programs[0].syntax, "s\n");
    EXPECT_EQ(sections[2].programs[0].listing, "bytes\n");
    ASSERT_EQ(sections[2].commands.size(), 1U);
    EXPECT_EQ(sections[2].commands[0].text, "$ pellum\n");
    EXPECT_EQ(sections[2].commands[0].number, 2U);
    ASSERT_EQ(sections[2].transcripts.size(), 1U);
    EXPECT_EQ(sections[2].transcripts[0].text, ">> ^D\n");
    EXPECT_EQ(sections[2].transcripts[0].number, 3U);
}

TEST(Markdown, MistakesAreNamed) {
    EXPECT_THROW(programsOf("```pellum\n"), std::runtime_error);
    EXPECT_THROW(programsOf("```output\n```\n"), std::runtime_error);
    EXPECT_THROW(programsOf("```pellum fragment\n```\n```output\n```\n"), std::runtime_error);
    EXPECT_THROW(programsOf("```pellum\n```\n# New\n```output\n```\n"), std::runtime_error);
    EXPECT_THROW(programsOf("```pellum\n```\n```output\n```\n```vm\n```\n"), std::runtime_error);
    EXPECT_THROW(programsOf("```pellum writers\n```\n"), std::runtime_error);
    EXPECT_THROW(programsOf("```listing\n```\n"), std::runtime_error);
    EXPECT_THROW(programsOf("```command\n```\n```output\n```\n"), std::runtime_error);
}

TEST(CppSource, StringLiterals) {
    const std::vector<CppLiteral> literals = stringLiterals(
        "#include \"value/value.h\"\n"
        "f(\"one \" // \"no\"\n"
        "  \"line\\n\", '\"', 1'000) /* \"no\" */ + R\"x(raw \")x\";\n"
        "g(\"two\" MACRO \"three\")");
    ASSERT_EQ(literals.size(), 4U);
    EXPECT_EQ(literals[0].text, "one line\n");
    EXPECT_EQ(literals[0].line, 2U);
    EXPECT_EQ(literals[1].text, "raw \"");
    EXPECT_EQ(literals[2].text, "two");
    EXPECT_EQ(literals[3].text, "three");
    EXPECT_EQ(literals[3].line, 4U);
}

TEST(Process, CarriesAllThreeStreamsAndTheStatus) {
    Process process;
    process.executable = "/bin/sh";
    process.input = std::string(1 << 20, 'x');
    process.arguments = {"-c", "cat; echo bad >&2; exit 3"};
    EXPECT_EQ(process.run(), (Outcome{3, process.input, "bad\n"}));

    process.arguments = {"-c", "echo a; echo b >&2; echo c; kill -9 $$"};
    EXPECT_EQ(process.run(), (Outcome{-9, "a\nc\n", "b\n"}));

    process.mergesErrors = true;
    EXPECT_EQ(process.run(), (Outcome{-9, "a\nb\nc\n", ""}));
}

}  // namespace

}  // namespace pellum::test
