// Turns a source text into tokens. Bytes are never decoded: columns count bytes, and bytes beyond
// ASCII may stand in strings and comments only.
#pragma once

#include "lexer/token.h"

#include <concepts>
#include <string>
#include <string_view>

namespace pellum {

// The tokens of `source`, which they look into, ending with exactly one end of file. A UTF-8 byte
// order mark at the front is skipped, and positions count from behind it. Throws LexError at the
// first problem, and std::out_of_range for a number literal that no double can hold. Takes time
// linear in the text.
std::vector<Token> tokenize(std::string_view source);
template <std::same_as<std::string> Temporary>
std::vector<Token> tokenize(Temporary&& source) = delete;  // would leave nothing to look into

// How operators, punctuation and keywords are written, for good; empty for the other kinds.
std::string_view spellingOf(TokenKind kind) noexcept;

// "number", "string", "interp-string", "name", "end of line", "end of file"; "token" for all
// others.
const char* tokenKindName(TokenKind kind) noexcept;

}  // namespace pellum
