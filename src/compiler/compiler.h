// Turns a syntax tree into bytecode in a single pass without optimisation: each node emits its code
// straight into the function being built.
#pragma once

#include "compiler/function_proto.h"
#include "parser/ast.h"

namespace pellum {

// The prototype of a whole program, without parameters and name. Throws CompileError when the
// program exceeds a limit of the bytecode or has a `break` or `continue` outside a loop. The
// prototype does not refer to the tree.
Ref<FunctionProto> compile(const Block& program);

}  // namespace pellum
