// The comments of a source, which its tokens know nothing about: a table beside the tokens, for the
// tools that have to keep them or to look into them. Together the two account for every byte of
// the source that is not blank.
#pragma once

#include "lexer/token.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace pellum::tools {

struct Comment {
    std::string_view text;  // from its "#" to the end of its line, exclusive
    std::uint32_t line;     // both counted as those of tokens are
    std::uint32_t column;
    bool isAlone;           // nothing but blanks stands before it in its line
    std::size_t nextToken;  // index of the end of its line, or of the end of the file
};

// All views look into the source.
struct LexedSource {
    std::vector<Token> tokens;              // as `tokenize` gives them
    std::vector<std::string_view> written;  // each token in the source; none for the end of file
    std::vector<Comment> comments;          // in order
};

// What `tokenize` makes of `source`, and what it passes over. Throws what that throws. Comments
// inside of "${...}" are not among them: they belong to their string.
LexedSource lexSource(std::string_view source);

}  // namespace pellum::tools
