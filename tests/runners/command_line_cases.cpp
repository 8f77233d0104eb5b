// Uses of the command line, each in this process and as a process of its own, in a folder that
// holds the files of the case and nothing else.
#include "runners/runners.h"

#include "support/command_case.h"
#include "support/fifo_writer.h"
#include "support/files.h"
#include "support/playing.h"
#include "support/process.h"
#include "support/registration.h"
#include "support/text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>

namespace fs = std::filesystem;

namespace pellum::test {

namespace {

void layOut(const CommandCase& commandCase, const fs::path& folder) {
    for (const std::string& name : commandCase.directories) fs::create_directories(folder / name);
    for (const CommandCase::File& file : commandCase.files) {
        fs::create_directories((folder / file.name).parent_path());
        writeFile(folder / file.name, file.contents);
    }
    for (const CommandCase::File& link : commandCase.links) {
        fs::create_symlink(link.contents, folder / link.name);
    }
}

Outcome playFromOutside(const CommandCase& commandCase, const fs::path& folder) {
    const Surroundings& surroundings = commandCase.surroundings;
    std::deque<FifoWriter> writers;
    for (const CommandCase::File& fifo : commandCase.fifos) {
        writers.emplace_back(folder / fifo.name, fifo.contents);
    }
    Process process;
    process.executable = programPath().parent_path() / commandCase.program;
    process.arguments = commandCase.arguments;
    process.folder = folder;
    process.input = commandCase.input;
    if (commandCase.outputTo == OutputTo::FullDevice) process.outputFile = "/dev/full";
    process.readsOutput = commandCase.outputTo == OutputTo::Memory;
    if (!surroundings.areUsual()) process.prepare = [&] { return surroundings.enter(); };
    return process.run();
}

Outcome playInside(const CommandCase& commandCase, const fs::path& folder) {
    const CurrentFolder current(folder);
    return playInProcess(commandCase.program, commandCase.arguments, commandCase.input,
                         commandCase.outputTo);
}

// A case and where it stands.
struct Placed {
    fs::path file;
    std::size_t line;
    std::string text;
};

void expectMatch(const Placed& placed, std::string_view what, const ExpectedText& wanted,
                 const std::string& given) {
    if (wanted.matches(given)) return;
    ADD_FAILURE_AT(placed.file.c_str(), static_cast<int>(placed.line))
        << firstDifference(what, wanted.text, given).value_or(std::string(what)) << "\nall of it:\n"
        << given;
}

enum class Place { Inside, Outside };

void play(const Placed& placed, Place place) {
    const CommandCase commandCase = parseCommandCase(placed.text);
    if (const char* reason = commandCase.surroundings.whyImpossible()) GTEST_SKIP() << reason;
    const TemporaryFolder folder;
    layOut(commandCase, folder.path());
    const Outcome given = place == Place::Inside ? playInside(commandCase, folder.path())
                                                 : playFromOutside(commandCase, folder.path());
    expectMatch(placed, "standard output", commandCase.output, given.output);
    expectMatch(placed, "standard error", commandCase.errors, given.errors);
    EXPECT_EQ(given.status, commandCase.status);
    for (const CommandCase::File& file : commandCase.filesAfterwards) {
        expectMatch(placed, file.name, {file.contents}, readFile(folder.path() / file.name));
    }
}

// Whether the case is about what only a process of its own can meet.
bool needsProcess(const std::string& text) {
    try {
        const CommandCase commandCase = parseCommandCase(text);
        const auto& words = commandCase.arguments;
        const bool isSource = std::find(words.begin(), words.end(), "/dev/stdin") != words.end();
        return commandCase.outputTo == OutputTo::ClosedPipe || isSource ||
               !commandCase.fifos.empty() || !commandCase.surroundings.areUsual();
    } catch (const std::runtime_error&) {
        return false;  // playing it reports what is wrong
    }
}

}  // namespace

void addCommandTests(const std::string& suite, const fs::path& file, std::size_t line,
                     const std::string& text) {
    const Placed placed{file, line, text};
    addTest(suite, "outside", file, [=] { play(placed, Place::Outside); });
    if (needsProcess(text)) return;
    addTest(suite, "inside", file, [=] { play(placed, Place::Inside); });
}

void registerCommandLineCases() {
    if (!mayRun("cli/")) return;
    for (const fs::path& path : filesUnder("tests/cli", ".case")) {
        addCommandTests(suiteName(path), path, 1, readFile(path));
    }
}

}  // namespace pellum::test
