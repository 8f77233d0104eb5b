#include "common/comments.h"

#include "lexer/lexer.h"
#include "support/comments.h"
#include "support/files.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace pellum::test {

namespace {

using tools::Comment;
using tools::LexedSource;
using tools::lexSource;

// The comments of `source`, one per line: place, whether alone, the token behind, and the text.
std::string commentTable(std::string_view source) {
    std::string out;
    for (const Comment& comment : lexSource(source).comments) {
        out += std::to_string(comment.line) + ':' + std::to_string(comment.column) +
               (comment.isAlone ? " alone " : " behind ") + std::to_string(comment.nextToken) +
               " " + std::string(comment.text) + "|\n";
    }
    return out;
}

TEST(ToolComments, AreFoundWhereverTheyStand) {
    EXPECT_EQ(commentTable(""), "");
    EXPECT_EQ(commentTable("#"), "1:1 alone 0 #|\n");
    EXPECT_EQ(commentTable("#!/bin/x\n  # two \n"), "1:1 alone 0 #!/bin/x|\n2:3 alone 1 # two |\n");
    EXPECT_EQ(commentTable("let x = 1 # one\n# two"), "1:11 behind 4 # one|\n2:1 alone 5 # two|\n");
    EXPECT_EQ(commentTable("f([  # open\n1,\t# first # still\r\n]) #end"),
              "1:6 behind 3 # open|\n2:4 behind 6 # first # still\r|\n3:4 behind 9 #end|\n");
    EXPECT_EQ(commentTable("\xEF\xBB\xBF# marked\nx # y"),
              "1:1 alone 0 # marked|\n2:3 behind 2 # y|\n");
}

TEST(ToolComments, AreNotFoundInStrings) {
    EXPECT_EQ(commentTable("'# no' # yes"), "1:8 behind 1 # yes|\n");
    EXPECT_EQ(commentTable(R"("\" # no" # yes)"), "1:11 behind 1 # yes|\n");
    EXPECT_EQ(commentTable(R"("a # no ${"} # no"} # no" # yes)"), "1:27 behind 1 # yes|\n");
    EXPECT_EQ(commentTable("\"${[1, # '\n2]# '}\" # yes\n# more"),
              "2:9 behind 1 # yes|\n3:1 alone 2 # more|\n");
}

TEST(ToolComments, LeaveNothingOutWithTheTokensButBlanks) {
    for (const char* folder : {"tests", "examples", "bench"}) {
        for (const auto& file : filesUnder(folder, "")) {
            if (file.extension() != ".pellum" && file.extension() != ".plm") continue;
            const std::string source = readFile(file);
            LexedSource lexed;
            try {
                lexed = lexSource(source);
            } catch (const std::exception&) {
                continue;
            }
            std::string together;
            std::size_t next = 0;
            ASSERT_EQ(lexed.tokens.size(), lexed.written.size()) << file;
            for (std::size_t i = 0; i < lexed.tokens.size(); ++i) {
                while (next < lexed.comments.size() && lexed.comments[next].nextToken == i) {
                    together += lexed.comments[next++].text;
                }
                together += lexed.written[i];
            }
            const auto withoutBlanks = [](std::string text) {
                std::erase_if(text, [](char c) { return c == ' ' || c == '\t' || c == '\r'; });
                return text;
            };
            std::string_view expected = source;
            if (expected.starts_with("\xEF\xBB\xBF")) expected.remove_prefix(3);
            EXPECT_EQ(withoutBlanks(together), withoutBlanks(std::string(expected))) << file;
            // Another way to find them, which does without the lexer.
            const std::vector<test::Comment> others = commentsOf(source);
            ASSERT_EQ(lexed.comments.size(), others.size()) << file;
            for (std::size_t i = 0; i < others.size(); ++i) {
                EXPECT_EQ(lexed.comments[i].text.substr(1), others[i].text) << file;
                EXPECT_EQ(lexed.comments[i].line, others[i].line) << file;
            }
        }
    }
}

}  // namespace

}  // namespace pellum::test
