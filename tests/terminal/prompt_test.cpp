// What the sessions under this folder cannot say: how fast the prompt is, what several prompts do
// at once, and how the terminal is left when the program is ended from outside.
#include "support/files.h"
#include "support/pseudo_terminal.h"
#include "support/text.h"
#include "support/watching.h"

#include "value/limits.h"

#include <gtest/gtest.h>

#include <signal.h>
#include <sys/stat.h>

#include <chrono>
#include <set>

namespace fs = std::filesystem;

namespace pellum::test {

namespace {

class Prompt : public testing::Test {
protected:
    void SetUp() override {
#if !defined(PELLUM_LIBEDIT)
        GTEST_SKIP() << "built without libedit";
#endif
        options_.folder = folder_.path();
        options_.environment = {"TERM=xterm", "XDG_STATE_HOME=" + folder_.path().string()};
    }

    fs::path historyFile() const { return folder_.path() / "pellum/history"; }

    // How long it takes until the lines have run, the last of which is "done".
    double secondsToRun(const std::string& typed) {
        PseudoTerminal terminal(options_);
        EXPECT_TRUE(terminal.waitForText("\n>>"));
        const auto start = std::chrono::steady_clock::now();
        terminal.type(typed);
        EXPECT_TRUE(terminal.waitForText("\n\"done\"\n>>")) << terminal.screen().text();
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    }

