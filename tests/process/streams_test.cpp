// Standard streams and arguments of a kind that a text cannot describe.
#include "support/fifo_writer.h"
#include "support/files.h"
#include "support/process.h"

#include "driver/source.h"
#include "value/limits.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

namespace fs = std::filesystem;

namespace pellum::test {

namespace {

Process programOf(std::vector<std::string> arguments) {
    Process process;
    process.executable = programPath();
    process.arguments = std::move(arguments);
    return process;
}

bool makeNonBlocking(int stream) {
    const int flags = fcntl(stream, F_GETFL);
    return flags >= 0 && fcntl(stream, F_SETFL, flags | O_NONBLOCK) == 0;
}

TEST(Streams, InputThatDoesNotBlockIsWaitedFor) {
    for (const Engine engine : bothEngines) {
        const TemporaryFolder folder;
        const FifoWriter writer(folder.path() / "late", "first\nsecond", 300);
        Process process = programOf(onEngine(engine, {"-c", "print(input(), input(), input())"}));
        process.prepare = [&] {
            const int fifo = open((folder.path() / "late").c_str(), O_RDONLY);
            return dup2(fifo, STDIN_FILENO) == STDIN_FILENO && makeNonBlocking(STDIN_FILENO);
        };
        EXPECT_EQ(process.run(), (Outcome{0, "first second nil\n", ""}));
    }
}

// The program prints faster than we read, so it meets a full pipe again and again.
TEST(Streams, OutputThatDoesNotBlockIsComplete) {
    constexpr std::size_t longest = limit(1'000'000, 10'000);
    const std::string length = std::to_string(longest);
    for (const Engine engine : bothEngines) {
        Process process = programOf(
            onEngine(engine, {"-c", "for i = 1, 100000 do print(i) end\nprint(repeat(\"x\", " +
                                        length + "))\nerror(repeat(\"y\", " + length + "))"}));
        process.prepare = [] {
            return makeNonBlocking(STDOUT_FILENO) && makeNonBlocking(STDERR_FILENO);
        };
        process.started = [](pid_t) { usleep(200'000); };
        std::string wanted;
        for (int i = 1; i <= 100'000; ++i) wanted += std::to_string(i) + "\n";
        wanted.append(longest, 'x') += '\n';
        const Outcome outcome = process.run();
        EXPECT_EQ(outcome.status, 1);
        EXPECT_TRUE(outcome.output == wanted);
        EXPECT_TRUE(outcome.errors == "Error: " + std::string(longest, 'y') + "\n");
    }
}

// Opens the program's end of a new terminal and gives ours, or -1.
int openTerminal(std::string& name) {
    const int ours = posix_openpt(O_RDWR | O_NOCTTY);
    if (ours < 0) return -1;
    const char* theirs = grantpt(ours) == 0 && unlockpt(ours) == 0 ? ptsname(ours) : nullptr;
    if (theirs) return name = theirs, ours;
    close(ours);
    return -1;
}

// Who watches a terminal sees each piece at once, although the program goes on.
TEST(Streams, OutputToATerminalIsNotHeldBack) {
    for (const Engine engine : bothEngines) {
        std::string terminal;
        const int ours = openTerminal(terminal);
        if (ours < 0) GTEST_SKIP() << "this system has no terminals to give";
        Process process = programOf(onEngine(engine, {"-c", "print(1)\nwhile true do end"}));
        process.prepare = [&] {
            const int theirs = open(terminal.c_str(), O_RDWR | O_NOCTTY);
            return dup2(theirs, STDOUT_FILENO) == STDOUT_FILENO;
        };
        std::string seen;
        process.started = [&](pid_t program) {
            pollfd waited{ours, POLLIN, 0};
            char bytes[16];
            while (seen.find('\n') == seen.npos && poll(&waited, 1, 20'000) == 1) {
                const ssize_t count = read(ours, bytes, sizeof bytes);
                if (count <= 0) break;
                seen.append(bytes, static_cast<std::size_t>(count));
            }
            kill(program, SIGKILL);
        };
        process.run();
        close(ours);
        EXPECT_EQ(seen, "1\r\n");
    }
}

TEST(Streams, AReaderWhoLeavesEarlyEndsTheProgramQuietly) {
    for (const Engine engine : bothEngines) {
        Process process = programOf(onEngine(engine, {"-c", "while true do print(1) end"}));
        process.readsOnce = true;
        const Outcome outcome = process.run();
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.errors, "");
    }
}

// The system may put an empty name into the place of the missing one.
TEST(Arguments, NotEvenTheName) {
    Process process = programOf({});
    process.input = "1 + 1\n";
    process.prepare = [] {
        char* const none[] = {nullptr};
        return execv(programPath().c_str(), none) == 0;
    };
    const Outcome outcome = process.run();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_TRUE(outcome.output.ends_with(">> 2\n>> \n")) << outcome.output;
}

TEST(Sources, ThatMayNotBeReadCannotBeOpened) {
    const TemporaryFolder folder;
    fs::permissions(folder.path(), fs::perms(0755));
    writeFile(folder.path() / "secret", "print(1)");
    fs::permissions(folder.path() / "secret", fs::perms::none);
    Process process = programOf({"secret"});
    process.folder = folder.path();
    if (geteuid() == 0) {
        constexpr uid_t nobody = 65534;
        process.prepare = [] { return setgid(nobody) == 0 && setuid(nobody) == 0; };
        // That user may not be able to reach the program itself.
        Process version = process;
        version.arguments = {"--version"};
        if (version.run().status != 0) GTEST_SKIP() << "no other user can run the program here";
    }
    EXPECT_EQ(process.run(), (Outcome{1, "", "pellum: cannot open secret\n"}));
}

TEST(Sources, ThatAreTooLongByOneByte) {
    constexpr std::size_t greatest = maxSourceLength;
    const TemporaryFolder folder;
    Process process = programOf({"source"});
    process.folder = folder.path();
    std::string text(greatest + 1, ' ');
    text.replace(greatest - 8, 8, "print(1)");
    writeFile(folder.path() / "source", text);
    EXPECT_EQ(
        process.run(),
        (Outcome{1, "", "pellum: source is longer than " + std::to_string(greatest) + " bytes\n"}));
    text.pop_back();
    writeFile(folder.path() / "source", text);
    EXPECT_EQ(process.run(), (Outcome{0, "1\n", ""}));
}

// A file that another process writes anew all the time. Whatever is found in it, the end is one of
// the two that there are.
TEST(Sources, ThatChangeWhileTheyAreRead) {
    const TemporaryFolder folder;
    const std::string path = folder.path() / "source";
    std::string text;
    while (text.size() < 30'000) text += "print(1)\n";
    writeFile(path, text);
    const pid_t writer = fork();
    ASSERT_GE(writer, 0);
    if (writer == 0) {
        const int file = open(path.c_str(), O_WRONLY);
        for (std::size_t length = 0;; length = (length + 7'777) % text.size()) {
            if (ftruncate(file, static_cast<off_t>(length)) != 0) _exit(1);
            if (pwrite(file, text.data(), text.size(), 0) < 0) _exit(1);
        }
    }
    Process process = programOf({"source"});
    process.folder = folder.path();
    for (int i = 0; i < 10; ++i) {
        const int status = process.run().status;
        EXPECT_TRUE(status == 0 || status == 1) << status;
    }
    kill(writer, SIGKILL);
    waitpid(writer, nullptr, 0);
}

}  // namespace

}  // namespace pellum::test
