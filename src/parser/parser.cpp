#include "parser/parser.h"

#include "driver/errors/errors.h"
#include "lexer/lexer.h"
#include "parser/parser_impl.h"
#include "value/host_stack.h"

namespace pellum {

Block parse(std::vector<Token> tokens) { return Parser(std::move(tokens)).program(); }

// program  ::=  block
Block Parser::program() {
    Block statements = block();
    if (!at(TokenKind::EndOfFile)) fail("unexpected " + description());
    return statements;
}

// interpolation  ::=  expression
ExprPtr Parser::interpolation() {
    ExprPtr embedded = expression();
    if (!at(TokenKind::EndOfFile)) {
        fail("unexpected " + description() + " in ${...} interpolation");
    }
    return embedded;
}

const Token& Parser::advance() noexcept {
    const Token& token = current();
    if (token.kind != TokenKind::EndOfFile) ++index_;
    return token;
}

bool Parser::accept(TokenKind kind) noexcept {
    if (!at(kind)) return false;
    advance();
    return true;
}

// Consumes a token of the given kind; `what` says what is missing where there is none.
const Token& Parser::expect(TokenKind kind, const char* what) {
    if (!at(kind)) fail(std::string("expected ") + what + ", got " + description());
    return advance();
}

Symbol Parser::expectName(const char* what) { return Symbol(expect(TokenKind::Name, what).text); }

void Parser::skipLineEnds() noexcept {
    while (accept(TokenKind::EndOfLine)) {
    }
}

void Parser::fail(std::string message) {
    throw ParseError(std::move(message), current().line, current().column);
}

// The current token as messages name it.
std::string Parser::description() {
    switch (current().kind) {
        case TokenKind::EndOfFile:
        case TokenKind::EndOfLine: return tokenKindName(current().kind);
        default: return "'" + std::string(current().text) + "'";
    }
}

// Whatever rule can contain itself calls this, at least once on each way around.
void Parser::checkNesting() {
    if (hostStackIsLow()) fail(nestingTooDeep);
}

}  // namespace pellum
