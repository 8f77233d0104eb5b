// Tests that are found when the test program starts, rather than compiled in: each file, or each
// piece of a page, becomes a test under a name of its own.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

namespace pellum::test {

// Registers a test under the name `suite`.`name` that runs `body`. `file` is where the test stands.
void addTest(const std::string& suite, const std::string& name, const std::filesystem::path& file,
             std::function<void()> body);

// False where the command line selects tests whose names all begin differently. Lets a runner spare
// itself the search for tests that will not run.
bool mayRun(std::string_view beginning);

// `path` without its extension and without a leading "tests/", as the name of a suite.
std::string suiteName(const std::filesystem::path& path);

// The test program itself, as an absolute path.
std::string executablePath();

// The command that runs the current test again.
std::string rerunCommand();

// `name` as a pattern of the command line that selects this test alone.
std::string filterFor(std::string_view name);

// Whether expectations are to be rewritten from what the programs print ("--update").
bool updatesExpectations();
void setUpdatesExpectations(bool updates);

}  // namespace pellum::test
