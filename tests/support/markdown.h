// The programs in the project's pages. A fenced block marked ```pellum is a program, and the
// blocks that follow it say what it does:
//
//   ```input    what it reads
//   ```output   what it prints on both engines, or the pair
//   ```tree     what it prints on the tree-walker, and
//   ```vm       what it prints on the virtual machine
//   ```tokens   what "pellum --tokens" says about it
//   ```syntax   its tree, as tree_text.h writes it, in whatever lines
//   ```listing  its bytecode, as the disassembler shows it
//   ```registers  what the machine makes of the functions in it, each under its name
//
// Prose may stand between them. Without such a block the program only has to run without an error.
// "(beginning)" behind "output", "tree" or "vm" means that more may follow. The program that
// "```pellum writer" prints is the one that is meant; "```pellum fragment" marks a piece of code
// that does not stand for itself and is not run. A block marked ```command is a use of the command
// line, in the form that command_case.h describes, and one marked ```transcript a session at the
// prompt, in that of transcript.h.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pellum::test {

struct MarkdownOutput {
    std::string text;  // standard output, then standard error
    bool isWhole = true;

    bool matches(std::string_view given) const {
        return isWhole ? given == text : given.starts_with(text);
    }
};

struct MarkdownProgram {
    std::string heading;     // the nearest one above
    std::size_t number = 0;  // among the page's programs under this heading, from 1
    std::size_t line = 0;    // of its first line of code
    std::string source;
    bool isWriter = false;  // what it prints is the program
    std::string input;
    std::optional<MarkdownOutput> treeOutput, vmOutput;
    std::optional<std::string> tokens, syntax, listing, registers;
};

// A use of the command line, or a session at the prompt.
struct MarkdownCommand {
    std::string heading;
    std::size_t number = 0;
    std::size_t line = 0;
    std::string text;
};

// A heading and what stands below it, up to the next one.
struct MarkdownSection {
    std::size_t level = 0;  // of the heading; 0 for what stands above the first
    std::string heading;
    std::size_t line = 0;
    std::string prose;  // everything outside of fenced blocks
    std::vector<MarkdownProgram> programs;
    std::vector<MarkdownCommand> commands, transcripts;
};

// The pages whose programs are tests.
std::vector<std::filesystem::path> markdownPages();

// Both throw std::runtime_error for a fence that is never closed and for output that belongs to no
// program.
std::vector<MarkdownSection> sectionsOf(std::string_view page);
std::vector<MarkdownProgram> programsOf(std::string_view page);

}  // namespace pellum::test
