#include "support/playing.h"

#include "driver/run_main.h"
#include "format/pellum_fmt.h"

#include <fstream>
#include <functional>
#include <sstream>
#include <stdexcept>

namespace pellum::test {

namespace {

using Main = std::function<int(const std::vector<std::string>& arguments, std::istream& in,
                               std::ostream& out, std::ostream& err)>;

Main mainOf(const std::string& program) {
    if (program == "pellum") {
        return [](const auto& arguments, auto& in, auto& out, auto& err) {
            return runMain(arguments, in, out, err);
        };
    }
    for (const tools::Tool* tool : {&tools::pellumFmt}) {
        if (tool->name != program) continue;
        return [tool](const auto& arguments, auto& in, auto& out, auto& err) {
            return tools::runTool(*tool, arguments, in, out, err);
        };
    }
    throw std::runtime_error("there is no program " + program);
}

}  // namespace

const char* engineName(Engine engine) { return engine == Engine::Tree ? "tree" : "vm"; }

Engine otherEngine(Engine engine) { return engine == Engine::Tree ? Engine::Vm : Engine::Tree; }

std::vector<std::string> onEngine(Engine engine, std::vector<std::string> arguments) {
    if (engine == Engine::Tree) arguments.insert(arguments.begin(), "--tree");
    return arguments;
}

Outcome playInProcess(const std::vector<std::string>& arguments, const std::string& input,
                      OutputTo outputTo) {
    return playInProcess("pellum", arguments, input, outputTo);
}

Outcome playInProcess(const std::string& program, const std::vector<std::string>& arguments,
                      const std::string& input, OutputTo outputTo) {
    const Main run = mainOf(program);
    std::istringstream in(input);
    std::ostringstream errors;
    if (outputTo == OutputTo::FullDevice) {
        std::ofstream full("/dev/full");
        const int status = run(arguments, in, full, errors);
        return {status, "", errors.str()};
    }
    std::ostringstream out;
    const int status = run(arguments, in, out, errors);
    return {status, out.str(), errors.str()};
}

}  // namespace pellum::test
