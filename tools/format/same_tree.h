// Comparing syntax trees.
#pragma once

#include "parser/ast.h"

namespace pellum::tools {

// Whether two programs have the same statements and expressions, wherever these stand. Does not
// recurse on the host's stack, however deep the trees are.
bool isSameTree(const Block& first, const Block& second);

}  // namespace pellum::tools
