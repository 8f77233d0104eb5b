// The fuzzers' dictionary beside the lexer's table and the catalogue of builtins.
#include "support/files.h"
#include "support/text.h"

#include "builtins/builtins.h"
#include "lexer/token.h"

#include <gtest/gtest.h>

#include <cctype>
#include <map>
#include <set>
#include <string>
#include <string_view>

namespace pellum::test {

namespace {

using Words = std::set<std::string>;

// The words below each "# heading". None of these needs an escape.
std::map<std::string, Words> dictionary() {
    std::map<std::string, Words> groups;
    std::string heading;
    for (const std::string& line : splitLines(readFile("fuzz/pellum.dict"))) {
        if (line.starts_with("# ")) {
            heading = line.substr(2);
        } else if (line.size() > 2 && line.front() == '"' && line.back() == '"') {
            groups[heading].insert(line.substr(1, line.size() - 2));
        }
    }
    return groups;
}

TEST(Dictionary, HasTheKeywordsAndOperatorsOfTheLexer) {
    Words keywords, operators;
    const auto add = [&](std::string_view spelling) {
        if (spelling.empty()) return;
        const bool isWord = std::isalpha(static_cast<unsigned char>(spelling[0])) != 0;
        (isWord ? keywords : operators).emplace(spelling);
    };
#define PELLUM_ADD_SPELLING(name, spelling) add(spelling);
    PELLUM_TOKENS(PELLUM_ADD_SPELLING)
#undef PELLUM_ADD_SPELLING
    EXPECT_EQ(dictionary()["keywords"], keywords);
    EXPECT_EQ(dictionary()["operators"], operators);
}

TEST(Dictionary, HasTheBuiltins) {
    Words builtins = {"PI", "E"};
    for (const Builtin& row : builtinCatalogue()) builtins.insert(row.name);
    EXPECT_EQ(dictionary()["builtins"], builtins);
}

}  // namespace

}  // namespace pellum::test
