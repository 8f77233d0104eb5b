// Rewrites programs onto the ground that both engines share, so that any text that parses becomes a
// program about which they must agree. Each difference that docs/engines.md lists has a rewriting
// here that evens it out; a program that cannot be evened out before it runs is cut short where it
// leaves the common ground, on both engines at the same step.
#pragma once

#include "parser/ast.h"

#include <string>
#include <string_view>

namespace pellum::fuzz {

// False for the few programs that this gives up on.
bool moveToCommonGround(Block& program);

// A message in words that both engines share.
std::string evenMessage(std::string_view message);

}  // namespace pellum::fuzz
