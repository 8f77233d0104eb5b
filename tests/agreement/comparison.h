// Runs a program on the tree-walker, on the virtual machine, and on the virtual machine's plain
// stack code, and tells whether all agree, once the differences that are meant have been evened
// out. A program on which they do not agree can be shrunk, and becomes a case of its own.
#pragma once

#include "agreement/generator.h"
#include "agreement/program.h"
#include "support/playing.h"

#include <string>

namespace pellum::test {

struct Comparison {
    Outcome tree, vm, stackCode;  // evened out; that of the tree-walker where it matters

    bool agrees() const { return tree == vm && stackCode == vm; }
    // The first line in which they part.
    std::string difference() const;
};

Comparison compareEngines(const std::string& source, Ground ground);

// The program with as many statements left out as can be while the engines still disagree.
// REQUIRES: they disagree about `program`.
Block shrink(Block program, Ground ground);

// The text of a case for tests/regression: the program, and as its expectations what the yardstick
// does, which is the tree-walker, or stack code where only the machine matters.
std::string regressionCase(const std::string& source, Ground ground);

}  // namespace pellum::test
