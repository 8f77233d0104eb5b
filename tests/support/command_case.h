// One use of the command line: the files that there are, the command, what goes in and what comes
// out. The text of a case is made of sections, each under a line that begins with "--- ":
//
//   # A remark, before the first section.
//   $ pellum --tree greeting.pellum
//   --- file greeting.pellum
//   print("hello")
//   --- output
//   hello
//
// Sections: "file NAME", "directory NAME", "input", "output", "errors", "status N"; "fifo NAME",
// which holds what is written into it, and "link NAME", which holds where it leads. A section may
// end its heading with modifiers: "(escaped)" reads backslash escapes such as \xEF, "(no newline)"
// drops the newline at the section's end, "(pattern)" lets "<number>" stand for any number, and
// "output (full device)" makes every write to standard output fail, and "output (closed pipe)" lets
// nobody read it. Without a section nothing goes in, nothing may come out, and the status is 0.
//
// Surroundings: "input from PATH", "output to PATH" and "errors to PATH" lead a stream elsewhere,
// "input (closed)" and its like close it; "limit stack 256K" sets a limit, also on "memory",
// "data", "files", "written" and "seconds"; "environment" holds the whole environment.
//
// "then NAME" is a file as it has to be afterwards. The program may be one of the tools instead,
// such as pellum-fmt.
//
// In the command, words may stand in single quotes, as they are, or in double quotes, with escapes.
#pragma once

#include "support/playing.h"
#include "support/surroundings.h"

#include <string>
#include <string_view>
#include <vector>

namespace pellum::test {

struct ExpectedText {
    std::string text;
    bool isPattern = false;

    bool matches(std::string_view given) const;
};

struct CommandCase {
    struct File {
        std::string name;
        std::string contents;
    };

    std::string program;
    std::vector<std::string> arguments;
    std::vector<File> files;
    std::vector<File> filesAfterwards;
    std::vector<std::string> directories;
    std::vector<File> fifos;
    std::vector<File> links;
    Surroundings surroundings;
    std::string input;
    ExpectedText output, errors;
    OutputTo outputTo = OutputTo::Memory;
    int status = 0;
};

// Throws std::runtime_error for a text that is no case.
CommandCase parseCommandCase(std::string_view text);

}  // namespace pellum::test
