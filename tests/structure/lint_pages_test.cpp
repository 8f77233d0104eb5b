// Each rule of the linter has a page, a row in the index and in the manual, and cases for and
// against it; and what the pages show is what the linter says.
#include "support/files.h"
#include "support/findings.h"
#include "support/markdown.h"
#include "support/text.h"

#include "builtins/builtins.h"
#include "lint/code_rules.h"
#include "lint/finding.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace fs = std::filesystem;

namespace pellum::test {

namespace {

struct Fenced {
    std::string mark;  // behind the fence
    std::string text;
};

std::vector<Fenced> fencedBlocks(const std::string& page) {
    std::vector<Fenced> blocks;
    bool isInside = false;
    for (const std::string& line : splitLines(page)) {
        if (line.starts_with("```")) {
            if (!isInside) blocks.push_back({line.substr(3), ""});
            isInside = !isInside;
        } else if (isInside) {
            blocks.back().text += line + "\n";
        }
    }
    return blocks;
}

std::string shownFindings(const std::string& source) {
    std::string lines;
    for (const std::string& line : findingsIn(source)) lines += "program.pellum:" + line + "\n";
    return lines;
}

bool hasRule(const std::string& findings, std::string_view rule) {
    return findings.find(": " + std::string(rule) + ": ") != findings.npos;
}

// Rules about comments to the linter cannot be silenced by one.
bool canBeSilenced(std::string_view rule) { return !rule.ends_with("-allow"); }

fs::path pageOf(std::string_view rule) { return "docs/lint/" + std::string(rule) + ".md"; }

TEST(LintPages, EachShowsWhatItsRuleFindsAndACure) {
    for (const lint::RuleInfo& rule : lint::ruleCatalogue()) {
        SCOPED_TRACE(rule.name);
        ASSERT_TRUE(fs::exists(pageOf(rule.name)));
        const std::string page = readFile(pageOf(rule.name));
        EXPECT_TRUE(page.starts_with("# " + std::string(rule.name) + "\n"));
        const std::string comment = "# lint: allow " + std::string(rule.name);
        EXPECT_EQ(page.find("`" + comment + "`") != page.npos, canBeSilenced(rule.name));

        const std::vector<Fenced> blocks = fencedBlocks(page);
        ASSERT_GE(blocks.size(), 3U);
        EXPECT_EQ(blocks[0].mark, "pellum fragment");
        EXPECT_EQ(blocks[1].mark, "findings");
        EXPECT_EQ(blocks[1].text, shownFindings(blocks[0].text));
        EXPECT_TRUE(hasRule(blocks[1].text, rule.name));
        for (std::size_t i = 2; i < blocks.size(); ++i) {
            if (!blocks[i].mark.starts_with("pellum")) continue;
            EXPECT_EQ(shownFindings(blocks[i].text), "") << blocks[i].text;
        }
    }
}

TEST(LintPages, BelongToARule) {
    for (const fs::path& page : filesUnder("docs/lint", "")) {
        EXPECT_TRUE(lint::ruleNamed(page.stem().string())) << page;
    }
}

TEST(LintPages, TheOverviewIsWhatTheLinterSays) {
    const std::vector<Fenced> blocks = fencedBlocks(readFile("docs/lint.md"));
    std::size_t shown = 0;
    for (std::size_t i = 1; i < blocks.size(); ++i) {
        if (blocks[i].mark != "findings") continue;
        EXPECT_EQ(blocks[i].text, shownFindings(blocks[i - 1].text));
        ++shown;
    }
    EXPECT_EQ(shown, 2U);
}

TEST(LintPages, TheOverviewAndTheManualListEachRuleOnce) {
    const std::vector<std::string> overview = splitLines(readFile("docs/lint.md"));
    const std::string manual = readFile("man/pellum-lint.1");
    for (const lint::RuleInfo& rule : lint::ruleCatalogue()) {
        const std::string name(rule.name), summary(rule.summary);
        const std::string row = "| [" + name + "](lint/" + name + ".md) | " + summary + " |";
        EXPECT_EQ(std::ranges::count(overview, row), 1) << row;
        std::string sentence = summary + ".";
        sentence[0] = static_cast<char>(sentence[0] - 'a' + 'A');
        EXPECT_NE(manual.find(".It Ic " + name + "\n" + sentence + "\n"), manual.npos) << name;
    }
}

TEST(LintCases, EachRuleHasOneForItAndOneAgainstIt) {
    for (const lint::RuleInfo& rule : lint::ruleCatalogue()) {
        bool isFound = false, isNotFound = false;
        for (const fs::path& file : filesUnder("tests/lint/" + std::string(rule.name), ".pellum")) {
            const std::string findings = shownFindings(readFile(file));
            isFound |= hasRule(findings, rule.name);
            isNotFound |= findings.empty();
        }
        EXPECT_TRUE(isFound) << "no case in which something is found: " << rule.name;
        EXPECT_TRUE(isNotFound) << "no case in which nothing is found: " << rule.name;
    }
}

// A comment above the line of a finding takes away that finding, and nothing else.
TEST(LintCases, EachFindingCanBeSilenced) {
    std::size_t silenced = 0;
    for (const fs::path& file : filesUnder("tests/lint", ".pellum")) {
        const std::vector<std::string> lines = splitKeepingNewlines(readFile(file));
        for (const std::string& finding : findingsIn(readFile(file))) {
            const std::size_t number = std::stoul(finding);
            const std::size_t begin = finding.find(": ") + 2;
            const std::string rule = finding.substr(begin, finding.find(':', begin) - begin);
            if (!canBeSilenced(rule) || rule == "idle-pragma") continue;
            std::string source;
            for (std::size_t i = 0; i < lines.size(); ++i) {
                if (i + 1 == number) source += "# lint: allow " + rule + ": as a test\n";
                source += lines[i];
            }
            for (const std::string& left : findingsIn(source)) {
                EXPECT_FALSE(left.starts_with(std::to_string(number + 1) + ":") &&
                             hasRule(left, rule))
                    << file << ": " << left;
                EXPECT_FALSE(left.starts_with(std::to_string(number) + ":") &&
                             hasRule(left, "useless-allow"))
                    << file << ": " << left;
            }
            ++silenced;
        }
    }
    EXPECT_GT(silenced, 100U);
}

TEST(Lint, HasNothingToSayAboutTheExamples) {
    for (const fs::path& file : filesUnder("examples", ".plm")) {
        EXPECT_EQ(shownFindings(readFile(file)), "") << file;
    }
}

TEST(Lint, HasNothingToSayAboutTheTutorial) {
    for (const MarkdownProgram& program : programsOf(readFile("docs/tutorial.md"))) {
        EXPECT_EQ(shownFindings(program.source), "") << "line " << program.line;
    }
}

TEST(Lint, KnowsTheLibrary) {
    for (const std::string_view name : lint::builtinsWithoutEffects()) {
        EXPECT_TRUE(std::ranges::any_of(builtinCatalogue(), [&](const Builtin& builtin) {
            return name == builtin.name;
        })) << name;
    }
}

}  // namespace

}  // namespace pellum::test
