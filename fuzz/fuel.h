// What keeps an endless program from hanging a fuzzer, without a change to the engines: the tree is
// edited so that each iteration and each call burns fuel, and the engines run the edited tree.
#pragma once

#include "parser/ast.h"

namespace pellum::fuzz {

// Lets every loop body and every function begin with burning fuel, which throws CutShort when there
// is none left, and gives `clock`, `random` and `randint` results that do not change from run to
// run.
void boundSteps(Block& program);

// Fills the tank for one run: so many iterations and calls.
void refuel(int steps) noexcept;

}  // namespace pellum::fuzz
