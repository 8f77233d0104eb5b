#include "driver/run_main.h"

#include "driver/bench.h"
#include "driver/pragmas.h"
#include "driver/repl.h"
#include "driver/session.h"
#include "driver/source.h"
#include "lexer/lexer.h"

#include <array>
#include <new>
#include <ostream>

namespace pellum {

namespace {

constexpr std::string_view usage =
    "pellum                    start the REPL (tree-walking interpreter)\n"
    "pellum <file.pellum|.plm> run a file on the bytecode VM (default)\n"
    "pellum --tree <file>      run a file on the tree-walking interpreter\n"
    "pellum -c <code>          run a snippet\n"
    "pellum --bench <file>     time the tree-walker vs the VM\n"
    "pellum --tokens <file>    dump the token stream\n"
    "pellum --version\n";

ExitStatus showUsage(const std::string&, Engine, Session& session) {
    session.console.write(usage);
    return exitSuccess;
}

ExitStatus showVersion(const std::string&, Engine, Session& session) {
    session.console.write("Pellum " + std::string(version) + "\n");
    return exitSuccess;
}

ExitStatus runSnippet(const std::string& code, Engine engine, Session& session) {
    return runSource(code, "<-c>", engine, session);
}

ExitStatus runFile(const std::string& path, Engine engine, Session& session) {
    const auto source = readOrComplain(path, session);
    if (!source || !checkPragmas(scanPragmas(*source), path, session)) return exitFailure;
    return runSource(*source, path, engine, session);
}

ExitStatus dumpTokens(const std::string& path, Engine, Session& session) {
    const auto source = readOrComplain(path, session);
    if (!source) return exitFailure;
    try {
        for (const Token& token : tokenize(*source)) {
            session.console.write(std::string(tokenKindName(token.kind)) + " '" +
                                  std::string(token.text) + "' @" + std::to_string(token.line) +
                                  ":" + std::to_string(token.column) + "\n");
        }
        return exitSuccess;
    } catch (const PellumError& error) {
        session.diagnose(error, *source, path);
        return exitFailure;
    }
}

ExitStatus benchmark(const std::string& path, Engine, Session& session) {
    return runBench(path, session);
}

// An option that stands for a mode. What is none of these is the path of a file to run.
struct Mode {
    std::string_view option;
    const char* argument;  // what it requires, or null
    ExitStatus (*run)(const std::string& argument, Engine engine, Session& session);
};

constexpr std::array modes = {
    Mode{"-h", nullptr, showUsage},        Mode{"--help", nullptr, showUsage},
    Mode{"-v", nullptr, showVersion},      Mode{"--version", nullptr, showVersion},
    Mode{"-c", "an argument", runSnippet}, Mode{"--tokens", "a file", dumpTokens},
    Mode{"--bench", "a file", benchmark},
};

// Takes the engine switch off the front of the arguments.
Engine takeEngine(std::vector<std::string>& args) {
    if (args.empty()) return Engine::VirtualMachine;
    const bool isTree = args[0] == "--tree" || args[0] == "--interp";
    if (isTree || args[0] == "--vm") args.erase(args.begin());
    return isTree ? Engine::TreeWalker : Engine::VirtualMachine;
}

ExitStatus runMode(std::vector<std::string> args, Session& session) {
    const Engine engine = takeEngine(args);
    if (args.empty()) return runRepl(session);
    for (const Mode& mode : modes) {
        if (args[0] != mode.option) continue;
        if (!mode.argument) return mode.run({}, engine, session);
        if (args.size() > 1) return mode.run(args[1], engine, session);
        session.complain(args[0] + " requires " + mode.argument);
        return exitUsage;
    }
    return runFile(args[0], engine, session);
}

}  // namespace

int runMain(std::vector<std::string> args, std::istream& in, std::ostream& out, std::ostream& err,
            Terminal terminal) {
    Session session(in, out, err, terminal);
    return session.run([&] { return runMode(std::move(args), session); });
}

}  // namespace pellum
