// What is written about scripts is true: those that pages, scripts and the jobs of public services
// name exist and can be run. Formats that other programs read are read by these.
#include "support/files.h"
#include "support/process.h"
#include "support/text.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace fs = std::filesystem;

namespace pellum::test {

namespace {

// The scripts that `text` names, as paths from the root.
std::vector<std::string> scriptsIn(std::string_view text) {
    constexpr std::string_view folder = "script/";
    constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyz-_.";
    std::vector<std::string> scripts;
    for (std::size_t at = 0; (at = text.find(folder, at)) != text.npos;) {
        std::size_t end =
            std::min(text.find_first_not_of(letters, at + folder.size()), text.size());
        while (text[end - 1] == '.') --end;
        if (end > at + folder.size()) scripts.emplace_back(text.substr(at, end - at));
        at += folder.size();
    }
    return scripts;
}

TEST(Scripts, ThatAreNamedExist) {
    std::size_t count = 0;
    for (const fs::path& file : repositoryFiles()) {
        const std::string top = file.begin()->string();
        if (file.extension() != ".md" && top != "script" && top != ".github" &&
            top != "packaging") {
            continue;
        }
        for (const std::string& script : scriptsIn(readFile(file))) {
            EXPECT_TRUE(fs::exists(script)) << file << " names " << script;
            ++count;
        }
    }
    EXPECT_GT(count, 50U);
}

TEST(Workflow, RunsOnlyWhatCanBeRun) {
    std::size_t count = 0;
    for (const fs::path& file : filesUnder(".github/workflows", ".yml")) {
        for (const std::string& line : splitLines(readFile(file))) {
            const std::string_view step = trim(line);
            if (!step.starts_with("- run:")) continue;
            const std::vector<std::string> scripts = scriptsIn(step);
            ASSERT_EQ(scripts.size(), 1U) << line;
            EXPECT_EQ(access(scripts[0].c_str(), X_OK), 0) << line;
            ++count;
        }
    }
    EXPECT_GT(count, 0U);
}

TEST(Workflow, IsYaml) {
    if (runCommand({"python3", "-c", "import yaml"}).status != 0) {
        GTEST_SKIP() << "there is no python3 that reads YAML";
    }
    const Outcome outcome = runCommand(
        {"python3", "-c",
         "import yaml; print(*yaml.safe_load(open('.github/workflows/test.yml'))['jobs'])"});
    EXPECT_EQ(outcome, (Outcome{0, "test package\n", ""}));
}

TEST(Formula, IsRuby) {
    if (runCommand({"ruby", "--version"}).status != 0) GTEST_SKIP() << "there is no ruby";
    EXPECT_EQ(runCommand({"ruby", "-wc", "packaging/homebrew/pellum.rb"}),
              (Outcome{0, "Syntax OK\n", ""}));
}

}  // namespace

}  // namespace pellum::test
