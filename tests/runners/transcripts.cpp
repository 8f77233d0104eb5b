// Sessions at the prompt: once in this process, where the two streams are told apart, and once
// from outside with both streams on one pipe, where their order shows.
#include "runners/runners.h"

#include "support/files.h"
#include "support/playing.h"
#include "support/registration.h"
#include "support/text.h"
#include "support/transcript.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace pellum::test {

namespace {

void expectSame(const fs::path& path, std::string_view what, std::string_view wanted,
                std::string_view given) {
    if (const auto difference = firstDifference(what, wanted, given)) {
        ADD_FAILURE_AT(path.c_str(), 1) << *difference << "\nall of it:\n" << given;
    }
}

void playInside(const fs::path& path) {
    const Transcript transcript = parseTranscript(readFile(path));
    const Outcome given = playInProcess(transcript.arguments, transcript.input);
    expectSame(path, "standard output", transcript.output, given.output);
    expectSame(path, "standard error", transcript.errors, given.errors);
    EXPECT_EQ(given.status, 0);
}

void playFromOutside(const fs::path& path) {
    const Transcript transcript = parseTranscript(readFile(path));
    const Outcome given = playOutside(transcript.arguments, transcript.input, ".", Streams::Merged);
    expectSame(path, "output and errors together", transcript.merged, given.output);
    EXPECT_EQ(given.status, 0);
}

}  // namespace

void registerTranscripts() {
    if (!mayRun("repl/")) return;
    for (const fs::path& path : filesUnder("tests/repl", ".transcript")) {
        addTest(suiteName(path), "inside", path, [=] { playInside(path); });
        addTest(suiteName(path), "outside", path, [=] { playFromOutside(path); });
    }
}

}  // namespace pellum::test
