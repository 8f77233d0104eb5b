// What a scan of stack code finds out before it is translated.
#pragma once

#include "compiler/function_proto.h"

#include <vector>

namespace pellum {

struct DepthAnalysis {
    // False for code that only the stack machine runs: some instruction is reached inside different
    // `try`s (a handler has outlived its own), or the code is not what the compiler makes.
    bool isRegular = false;
    std::vector<std::int32_t>
        depths;                     // of the frame's stack before each instruction; -1: not reached
    std::vector<bool> isLoopStart;  // by code offset
    std::vector<bool> isCaptured;   // by slot: some closure made here captures it
    std::uint32_t maxDepth = 0;
    bool capturesLocals = false;
    bool hasHandlers = false;
};

DepthAnalysis analyzeDepths(const FunctionProto& proto);

}  // namespace pellum
