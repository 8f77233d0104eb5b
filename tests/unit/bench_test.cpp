#include "driver/run_main.h"
#include "support/files.h"
#include "support/playing.h"

#include <gtest/gtest.h>

#include <sstream>
#include <streambuf>
#include <string>

namespace pellum::test {
namespace {

// The number behind `label` in a report.
double numberBehind(const std::string& report, const std::string& label) {
    const std::size_t at = report.find(label);
    if (at == std::string::npos) return -1;
    return std::stod(report.substr(at + label.size()));
}

TEST(Bench, ReportsMillisecondsAndTheirRatio) {
    const TemporaryFolder folder;
    const std::string program = (folder.path() / "wait.pellum").string();
    writeFile(program, "let start = clock()\nwhile clock() - start < 0.01 do end\n");
    const std::string report = playInProcess({"--bench", program}, "").output;
    const double tree = numberBehind(report, "tree-walker: ");
    const double machine = numberBehind(report, "bytecode VM: ");
    // A busy machine may make ten milliseconds long, but not seconds.
    EXPECT_GE(tree, 10) << report;
    EXPECT_GE(machine, 10) << report;
    EXPECT_LT(tree, 5'000) << report;
    EXPECT_LT(machine, 5'000) << report;
    EXPECT_NEAR(numberBehind(report, "speedup:     "), tree / machine, 0.01 * tree / machine)
        << report;
}

TEST(Bench, AReportThatCannotBeWrittenIsNoErrorOfTheProgram) {
    class FullDevice : public std::streambuf {
    } device;
    const TemporaryFolder folder;
    const std::string program = (folder.path() / "empty.pellum").string();
    writeFile(program, "");
    std::istringstream in;
    std::ostream out(&device);
    std::ostringstream errors;
    EXPECT_EQ(runMain({"--bench", program}, in, out, errors), exitFailure);
    EXPECT_EQ(errors.str(), "pellum: cannot write to standard output\n");
}

}  // namespace
}  // namespace pellum::test
