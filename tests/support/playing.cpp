#include "support/playing.h"

#include "support/process.h"

#include "driver/run_main.h"

#include <fstream>
#include <sstream>

namespace pellum::test {

const char* engineName(Engine engine) { return engine == Engine::Tree ? "tree" : "vm"; }

Engine otherEngine(Engine engine) { return engine == Engine::Tree ? Engine::Vm : Engine::Tree; }

std::vector<std::string> onEngine(Engine engine, std::vector<std::string> arguments) {
    if (engine == Engine::Tree) arguments.insert(arguments.begin(), "--tree");
    return arguments;
}

Outcome playInProcess(const std::vector<std::string>& arguments, const std::string& input,
                      OutputTo outputTo) {
    std::istringstream in(input);
    std::ostringstream errors;
    if (outputTo == OutputTo::FullDevice) {
        std::ofstream full("/dev/full");
        const int status = runMain(arguments, in, full, errors);
        return {status, "", errors.str()};
    }
    std::ostringstream out;
    const int status = runMain(arguments, in, out, errors);
    return {status, out.str(), errors.str()};
}

Outcome playOutside(const std::vector<std::string>& arguments, const std::string& input,
                    const std::filesystem::path& folder, Streams streams, OutputTo outputTo) {
    Process process;
    process.executable = PELLUM_EXECUTABLE;
    process.arguments = arguments;
    process.folder = folder;
    process.input = input;
    process.mergesErrors = streams == Streams::Merged;
    if (outputTo == OutputTo::FullDevice) process.outputFile = "/dev/full";
    process.readsOutput = outputTo == OutputTo::Memory;
    return process.run();
}

}  // namespace pellum::test
