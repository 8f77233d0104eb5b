#include "lint/places.h"

#include "lexer/lexer.h"

#include <algorithm>
#include <utility>

namespace pellum::lint {

namespace {

std::vector<std::uint32_t> partnersIn(const std::vector<Token>& tokens) {
    std::vector<std::uint32_t> partners(tokens.size());
    std::vector<std::uint32_t> parentheses, blocks;
    for (std::uint32_t i = 0; i < tokens.size(); ++i) {
        partners[i] = i;
        switch (tokens[i].kind) {
            case TokenKind::LeftParen: parentheses.push_back(i); break;
            case TokenKind::RightParen:
                partners[i] = parentheses.back();
                partners[parentheses.back()] = i;
                parentheses.pop_back();
                break;
            case TokenKind::Function:
            case TokenKind::If:
            case TokenKind::While:
            case TokenKind::For:
            case TokenKind::Try: blocks.push_back(i); break;
            case TokenKind::Catch: partners[blocks.back()] = i; break;
            case TokenKind::End: blocks.pop_back(); break;
            default: break;
        }
    }
    return partners;
}

}  // namespace

Places::Places(std::string_view source, std::vector<Token> tokens, const Block& program)
    : source_(source), lineOffsets_{source.starts_with("\xEF\xBB\xBF") ? 3U : 0U} {
    for (std::size_t at = 0; (at = source.find('\n', at)) != source.npos;) {
        lineOffsets_.push_back(++at);
    }
    const bool hasInterpolations =
        std::ranges::find(tokens, TokenKind::InterpString, &Token::kind) != tokens.end();
    addText(std::move(tokens), {1, 1});
    if (hasInterpolations) walk(program, 0);
}

void Places::addText(std::vector<Token> tokens, Position origin) {
    Text& text = texts_.emplace_back();
    text.partners = partnersIn(tokens);
    text.tokens = std::move(tokens);
    text.origin = origin;
}

void Places::walk(const Block& block, std::size_t text) {
    for (const StmtPtr& stmt : block) {
        checkNesting(*stmt);
        note(*stmt, text);
        forEachExpression(*stmt, [&](const Expr& expr) { walk(expr, text); });
        forEachBlock(*stmt, [&](const Block& inner) { walk(inner, text); });
        if (stmt->stmtKind() == StmtKind::FunctionDecl) {
            walk(as<FunctionDeclStmt>(*stmt).function.body, text);
        }
    }
}

void Places::walk(const Expr& expr, std::size_t text) {
    checkNesting(expr);
    for (const Expr* const part : spineOf(expr)) {
        note(*part, text);
        if (part->exprKind() == ExprKind::Function) {
            walk(as<FunctionExpr>(*part).function.body, text);
        } else if (part->exprKind() == ExprKind::Call && isInterpolation(as<CallExpr>(*part))) {
            walkInterpolation(as<CallExpr>(*part), text);
        } else {
            forEachFurtherOperand(*part, [&](const Expr& operand) { walk(operand, text); });
        }
    }
}

// The pieces of a string come in the order of the source.
void Places::walkInterpolation(const CallExpr& call, std::size_t text) {
    Text& around = texts_[text];
    const std::size_t string = tokenAt(around, call);
    if (std::exchange(around.string, string) != string) around.part = 0;
    const std::span<const StringPart> parts = around.tokens[string].parts();
    while (parts[around.part].kind != StringPart::Kind::Expression) ++around.part;
    const std::string_view code = parts[around.part++].text;

    const std::uint32_t line = placeOf(around, string).line;
    const auto offset = static_cast<std::size_t>(code.data() - source_.data());
    const auto column = static_cast<std::uint32_t>(offset - lineOffsets_[line - 1] + 1);
    addText(tokenize(code), {line, column});
    walk(*call.args.front(), texts_.size() - 1);
}

void Places::note(const Node& node, std::size_t text) {
    if (text != 0) embedded_[&node] = text;
}

std::size_t Places::textNumberOf(const Node& node) const {
    const auto found = embedded_.find(&node);
    return found == embedded_.end() ? 0 : found->second;
}

// The ends of lines repeat the position of the token before them.
std::size_t Places::tokenAt(const Text& text, const Node& node) {
    const auto found = std::ranges::lower_bound(
        text.tokens, std::pair(node.line, node.column), {},
        [](const Token& token) { return std::pair(token.line, token.column); });
    return static_cast<std::size_t>(found - text.tokens.begin());
}

// The code in a "${...}" stands on one line.
Position Places::placeOf(const Text& text, std::size_t token) const {
    const Token& found = text.tokens[token];
    if (found.line != 1) return {found.line, found.column};
    return {text.origin.line, text.origin.column + found.column - 1};
}

Position Places::of(const Node& node) const {
    const std::size_t number = textNumberOf(node);
    if (number == 0 || node.line != 1) return {node.line, node.column};
    const Position origin = texts_[number].origin;
    return {origin.line, origin.column + node.column - 1};
}

Position Places::beginningOf(const Stmt& stmt) const {
    if (stmt.stmtKind() == StmtKind::Expr) return beginningOf(*as<ExprStmt>(stmt).expr);
    if (stmt.stmtKind() == StmtKind::Assign) return beginningOf(*as<AssignStmt>(stmt).target);
    return of(stmt);
}

Position Places::beginningOf(const Expr& expr) const {
    const Expr* first = &expr;
    while (const Expr* const operand = firstOperand(*first)) first = operand;
    return of(*first);
}

Position Places::declaredName(const Stmt& declaration) const {
    const Text& text = texts_[textNumberOf(declaration)];
    const std::size_t keyword = tokenAt(text, declaration);
    return placeOf(text, text.partners[keyword] + 1);
}

Position Places::parameter(const Node& function, std::size_t index) const {
    const Text& text = texts_[textNumberOf(function)];
    std::size_t token = tokenAt(text, function) + 1;
    if (text.tokens[token].kind == TokenKind::Name) ++token;
    return placeOf(text, token + 1 + 2 * index);
}

bool Places::isLeftGrouped(const BinaryExpr& expr) const {
    const Text& text = texts_[textNumberOf(expr)];
    const std::size_t close = tokenAt(text, expr) - 1;
    if (text.tokens[close].kind != TokenKind::RightParen) return false;
    return text.partners[close] < tokenAt(text, *expr.left);
}

bool Places::isInterpolation(const CallExpr& expr) const {
    const Text& text = texts_[textNumberOf(expr)];
    return text.tokens[tokenAt(text, expr)].kind == TokenKind::InterpString;
}

}  // namespace pellum::lint
