// The part of script/mutate that decides what a mutant is has checks of its own, in its own
// language.
#include "support/process.h"

#include <gtest/gtest.h>

namespace pellum::test {
namespace {

Outcome python(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "python3");
    Process process;
    process.executable = "/usr/bin/env";
    process.arguments = std::move(arguments);
    return process.run();
}

TEST(Structure, MutantsAreMadeOfCodeAlone) {
    if (python({"--version"}).status != 0) GTEST_SKIP() << "there is no python3";
    const Outcome outcome = python({"-B", "script/mutation_check.py"});
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
}

}  // namespace
}  // namespace pellum::test
