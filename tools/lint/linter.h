// The linter without its command line: a source goes in, what the rules say about it comes out.
#pragma once

#include "lint/finding.h"

#include <string_view>

namespace pellum::lint {

// What there is to say about a program, from its beginning to its end, without what its comments
// allow. Throws what `tokenize` and `parse` throw. Takes time linear in the text, apart from code
// in strings in code in strings, which takes as long as it takes to parse.
Findings lint(std::string_view source);

}  // namespace pellum::lint
