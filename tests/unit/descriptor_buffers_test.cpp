#include "driver/descriptor_buffers.h"
#include "support/fifo_writer.h"
#include "support/files.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <signal.h>
#include <sys/time.h>
#include <unistd.h>

#include <csignal>
#include <istream>
#include <memory>
#include <ostream>
#include <string>

namespace pellum::test {

namespace {

// A pipe that holds little and never makes anyone wait.
class SmallPipe {
public:
    SmallPipe() {
        if (pipe(ends_) != 0) throw std::runtime_error("pipe");
        fcntl(ends_[0], F_SETFL, O_NONBLOCK);
    }
    ~SmallPipe() {
        close(ends_[0]);
        closeWriteEnd();
    }

    int readEnd() const { return ends_[0]; }
    int writeEnd() const { return ends_[1]; }
    void closeWriteEnd() {
        if (ends_[1] >= 0) close(ends_[1]);
        ends_[1] = -1;
    }

    // What is in it at the moment.
    std::string contents() {
        std::string text(100'000, ' ');
        const ssize_t count = read(ends_[0], text.data(), text.size());
        text.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
        return text;
    }

private:
    int ends_[2];
};

TEST(OutputBuffer, HoldsWhatIsNotFlushed) {
    SmallPipe pipe;
    OutputBuffer buffer(pipe.writeEnd());
    std::ostream out(&buffer);
    out << "a" << 1 << 'b';
    EXPECT_EQ(pipe.contents(), "");
    out << std::flush;
    EXPECT_EQ(pipe.contents(), "a1b");
    out << std::flush;
    EXPECT_EQ(pipe.contents(), "");
    out << std::unitbuf << "c";
    EXPECT_EQ(pipe.contents(), "c");
}

TEST(OutputBuffer, WritesByItselfWhenItIsFull) {
    SmallPipe pipe;
    OutputBuffer buffer(pipe.writeEnd());
    std::ostream out(&buffer);
    out << std::string(bufferSize - 1, 'x') << 'y';
    EXPECT_EQ(pipe.contents(), "");
    out << 'z';
    EXPECT_EQ(pipe.contents(), std::string(bufferSize - 1, 'x') + "y");
    out.flush();
    EXPECT_EQ(pipe.contents(), "z");
}

TEST(OutputBuffer, DrainSaysWhetherAllWasWritten) {
    SmallPipe pipe;
    OutputBuffer buffer(pipe.readEnd());  // nothing can be written there
    EXPECT_TRUE(buffer.drain());
    std::ostream out(&buffer);
    out << "lost";
    EXPECT_TRUE(out.good());
    EXPECT_FALSE(buffer.drain());
    EXPECT_EQ(errno, EBADF);
    EXPECT_TRUE(buffer.drain());  // it was dropped
    out << "lost" << std::flush;
    EXPECT_TRUE(out.bad());
}

TEST(OutputBuffer, ABufferThatCannotBeEmptiedFailsTheWriteThatFillsIt) {
    SmallPipe pipe;
    OutputBuffer buffer(pipe.readEnd());
    std::ostream out(&buffer);
    out << std::string(bufferSize, 'x');
    EXPECT_TRUE(out.good());
    out << 'y';
    EXPECT_TRUE(out.bad());
}

TEST(OutputBuffer, TellsWhenAWriteHasReturned) {
    static int calls;
    static OutputBuffer* current;
    calls = 0;
    SmallPipe pipe;
    OutputBuffer buffer(pipe.writeEnd());
    current = &buffer;
    buffer.afterWrite = []() noexcept { calls += current->isWriting() ? 100 : 1; };
    std::ostream out(&buffer);
    out << std::flush;
    EXPECT_EQ(calls, 0);
    out << "a" << std::flush << "b" << std::flush;
    EXPECT_EQ(calls, 2);
}

TEST(InputBuffer, ReadsToTheEnd) {
    SmallPipe pipe;
    const std::string text = std::string("a\0b\n", 4) + std::string(1000, 'x');
    ASSERT_EQ(write(pipe.writeEnd(), text.data(), text.size()), 1004);
    pipe.closeWriteEnd();
    const auto buffer = std::make_unique<InputBuffer>(pipe.readEnd());
    std::istream in(buffer.get());
    std::string line;
    ASSERT_TRUE(std::getline(in, line));
    EXPECT_EQ(line, std::string("a\0b", 3));
    ASSERT_TRUE(std::getline(in, line));
    EXPECT_EQ(line, std::string(1000, 'x'));
    EXPECT_FALSE(std::getline(in, line));
}

// Interrupts whatever the process waits for, again and again.
class Interruptions {
public:
    Interruptions() {
        count = 0;
        struct sigaction action {};
        action.sa_handler = [](int) { count = count + 1; };
        sigaction(SIGALRM, &action, &before_);
        const itimerval often{{0, 5'000}, {0, 5'000}};
        setitimer(ITIMER_REAL, &often, nullptr);
    }
    ~Interruptions() {
        const itimerval never{};
        setitimer(ITIMER_REAL, &never, nullptr);
        sigaction(SIGALRM, &before_, nullptr);
    }

    inline static volatile std::sig_atomic_t count;

private:
    struct sigaction before_ {};
};

TEST(InputBuffer, AnInterruptionIsNotTheEnd) {
    for (const int waiting : {0, O_NONBLOCK}) {
        const TemporaryFolder folder;
        const FifoWriter writer(folder.path() / "late", "x", 100);
        const int fifo = open((folder.path() / "late").c_str(), O_RDONLY);
        ASSERT_EQ(fcntl(fifo, F_SETFL, waiting), 0);
        const auto buffer = std::make_unique<InputBuffer>(fifo);
        const Interruptions interruptions;
        EXPECT_EQ(buffer->sbumpc(), 'x');
        EXPECT_GT(interruptions.count, 0);
        close(fifo);
    }
}

TEST(InputBuffer, WhatCannotBeReadIsTheEnd) {
    SmallPipe pipe;
    const auto buffer = std::make_unique<InputBuffer>(pipe.writeEnd());
    std::istream in(buffer.get());
    EXPECT_EQ(in.get(), std::istream::traits_type::eof());
    EXPECT_FALSE(in.bad());
}

}  // namespace

}  // namespace pellum::test
