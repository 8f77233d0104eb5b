// From stack code to register code: one scan that finds the depth of the stack at each instruction,
// then one pass with an abstract stack, whose entries say where a value is: in its slot, or still
// where it came from (another local, a constant, a global). Values stay pending until somebody
// consumes them; before jumps, labels, stores and calls that could tell the difference they are put
// into their slots. So everything observable happens in the order of the stack code.
#pragma once

#include "vm/globals.h"
#include "vm/register_code.h"

#include <memory>

namespace pellum {

// Whether an instruction that points here means nil, true or false.
bool isLiteral(const Value* pointer) noexcept;

// Whether the code says when it begins a function or another round of a loop.
enum class Steps { Free, Counted };

// Fills in the code of `code.proto`. `arms` are the addresses of the engine's arms by op, or null
// where it has none.
void translate(RegisterCode& code, Globals& globals, const void* const* arms,
               Steps steps = Steps::Free);

}  // namespace pellum