    TemporaryFolder folder_;
    PseudoTerminal::Options options_;
};

constexpr int lineCount = limit(10'000, 120);

std::string manyLines() {
    std::string lines = "let n = 0\r";
    for (int i = 0; i < lineCount / 4; ++i) {
        lines += "for i = 1, 3 do\r\tn += i * " + std::to_string(i) + "  # héhé\r\r    end\r";
    }
    return lines + "assert(n == " + std::to_string(3 * (lineCount / 4) * (lineCount / 4 - 1)) +
           ")\r";
}

// Editing each line would take a hundred times as long.
TEST_F(Prompt, RunsTenThousandPastedLinesWithinSeconds) {
    EXPECT_LT(secondsToRun(manyLines() + "\"done\"\r"), 20);
}

TEST_F(Prompt, TakesTenThousandPastedLinesAtOnceWhereTheyAreMarked) {
    const std::string lines = manyLines();
    EXPECT_LT(secondsToRun("\x1b[200~" + lines + "\x1b[201~\r\"done\"\r"), 20);
}

TEST_F(Prompt, KeepsItsHistoryForItsUserAlone) {
    {
        PseudoTerminal terminal(options_);
        ASSERT_TRUE(terminal.waitForText("\n>>"));
        terminal.type("1 + 1\rexit\r");
        EXPECT_EQ(terminal.waitForEnd(), 0);
    }
    struct stat status {};
    ASSERT_EQ(stat(historyFile().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600U);
    ASSERT_EQ(stat(historyFile().parent_path().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0700U);
}

TEST_F(Prompt, SharesItsHistoryWithOthers) {
    constexpr int inputs = 40;
    {
        PseudoTerminal first(options_), second(options_);
        for (PseudoTerminal* terminal : {&first, &second}) {
            ASSERT_TRUE(terminal->waitForText("\n>>"));
        }
        for (int i = 0; i < inputs; ++i) {
            first.type("\"first " + std::to_string(i) + "\"\r");
            second.type("\"second " + std::to_string(i) + "\"\r");
        }
        for (PseudoTerminal* terminal : {&first, &second}) {
            terminal->type("exit\r");
            EXPECT_EQ(terminal->waitForEnd(), 0);
        }
    }
    const std::vector<std::string> lines = splitLines(readFile(historyFile()));
    const std::set<std::string> entries(lines.begin(), lines.end());
    EXPECT_EQ(lines.size(), 2U * inputs);
    for (int i = 0; i < inputs; ++i) {
        for (const char* which : {"first", "second"}) {
            EXPECT_TRUE(
                entries.contains("\"" + std::string(which) + " " + std::to_string(i) + "\""));
        }
    }
}

TEST_F(Prompt, GoesOnWithoutAHistoryThatCannotBeKept) {
    writeFile(folder_.path() / "pellum", "no folder");
    PseudoTerminal terminal(options_);
    ASSERT_TRUE(terminal.waitForText("\n>>"));
    terminal.type("1 + 1\r\x1b[A\r");
    EXPECT_TRUE(terminal.waitForText(">> 1 + 1\n2\n>> 1 + 1\n2\n>>"));
    terminal.type("\x04");
    EXPECT_EQ(terminal.waitForEnd(), 0);
}

TEST_F(Prompt, GivesTheTerminalBackHoweverItEnds) {
    for (const int signal : {SIGTERM, SIGHUP, SIGQUIT}) {
        PseudoTerminal terminal(options_);
        ASSERT_TRUE(terminal.waitForText("\n>>"));
        EXPECT_FALSE(terminal.isAsUsual());
        EXPECT_TRUE(terminal.screen().marksPastes());
        kill(terminal.child(), signal);
        EXPECT_EQ(terminal.waitForEnd(), -signal);
        EXPECT_TRUE(terminal.isAsUsual()) << signal;
        EXPECT_FALSE(terminal.screen().marksPastes()) << signal;
    }
}

// Wherever they come: while a line is read, while it runs, and while the last one is answered.
TEST_F(Prompt, OutlivesAnyNumberOfInterrupts) {
    for (const char* kind : {"TERM=xterm", "TERM=dumb"}) {
        options_.environment[0] = kind;
        PseudoTerminal terminal(options_);
        ASSERT_TRUE(terminal.waitForText("\n>>"));
        for (int i = 0; i < 1'000; ++i) {
            if (i % 3 == 0) terminal.type("for i = 1, 2000 do end\r");
            kill(terminal.child(), SIGINT);
        }
        // The last interrupt may take with it what is typed behind it. And a dumb terminal may echo
        // that anywhere, so only what is printed tells.
        const auto answers = [&] {
            if (terminal.screen().text().find("\nstill here\n") != std::string::npos) return true;
            terminal.type("\rprint(\"\\nstill \" + \"here\")\r");
            return false;
        };
        EXPECT_TRUE(terminal.waitUntil(answers)) << terminal.screen().text();
    }
}

// A shell with job control starts it and continues it.
TEST_F(Prompt, CanBeStoppedAndContinued) {
    options_.program = "/bin/sh";
    options_.arguments = {"-c", "set -m; '" PELLUM_EXECUTABLE "'; echo stopped; read key; fg"};
    PseudoTerminal terminal(options_);
    ASSERT_TRUE(terminal.waitForText("\n>>"));
    terminal.type("40 + 2");
    ASSERT_TRUE(terminal.waitForText(">> 40 + 2"));
    terminal.type("\x1a");
    ASSERT_TRUE(terminal.waitForText("stopped\n")) << terminal.screen().text();
    EXPECT_TRUE(terminal.isAsUsual());
    EXPECT_FALSE(terminal.screen().marksPastes());
    terminal.type("\n");
    EXPECT_TRUE(terminal.waitUntil([&] {
        return terminal.screen().text().ends_with(">> 40 + 2\n");
    })) << terminal.screen().text();
    EXPECT_FALSE(terminal.isAsUsual());
    EXPECT_TRUE(terminal.screen().marksPastes());
    terminal.type("\r");
    EXPECT_TRUE(terminal.waitForText(">> 40 + 2\n42\n>>")) << terminal.screen().text();
    terminal.type("\x04");
    EXPECT_EQ(terminal.waitForEnd(), 0);
    EXPECT_TRUE(terminal.isAsUsual());
}

TEST_F(Prompt, LeavesATerminalAloneThatDoesNotEcho) {
    writeFile(folder_.path() / "ask.pellum", "print(\"[\" + input(\"? \") + \"]\")");
    options_.arguments = {"ask.pellum"};
    options_.echoes = false;
    PseudoTerminal terminal(options_);
    ASSERT_TRUE(terminal.waitForText("?"));
    terminal.type("secret\n");
    EXPECT_EQ(terminal.waitForEnd(), 0);
    EXPECT_EQ(terminal.screen().text(), "? [secret]\n");
}

}  // namespace

}  // namespace pellum::test
