// The text that the formatter writes: lines of code, each with its indentation and perhaps a
// comment behind it. Such comments stand two blanks behind their code, except that those which
// stood under each other in the source, on lines that follow each other, stay so.
#pragma once

#include "format/pieces.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace pellum::tools {

class Page {
public:
    // Goes to the next line, and indents it. No more blanks than are of use begin a line, so that
    // deep nesting does not fill the page with them.
    void beginLine(Index indentation);
    // Leaves a line empty; the current one must be ended by `beginLine` as well.
    void addBlankLine() {
        text_ += '\n';
        ++line_;
    }
    void write(std::string_view code);
    // Adds the comment behind the code of the current line. `column` is where it stood.
    void addTrailingComment(std::string_view comment, Index column);

    // Where the next character will stand, from 0, and where the line began.
    Index column() const noexcept { return column_; }
    Index indentation() const noexcept { return indentation_; }
    std::size_t size() const noexcept { return text_.size(); }

    // The whole text, which ends with a newline unless it is empty.
    std::string finish();

private:
    struct TrailingComment {
        std::string_view text;
        std::size_t offset;  // of the end of its line of code in `text_`
        std::size_t line;
        Index width;   // of the code before it
        Index column;  // where it stood
    };

    bool continuesGroup(std::size_t index) const noexcept;

    std::string text_;
    std::vector<TrailingComment> comments_;
    std::size_t line_ = 0;
    Index column_ = 0;
    Index indentation_ = 0;
};

}  // namespace pellum::tools
