#include "format/pieces.h"

#include "driver/pragmas.h"

#include <algorithm>

namespace pellum::tools {

namespace {

std::string_view withoutEnding(std::string_view text, std::string_view bytes) noexcept {
    return text.substr(0, text.find_last_not_of(bytes) + 1);
}

// Decides what is to be written of a comment. What others than people read stays as it is.
class CommentTexts {
public:
    explicit CommentTexts(std::string_view source) : pragmas_(scanPragmas(source).pragmas) {}

    PlacedComment place(const Comment& comment, bool hadBlankLine) {
        const bool isPragma = next_ < pragmas_.size() &&
                              static_cast<std::uint32_t>(pragmas_[next_].line) == comment.line;
        PlacedComment placed{comment, {}, isPragma, hadBlankLine};
        if (isPragma) {
            ++next_;
            const std::string_view before = lineBefore(comment);
            placed.text = withoutEnding({before.data(), before.size() + comment.text.size()}, "\r");
        } else if (comment.line == 1 && comment.text.starts_with("#!")) {
            placed.text = withoutEnding(comment.text, "\r");
        } else {
            placed.text = withoutEnding(comment.text, " \t\r");
        }
        return placed;
    }

private:
    std::vector<Pragma> pragmas_;
    std::size_t next_ = 0;
};

}  // namespace

Pieces piecesOf(const LexedSource& source, std::string_view text) {
    Pieces pieces;
    CommentTexts texts(text);
    pieces.list.reserve(source.tokens.size());
    pieces.comments.reserve(source.comments.size());
    int lineEnds = 0;  // since the last token or comment
    bool beganLine = false;
    Index firstComment = 0;
    for (std::size_t i = 0; i < source.tokens.size(); ++i) {
        while (pieces.comments.size() < source.comments.size() &&
               source.comments[pieces.comments.size()].nextToken == i) {
            const Comment& comment = source.comments[pieces.comments.size()];
            pieces.comments.push_back(texts.place(comment, lineEnds > 1));
            lineEnds = 0;
        }
        const Token& token = source.tokens[i];
        if (token.kind == TokenKind::EndOfLine) {
            ++lineEnds;
            beganLine = true;
            continue;
        }
        Piece& piece = pieces.list.emplace_back();
        piece.text = source.written[i];
        piece.kind = token.kind;
        piece.beganLine = beganLine;
        piece.hadBlankLine = lineEnds > 1;
        piece.column = token.column;
        piece.firstComment = firstComment;
        piece.commentCount = static_cast<Index>(pieces.comments.size()) - firstComment;
        firstComment = static_cast<Index>(pieces.comments.size());
        lineEnds = 0;
        beganLine = false;
    }
    return pieces;
}

std::string_view lineBefore(const Comment& comment) noexcept {
    const std::size_t length = comment.column - 1;
    return {comment.text.data() - length, length};
}

Index widthOf(std::string_view text) noexcept {
    constexpr unsigned char continuationMask = 0xC0, continuation = 0x80;
    return static_cast<Index>(std::count_if(text.begin(), text.end(), [](char byte) {
        return (static_cast<unsigned char>(byte) & continuationMask) != continuation;
    }));
}

}  // namespace pellum::tools
