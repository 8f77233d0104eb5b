// The file in which the prompt keeps what has been typed.
#include "driver/posix/history.h"

#include "support/files.h"
#include "support/text.h"

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <set>

namespace pellum::test {

namespace {

class HistoryFile : public testing::Test {
protected:
    std::string folder() const { return (root_.path() / "state/pellum").string(); }
    std::filesystem::path file() const { return folder() + "/history"; }
    void write(std::string_view text) {
        std::filesystem::create_directories(folder());
        writeFile(file(), text);
    }

    TemporaryFolder root_;
};

TEST_F(HistoryFile, KeepsWhatIsAdded) {
    const std::vector<std::string> inputs = {"1 + 1", "if x then\n  y()\nend", "\\n\\\\\n\\",
                                             "a\tb\r", "\xFF\xC3"};
    History history(folder());
    EXPECT_TRUE(history.load().empty());
    for (const std::string& input : inputs) history.add(input);
    EXPECT_EQ(History(folder()).load(), inputs);
    EXPECT_EQ(splitLines(readFile(file())).size(), inputs.size());
}

TEST_F(HistoryFile, LeavesOutWhatIsRepeatedAtOnceOrMuchTooLong) {
    History history(folder());
    for (const char* input : {"a", "a", "b", "a"}) history.add(input);
    history.add(std::string(History::maxEntryBytes, 'x'));
    history.add(std::string(History::maxEntryBytes - 1, 'y'));
    EXPECT_EQ(history.load(), (std::vector<std::string>{
                                  "a", "b", "a", std::string(History::maxEntryBytes - 1, 'y')}));
}

TEST_F(HistoryFile, KeepsTheLatestOnly) {
    std::string text;
    for (int i = 0; i < 5'000; ++i) text += std::to_string(i) + "\n";
    write(text);
    const std::vector<std::string> entries = History(folder()).load();
    ASSERT_EQ(entries.size(), History::maxEntries);
    EXPECT_EQ(entries.front(), "4000");
    EXPECT_EQ(entries.back(), "4999");
    EXPECT_EQ(splitLines(readFile(file())), entries);
}

TEST_F(HistoryFile, IsBoundedWhileItGrows) {
    History history(folder());
    for (int i = 0; i < 200; ++i) {
        history.add(std::to_string(i) + std::string(History::maxEntryBytes - 10, 'x'));
        ASSERT_LE(std::filesystem::file_size(file()), 2 * History::maxBytes);
    }
    EXPECT_TRUE(history.load().back().starts_with("199x"));
    EXPECT_GT(history.load().size(), 60U);
}

TEST_F(HistoryFile, SurvivesALineThatWasCut) {
    write("one\ntwo");
    History history(folder());
    history.add("three");
    EXPECT_EQ(history.load(), (std::vector<std::string>{"one", "two", "three"}));
}

TEST_F(HistoryFile, LosesNothingOfSeveralWriters) {
    constexpr int writers = 4;
    constexpr int inputs = 200;
    std::vector<pid_t> children;
    for (int writer = 0; writer < writers; ++writer) {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            History history(folder());
            for (int i = 0; i < inputs; ++i) {
                history.add(std::to_string(writer) + "\n" + std::to_string(i));
            }
            _exit(0);
        }
        children.push_back(child);
    }
    for (const pid_t child : children) waitpid(child, nullptr, 0);
    const std::vector<std::string> entries = History(folder()).load();
    EXPECT_EQ(entries.size(), std::size_t{writers} * inputs);
    EXPECT_EQ(std::set<std::string>(entries.begin(), entries.end()).size(), entries.size());
}

TEST_F(HistoryFile, IsNoneWhereThereIsNoFolder) {
    History history("");
    history.add("1");
    EXPECT_TRUE(history.load().empty());
}

TEST_F(HistoryFile, IsWhereTheEnvironmentSays) {
    const char* const ownHome = std::getenv("HOME");
    const std::string before = ownHome ? ownHome : "";
    const auto set = [](const char* name, const char* value) {
        return value ? setenv(name, value, 1) : unsetenv(name);
    };
    const auto folderWith = [&](const char* state, const char* home) {
        set("XDG_STATE_HOME", state);
        set("HOME", home);
        return stateFolder();
    };
    EXPECT_EQ(folderWith("/s", "/h"), "/s/pellum");
    EXPECT_EQ(folderWith(nullptr, "/h"), "/h/.local/state/pellum");
    EXPECT_EQ(folderWith("", "/h"), "/h/.local/state/pellum");
    EXPECT_EQ(folderWith("relative", "/h"), "/h/.local/state/pellum");
    EXPECT_EQ(folderWith(nullptr, nullptr), "");
    EXPECT_EQ(folderWith(nullptr, "relative"), "");
    set("HOME", ownHome ? before.c_str() : nullptr);
}

}  // namespace

}  // namespace pellum::test
