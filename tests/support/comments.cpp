#include "support/comments.h"

#include <algorithm>

namespace pellum::test {

namespace {

// Every function takes the place where its construct begins and answers the place behind it.
class CommentScanner {
public:
    explicit CommentScanner(std::string_view source) : source_(source) {}

    std::vector<Comment> scan() {
        std::size_t at = 0;
        while (at < source_.size()) {
            switch (source_[at]) {
                case '"':
                case '\'': at = string(at); break;
                case '#': at = comment(at); break;
                default: ++at;
            }
        }
        return std::move(comments_);
    }

private:
    std::size_t endOfLine(std::size_t at) const {
        return std::min(source_.find('\n', at), source_.size());
    }

    std::size_t comment(std::size_t at) {
        const std::size_t begin = at + 1, end = endOfLine(at);
        const auto from = source_.begin() + signedOf(counted_);
        line_ += static_cast<std::size_t>(std::count(from, source_.begin() + signedOf(at), '\n'));
        counted_ = at;
        comments_.push_back({source_.substr(begin, end - begin), begin, line_});
        return end;
    }

    // A string that is never closed ends with its line, so that the next one reads as code.
    std::size_t string(std::size_t at) const {
        const char quote = source_[at];
        for (++at; at < source_.size() && source_[at] != '\n';) {
            if (source_[at] == quote) return at + 1;
            if (source_[at] == '\\') {
                at += at + 1 < source_.size() && source_[at + 1] == '\n' ? 1 : 2;
            } else if (quote == '"' && source_.substr(at, 2) == "${") {
                at = embeddedCode(at + 2);
            } else {
                ++at;
            }
        }
        return std::min(at, source_.size());
    }

    std::size_t embeddedCode(std::size_t at) const {
        for (int depth = 1; at < source_.size() && source_[at] != '\n';) {
            const char c = source_[at];
            if (c == '"' || c == '\'') {
                at = stringInEmbeddedCode(at);
                continue;
            }
            if (c == '{') ++depth;
            if (c == '}') --depth;
            ++at;
            if (depth == 0) break;
        }
        return at;
    }

    // May span lines, if it is closed at all.
    std::size_t stringInEmbeddedCode(std::size_t begin) const {
        for (std::size_t at = begin + 1; at < source_.size(); ++at) {
            if (source_[at] == source_[begin]) return at + 1;
            if (source_[at] == '\\') ++at;
        }
        return endOfLine(begin);
    }

    static std::ptrdiff_t signedOf(std::size_t n) { return static_cast<std::ptrdiff_t>(n); }

    std::string_view source_;
    std::vector<Comment> comments_;
    std::size_t counted_ = 0;  // up to here the lines are counted
    std::size_t line_ = 1;
};

}  // namespace

std::vector<Comment> commentsOf(std::string_view source) { return CommentScanner(source).scan(); }

}  // namespace pellum::test
