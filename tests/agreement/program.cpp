#include "agreement/program.h"

#include "support/text.h"

namespace pellum::test {

namespace {

void appendLines(std::string& text, const std::string& lines, std::size_t depth) {
    for (const std::string& line : splitLines(lines)) {
        text += std::string(4 * depth, ' ') + line + "\n";
    }
}

void appendBlock(std::string& text, const Block& block, std::size_t depth) {
    for (const Statement& statement : block) {
        for (const Statement::Section& section : statement.sections) {
            appendLines(text, section.head, depth);
            appendBlock(text, section.body, depth + 1);
        }
        if (statement.hasBodies()) appendLines(text, statement.closing, depth);
    }
}

}  // namespace

Statement simple(std::string code) { return {{{std::move(code), {}}}, ""}; }

std::string textOf(const Block& program) {
    std::string text;
    appendBlock(text, program, 0);
    return text;
}

}  // namespace pellum::test
