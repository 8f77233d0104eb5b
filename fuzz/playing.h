// Runs a program of a fuzzer's on one of the engines, within bounds of steps, memory and output.
#pragma once

#include "parser/ast.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace pellum::fuzz {

enum class Engine { Tree, Register, Stack };

struct Played {
    std::string output;
    // How it ended: nothing, the error, or why it was cut short. Engines that agree are cut short
    // at the same step.
    std::string ending;
    std::uint32_t line = 0;  // of the error
    // Memory was refused. When that happens depends on how an engine does its work, so what
    // happened afterwards says nothing.
    bool ranOutOfMemory = false;
};

// Thrown by what editors of trees put into them, where a run must end before its time: as running
// out of fuel, no program and no engine stops it.
struct CutShort {
    const char* reason;
};

// `source` is what diagnostics show; the program may have been edited since. A program that does
// not compile ends with that error on the machine. REQUIRES: boundSteps has seen the program.
Played play(Engine engine, const Block& program, std::string_view source);

}  // namespace pellum::fuzz
