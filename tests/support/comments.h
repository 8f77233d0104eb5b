// The comments of a Pellum source, found without the lexer under test: a `#` inside a string
// literal begins none. Works on sources that do not lex, too, since those are tested as well.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace pellum::test {

struct Comment {
    std::string_view text;   // from behind the `#` to the end of the line
    std::size_t byteOffset;  // of `text` in the source
    std::size_t line;        // from 1
};

// The views point into `source`.
std::vector<Comment> commentsOf(std::string_view source);

}  // namespace pellum::test
