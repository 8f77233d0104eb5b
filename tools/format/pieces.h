// A source as the formatter sees it: its tokens without the line ends, which are what a formatter
// decides about, each with what stood between it and the token before.
#pragma once

#include "common/comments.h"

#include <cstdint>
#include <limits>
#include <string_view>
#include <vector>

namespace pellum::tools {

using Index = std::uint32_t;
inline constexpr Index noIndex = std::numeric_limits<Index>::max();

// Where a token stands in what holds it: this is all that decides whether its line may end before
// it. The grammar lets lines end between statements, at both ends of a block, and in lists and maps
// around the items, nowhere else.
enum class Place : std::uint8_t {
    Inside,      // of an expression or a header
    Statement,   // begins a statement that is not the first of its block
    BlockStart,  // begins the first statement of a block
    BlockEnd,    // ends a block: elif, else, catch, end
    FirstItem,   // begins the first item of a list or a map
    Item,        // begins another item
    ListEnd,     // closes a list or a map
};

struct Piece {
    std::string_view text;  // as written; empty for the end of the file
    TokenKind kind;
    Place place = Place::Inside;
    bool hasSpace = true;       // a blank stands before it where it does not begin a line
    bool beganLine = false;     // a line ended before it in the source
    bool hadBlankLine = false;  // and an empty line stood directly before it
    std::uint32_t column = 0;   // where it stood in its line, from 1
    Index firstComment = 0;     // of those before it
    Index commentCount = 0;
    Index holder = noIndex;  // the construct that its place is in, if any
    Index opens = noIndex;   // the construct that begins with it, if any
    // The last piece of the statement, or of the item and its comma, that it begins; for a word
    // that ends a block, the next such word of its construct.
    Index end = noIndex;
};

struct PlacedComment {
    Comment comment;
    std::string_view text;  // what is to be written
    bool isWholeLine;       // and that with whatever stood before it: a pragma
    bool hadBlankLine;      // an empty line stood before it
};

struct Pieces {
    std::vector<Piece> list;  // ends with the end of the file
    std::vector<PlacedComment> comments;
};

// Places and constructs are left to structure.h. `text` is what `source` was made of.
Pieces piecesOf(const LexedSource& source, std::string_view text);

// What stood before the comment in its line.
std::string_view lineBefore(const Comment& comment) noexcept;

// The columns that a text takes: a character of UTF-8 counts as one, and so does everything else.
Index widthOf(std::string_view text) noexcept;

}  // namespace pellum::tools
