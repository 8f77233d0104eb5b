#include "support/playing.h"

#include "support/process.h"

#include "driver/run_main.h"

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace pellum::test {

const char* engineName(Engine engine) { return engine == Engine::Tree ? "tree" : "vm"; }

Engine otherEngine(Engine engine) { return engine == Engine::Tree ? Engine::Vm : Engine::Tree; }

std::vector<std::string> onEngine(Engine engine, std::vector<std::string> arguments) {
    if (engine == Engine::Tree) arguments.insert(arguments.begin(), "--tree");
    return arguments;
}

std::filesystem::path programPath() {
    const char* other = std::getenv("PELLUM_PROGRAM");
    return other ? std::filesystem::absolute(other) : PELLUM_EXECUTABLE;
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
    process.executable = programPath();
    process.arguments = arguments;
    process.folder = folder;
    process.input = input;
    process.mergesErrors = streams == Streams::Merged;
    if (outputTo == OutputTo::FullDevice) process.outputFile = "/dev/full";
    process.readsOutput = outputTo == OutputTo::Memory;
    return process.run();
}

Outcome playCase(const std::vector<std::string>& arguments, const std::string& input) {
    return std::getenv("PELLUM_PROGRAM") ? playOutside(arguments, input)
                                         : playInProcess(arguments, input);
}

}  // namespace pellum::test
