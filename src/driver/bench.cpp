#include "driver/bench.h"

#include "compiler/compiler.h"
#include "driver/source.h"
#include "interp/interpreter.h"
#include "lexer/lexer.h"
#include "parser/parser.h"
#include "vm/vm.h"

#include <chrono>
#include <sstream>

namespace pellum {

namespace {

constexpr int timedRuns = 5;

// The mean time of a run in milliseconds, after one run that is not timed. Each run gets a console
// of its own, so what the program prints is neither shown nor timed against a terminal.
template <typename Run>
double meanMilliseconds(std::istream& in, Run run) {
    const auto runOnce = [&] {
        std::ostringstream captured;
        Console console(in, captured);
        run(console);
    };
    runOnce();
    const auto start = std::chrono::steady_clock::now();
    for (int count = 0; count < timedRuns; ++count) runOnce();
    const std::chrono::nanoseconds elapsed = std::chrono::steady_clock::now() - start;
    return static_cast<double>(elapsed.count()) / 1e6 / timedRuns;
}

std::string report(double treeMs, double vmMs) {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text << "tree-walker: " << treeMs << " ms/run\n"
         << "bytecode VM: " << vmMs << " ms/run\n"
         << "speedup:     " << (vmMs > 0 ? treeMs / vmMs : 0) << "x\n";
    return text.str();
}

}  // namespace

ExitStatus runBench(const std::string& path, Session& session) {
    const auto source = readOrComplain(path, session);
    if (!source) return exitFailure;

    Block program;
    Ref<FunctionProto> script;
    try {
        program = parse(tokenize(*source));
        script = compile(program);
    } catch (const PellumError& error) {
        session.diagnose(error, *source, path);
        return exitFailure;
    }

    try {
        const double treeMs = meanMilliseconds(
            session.input, [&](Console& console) { Interpreter(console).run(program); });
        const double vmMs =
            meanMilliseconds(session.input, [&](Console& console) { VM(console).run(script); });
        session.console.write(report(treeMs, vmMs));
        return exitSuccess;
    } catch (const OutputError&) {
        throw;
    } catch (...) {
        session.diagnose("bench: program raised an error");
        return exitFailure;
    }
}

}  // namespace pellum
