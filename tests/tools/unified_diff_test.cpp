#include "format/unified_diff.h"

#include "agreement/generator.h"
#include "format/format.h"
#include "support/text.h"
#include "tools/format_checks.h"

#include "driver/source.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace pellum::test {

namespace {

using tools::unifiedDiff;

// The number behind `mark` in the heading of a hunk.
std::size_t numberBehind(const std::string& heading, const std::string& mark) {
    return std::stoul(heading.substr(heading.find(mark) + mark.size()));
}

// What becomes of `text` when the diff is applied to it; whatever does not fit is a failure.
std::string patched(const std::string& text, const std::string& diff) {
    const std::vector<std::string> lines = splitKeepingNewlines(text);
    const std::vector<std::string> changes = splitKeepingNewlines(diff);
    std::string result;
    std::size_t at = 0;
    const auto take = [&](const std::string& line) {
        EXPECT_LT(at, lines.size());
        EXPECT_EQ(line, at < lines.size() ? lines[at] : "");
        ++at;
    };
    for (std::size_t i = 2; i < changes.size(); ++i) {
        std::string line = changes[i].substr(1);
        if (i + 1 < changes.size() && changes[i + 1].starts_with('\\')) line.pop_back();
        switch (changes[i].front()) {
            case '@': {
                const std::size_t first = numberBehind(changes[i], " -");
                const bool isEmpty = changes[i].find(",0 +") != std::string::npos;
                while (at + (isEmpty ? 0 : 1) < first) result += lines.at(at++);
                break;
            }
            case ' ':
                take(line);
                result += line;
                break;
            case '-': take(line); break;
            case '+': result += line; break;
            default: EXPECT_EQ(changes[i], "\\ No newline at end of file\n");
        }
    }
    while (at < lines.size()) result += lines[at++];
    return result;
}

TEST(UnifiedDiff, OfWhatIsEqualIsEmpty) {
    EXPECT_EQ(unifiedDiff("", "", "a"), "");
    EXPECT_EQ(unifiedDiff("x\n", "x\n", "a"), "");
}

TEST(UnifiedDiff, ShowsThreeLinesAroundAChange) {
    EXPECT_EQ(unifiedDiff("a\nb\nc\nd\ne  f\ng\nh\ni\nj\n", "a\nb\nc\nd\ne f\ng\nh\ni\nj\n", "x"),
              "--- x\n+++ x\n@@ -2,7 +2,7 @@\n b\n c\n d\n-e  f\n+e f\n g\n h\n i\n");
}

TEST(UnifiedDiff, JoinsChangesThatAreNear) {
    const std::string near = "1\n2\n3\n4\n5\n6\n", far = near + "7\n";
    EXPECT_EQ(unifiedDiff("a \n" + near + "b \n", "a\n" + near + "b\n", "x"),
              "--- x\n+++ x\n@@ -1,8 +1,8 @@\n-a \n+a\n 1\n 2\n 3\n 4\n 5\n 6\n-b \n+b\n");
    EXPECT_EQ(unifiedDiff("a \n" + far + "b \n", "a\n" + far + "b\n", "x"),
              "--- x\n+++ x\n@@ -1,4 +1,4 @@\n-a \n+a\n 1\n 2\n 3\n"
              "@@ -6,4 +6,4 @@\n 5\n 6\n 7\n-b \n+b\n");
}

TEST(UnifiedDiff, SaysWhereTheLastNewlineIsMissing) {
    EXPECT_EQ(unifiedDiff("x", "x\n", "a"),
              "--- a\n+++ a\n@@ -1,1 +1,1 @@\n-x\n\\ No newline at end of file\n+x\n");
}

TEST(UnifiedDiff, OfAnEmptyTextNamesTheLineBefore) {
    EXPECT_EQ(unifiedDiff("\n", "", "a"), "--- a\n+++ a\n@@ -1,1 +0,0 @@\n-\n");
    EXPECT_EQ(unifiedDiff("", "x\n", "a"), "--- a\n+++ a\n@@ -0,0 +1,1 @@\n+x\n");
}

TEST(UnifiedDiff, LeadsFromOneTextToTheOther) {
    for (const auto& [before, after] :
         std::vector<std::pair<std::string, std::string>>{{"a\nb\n", "a b\n"},
                                                          {"a b\n", "a\nb\n"},
                                                          {"\n\na\n\n\n\nb\n", "a\n\nb\n"},
                                                          {"one\ntwo\n", "three\n"},
                                                          {"", "a\n\n"},
                                                          {"a\n\nb", ""},
                                                          {"[1,\n2,\n]", "[\n1,\n2,\n]\n"}}) {
        EXPECT_EQ(patched(before, unifiedDiff(before, after, "x")), after);
    }
    for (std::uint64_t seed = 1; seed <= 50; ++seed) {
        const std::string source = scrambled(textOf(generateProgram(seed)), seed);
        if (source.size() > maxSourceLength / 4) continue;
        const std::string result = tools::format(source);
        EXPECT_EQ(patched(source, unifiedDiff(source, result, "x")), result) << seed;
    }
}

}  // namespace

}  // namespace pellum::test
