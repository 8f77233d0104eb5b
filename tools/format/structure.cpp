#include "format/structure.h"

#include "format/spacing.h"

namespace pellum::tools {

namespace {

// Goes over the pieces once, with a stack of what is open. Since the source parses, a token and
// what is open around it say everything: there is nothing to try out.
class StructureFinder {
public:
    explicit StructureFinder(Pieces& pieces) : pieces_(pieces) {
        open_.push_back({Opened::Program});
        open_.back().expectsStatement = true;
    }

    Structure run() {
        for (at_ = 0; at_ < pieces_.list.size(); ++at_) visit();
        return std::move(result_);
    }

private:
    struct Opened {
        enum Kind : std::uint8_t { Program, Brackets, Items, Blocks };

        Kind kind;
        bool isInBlock = false;         // of Blocks: between a head and the word that ends a block
        bool expectsStatement = false;  // the next piece begins a statement, or ends the block
        bool isBlockEmpty = true;
        bool expectsItem = false;  // of Items: likewise
        bool holdsBreak = false;
        bool holdsConstruct = false;
        bool hasEmptyBlock = false;
        bool hasLadderBreak = false;  // a line ended before a word that begins another block
        bool isCatchHead = false;     // the next piece is the name behind "catch"
        Index construct = noIndex;
        Index last = noIndex;  // the piece whose `end` comes next
        Index joint = noIndex;
    };

    Opened& top() { return open_.back(); }
    Piece& piece() { return pieces_.list[at_]; }
    Construct& construct(Index index) { return result_.constructs[index]; }

    void visit() {
        if (holdsStatements(top())) visitInBlock();
        if (top().kind == Opened::Items) visitInItems();
        switch (piece().kind) {
            case TokenKind::LeftParen: open(Opened::Brackets); break;
            case TokenKind::LeftBracket: leftBracket(); break;
            case TokenKind::LeftBrace: openItems(Construct::Kind::Map); break;
            case TokenKind::RightParen:
            case TokenKind::RightBracket:
            case TokenKind::RightBrace: closeBrackets(); break;
            case TokenKind::If:
            case TokenKind::While:
            case TokenKind::For:
            case TokenKind::Function: openBlocks(); break;
            case TokenKind::Try:
                openBlocks();
                beginBlock();
                break;
            case TokenKind::Then:
            case TokenKind::Do:
            case TokenKind::Else: beginBlock(); break;
            case TokenKind::Catch: top().isCatchHead = true; break;
            case TokenKind::Name:
                if (top().isCatchHead) beginBlock();
                break;
            case TokenKind::End: close(); break;
            default: break;
        }
    }

    static bool holdsStatements(const Opened& opened) {
        return opened.kind == Opened::Program ||
               (opened.kind == Opened::Blocks && opened.isInBlock);
    }

    static bool endsBlock(TokenKind kind) {
        return kind == TokenKind::Elif || kind == TokenKind::Else || kind == TokenKind::Catch ||
               kind == TokenKind::End;
    }

    void visitInBlock() {
        if (endsBlock(piece().kind)) {
            endBlock();
        } else if (top().expectsStatement || piece().beganLine ||
                   piece().kind == TokenKind::EndOfFile) {
            beginStatement();
        }
    }

    void beginStatement() {
        Opened& block = top();
        endLast();
        const bool isFirst = block.kind == Opened::Blocks && block.isBlockEmpty;
        piece().place = isFirst ? Place::BlockStart : Place::Statement;
        piece().holder = block.construct;
        if (block.kind == Opened::Blocks && (!isFirst || piece().beganLine)) {
            construct(block.construct).mustBreak = true;
        }
        block.last = static_cast<Index>(at_);
        block.expectsStatement = false;
        block.isBlockEmpty = false;
    }

    void endBlock() {
        Opened& blocks = top();
        endLast();
        piece().place = Place::BlockEnd;
        piece().holder = blocks.construct;
        Index& thisJoint = blocks.joint == noIndex ? construct(blocks.construct).firstJoint
                                                   : pieces_.list[blocks.joint].end;
        thisJoint = blocks.joint = static_cast<Index>(at_);
        if (blocks.isBlockEmpty) {
            blocks.hasEmptyBlock = true;
        } else {
            construct(blocks.construct).isEmpty = false;
        }
        if (piece().beganLine) {
            const bool isRung =
                piece().kind != TokenKind::End && !blocks.isBlockEmpty && !hasCommentAlone();
            (isRung ? blocks.hasLadderBreak : construct(blocks.construct).mustBreak) = true;
        }
        blocks.isInBlock = false;
    }

