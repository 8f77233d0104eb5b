// What the tools have in common on the command line: how they start, read a source and complain. A
// tool is a function over its arguments and a session, so that it can be tested in process, and
// answers with a status of `ExitStatus`.
#pragma once

#include "driver/run_main.h"
#include "driver/session.h"

#include <functional>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pellum::tools {

using Arguments = std::vector<std::string>;

struct Tool {
    std::string_view name;   // of the executable
    std::string_view usage;  // what --help prints
    int (*run)(const Arguments& arguments, Session& session);
};

// Runs a tool; answers the two questions that all of them are asked, for help and for the version,
// where one of them is the first argument. Throws nothing.
int runTool(const Tool& tool, const Arguments& arguments, std::istream& in, std::ostream& out,
            std::ostream& err, Terminal terminal = {});

// The whole `main` of a tool.
int toolMain(const Tool& tool, int argc, char** argv);

// Says what is wrong with the arguments, and where help is. The status for it.
ExitStatus complainOfUsage(std::string_view problem, Session& session);

// What stands for the standard input where a file is expected.
inline constexpr std::string_view standardInput = "-";

// What messages call the source at `path`.
std::string nameOfSource(const std::string& path);

// The source at `path`, which may be the standard input; when it cannot be read, or is too long,
// says so and yields none.
std::optional<std::string> readInput(const std::string& path, Session& session);

// Does some work on the source at `path`, and reports as `pellum` does what the lexer or the
// parser throws meanwhile. False when it had to.
bool reportsNoProblem(std::string_view source, const std::string& path, Session& session,
                      const std::function<void()>& work);

}  // namespace pellum::tools
