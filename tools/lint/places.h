// Where things stand in the file. The tree knows where a construct begins, but not where the names
// in it stand, nor what was in parentheses; and code inside of a string is parsed as a text of its
// own, whose positions begin again at 1:1. Places finds all of that again in the tokens.
#pragma once

#include "lexer/token.h"
#include "lint/tree.h"

#include "driver/errors/errors.h"

#include <deque>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace pellum::lint {

class Places {
public:
    // REQUIRES: `program` was parsed from `tokens`, and these were made from `source`; the program
    // and the source outlive the object. Throws ParseError for nesting that is too deep.
    Places(std::string_view source, std::vector<Token> tokens, const Block& program);

    Position of(const Node& node) const;
    // Where the first piece of a statement or an expression stands; parentheses do not count.
    Position beginningOf(const Stmt& stmt) const;
    Position beginningOf(const Expr& expr) const;
    // The name that a `let`, a function declaration, a loop or a `try` declares.
    Position declaredName(const Stmt& declaration) const;
    // REQUIRES: `function` is a FunctionExpr or a FunctionDeclStmt with so many parameters.
    Position parameter(const Node& function, std::size_t index) const;
    // Whether the left operand stands in parentheses of its own.
    bool isLeftGrouped(const BinaryExpr& expr) const;
    // Whether the call is none of the program's own but stands for a "${...}".
    bool isInterpolation(const CallExpr& expr) const;

private:
    // A text that was lexed on its own: the file, or the code in a "${...}".
    struct Text {
        std::vector<Token> tokens;
        // By token: of a parenthesis the other one, of a `try` its `catch`; else the token itself.
        std::vector<std::uint32_t> partners;
        Position origin{1, 1};  // in the file, of what stands at 1:1
        // The interpolated string that is being walked through, and how much of it has been.
        std::size_t string = static_cast<std::size_t>(-1);
        std::size_t part = 0;
    };

    void addText(std::vector<Token> tokens, Position origin);
    void walk(const Block& block, std::size_t text);
    void walk(const Expr& expr, std::size_t text);
    void walkFunction(const Expr& expr, std::size_t text);
    void walkInterpolation(const CallExpr& call, std::size_t text);
    void note(const Node& node, std::size_t text);
    std::size_t offsetOfLine(std::uint32_t line) const;

    std::size_t textNumberOf(const Node& node) const;
    static std::size_t tokenAt(const Text& text, const Node& node);
    Position placeOf(const Text& text, std::size_t token) const;

    std::string_view source_;
    std::vector<std::size_t> lineOffsets_;                   // by line, from 0
    std::deque<Text> texts_;                                 // the file first
    std::unordered_map<const Node*, std::size_t> embedded_;  // nodes of the other texts
};

}  // namespace pellum::lint
