// How the program ends when it is asked to from outside: by the signal, and with everything that it
// had printed.
#include "support/process.h"
#include "support/watching.h"

#include "value/limits.h"

#include <gtest/gtest.h>

#include <signal.h>
#include <unistd.h>

#include <string>

namespace pellum::test {

namespace {

constexpr int endingSignals[] = {SIGINT, SIGTERM, SIGHUP};

Process programOf(std::vector<std::string> arguments) {
    Process process;
    process.executable = programPath();
    process.arguments = std::move(arguments);
    return process;
}

// For a child: makes one of its standard streams a pipe whose other end it holds itself, so that it
// never gets or never gets rid of anything.
bool makeStuck(int stream) {
    int ends[2];
    return pipe(ends) == 0 && dup2(ends[stream == STDIN_FILENO ? 0 : 1], stream) >= 0;
}

// The beginning of what counting without an end prints.
std::string counted(std::size_t length) {
    std::string text;
    for (int i = 0; text.size() < length; ++i) text += std::to_string(i) + "\n";
    return text.substr(0, length);
}

const char* const countForever = "let i = 0\nwhile true do\nprint(i)\ni += 1\nend";

TEST(Signals, EndABusyProgramWithNothingLost) {
    const auto play = [](Engine engine, int signal) {
        SCOPED_TRACE(signal);
        Process process = programOf(onEngine(engine, {"-c", "print(1)\nwhile true do end"}));
        process.started = [&](pid_t child) {
            EXPECT_TRUE(waitForWork(child));
            kill(child, signal);
        };
        EXPECT_EQ(process.run(), (Outcome{-signal, "1\n", ""}));
    };
    for (const int signal : endingSignals) play(Engine::Vm, signal);
    play(Engine::Tree, SIGINT);
}

TEST(Signals, EndAProgramThatWaitsForInput) {
    for (const int signal : endingSignals) {
        SCOPED_TRACE(signal);
        Process process = programOf({"-c", "print(1)\ninput(\"? \")"});
        process.prepare = [] { return makeStuck(STDIN_FILENO); };
        process.started = [&](pid_t child) {
            EXPECT_TRUE(waitForSleep(child));
            kill(child, signal);
        };
        EXPECT_EQ(process.run(), (Outcome{-signal, "1\n? ", ""}));
    }
}

TEST(Signals, EndThePrompt) {
    Process process = programOf({});
    process.prepare = [] { return makeStuck(STDIN_FILENO); };
    process.started = [](pid_t child) {
        EXPECT_TRUE(waitForSleep(child));
        kill(child, SIGINT);
    };
    const Outcome outcome = process.run();
    EXPECT_EQ(outcome.status, -SIGINT);
    EXPECT_TRUE(outcome.output.ends_with("\n>> ")) << outcome.output;
    EXPECT_EQ(outcome.errors, "");
}

TEST(Signals, ThatAreIgnoredFromTheStartStayIgnored) {
    Process process = programOf({"-c", "print(1)\nwhile true do end"});
    process.prepare = [] { return signal(SIGHUP, SIG_IGN) != SIG_ERR; };
    process.started = [](pid_t child) {
        EXPECT_TRUE(waitForWork(child));
        kill(child, SIGHUP);
        usleep(100'000);
        kill(child, SIGTERM);
    };
    EXPECT_EQ(process.run(), (Outcome{-SIGTERM, "1\n", ""}));
}

// The pipe is full when the signal comes, and what is held beside it is much. All of it arrives.
TEST(Signals, WaitForAReaderThatIsSlow) {
    for (const Engine engine : bothEngines) {
        Process process = programOf(onEngine(engine, {"-c", countForever}));
        process.started = [](pid_t child) {
            EXPECT_TRUE(waitForSleep(child));
            kill(child, SIGINT);
            usleep(100'000);
        };
        const Outcome outcome = process.run();
        EXPECT_EQ(outcome.status, -SIGINT);
        EXPECT_EQ(outcome.errors, "");
        EXPECT_GT(outcome.output.size(), limit(100'000u, 60'000u));
        EXPECT_EQ(outcome.output, counted(outcome.output.size()));
    }
}

TEST(Signals, DoNotWaitForAReaderWhoReadsNothing) {
    for (const int signal : endingSignals) {
        Process process = programOf({"-c", countForever});
        process.prepare = [] { return makeStuck(STDOUT_FILENO); };
        process.started = [&](pid_t child) {
            EXPECT_TRUE(waitForSleep(child));
            kill(child, signal);
        };
        EXPECT_EQ(process.run(), (Outcome{-signal, "", ""}));
    }
}

TEST(Signals, ASecondOneEndsTheWait) {
    Process process = programOf({"-c", countForever});
    process.prepare = [] { return makeStuck(STDOUT_FILENO); };
    process.started = [](pid_t child) {
        EXPECT_TRUE(waitForSleep(child));
        kill(child, SIGINT);
        usleep(50'000);
        kill(child, SIGTERM);
    };
    const int status = process.run().status;
    EXPECT_TRUE(status == -SIGTERM || status == -SIGINT) << status;
}

}  // namespace

}  // namespace pellum::test
