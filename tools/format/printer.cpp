#include "format/printer.h"

#include "format/measures.h"
#include "format/page.h"

#include <algorithm>

namespace pellum::tools {

namespace {

// A construct that stands further in than this is not broken only because it is too wide: there is
// too little room left for it to be of use.
constexpr Index mostUsefulIndentation = 60;

// One pass over the pieces. What opens a construct decides how that is laid out; what comes later
// follows. Outer constructs are broken before what is in them, and of two beside each other the one
// that does not fit. What the author has broken stays so; that makes a second run find nothing.
class Printer {
public:
    Printer(const Pieces& pieces, const Structure& structure, std::size_t mostBytes)
        : pieces_(pieces),
          structure_(structure),
          measures_(pieces, structure),
          layouts_(structure.constructs.size()),
          mostBytes_(mostBytes) {
        frames_.push_back({});
    }

    std::string run() {
        for (at_ = 0; at_ < pieces_.list.size(); ++at_) {
            printPiece();
            if (page_.size() > mostBytes_) break;
        }
        std::string text = page_.finish();
        if (text.size() > mostBytes_) {
            throw TextTooLong("formatted it is longer than " + std::to_string(mostBytes_) +
                              " bytes");
        }
        return text;
    }

private:
    // OnOneLine: all of it. Hugging: a list without lines of its own around what is broken in it.
    // Ladder: a line for each block.
    enum class Form : std::uint8_t { OnOneLine, Hugging, Ladder, Broken };

    struct Layout {
        Form form = Form::OnOneLine;
        Index indentation = 0;  // of the line that it begins on
    };

    // How the items of a list share lines where the source had them on one.
    enum class Row : std::uint8_t { OneLine, OneEach, Filled };

    // A broken construct, or the whole program.
    struct Frame {
        Index lastPiece = 0;      // of the statement or the item that is being printed
        bool hasContent = false;  // something stands above in this block or list
        Row row = Row::OneLine;
    };

    const Piece& piece() const { return pieces_.list[at_]; }
    const Construct& construct(Index index) const { return structure_.constructs[index]; }
    Frame& frame() { return frames_.back(); }
    const Frame& frame() const { return frames_.back(); }
    Index at() const { return static_cast<Index>(at_); }

    void printPiece() {
        const Piece& current = piece();
        if (beginsLine()) {
            beginLine();
        } else if (current.hasSpace) {
            page_.write(" ");
        }
        if (current.opens != noIndex) open(current.opens);
        if (!isNeedlessComma()) page_.write(current.text);
        if (current.holder != noIndex && construct(current.holder).close == at_ && isBroken()) {
            frames_.pop_back();
        }
    }

    // Whether the construct that the current piece's place is in is broken; the program is.
    bool isBroken() const {
        return piece().holder == noIndex || layouts_[piece().holder].form == Form::Broken;
    }

    bool beginsLine() {
        switch (piece().place) {
            case Place::Inside: return false;
            case Place::BlockEnd:
                return isBroken() || (layouts_[piece().holder].form == Form::Ladder &&
                                      piece().kind != TokenKind::End);
            case Place::Item: return isBroken() && itemBeginsLine();
            default: return isBroken();
        }
    }

    bool itemBeginsLine() {
        if (piece().beganLine) return true;
        switch (frame().row) {
            case Row::OneLine: return false;
            case Row::OneEach: return true;
            case Row::Filled: break;
        }
        const Index last = std::min(piece().end, measures_.firstCertainEnd(at()));
        return page_.column() + 1 + measures_.width(at(), last) > lineWidth;
    }

    // A comma behind the last item that stands right before the bracket.
    bool isNeedlessComma() const {
        if (piece().kind != TokenKind::Comma) return false;
        const Piece& next = pieces_.list[at_ + 1];
        return next.place == Place::ListEnd && layouts_[next.holder].form != Form::Broken;
    }

