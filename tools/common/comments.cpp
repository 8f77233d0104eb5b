#include "common/comments.h"

#include "lexer/lexer.h"

#include <algorithm>

namespace pellum::tools {

namespace {

// REQUIRES: the token is no end of line or of file.
std::string_view writtenForm(const Token& token) noexcept {
    if (token.contents) return token.contents->written;
    if (token.kind == TokenKind::String) return {token.text.data() - 1, token.text.size() + 2};
    return token.text;
}

// Goes through a source beside its tokens. Where the tokens lie is known, so that comments are
// found without knowing anything else about the language: they are all that can stand behind the
// last token of a line.
class CommentFinder {
public:
    CommentFinder(std::string_view source, LexedSource& result) noexcept
        : source_(source), result_(result) {
        if (!result.tokens.empty()) skipByteOrderMark();
    }

    void run() {
        result_.written.reserve(result_.tokens.size());
        for (const Token& token : result_.tokens) {
            switch (token.kind) {
                case TokenKind::EndOfLine: endOfLine(); break;
                case TokenKind::EndOfFile: endOfFile(); break;
                default: code(writtenForm(token));
            }
        }
    }

private:
    void skipByteOrderMark() noexcept {
        constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
        if (source_.starts_with(byteOrderMark)) offset_ = lineStart_ = byteOrderMark.size();
    }

    void code(std::string_view written) {
        result_.written.push_back(written);
        offset_ = static_cast<std::size_t>(written.data() - source_.data()) + written.size();
        lineHasCode_ = true;
        // A string inside "${...}" may span lines.
        for (std::size_t at = 0; (at = written.find('\n', at)) != written.npos;) {
            ++at;
            ++line_;
            lineStart_ = offset_ - written.size() + at;
        }
    }

    void endOfLine() {
        const std::size_t newline = source_.find('\n', offset_);
        restOfLine(newline);
        result_.written.push_back(source_.substr(newline, 1));
        offset_ = lineStart_ = newline + 1;
        ++line_;
        lineHasCode_ = false;
    }

    void endOfFile() {
        restOfLine(source_.size());
        result_.written.emplace_back();
    }

    // Up to `end` there is at most a comment.
    void restOfLine(std::size_t end) {
        const std::size_t start = source_.substr(0, end).find('#', offset_);
        if (start == source_.npos) return;
        result_.comments.push_back({source_.substr(start, end - start), line_,
                                    static_cast<std::uint32_t>(start - lineStart_) + 1,
                                    !lineHasCode_, result_.written.size()});
    }

    std::string_view source_;
    LexedSource& result_;
    std::size_t offset_ = 0;  // behind what has been passed
    std::size_t lineStart_ = 0;
    std::uint32_t line_ = 1;
    bool lineHasCode_ = false;
};

}  // namespace

LexedSource lexSource(std::string_view source) {
    LexedSource result;
    result.tokens = tokenize(source);
    CommentFinder(source, result).run();
    return result;
}

}  // namespace pellum::tools
