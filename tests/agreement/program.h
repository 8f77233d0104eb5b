// A generated program as a tree of statements, so that a failing one can be shrunk by leaving
// statements out. Expressions are text: nothing looks into them.
#pragma once

#include <string>
#include <vector>

namespace pellum::test {

struct Statement {
    // A line or more of code and the statements that it opens: one for a loop, several for an `if`.
    struct Section {
        std::string head;
        std::vector<Statement> body;
    };
    std::vector<Section> sections;
    std::string closing;  // the line behind the last body; empty for a statement without bodies

    bool hasBodies() const { return !closing.empty(); }
};

using Block = std::vector<Statement>;

// A statement of one section without a body.
Statement simple(std::string code);

std::string textOf(const Block& program);

}  // namespace pellum::test
