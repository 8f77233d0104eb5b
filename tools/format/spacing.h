// Where blanks stand within a line.
#pragma once

#include "format/pieces.h"

namespace pellum::tools {

// Whether a value may end with such a token, so that a bracket behind it is a call or an index and
// a "-" takes something away.
bool endsOperand(TokenKind kind) noexcept;

// Says of each piece whether a blank belongs before it. REQUIRES: the pieces know their places.
void setSpaces(Pieces& pieces) noexcept;

}  // namespace pellum::tools
