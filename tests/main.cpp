// The test program: the compiled tests, and those that the runners find. Takes GoogleTest's options
// and two of its own:
//   --update         rewrite expectations from what the programs print
//   --list-for-ctest print all tests as commands for CTest, instead of running them
#include "runners/runners.h"
#include "support/needed_limits.h"
#include "support/registration.h"
#include "support/sanitizers.h"

#include "value/host_stack.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

namespace {

std::vector<std::string> allTests() {
    std::vector<std::string> names;
    const testing::UnitTest& tests = *testing::UnitTest::GetInstance();
    for (int i = 0; i < tests.total_test_suite_count(); ++i) {
        const testing::TestSuite& suite = *tests.GetTestSuite(i);
        for (int j = 0; j < suite.total_test_count(); ++j) {
            names.push_back(std::string(suite.name()) + "." + suite.GetTestInfo(j)->name());
        }
    }
    return names;
}

// Each test becomes a process of its own, so that a crash costs one test and all run in parallel.
void listForCTest() {
    const std::string executable = pellum::test::executablePath();
    for (const std::string& name : allTests()) {
        if (!pellum::test::canRun(name)) continue;
        std::cout << "add_test([==[" << name << "]==] [==[" << executable
                  << "]==] --gtest_brief=1 [==[--gtest_filter=" << pellum::test::filterFor(name)
                  << "]==])\n";
    }
}

}  // namespace

int main(int argc, char** argv) {
    using namespace pellum::test;
    allowCycles();
    // As the program does, so that recursion is as deep here as there.
    pellum::raiseHostStackLimit();
    testing::InitGoogleTest(&argc, argv);
    bool lists = false;
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (argument == "--update") {
            setUpdatesExpectations(true);
        } else if (argument == "--list-for-ctest") {
            lists = true;
        } else {
            std::cerr << "unknown option " << argument << "\n";
            return 2;
        }
    }
    std::filesystem::current_path(PELLUM_ROOT);
    registerLanguageCases();
    registerExamples();
    registerBenchmarks();
    registerTranscripts();
    registerCommandLineCases();
    registerListings();
    registerMarkdownPages();
    if (lists) {
        if (const auto useless = uselessNeed(allTests())) {
            std::cerr << "no test begins with " << *useless << "\n";
            return 2;
        }
        return listForCTest(), 0;
    }
    std::string& filter = testing::GTEST_FLAG(filter);
    filter = withoutWhatCannotRun(filter);
    const int result = RUN_ALL_TESTS();
    // A filter that selects nothing is a mistake, not a success.
    return testing::UnitTest::GetInstance()->test_to_run_count() == 0 ? 1 : result;
}
