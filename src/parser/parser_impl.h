// The parser behind `parse`, shared by its three sources: statements.cpp and expressions.cpp speak
// the grammar, parser.cpp has what both use to look at tokens and to complain about them.
#pragma once

#include "parser/parser.h"

#include <string>
#include <utility>

namespace pellum {

// Reads one token vector from front to back, one function for each rule of the grammar. A rule
// starts at its first token and leaves the parser behind its last one; the first error throws.
class Parser {
public:
    // `interpolationDepth` says inside how many "${...}" the tokens stand.
    explicit Parser(std::vector<Token>&& tokens, int interpolationDepth = 0) noexcept
        : tokens_(std::move(tokens)), interpolationDepth_(interpolationDepth) {}

    Block program();
    ExprPtr interpolation();

private:
    // Statements.
    Block block();
    StmtPtr statement();
    StmtPtr letStatement();
    StmtPtr functionDeclaration();
    StmtPtr returnStatement();
    StmtPtr ifStatement();
    StmtPtr whileStatement();
    StmtPtr forStatement();
    StmtPtr numericFor(const Token& keyword, Symbol variable);
    StmtPtr forIn(const Token& keyword, Symbol variable);
    StmtPtr tryStatement();
    StmtPtr expressionStatement();
    std::vector<Symbol> params();
    void functionRest(FunctionLiteral& function);

    // Expressions.
    ExprPtr expression();
    ExprPtr binary(int minLevel);
    ExprPtr unary();
    ExprPtr postfix();
    ExprPtr call(ExprPtr callee);
    ExprPtr index(ExprPtr object);
    ExprPtr field(ExprPtr object);
    ExprPtr primary();
    ExprPtr number();
    ExprPtr string();
    ExprPtr interpolatedString();
    ExprPtr interpolatedPiece(const Token& token, const StringPart& part);
    ExprPtr name();
    ExprPtr grouping();
    template <typename ParseItem>
    void items(TokenKind close, ParseItem parseItem);
    ExprPtr listLiteral();
    ExprPtr mapLiteral();
    ExprPtr mapKey();
    ExprPtr functionLiteral();

    // Looking.
    const Token& current() const noexcept { return tokens_[index_]; }
    bool at(TokenKind kind) const noexcept { return tokens_[index_].kind == kind; }
    // REQUIRES: not at the end of the file.
    bool nextIs(TokenKind kind) const noexcept { return tokens_[index_ + 1].kind == kind; }

    // Consuming. A token consumed stays valid, and the end of the file is never passed.
    const Token& advance() noexcept;
    bool accept(TokenKind kind) noexcept;
    const Token& expect(TokenKind kind, const char* what);
    Symbol expectName(const char* what);
    void skipLineEnds() noexcept;

    // Complaining, always at the current token.
    [[noreturn]] void fail(std::string message);
    std::string description();
    void checkNesting();

    static constexpr const char* nestingTooDeep = "nesting too deep";

    std::vector<Token> tokens_;
    std::size_t index_ = 0;
    int interpolationDepth_;
};

// A new node of type T that stands where `token` does.
template <typename T>
std::unique_ptr<T, NodeDeleter> makeNode(const Token& token) {
    return std::unique_ptr<T, NodeDeleter>(new T(token.line, token.column));
}

}  // namespace pellum
