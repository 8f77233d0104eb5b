// A recursive-descent parser with precedence climbing; it stops at the first error.
#pragma once

#include "lexer/token.h"
#include "parser/ast.h"
#include "value/limits.h"

namespace pellum {

// Every "${...}" is lexed once for each string around it, so their nesting is bounded for the sake
// of time, long before it could fill the host's stack.
inline constexpr int maxInterpolationDepth = limit(1'000, 6);

// The program that `tokens` spell. REQUIRES: the last token, and no other, is the end of file.
// Throws ParseError, also for nesting that the host's stack cannot hold, and what `tokenize` throws
// for the code inside interpolated strings.
Block parse(std::vector<Token> tokens);

}  // namespace pellum
