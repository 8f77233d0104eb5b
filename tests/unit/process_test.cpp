#include "driver/process.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <exception>
#include <new>
#include <stdexcept>
#include <string>

namespace pellum::test {

namespace {

template <typename Exception>
void throwThroughNoexcept() {
    prepareProcess();
    void (*const raise)() = [] { throw Exception(); };
    [&]() noexcept { raise(); }();
}

struct Unknown {};

TEST(PrepareProcess, MemoryThatIsMissingWhereNothingMayFailEndsWithALine) {
    EXPECT_EXIT(throwThroughNoexcept<std::bad_alloc>(), testing::ExitedWithCode(1),
                "^pellum: out of memory\n$");
    EXPECT_EXIT(prepareProcess();
                std::terminate(), testing::ExitedWithCode(1), "^pellum: out of memory\n$");
}

TEST(PrepareProcess, AnyOtherExceptionThatNobodyCatchesEndsWithALine) {
    EXPECT_EXIT(throwThroughNoexcept<Unknown>(), testing::ExitedWithCode(1),
                "^pellum: internal error\n$");
}

TEST(PrepareProcess, WhatWasPrintedIsNotLostWhenNobodyCatches) {
    const auto printAndFail = [] {
        // Standard output into what the test sees.
        dup2(STDERR_FILENO, STDOUT_FILENO);
        static StandardStreams streams;
        streams.out << "printed\n";
        throwThroughNoexcept<std::bad_alloc>();
    };
    EXPECT_EXIT(printAndFail(), testing::ExitedWithCode(1), "^printed\npellum: out of memory\n$");
}

TEST(PrepareProcess, ClosedStreamsAreFilledWithWhatNobodyCanUse) {
    const auto closeAndUse = [] {
        close(STDIN_FILENO);
        close(STDOUT_FILENO);
        prepareProcess();
        char byte = 0;
        const bool canRead = read(STDIN_FILENO, &byte, 1) >= 0;
        const bool canWrite = write(STDOUT_FILENO, &byte, 1) >= 0;
        const int next = open("/dev/null", O_RDONLY);
        _exit(!canRead && !canWrite && next > STDERR_FILENO ? 0 : 1);
    };
    EXPECT_EXIT(closeAndUse(), testing::ExitedWithCode(0), "");
}

}  // namespace

}  // namespace pellum::test
