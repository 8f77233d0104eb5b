#include "parser/parser_impl.h"

#include "lexer/lexer.h"

namespace pellum {

namespace {

bool endsBlock(TokenKind kind) noexcept {
    switch (kind) {
        case TokenKind::Elif:
        case TokenKind::Else:
        case TokenKind::End:
        case TokenKind::Catch:
        case TokenKind::EndOfFile: return true;
        default: return false;
    }
}

bool endsStatement(TokenKind kind) noexcept {
    return kind == TokenKind::EndOfLine || endsBlock(kind);
}

// assignment-operator  ::=  "=" | "+=" | "-=" | "*=" | "/=" | "//=" | "%=" | "^="
bool isAssignment(TokenKind kind) noexcept {
    return kind == TokenKind::Assign ||
           (kind >= TokenKind::PlusAssign && kind <= TokenKind::CaretAssign);
}

bool isAssignable(const Expr& expr) noexcept {
    switch (expr.exprKind()) {
        case ExprKind::Name:
        case ExprKind::Index:
        case ExprKind::Get: return true;
        default: return false;
    }
}

}  // namespace

// block  ::=  { line-end } [ statement { line-end { line-end } statement } ] { line-end }
// Who called checks which token ends the block.
Block Parser::block() {
    Block statements;
    for (skipLineEnds(); !endsBlock(current().kind); skipLineEnds()) {
        statements.push_back(statement());
        if (!endsStatement(current().kind)) {
            fail("expected end of statement, got " + description());
        }
    }
    return statements;
}

// statement  ::=  let | function | return | if | while | for | break | continue | try
//              |  expression-statement
// break  ::=  "break"
// continue  ::=  "continue"
StmtPtr Parser::statement() {
    checkNesting();
    switch (current().kind) {
        case TokenKind::Let: return letStatement();
        case TokenKind::Function:
            return nextIs(TokenKind::Name) ? functionDeclaration() : expressionStatement();
        case TokenKind::Return: return returnStatement();
        case TokenKind::If: return ifStatement();
        case TokenKind::While: return whileStatement();
        case TokenKind::For: return forStatement();
        case TokenKind::Break: return makeNode<BreakStmt>(advance());
        case TokenKind::Continue: return makeNode<ContinueStmt>(advance());
        case TokenKind::Try: return tryStatement();
        default: return expressionStatement();
    }
}

// let  ::=  "let" name "=" expression
StmtPtr Parser::letStatement() {
    auto let = makeNode<LetStmt>(advance());
    let->name = expectName("a variable name after 'let'");
    expect(TokenKind::Assign, "'=' in let declaration");
    let->init = expression();
    return let;
}

// function  ::=  "function" name function-rest
StmtPtr Parser::functionDeclaration() {
    auto declaration = makeNode<FunctionDeclStmt>(advance());
    declaration->function.name = Symbol(advance().text);
    functionRest(declaration->function);
    return declaration;
}

// function-rest  ::=  params block "end"
void Parser::functionRest(FunctionLiteral& function) {
    function.params = params();
    function.body = block();
    expect(TokenKind::End, "'end' to close function");
}

// params  ::=  "(" [ name { "," name } ] ")"
std::vector<Symbol> Parser::params() {
    std::vector<Symbol> names;
    expect(TokenKind::LeftParen, "'(' before parameters");
    if (!at(TokenKind::RightParen)) {
        do {
            names.push_back(expectName("a parameter name"));
        } while (accept(TokenKind::Comma));
    }
    expect(TokenKind::RightParen, "')' after parameters");
    return names;
}

// return  ::=  "return" [ expression ]
StmtPtr Parser::returnStatement() {
    auto result = makeNode<ReturnStmt>(advance());
    if (!endsStatement(current().kind)) result->value = expression();
    return result;
}

// if  ::=  "if" expression "then" block { "elif" expression "then" block } [ "else" block ] "end"
StmtPtr Parser::ifStatement() {
    auto choice = makeNode<IfStmt>(advance());
    const auto branch = [&](const char* afterCondition) {
        ExprPtr condition = expression();
        expect(TokenKind::Then, afterCondition);
        choice->branches.push_back({std::move(condition), block()});
    };
    branch("'then' after if condition");
    while (accept(TokenKind::Elif)) branch("'then' after elif condition");
    if (accept(TokenKind::Else)) choice->branches.push_back({nullptr, block()});
    expect(TokenKind::End, "'end' to close if");
    return choice;
}

// while  ::=  "while" expression "do" block "end"
StmtPtr Parser::whileStatement() {
    auto loop = makeNode<WhileStmt>(advance());
    loop->cond = expression();
    expect(TokenKind::Do, "'do' after while condition");
    loop->body = block();
    expect(TokenKind::End, "'end' to close while");
    return loop;
}

// for  ::=  "for" name ( numeric-for | for-in )
StmtPtr Parser::forStatement() {
    const Token& keyword = advance();
    Symbol variable = expectName("a loop variable after 'for'");
    if (accept(TokenKind::Assign)) return numericFor(keyword, std::move(variable));
    if (accept(TokenKind::In)) return forIn(keyword, std::move(variable));
    fail("expected '=' or 'in' in for loop");
}

// numeric-for  ::=  "=" expression "," expression [ "," expression ] "do" block "end"
StmtPtr Parser::numericFor(const Token& keyword, Symbol variable) {
    auto loop = makeNode<NumericForStmt>(keyword);
    loop->var = std::move(variable);
    loop->start = expression();
    expect(TokenKind::Comma, "',' after the numeric-for start value");
    loop->end = expression();
    if (accept(TokenKind::Comma)) loop->step = expression();
    expect(TokenKind::Do, "'do' after numeric-for header");
    loop->body = block();
    expect(TokenKind::End, "'end' to close for");
    return loop;
}

// for-in  ::=  "in" expression "do" block "end"
StmtPtr Parser::forIn(const Token& keyword, Symbol variable) {
    auto loop = makeNode<ForInStmt>(keyword);
    loop->var = std::move(variable);
    loop->iterable = expression();
    expect(TokenKind::Do, "'do' after for-in header");
    loop->body = block();
    expect(TokenKind::End, "'end' to close for");
    return loop;
}

// try  ::=  "try" block "catch" name block "end"
StmtPtr Parser::tryStatement() {
    auto attempt = makeNode<TryStmt>(advance());
    attempt->body = block();
    expect(TokenKind::Catch, "'catch' after try body");
    attempt->catchVar = expectName("a variable name after 'catch'");
    attempt->handler = block();
    expect(TokenKind::End, "'end' to close try");
    return attempt;
}

// expression-statement  ::=  expression [ assignment-operator expression ]
// The expression before the operator must be a name, an element or a field.
StmtPtr Parser::expressionStatement() {
    ExprPtr expr = expression();
    if (!isAssignment(current().kind)) {
        std::unique_ptr<ExprStmt, NodeDeleter> statement(new ExprStmt(expr->line, expr->column));
        statement->expr = std::move(expr);
        return statement;
    }
    if (!isAssignable(*expr)) fail("invalid assignment target");
    const Token& assignment = advance();
    auto assign = makeNode<AssignStmt>(assignment);
    assign->target = std::move(expr);
    const std::string_view spelling = spellingOf(assignment.kind);
    assign->setOperator(spelling.substr(0, spelling.size() - 1));  // what stands before the "="
    assign->value = expression();
    return assign;
}

}  // namespace pellum
