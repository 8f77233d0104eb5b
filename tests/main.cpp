// The test program: the compiled tests, and those that the runners find. Takes GoogleTest's options
// and two of its own:
//   --update         rewrite expectations from what the programs print
//   --list-for-ctest print all tests as commands for CTest, instead of running them
//   --list-folders-for-ctest
//                    likewise, but what stands in one folder of files as one command
#include "runners/runners.h"
#include "support/needed_limits.h"
#include "support/registration.h"
#include "support/sanitizers.h"

#include "value/host_stack.h"

#include <gtest/gtest.h>

#include <cctype>
#include <filesystem>
#include <iostream>
#include <optional>
#include <set>
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

void addForCTest(const std::string& name, const std::string& filter) {
    std::cout << "add_test([==[" << name << "]==] [==[" << pellum::test::executablePath()
              << "]==] --gtest_brief=1 [==[--gtest_filter=" << filter << "]==])\n";
}

// Each test becomes a process of its own, so that a crash costs one test and all run in parallel.
void listForCTest() {
    for (const std::string& name : allTests()) {
        if (pellum::test::canRun(name)) addForCTest(name, pellum::test::filterFor(name));
    }
}

// The folder of the file that the test was found in. None for tests that are compiled in, and for
// those that use up so much that they had better be alone.
std::optional<std::string> folderOf(const std::string& name) {
    const std::string suite = name.substr(0, name.find('.'));
    const std::size_t end = suite.rfind('/');
    if (end == suite.npos || std::isupper(static_cast<unsigned char>(name[0]))) return std::nullopt;
    std::string folder = suite.substr(0, end);
    if (folder.find("limits") != folder.npos) return std::nullopt;
    return folder;
}

// Where it is the start of a process that takes the time.
void listFoldersForCTest() {
    std::set<std::string> folders;
    for (const std::string& name : allTests()) {
        if (!pellum::test::canRun(name)) continue;
        const auto folder = folderOf(name);
        if (!folder) {
            addForCTest(name, pellum::test::filterFor(name));
        } else if (folders.insert(*folder).second) {
            const std::string inside = pellum::test::filterFor(*folder) + "/*";
            addForCTest(*folder, inside + "-" + inside + "/*");
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    using namespace pellum::test;
    allowCycles();
    // As the program does, so that recursion is as deep here as there.
    pellum::raiseHostStackLimit();
    testing::InitGoogleTest(&argc, argv);
    void (*list)() = nullptr;
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (argument == "--update") {
            setUpdatesExpectations(true);
        } else if (argument == "--list-for-ctest") {
            list = listForCTest;
        } else if (argument == "--list-folders-for-ctest") {
            list = listFoldersForCTest;
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
    registerTerminalSessions();
    registerFormatCases();
    registerLintCases();
    registerMarkdownPages();
    if (list) {
        if (const auto useless = uselessNeed(allTests())) {
            std::cerr << "no test begins with " << *useless << "\n";
            return 2;
        }
        return list(), 0;
    }
    std::string& filter = testing::GTEST_FLAG(filter);
    filter = withoutWhatCannotRun(filter);
    const int result = RUN_ALL_TESTS();
    // A filter that selects nothing is a mistake, not a success.
    return testing::UnitTest::GetInstance()->test_to_run_count() == 0 ? 1 : result;
}
