// A session of somebody at a terminal: what is typed, and what can be seen then. The text of a
// session is made of sections, each under a line that begins with "--- ":
//
//   # A remark, before the first section.
//   $ pellum
//   --- type
//   1 + 2<Enter>
//   --- screen
//   Pellum 6  --  type Ctrl-D (or 'exit') to quit
//   >> 1 + 2
//   3
//   >>
//
// docs/testing.md describes all sections. Sections that type something or expect something are
// played in their order; each expectation is waited for.
#pragma once

#include "support/command_case.h"

#include <string>
#include <string_view>
#include <vector>

namespace pellum::test {

struct TerminalSession {
    struct Step {
        enum class Kind { Type, Paste, MarkedPaste, Screen, MarkedScreen, History, Resize, Status };
        Kind kind;
        std::string text;      // what is typed, or what has to be seen
        std::size_t line = 0;  // of the heading, from 1
    };

    std::vector<std::string> arguments;
    std::vector<CommandCase::File> files;
    std::vector<std::string> environment;  // beside the usual one of these tests
    std::vector<Step> steps;
};

// Throws std::runtime_error for a text that is no session.
TerminalSession parseTerminalSession(std::string_view text);

// The bytes of keys written as in "1 + 2<Left><Enter>". What is in angle brackets and names no key
// stands for itself, and ends of lines are left out.
std::string bytesOfKeys(std::string_view keys);

// Two numbers, as in "80x24".
struct Size {
    std::size_t columns, rows;
};
Size parseSize(std::string_view text);

}  // namespace pellum::test
