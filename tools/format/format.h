// The formatter: gives a source the one layout that the language has, and keeps everything else of
// it. docs/fmt.md describes the layout.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace pellum::tools {

// A mistake of the formatter itself: what it made is not the same program with the same comments.
struct FormatterFault : std::logic_error {
    using std::logic_error::logic_error;
};

// The source laid out. Throws what the lexer and the parser throw when it is no program,
// TextTooLong when the result would be too long for one, and FormatterFault rather than answer with
// another program or other comments. Takes time linear in the source.
std::string format(std::string_view source);

// Throws FormatterFault unless `after` is the program `before`, with its comments in their order;
// only layout may differ, and commas behind last items.
void checkSameProgram(std::string_view before, std::string_view after);

}  // namespace pellum::tools
