// Every option that the program accepts is known to the manual, the README and the completions.
#include "structure/cpp_source.h"
#include "support/files.h"
#include "support/process.h"
#include "support/text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace pellum::test {

namespace {

bool looksLikeOption(std::string_view text) {
    if (!text.starts_with('-')) return false;
    text.remove_prefix(text.starts_with("--") ? 2 : 1);
    return !text.empty() &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= 'a' && c <= 'z'; });
}

// As the source of the command line spells them.
std::set<std::string> acceptedOptions() {
    std::set<std::string> options;
    for (const CppLiteral& literal : stringLiterals(readFile("src/driver/run_main.cpp"))) {
        if (looksLikeOption(literal.text)) options.insert(literal.text);
    }
    return options;
}

// The words of `text`, which anything but letters, digits and dashes separates.
std::set<std::string> wordsOf(std::string_view text) {
    constexpr std::string_view letters =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-";
    std::set<std::string> words;
    for (std::size_t at = 0; (at = text.find_first_of(letters, at)) != text.npos;) {
        const std::size_t end = std::min(text.find_first_not_of(letters, at), text.size());
        words.insert(std::string(text.substr(at, end - at)));
        at = end;
    }
    return words;
}

// The options of each entry in the manual's list.
std::vector<std::set<std::string>> optionsOfTheManual() {
    std::vector<std::set<std::string>> entries;
    for (const std::string& line : splitLines(readFile("man/pellum.1"))) {
        if (!line.starts_with(".It Fl ")) continue;
        std::set<std::string>& options = entries.emplace_back();
        for (std::size_t at = 0; (at = line.find("Fl ", at)) != line.npos;) {
            at += 3;
            options.insert("-" + line.substr(at, line.find(' ', at) - at));
        }
    }
    return entries;
}

TEST(Options, StandInTheManualAndNoOthersDo) {
    std::set<std::string> documented;
    for (const auto& entry : optionsOfTheManual()) documented.insert(entry.begin(), entry.end());
    EXPECT_EQ(documented, acceptedOptions());
    EXPECT_GE(documented.size(), 10U);
}

// A second, shorter spelling is left to the manual.
TEST(Options, StandInTheReadme) {
    const std::set<std::string> words = wordsOf(readFile("README.md"));
    for (const auto& entry : optionsOfTheManual()) {
        const bool hasLongForm =
            std::any_of(entry.begin(), entry.end(),
                        [](const std::string& option) { return option.starts_with("--"); });
        for (const std::string& option : entry) {
            if (hasLongForm && !option.starts_with("--")) continue;
            EXPECT_TRUE(words.contains(option)) << "README.md does not know " << option;
        }
    }
}

TEST(Options, AreCompletedByAllShells) {
    const std::set<std::string> bash = wordsOf(readFile("completions/pellum.bash"));
    const std::string zsh = readFile("completions/_pellum");
    const std::string fish = readFile("completions/pellum.fish");
    for (const std::string& option : acceptedOptions()) {
        EXPECT_TRUE(bash.contains(option)) << option;
        EXPECT_NE(zsh.find("'" + option + ":"), zsh.npos) << option;
        const bool isLong = option.starts_with("--");
        const std::string inFish = isLong ? "-l " + option.substr(2) : "-s " + option.substr(1);
        EXPECT_NE(fish.find(" " + inFish + " "), fish.npos) << option;
    }
}

TEST(Manual, HasNothingThatItsLinterComplainsAbout) {
    for (const auto& page : filesUnder("man", "")) {
        Process mandoc;
        mandoc.executable = "/usr/bin/env";
        mandoc.arguments = {"mandoc", "-T", "lint", "-W", "warning", page.string()};
        const Outcome outcome = mandoc.run();
        if (outcome.status == 127) GTEST_SKIP() << "there is no mandoc";
        EXPECT_EQ(outcome, (Outcome{0, "", ""})) << page;
    }
}

}  // namespace

}  // namespace pellum::test
