// How wide pieces are, and where lines can and must end: sums prepared once, so that each question
// of the printer costs the same however far it reaches.
#pragma once

#include "format/structure.h"

#include <vector>

namespace pellum::tools {

class Measures {
public:
    // REQUIRES: the pieces know their places and their blanks, and outlive this.
    Measures(const Pieces& pieces, const Structure& structure);

    // Of the pieces from `first` to `last` on one line, without a blank before them.
    Index width(Index first, Index last) const noexcept {
        return before_[last + 1] - before_[first] - (pieces_.list[first].hasSpace ? 1 : 0);
    }

    // The last piece of the line that `first` stands in, if it ends as soon as it can: at the end
    // of the statement, or where something can be broken.
    Index firstPossibleEnd(Index first) const noexcept { return possibleEnd_[first]; }

    // The same, if it ends only where it must.
    Index firstCertainEnd(Index first) const noexcept { return certainEnd_[first]; }

    // Whether more than one line is certainly needed for these pieces.
    bool mustBreakWithin(Index first, Index last) const noexcept {
        return breaks_[last + 1] != breaks_[first];
    }

private:
    void addUp(const Structure& structure);
    void findEnds(const Structure& structure);

    const Pieces& pieces_;
    std::vector<Index> before_;  // width of all pieces before one, with their blanks
    std::vector<Index> breaks_;  // number of constructs with a break that open before one
    std::vector<Index> possibleEnd_, certainEnd_;
};

}  // namespace pellum::tools
