// The programs under bench/, at sizes that take no time, so that they do not rot between
// measurements. Those of bench/programs.txt print what stands there; those of bench/scaling check
// themselves.
#include "runners/runners.h"

#include "support/files.h"
#include "support/playing.h"
#include "support/registration.h"
#include "support/text.h"

#include <gtest/gtest.h>

#include <set>
#include <sstream>

namespace fs = std::filesystem;

namespace pellum::test {

namespace {

const fs::path table = "bench/programs.txt";
const fs::path folder = "bench/programs";

struct Row {
    std::string name;
    std::string size;  // the small one
    std::string output;
};

std::vector<Row> readTable() {
    std::vector<Row> rows;
    for (const std::string& line : splitLines(readFile(table))) {
        if (line.empty() || line[0] == '#') continue;
        std::istringstream words(line);
        Row row;
        std::string fullSize;
        words >> row.name >> fullSize >> row.size >> row.output;
        row.output += "\n";
        rows.push_back(row);
    }
    return rows;
}

void play(const fs::path& path, Engine engine, const std::string& input, const Outcome& wanted) {
    const Outcome given = playCase(onEngine(engine, {path.generic_string()}), input);
    EXPECT_EQ(given.output, wanted.output);
    EXPECT_EQ(given.errors, wanted.errors);
    EXPECT_EQ(given.status, wanted.status);
}

void addOnBothEngines(const fs::path& path, const std::string& input, const std::string& output) {
    for (const Engine engine : bothEngines) {
        addTest(suiteName(path), engineName(engine), path, [=] {
            play(path, engine, input, {0, output, ""});
        });
    }
}

void everyProgramIsThereInEveryLanguage() {
    std::set<fs::path> wanted;
    for (const Row& row : readTable()) {
        for (const char* extension : {".pellum", ".lua", ".py", ".rb", ".js"}) {
            wanted.insert(folder / row.name / (row.name + extension));
        }
    }
    const std::vector<fs::path> found = filesUnder(folder, "");
    EXPECT_EQ(std::set<fs::path>(found.begin(), found.end()), wanted);
}

}  // namespace

void registerBenchmarks() {
    if (!mayRun("bench/")) return;
    addTest("bench/programs", "are_all_there_in_every_language", table,
            everyProgramIsThereInEveryLanguage);
    for (const Row& row : readTable()) {
        addOnBothEngines(folder / row.name / (row.name + ".pellum"), row.size + "\n", row.output);
    }
    for (const fs::path& path : filesUnder("bench/scaling", ".pellum")) {
        addOnBothEngines(path, "1000\n2\n", "");
    }
}

}  // namespace pellum::test
