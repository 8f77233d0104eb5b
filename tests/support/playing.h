// Playing a program: in this process, through the same entry that `main` uses, or from outside, as
// a process of its own. What comes back is all that a caller of the program can see.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace pellum::test {

enum class Engine { Tree, Vm };

inline constexpr Engine bothEngines[] = {Engine::Tree, Engine::Vm};

// "tree" or "vm".
const char* engineName(Engine engine);
Engine otherEngine(Engine engine);

struct Outcome {
    int status = 0;  // of a process that a signal ended: minus the signal's number
    std::string output;
    std::string errors;

    bool operator==(const Outcome&) const = default;
};

// Where the standard output of a played program goes.
enum class OutputTo {
    Memory,
    FullDevice,  // a device on which every write fails; nothing is captured
    ClosedPipe,  // a pipe that nobody reads any more; from outside only
};

Outcome playInProcess(const std::vector<std::string>& arguments, const std::string& input,
                      OutputTo outputTo = OutputTo::Memory);

// The same for a program by its name, which may be that of a tool. Throws std::runtime_error for
// one that there is not.
Outcome playInProcess(const std::string& program, const std::vector<std::string>& arguments,
                      const std::string& input, OutputTo outputTo = OutputTo::Memory);

// The arguments that run a program on `engine`.
std::vector<std::string> onEngine(Engine engine, std::vector<std::string> arguments);

enum class Streams {
    Apart,
    Merged,  // standard error goes where standard output goes, in the order of writing
};

// The program that is played from outside: the one that was built, or that which the environment
// names as PELLUM_PROGRAM, by a path from the root of the repository. Absolute.
std::filesystem::path programPath();

// Runs the program with `folder` as its current folder.
Outcome playOutside(const std::vector<std::string>& arguments, const std::string& input,
                    const std::filesystem::path& folder = ".", Streams streams = Streams::Apart,
                    OutputTo outputTo = OutputTo::Memory);

// In process, unless the environment names a program: then that one is played.
Outcome playCase(const std::vector<std::string>& arguments, const std::string& input);

}  // namespace pellum::test
