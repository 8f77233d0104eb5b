// docs/limits.md beside the sources: each limit stands there with both of its numbers, under the
// name that it has, and each test that the page names exists.
#include "support/files.h"
#include "support/text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <regex>
#include <set>
#include <string>

namespace pellum::test {

namespace {

namespace fs = std::filesystem;

constexpr const char* page = "docs/limits.md";

std::string replaced(const std::string& text, const char* pattern, const char* by) {
    return std::regex_replace(text, std::regex(pattern), by);
}

// A number as the sources write it, such as `0x10`, `65'536` or `std::size_t{1} << 28`; anything
// else as it stands.
std::string sourceNumber(std::string text) {
    text = replaced(text, "std::size_t\\{([^}]*)\\}", "$1");
    static const std::regex shifted("([0-9a-fA-Fx']+)( << ([0-9]+))?");
    std::smatch match;
    if (!std::regex_match(text, match, shifted)) return text;
    const std::uint64_t number = std::stoull(replaced(match[1], "'", ""), nullptr, 0);
    return std::to_string(match[3].matched ? number << std::stoul(match[3]) : number);
}

// A number as the page writes it, such as `65,536`, `2^31 - 1` or `64 KiB`.
std::string pageNumber(const std::string& text) {
    static const std::regex power("2\\^([0-9]+)( - 1)?");
    static const std::regex plain("([0-9,]+)( KiB| MiB)?");
    std::smatch match;
    if (std::regex_match(text, match, power)) {
        const std::uint64_t number = std::uint64_t{1} << std::stoul(match[1]);
        return std::to_string(match[2].matched ? number - 1 : number);
    }
    if (!std::regex_match(text, match, plain)) return text;
    const std::uint64_t number = std::stoull(replaced(match[1], ",", ""));
    const int shift = !match[2].matched ? 0 : match[2] == " KiB" ? 10 : 20;
    return std::to_string(number << shift);
}

// "FILE NAME ORDINARY SMALL" of each limit.
std::set<std::string> limitsOfTheSources() {
    // A constant, or a function that returns nothing but the limit.
    static const std::regex declaration(
        "(\\w+)(?: =|\\([^()]*\\) noexcept \\{\\s*return)\\s+limit\\(([^,]*),\\s*([^()]*)\\)");
    std::set<std::string> found;
    for (const char* extension : {".h", ".cpp"}) {
        for (const fs::path& file : filesUnder("src", extension)) {
            if (file.filename() == "limits.h") continue;
            const std::string source = readFile(file);
            std::size_t uses = 0;
            for (std::sregex_iterator it(source.begin(), source.end(), declaration), end; it != end;
                 ++it, ++uses) {
                found.insert(file.generic_string() + " " + (*it)[1].str() + " " +
                             sourceNumber((*it)[2]) + " " + sourceNumber((*it)[3]));
            }
            static const std::regex use("\\blimit\\(");
            EXPECT_EQ(uses, std::distance(std::sregex_iterator(source.begin(), source.end(), use),
                                          std::sregex_iterator()))
                << file << " has a limit that no constant declares";
        }
    }
    return found;
}

std::vector<std::string> cellsOf(const std::string& row) {
    std::vector<std::string> cells;
    static const std::regex cell("\\| ([^|]*) (?=\\|)");
    for (std::sregex_iterator it(row.begin(), row.end(), cell), end; it != end; ++it) {
        cells.push_back((*it)[1]);
    }
    return cells;
}

std::set<std::string> limitsOfThePage() {
    static const std::regex place("`(\\w+)` in `([^`]+)`");
    std::set<std::string> found;
    for (const std::string& line : splitLines(readFile(page))) {
        const std::vector<std::string> cells = cellsOf(line);
        std::smatch match;
        if (cells.size() < 4 || !std::regex_match(cells[3], match, place)) continue;
        found.insert(match[2].str() + " " + match[1].str() + " " + pageNumber(cells[1]) + " " +
                     pageNumber(cells[2]));
    }
    return found;
}

TEST(Structure, LimitsArePublished) {
    const std::set<std::string> declared = limitsOfTheSources();
    const std::set<std::string> published = limitsOfThePage();
    EXPECT_GE(declared.size(), 20u);
    for (const std::string& limit : declared) {
        EXPECT_TRUE(published.contains(limit)) << page << " does not say " << limit;
    }
    for (const std::string& limit : published) {
        EXPECT_TRUE(declared.contains(limit)) << page << " says what is not so: " << limit;
    }
}

bool isTest(const std::string& beginning) {
    const testing::UnitTest& tests = *testing::UnitTest::GetInstance();
    for (int i = 0; i < tests.total_test_suite_count(); ++i) {
        const testing::TestSuite& suite = *tests.GetTestSuite(i);
        for (int j = 0; j < suite.total_test_count(); ++j) {
            const std::string name = std::string(suite.name()) + "." + suite.GetTestInfo(j)->name();
            if (name.starts_with(beginning)) return true;
        }
    }
    return false;
}

// Those that are files need not be among the tests of this process.
bool isFile(const std::string& beginning) {
    const fs::path path = fs::path("tests") / beginning;
    if (!fs::is_directory(path.parent_path())) return false;
    const std::string wanted = path.filename().string();
    return std::ranges::any_of(fs::directory_iterator(path.parent_path()), [&](const auto& entry) {
        return entry.path().filename().string().starts_with(wanted);
    });
}

TEST(Structure, TestsOfTheLimitsExist) {
    static const std::regex filter("--gtest_filter='([^']*)'");
    static const std::regex pattern("([^:*]+)\\*?");
    const std::string text = readFile(page);
    std::size_t patterns = 0;
    for (std::sregex_iterator it(text.begin(), text.end(), filter), end; it != end; ++it) {
        const std::string names = (*it)[1];
        for (std::sregex_iterator name(names.begin(), names.end(), pattern); name != end; ++name) {
            const std::string beginning = (*name)[1];
            EXPECT_TRUE(isTest(beginning) || isFile(beginning)) << page << " names " << beginning;
            ++patterns;
        }
    }
    EXPECT_GE(patterns, 10u);
}

}  // namespace

}  // namespace pellum::test
