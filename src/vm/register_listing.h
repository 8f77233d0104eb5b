// Register code as text, for tests, documents and curious eyes.
#pragma once

#include "vm/register_code.h"

#include <string>

namespace pellum {

// An instruction a line: its number, its name, and what it works on. Slots are "s0", "s1" and so
// on; constants stand as they are, globals by their names, jumps as "-> " and the number of an
// instruction. REQUIRES: the code has been translated without addresses of arms.
std::string listRegisterCode(const RegisterCode& code);

}  // namespace pellum
