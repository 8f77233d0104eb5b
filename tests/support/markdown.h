// The programs in the project's pages. A fenced block marked ```pellum is a program, and the
// blocks that follow it say what it does:
//
//   ```input    what it reads
//   ```output   what it prints on both engines, or the pair
//   ```tree     what it prints on the tree-walker, and
//   ```vm       what it prints on the virtual machine
//
// Prose may stand between them. Without such a block the program only has to run without an error;
// "```pellum fragment" marks a piece of code that does not stand for itself and is not run.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pellum::test {

struct MarkdownProgram {
    std::string heading;     // the nearest one above
    std::size_t number = 0;  // among the page's programs under this heading, from 1
    std::size_t line = 0;    // of its first line of code
    std::string source;
    std::string input;
    std::optional<std::string> treeOutput, vmOutput;  // standard output, then standard error
};

// The pages whose programs are tests.
std::vector<std::filesystem::path> markdownPages();

// Throws std::runtime_error for a fence that is never closed and for output that belongs to no
// program.
std::vector<MarkdownProgram> programsOf(std::string_view page);

}  // namespace pellum::test
