#include "common/command_line.h"

#include "driver/process.h"
#include "driver/source.h"

#include <stdexcept>

namespace pellum::tools {

namespace {

int answer(const Tool& tool, const Arguments& arguments, Session& session) {
    const std::string_view first = arguments.empty() ? std::string_view() : arguments.front();
    if (first == "-h" || first == "--help") {
        session.console.write(tool.usage);
        return exitSuccess;
    }
    if (first == "-v" || first == "--version") {
        session.console.write(std::string(tool.name) + " " + std::string(version) + "\n");
        return exitSuccess;
    }
    return tool.run(arguments, session);
}

}  // namespace

int runTool(const Tool& tool, const Arguments& arguments, std::istream& in, std::ostream& out,
            std::ostream& err, Terminal terminal) {
    Session session(in, out, err, terminal, tool.name);
    return session.run([&] { return answer(tool, arguments, session); });
}

int toolMain(const Tool& tool, int argc, char** argv) {
    prepareProcess();
    // Too large for a small stack.
    static StandardStreams streams;
    const Arguments arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
    return runTool(tool, arguments, streams.in, streams.out, streams.err,
                   {nullptr, lookOfStandardError()});
}

ExitStatus complainOfUsage(std::string_view problem, Session& session) {
    session.complain(std::string(problem) + "; try \"" + std::string(session.program) +
                     " --help\"");
    return exitUsage;
}

std::string nameOfSource(const std::string& path) {
    return path == standardInput ? "<stdin>" : path;
}

std::optional<std::string> readInput(const std::string& path, Session& session) {
    if (path != standardInput) return readOrComplain(path, session);
    return acceptOrComplain(readSourceText(session.input), nameOfSource(path), session);
}

bool reportsNoProblem(std::string_view source, const std::string& path, Session& session,
                      const std::function<void()>& work) {
    try {
        work();
        return true;
    } catch (const PellumError& error) {
        session.diagnose(error, source, nameOfSource(path));
    } catch (const std::out_of_range& error) {
        session.complain(nameOfSource(path) + ": " + error.what());
    }
    return false;
}

}  // namespace pellum::tools
