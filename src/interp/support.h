// The one door by which the tree-walker's own errors leave, so that each carries its position.
#pragma once

#include "driver/errors/errors.h"
#include "parser/ast.h"
#include "value/host_stack.h"

namespace pellum {

inline Position positionOf(const Node& node) noexcept { return {node.line, node.column}; }

[[noreturn]] void fail(Position at, std::string message);
[[noreturn]] inline void fail(const Node& node, std::string message) {
    fail(positionOf(node), std::move(message));
}

// Recursion on the host's stack must end in an error of the program, never in a crash. The error is
// built elsewhere, to keep the frames of those who recurse small.
[[noreturn]] void failCallStackOverflow(Position at);
inline void checkHostStack(Position at) {
    if (hostStackIsLow()) failCallStackOverflow(at);
}

}  // namespace pellum