    void beginLine() {
        const Piece& current = piece();
        const bool isEnd = current.place == Place::BlockEnd || current.place == Place::ListEnd;
        const Index outer = current.holder == noIndex ? 0 : layouts_[current.holder].indentation;
        const Index inner = current.holder == noIndex ? 0 : outer + indentStep;
        writeComments(inner, outer);
        if (current.kind == TokenKind::EndOfFile) return;
        if (isEnd) {
            page_.beginLine(outer);
            // What follows belongs to the line of the head, until a block begins again.
            if (isBroken()) frame() = {frames_[frames_.size() - 2].lastPiece};
            return;
        }
        if (current.hadBlankLine && frame().hasContent) page_.addBlankLine();
        page_.beginLine(inner);
        const bool beginsRow = current.place == Place::FirstItem ||
                               (current.place == Place::Item && current.beganLine);
        if (beginsRow) frame().row = rowFrom(inner);
        frame().lastPiece = current.end;
        frame().hasContent = true;
    }

    // The comments before the current piece. Before a word that begins another block they may
    // belong to either: where they stood says to which.
    void writeComments(Index inner, Index outer) {
        const Piece& current = piece();
        const bool endsBlock = current.place == Place::BlockEnd;
        for (Index i = 0; i < current.commentCount; ++i) {
            const PlacedComment& placed = pieces_.comments[current.firstComment + i];
            if (!placed.comment.isAlone) {
                page_.addTrailingComment(placed.text, widthOf(lineBefore(placed.comment)));
                continue;
            }
            if (placed.hadBlankLine && frame().hasContent) page_.addBlankLine();
            const bool isOfNext = endsBlock && current.kind != TokenKind::End &&
                                  frame().hasContent && placed.comment.column <= current.column;
            page_.beginLine(placed.isWholeLine ? 0 : isOfNext ? outer : inner);
            page_.write(placed.text);
            frame().hasContent = true;
        }
    }

    // How to lay out what stood on one line in the source, from the current piece on.
    Row rowFrom(Index indentation) const {
        Index last = piece().end;
        for (;;) {
            const Piece& next = pieces_.list[last + 1];
            if (next.place != Place::Item || next.beganLine) break;
            last = next.end;
        }
        const Construct& list = construct(piece().holder);
        const bool mustBreak = measures_.mustBreakWithin(at(), last);
        if (!mustBreak && indentation + measures_.width(at(), last) <= lineWidth) {
            return Row::OneLine;
        }
        if (list.kind == Construct::Kind::Map) return Row::OneEach;
        return mustBreak || list.isPlain ? Row::Filled : Row::OneEach;
    }

    void open(Index index) {
        Layout& layout = layouts_[index];
        layout.indentation = page_.indentation();
        layout.form = formOf(construct(index));
        if (layout.form == Form::Broken) {
            frames_.push_back({frame().lastPiece});
        } else if (layout.form != Form::Hugging) {
            onOneLineUntil_ = std::max(onOneLineUntil_, construct(index).close);
        }
    }

    Form formOf(const Construct& opened) const {
        if (opened.mustBreak) return Form::Broken;
        if (at_ < onOneLineUntil_) return Form::OnOneLine;
        if (opened.isLadder) return ladderFits(opened) ? Form::Ladder : Form::Broken;
        if (opened.hasBreak) {
            return fits(at(), measures_.firstCertainEnd(at())) ? Form::Hugging : Form::Broken;
        }
        if (opened.isEmpty) return Form::OnOneLine;
        const Index end = std::min(measures_.firstPossibleEnd(opened.close), frame().lastPiece);
        if (fits(at(), std::max(end, opened.close))) return Form::OnOneLine;
        const bool isUseful = page_.indentation() + indentStep <= mostUsefulIndentation;
        return isUseful ? Form::Broken : Form::OnOneLine;
    }

    // Whether the pieces would fit into the rest of the line.
    bool fits(Index first, Index last) const {
        return page_.column() + measures_.width(first, last) <= lineWidth;
    }

    bool ladderFits(const Construct& ladder) const {
        Index first = ladder.open;
        for (Index joint = ladder.firstJoint; joint != ladder.close;
             joint = pieces_.list[joint].end) {
            if (!fits(first, joint - 1)) return false;
            first = joint;
        }
        return fits(first, ladder.close);
    }

    const Pieces& pieces_;
    const Structure& structure_;
    Measures measures_;
    std::vector<Layout> layouts_;  // by construct
    std::vector<Frame> frames_;
    Page page_;
    std::size_t at_ = 0;
    Index onOneLineUntil_ = 0;  // nothing is broken before this piece
    std::size_t mostBytes_;
};

}  // namespace

std::string print(const Pieces& pieces, const Structure& structure, std::size_t mostBytes) {
    return Printer(pieces, structure, mostBytes).run();
}

}  // namespace pellum::tools
