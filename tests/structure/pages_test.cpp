// The pages hold together: the index leads to all of them, no link leads nowhere, and the cheat
// sheet has every builtin, and the reference every option of the command line.
#include "builtins/builtins.h"
#include "structure/cpp_source.h"
#include "support/files.h"
#include "support/markdown.h"
#include "support/text.h"

#include <gtest/gtest.h>

#include <cctype>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace fs = std::filesystem;

namespace pellum::test {

namespace {

struct Link {
    fs::path target;      // from the root of the repository
    std::string heading;  // behind the "#", or empty
    int line = 0;
};

// The name under which a heading can be linked to: letters and digits in lower case, a hyphen for
// each blank, and no punctuation.
std::string anchorOf(std::string_view heading) {
    std::string anchor;
    for (const char c : heading) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == ' ') {
            anchor += '-';
        } else if (std::isalnum(byte) || byte >= 0x80 || c == '-' || c == '_') {
            anchor += static_cast<char>(std::tolower(byte));
        }
    }
    return anchor;
}

struct Page {
    std::vector<Link> links;  // to files of the repository
    std::set<std::string> anchors;
};

// Reads the prose; what stands in fenced blocks and between backquotes is none.
Page readPage(const fs::path& path) {
    Page page;
    bool isInBlock = false;
    int number = 0;
    for (const std::string& line : splitLines(readFile(path))) {
        ++number;
        if (trim(line).starts_with("```")) isInBlock = !isInBlock;
        if (isInBlock) continue;
        if (line.starts_with("#")) {
            page.anchors.insert(anchorOf(trim(line.substr(line.find_first_not_of('#')))));
        }
        bool isCode = false;
        for (std::size_t at = 0; at < line.size(); ++at) {
            if (line[at] == '`') isCode = !isCode;
            if (isCode || line.compare(at, 2, "](") != 0) continue;
            const std::size_t end = line.find(')', at);
            const std::string target = line.substr(at + 2, end - at - 2);
            if (target.find("://") != target.npos) continue;
            const std::size_t mark = std::min(target.find('#'), target.size());
            const fs::path file =
                mark == 0 ? path : (path.parent_path() / target.substr(0, mark)).lexically_normal();
            page.links.push_back(
                {file, mark < target.size() ? target.substr(mark + 1) : "", number});
        }
    }
    return page;
}

TEST(Pages, TheIndexLeadsToEachOfThem) {
    std::set<fs::path> linked = {"docs/index.md"};
    for (const Link& link : readPage("docs/index.md").links) linked.insert(link.target);
    // The pages of the linter's rules have an index of their own.
    ASSERT_TRUE(linked.contains("docs/lint.md"));
    for (const Link& link : readPage("docs/lint.md").links) linked.insert(link.target);
    for (const fs::path& path : markdownPages()) {
        EXPECT_TRUE(linked.contains(path)) << "docs/index.md does not lead to " << path;
    }
}

TEST(Pages, NoLinkLeadsNowhere) {
    std::map<fs::path, Page> pages;
    for (const fs::path& path : markdownPages()) pages.emplace(path, readPage(path));
    for (const auto& [path, page] : pages) {
        for (const Link& link : page.links) {
            const auto target = pages.find(link.target);
            if (!fs::exists(link.target)) {
                ADD_FAILURE_AT(path.c_str(), link.line) << "there is no " << link.target;
            } else if (!link.heading.empty() &&
                       (target == pages.end() || !target->second.anchors.contains(link.heading))) {
                ADD_FAILURE_AT(path.c_str(), link.line)
                    << link.target << " has no heading #" << link.heading;
            }
        }
    }
}

TEST(Pages, TheCheatSheetNamesEveryBuiltin) {
    const std::string sheet = readFile("docs/cheatsheet.md");
    for (const Builtin& builtin : builtinCatalogue()) {
        const std::string name = builtin.name;
        EXPECT_NE(sheet.find("`" + name + "`"), sheet.npos) << name;
    }
}

TEST(Pages, TheReferenceNamesEveryOption) {
    std::set<std::string> words;
    std::string word;
    for (const char c : readFile("docs/language.md")) {
        if (std::isalnum(static_cast<unsigned char>(c)) || c == '-') {
            word += c;
        } else {
            words.insert(std::exchange(word, {}));
        }
    }
    int options = 0;
    for (const CppLiteral& literal : stringLiterals(readFile("src/driver/run_main.cpp"))) {
        if (!literal.text.starts_with('-')) continue;
        EXPECT_TRUE(words.contains(literal.text)) << literal.text;
        ++options;
    }
    EXPECT_GT(options, 0);
}

}  // namespace

}  // namespace pellum::test
