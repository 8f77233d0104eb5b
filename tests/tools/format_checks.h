// What must hold of the formatter's result, whatever the source; and sources in any layout.
#pragma once

#include <cstdint>
#include <string>

namespace pellum::test {

// Formats `source`, which `name` is said of in messages, and looks at the result with other eyes
// than the formatter's own: the tree, the comments, the layout, and that formatting it again
// changes nothing. The result. REQUIRES: the source is a program, not so deep that functions which
// recurse cannot go through its tree.
std::string checkedFormat(const std::string& source, const std::string& name);

// Whether both programs print the same on both engines and end likewise, positions in messages
// apart. A program that does not do the same twice is not looked at.
void expectSameBehaviour(const std::string& before, const std::string& after,
                         const std::string& name);

// The program `source` with its lines ended wherever they may or must end, with blanks of all kinds
// and numbers, and with comments wherever there may be one, as the dice fall. REQUIRES: the source
// is a program.
std::string scrambled(const std::string& source, std::uint64_t seed);

// Whether the text is a program, as far as the parser can tell.
bool isProgram(const std::string& source);

}  // namespace pellum::test
