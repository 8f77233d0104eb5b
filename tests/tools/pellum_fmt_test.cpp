// The options of pellum-fmt stand wherever they are looked for.
#include "support/files.h"
#include "support/playing.h"

#include <gtest/gtest.h>

#include <string>

namespace pellum::test {

namespace {

const std::string options[] = {"--check", "--diff", "-h", "--help", "-v", "--version"};

TEST(PellumFmt, KnowsItsOptions) {
    for (const std::string& option : options) {
        const Outcome outcome = playInProcess("pellum-fmt", {option, "-"}, "");
        EXPECT_EQ(outcome.status, 0) << option;
        EXPECT_EQ(outcome.errors, "") << option;
    }
}

TEST(PellumFmt, DocumentsItsOptions) {
    const std::string manual = readFile("man/pellum-fmt.1"), page = readFile("docs/fmt.md"),
                      bash = readFile("completions/pellum-fmt.bash"),
                      zsh = readFile("completions/_pellum-fmt"),
                      fish = readFile("completions/pellum-fmt.fish");
    for (const std::string& option : options) {
        const bool isLong = option.starts_with("--");
        EXPECT_NE(manual.find(" " + option.substr(1)), manual.npos) << option;
        EXPECT_NE(page.find(option), page.npos) << option;
        EXPECT_NE(bash.find(option), bash.npos) << option;
        EXPECT_NE(zsh.find(option), zsh.npos) << option;
        EXPECT_NE(fish.find((isLong ? "-l " + option.substr(2) : "-s " + option.substr(1)) + " "),
                  fish.npos)
            << option;
    }
}

}  // namespace

}  // namespace pellum::test
