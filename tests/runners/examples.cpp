// The programs under examples/, each with the output it is known for.
#include "runners/runners.h"

#include "support/files.h"
#include "support/playing.h"
#include "support/registration.h"
#include "support/text.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace pellum::test {

namespace {

void play(const fs::path& path, Engine engine) {
    const fs::path inputFile = fs::path(path).replace_extension(".in");
    const fs::path outputFile = fs::path(path).replace_extension(".out");
    ASSERT_TRUE(fs::exists(outputFile)) << path << " needs its output in " << outputFile;
    const std::string input = fs::exists(inputFile) ? readFile(inputFile) : std::string();
    const Outcome given = playCase(onEngine(engine, {path.generic_string()}), input);
    if (const auto difference = firstDifference("the output", readFile(outputFile), given.output)) {
        ADD_FAILURE_AT(outputFile.c_str(), 1) << *difference;
    }
    EXPECT_EQ(given.errors, "");
    EXPECT_EQ(given.status, 0);
}

}  // namespace

void registerExamples() {
    if (!mayRun("examples/")) return;
    for (const fs::path& path : filesUnder("examples", ".plm")) {
        for (const Engine engine : bothEngines) {
            addTest(suiteName(path), engineName(engine), path, [=] { play(path, engine); });
        }
    }
}

}  // namespace pellum::test
