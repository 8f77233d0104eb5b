// Syntax trees as text, so that a test can show a whole tree in one row: "2 ^ 3 ^ 2" gives
// "(^ 2 (^ 3 2))".
#pragma once

#include "parser/ast.h"

#include <string>

namespace pellum::test {

enum class Positions { Hidden, Shown };

// The statements of `program`, separated by blanks. An expression statement shows as its
// expression, a block in braces, a construct in parentheses after its word or operator. Where
// positions are shown, "@line:column" follows the first word of each node. Recursive: for small
// trees only.
std::string treeText(const Block& program, Positions positions = Positions::Hidden);

}  // namespace pellum::test