    bool hasCommentAlone() {
        for (Index i = 0; i < piece().commentCount; ++i) {
            if (pieces_.comments[piece().firstComment + i].comment.isAlone) return true;
        }
        return false;
    }

    void beginBlock() {
        Opened& blocks = top();
        blocks.isInBlock = true;
        blocks.isBlockEmpty = true;
        blocks.expectsStatement = true;
        blocks.isCatchHead = false;
    }

    // The last statement or item ends before the current piece.
    void endLast() {
        if (top().last != noIndex) pieces_.list[top().last].end = static_cast<Index>(at_) - 1;
        top().last = noIndex;
    }

    void visitInItems() {
        Opened& items = top();
        Construct& list = construct(items.construct);
        const TokenKind closing =
            list.kind == Construct::Kind::List ? TokenKind::RightBracket : TokenKind::RightBrace;
        if (piece().kind == closing) {
            endLast();
            piece().place = Place::ListEnd;
            piece().holder = items.construct;
            if (piece().commentCount > 0) list.isEmpty = false;
            if (piece().beganLine && !list.isEmpty) list.mustBreak = true;
        } else if (items.expectsItem) {
            endLast();
            piece().place = list.open + 1 == at_ ? Place::FirstItem : Place::Item;
            piece().holder = items.construct;
            list.isEmpty = false;
            if (piece().beganLine) list.mustBreak = true;
            items.last = static_cast<Index>(at_);
            items.expectsItem = false;
        } else if (piece().kind == TokenKind::Comma) {
            items.expectsItem = true;
        }
    }

    // An index cannot be broken, nor can the brackets around a key.
    void leftBracket() {
        const bool isItem = piece().place == Place::FirstItem || piece().place == Place::Item;
        const bool isKey = isItem && construct(piece().holder).kind == Construct::Kind::Map;
        const bool isIndex =
            piece().place == Place::Inside && at_ > 0 && endsOperand(pieces_.list[at_ - 1].kind);
        if (isKey || isIndex) {
            open(Opened::Brackets);
        } else {
            openItems(Construct::Kind::List);
        }
    }

    void open(Opened::Kind kind) { open_.push_back({kind}); }

    void openConstruct(Construct::Kind kind, Opened::Kind opened) {
        piece().opens = static_cast<Index>(result_.constructs.size());
        result_.constructs.push_back({kind, static_cast<Index>(at_)});
        open(opened);
        top().construct = piece().opens;
    }

    void openItems(Construct::Kind kind) {
        openConstruct(kind, Opened::Items);
        top().expectsItem = true;
    }

    void openBlocks() { openConstruct(Construct::Kind::Blocks, Opened::Blocks); }

    void closeBrackets() {
        close();
        // The parameters are all of a function's head.
        if (top().kind == Opened::Blocks && !top().isInBlock &&
            pieces_.list[construct(top().construct).open].kind == TokenKind::Function) {
            beginBlock();
        }
    }

    void close() {
        const Opened closed = top();
        open_.pop_back();
        bool hasBreak = closed.holdsBreak, hasConstruct = closed.holdsConstruct;
        if (closed.construct != noIndex) {
            Construct& done = construct(closed.construct);
            done.close = static_cast<Index>(at_);
            // Only a list may hold something broken without being broken itself.
            if (hasBreak && done.kind != Construct::Kind::List) done.mustBreak = true;
            // Of an empty block nobody could tell whether it stands on the line of its head.
            if (closed.hasLadderBreak && closed.hasEmptyBlock) done.mustBreak = true;
            done.isLadder = closed.hasLadderBreak && !done.mustBreak;
            done.hasBreak = hasBreak = hasBreak || done.mustBreak || done.isLadder;
            done.isPlain = !hasConstruct;
            hasConstruct = hasConstruct || !done.isEmpty;
        }
        top().holdsBreak = top().holdsBreak || hasBreak;
        top().holdsConstruct = top().holdsConstruct || hasConstruct;
    }

    Pieces& pieces_;
    Structure result_;
    std::vector<Opened> open_;
    std::size_t at_ = 0;
};

}  // namespace

Structure structureOf(Pieces& pieces) { return StructureFinder(pieces).run(); }

}  // namespace pellum::tools
