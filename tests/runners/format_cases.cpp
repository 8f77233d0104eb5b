// Sources for the formatter: beside each stands what becomes of it, under the same name with the
// extension ".formatted". One without such a file stays as it is.
#include "runners/runners.h"

#include "support/files.h"
#include "support/registration.h"
#include "support/text.h"

#include "format/format.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace pellum::test {

namespace {

void play(const fs::path& path) {
    const fs::path resultFile = fs::path(path).replace_extension(".formatted");
    const std::string source = readFile(path);
    const std::string given = tools::format(source);
    if (updatesExpectations() && given != source) return writeFile(resultFile, given);
    const std::string wanted = fs::exists(resultFile) ? readFile(resultFile) : source;
    if (const auto difference = firstDifference("the layout", wanted, given)) {
        ADD_FAILURE_AT(resultFile.c_str(), 1) << *difference << "\nall of it:\n" << given;
    }
    EXPECT_EQ(tools::format(given), given) << "formatted again";
}

}  // namespace

void registerFormatCases() {
    if (!mayRun("format/")) return;
    for (const fs::path& path : filesUnder("tests/format", ".pellum")) {
        addTest(suiteName(path), "layout", path, [=] { play(path); });
    }
}

}  // namespace pellum::test
