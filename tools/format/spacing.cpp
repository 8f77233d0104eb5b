#include "format/spacing.h"

namespace pellum::tools {

namespace {

// Nothing stands before these, whatever is in front of them.
bool clingsToLeft(TokenKind kind) noexcept {
    switch (kind) {
        case TokenKind::RightParen:
        case TokenKind::RightBracket:
        case TokenKind::RightBrace:
        case TokenKind::Comma:
        case TokenKind::Colon:
        case TokenKind::Dot: return true;
        default: return false;
    }
}

// Nothing stands behind these.
bool clingsToRight(TokenKind kind) noexcept {
    switch (kind) {
        case TokenKind::LeftParen:
        case TokenKind::LeftBracket:
        case TokenKind::LeftBrace:
        case TokenKind::Dot: return true;
        default: return false;
    }
}

}  // namespace

bool endsOperand(TokenKind kind) noexcept {
    switch (kind) {
        case TokenKind::Number:
        case TokenKind::String:
        case TokenKind::InterpString:
        case TokenKind::Name:
        case TokenKind::RightParen:
        case TokenKind::RightBracket:
        case TokenKind::RightBrace:
        case TokenKind::True:
        case TokenKind::False:
        case TokenKind::Nil:
        case TokenKind::End: return true;
        default: return false;
    }
}

void setSpaces(Pieces& pieces) noexcept {
    bool isBehindSign = false;  // a "-" with one operand
    TokenKind before = TokenKind::EndOfLine;
    for (Piece& piece : pieces.list) {
        const bool continues = piece.place == Place::Inside && endsOperand(before);
        const bool isCallOrIndex =
            (piece.kind == TokenKind::LeftParen && (continues || before == TokenKind::Function)) ||
            (piece.kind == TokenKind::LeftBracket && continues);
        piece.hasSpace =
            !isBehindSign && !isCallOrIndex && !clingsToLeft(piece.kind) && !clingsToRight(before);
        isBehindSign = piece.kind == TokenKind::Minus && !continues;
        before = piece.kind;
    }
}

}  // namespace pellum::tools
