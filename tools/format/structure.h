// What holds what in a source: where statements, blocks and items begin and end, and what has to be
// laid out over several lines whatever its width.
#pragma once

#include "format/pieces.h"

namespace pellum::tools {

// What can be laid out on one line or on several.
struct Construct {
    enum class Kind : std::uint8_t { List, Map, Blocks };

    Kind kind;
    Index open;            // its first piece
    Index close = 0;       // its last piece
    Index firstJoint = 0;  // of blocks: the first word that ends one
    bool isEmpty = true;   // nothing stands in it, so it has no reason to be broken
    // Holds no other construct that is not empty.
    bool isPlain = true;
    // Something stands in it that only several lines can hold, or the author had its contents on
    // lines of their own.
    bool mustBreak = false;
    // Blocks that the author had one to a line, each behind its head: "if a then b", then
    // "else c end".
    bool isLadder = false;
    // It, or something in it, certainly takes more than one line.
    bool hasBreak = false;
};

struct Structure {
    std::vector<Construct> constructs;
};

// Finds the constructs and gives each piece its place. REQUIRES: the pieces are those of a source
// that parses. Does not recurse, and takes time linear in their number.
Structure structureOf(Pieces& pieces);

}  // namespace pellum::tools
