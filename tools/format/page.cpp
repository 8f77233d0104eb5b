#include "format/page.h"

#include <algorithm>

namespace pellum::tools {

namespace {

constexpr Index mostIndentation = 200;
constexpr Index beforeComment = 2;

}  // namespace

void Page::beginLine(Index indentation) {
    if (!text_.empty()) {
        text_ += '\n';
        ++line_;
    }
    indentation_ = indentation;
    column_ = std::min(indentation, mostIndentation);
    text_.append(column_, ' ');
}

void Page::write(std::string_view code) {
    text_ += code;
    // Only a string can hold a newline, in what is embedded in it.
    const std::size_t newline = code.rfind('\n');
    if (newline == code.npos) {
        column_ += widthOf(code);
        return;
    }
    line_ += static_cast<std::size_t>(std::count(code.begin(), code.end(), '\n'));
    column_ = widthOf(code.substr(newline + 1));
}

void Page::addTrailingComment(std::string_view comment, Index column) {
    comments_.push_back({comment, text_.size(), line_, column_, column});
}

bool Page::continuesGroup(std::size_t index) const noexcept {
    return index > 0 && index < comments_.size() &&
           comments_[index].line == comments_[index - 1].line + 1 &&
           comments_[index].column == comments_[index - 1].column;
}

std::string Page::finish() {
    std::string whole;
    whole.reserve(text_.size() + text_.size() / 8);
    std::size_t written = 0;  // of text_
    for (std::size_t first = 0; first < comments_.size();) {
        std::size_t end = first;
        Index width = 0;
        do {
            width = std::max(width, comments_[end].width);
        } while (continuesGroup(++end));
        for (; first < end; ++first) {
            const TrailingComment& comment = comments_[first];
            whole.append(text_, written, comment.offset - written);
            whole.append(width - comment.width + beforeComment, ' ');
            whole += comment.text;
            written = comment.offset;
        }
    }
    whole.append(text_, written);
    if (!whole.empty()) whole += '\n';
    return whole;
}

}  // namespace pellum::tools
