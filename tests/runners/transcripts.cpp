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

// A transcript and where it stands.
struct Placed {
    fs::path file;
    std::size_t line;
    std::string text;
};

void expectSame(const Placed& placed, std::string_view what, std::string_view wanted,
                std::string_view given) {
    if (const auto difference = firstDifference(what, wanted, given)) {
        ADD_FAILURE_AT(placed.file.c_str(), static_cast<int>(placed.line))
            << *difference << "\nall of it:\n"
            << given;
    }
}

void playInside(const Placed& placed) {
    const Transcript transcript = parseTranscript(placed.text);
    const Outcome given = playInProcess(transcript.arguments, transcript.input);
    expectSame(placed, "standard output", transcript.output, given.output);
    expectSame(placed, "standard error", transcript.errors, given.errors);
    EXPECT_EQ(given.status, 0);
}

void playFromOutside(const Placed& placed) {
    const Transcript transcript = parseTranscript(placed.text);
    const Outcome given = playOutside(transcript.arguments, transcript.input, ".", Streams::Merged);
    expectSame(placed, "output and errors together", transcript.merged, given.output);
    EXPECT_EQ(given.status, 0);
}

}  // namespace

void addTranscriptTests(const std::string& suite, const fs::path& file, std::size_t line,
                        const std::string& text) {
    const Placed placed{file, line, text};
    addTest(suite, "inside", file, [=] { playInside(placed); });
    addTest(suite, "outside", file, [=] { playFromOutside(placed); });
}

void registerTranscripts() {
    if (!mayRun("repl/")) return;
    for (const fs::path& path : filesUnder("tests/repl", ".transcript")) {
        addTranscriptTests(suiteName(path), path, 1, readFile(path));
    }
}

}  // namespace pellum::test
