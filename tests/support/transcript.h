// A session at the prompt, written down as a terminal would show it. What begins each line says
// whose it is:
//
//   ">> " or ".. "   the prompt, and behind it what is typed
//   "! "             a line on standard error
//   "< "             a line typed while no prompt is shown, for a program that reads
//   "~ "             output that does not end its line
//   "| "             output, where its own beginning would be misread
//   "# "             a remark
//   "$ pellum"       the arguments, without any of which the prompt appears
//   anything else    a line of output
//
// "^D" at the end of what is typed is the end of the input, without a newline before it. Where
// nothing else is typed, the program ends the line of the prompt itself.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace pellum::test {

struct Transcript {
    std::vector<std::string> arguments;
    std::string input;
    std::string output;
    std::string errors;
    std::string merged;  // output and errors in the order in which they appear
};

Transcript parseTranscript(std::string_view text);

}  // namespace pellum::test
