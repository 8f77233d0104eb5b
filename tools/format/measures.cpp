#include "format/measures.h"

namespace pellum::tools {

Measures::Measures(const Pieces& pieces, const Structure& structure) : pieces_(pieces) {
    addUp(structure);
    findEnds(structure);
}

void Measures::addUp(const Structure& structure) {
    const std::size_t count = pieces_.list.size();
    before_.reserve(count + 1);
    breaks_.reserve(count + 1);
    Index width = 0, breaks = 0;
    for (const Piece& piece : pieces_.list) {
        before_.push_back(width);
        breaks_.push_back(breaks);
        width += widthOf(piece.text) + (piece.hasSpace ? 1 : 0);
        if (piece.opens != noIndex && structure.constructs[piece.opens].hasBreak) ++breaks;
    }
    before_.push_back(width);
    breaks_.push_back(breaks);
}

void Measures::findEnds(const Structure& structure) {
    const std::size_t count = pieces_.list.size();
    possibleEnd_.resize(count);
    certainEnd_.resize(count);
    Index possible = static_cast<Index>(count) - 1, certain = possible;
    for (std::size_t next = count; next-- > 0;) {
        possibleEnd_[next] = possible;
        certainEnd_[next] = certain;
        if (next == 0) break;
        // What if the line ends before `next`?
        const Piece& piece = pieces_.list[next];
        const auto before = static_cast<Index>(next) - 1;
        const bool mustBreak =
            piece.holder != noIndex && structure.constructs[piece.holder].mustBreak;
        switch (piece.place) {
            case Place::Statement: possible = certain = before; break;
            case Place::FirstItem:
            case Place::BlockStart:
                possible = before;
                if (mustBreak) certain = before;
                break;
            case Place::BlockEnd:
                // Behind a head without a block, or at the end of one.
                if (mustBreak) possible = certain = before;
                break;
            default: break;
        }
    }
}

}  // namespace pellum::tools
