// Programs for the linter: what it says about each of them stands in the program, in comments of
// the form "# finds 5: rule: text" behind the line or "# finds 7:5: rule: text" anywhere.
#include "runners/runners.h"

#include "support/comments.h"
#include "support/files.h"
#include "support/findings.h"
#include "support/registration.h"
#include "support/text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace pellum::test {

namespace {

using Lines = std::vector<std::string>;

Lines wantedOf(const std::string& source) {
    Lines wanted;
    for (const Comment& comment : commentsOf(source)) {
        // It may stand behind another remark, such as one to the linter.
        const std::size_t begin = comment.text.find(" finds ");
        if (begin == comment.text.npos) continue;
        const std::string text(trim(comment.text.substr(begin + 7)));
        const std::size_t place = text.find(':');
        const bool hasLine = std::isdigit(static_cast<unsigned char>(text[place + 1]));
        wanted.push_back(hasLine ? text : std::to_string(comment.line) + ":" + text);
    }
    std::ranges::sort(wanted);
    return wanted;
}

void play(const fs::path& path) {
    const std::string source = readFile(path);
    const Lines wanted = wantedOf(source);
    Lines given = findingsIn(source);
    std::ranges::sort(given);
    for (const std::string& line : wanted) {
        if (std::ranges::count(given, line) > 0) continue;
        ADD_FAILURE_AT(path.c_str(), std::stoi(line)) << "missing: " << line;
    }
    for (const std::string& line : given) {
        if (std::ranges::count(wanted, line) > 0) continue;
        ADD_FAILURE_AT(path.c_str(), std::stoi(line)) << "not expected: " << line;
    }
    EXPECT_EQ(given.size(), wanted.size());
}

}  // namespace

void registerLintCases() {
    if (!mayRun("lint/")) return;
    for (const fs::path& path : filesUnder("tests/lint", ".pellum")) {
        addTest(suiteName(path), "findings", path, [=] { play(path); });
    }
}

}  // namespace pellum::test
