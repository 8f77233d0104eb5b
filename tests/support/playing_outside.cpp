#include "support/playing.h"

#include "support/process.h"

#include <cstdlib>

namespace pellum::test {

std::filesystem::path programPath() {
    const char* other = std::getenv("PELLUM_PROGRAM");
    return other ? std::filesystem::absolute(other) : PELLUM_EXECUTABLE;
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
