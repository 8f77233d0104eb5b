// Bytecode as text, for tests, documents and curious eyes.
#pragma once

#include "compiler/function_proto.h"

#include <string>

namespace pellum {

// The instruction at `offset`, without a newline: offset, name, operand, and what the operand means
// where that helps: a constant's value, a jump's target.
std::string disassembleInstruction(const FunctionProto& proto, std::size_t offset);

// A function's whole code, an instruction a line, each with its source line; then the functions
// inside it in the same way.
std::string disassemble(const FunctionProto& proto);

}  // namespace pellum
