// What the random programs of the first fixed seeds are made of: every token, every kind of node,
// every operator in every place, every builtin, and the constructions that engines stumble over.
#include "agreement/generator.h"

#include "builtins/builtins.h"
#include "fuzz/tree_children.h"
#include "lexer/lexer.h"
#include "parser/parser.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <set>
#include <string>

namespace pellum::test {

namespace {

constexpr std::uint64_t programs = 400;

// Names what it comes across.
class Explorer {
public:
    std::set<std::string> seen;

    void program(pellum::Block& block) { statements(block, {}); }

private:
    // What is around a node, within its function but for the last.
    struct Around {
        bool isInLoop = false, isInTry = false, isInCatch = false, isInFunction = false;
        bool isInTryOfLoop = false;  // with no loop in between
    };

    void note(const std::string& what) { seen.insert(what); }

    void statements(pellum::Block& block, Around around) {
        for (StmtPtr& stmt : block) statement(*stmt, around);
    }

    void function(FunctionLiteral& function, Around around) {
        note("function with " + std::to_string(function.params.size()) + " parameters");
        if (around.isInLoop) note("function in a loop");
        if (around.isInFunction) note("function in a function");
        if (around.isInTry) note("function in a try");
        Around inside;
        inside.isInFunction = true;
        statements(function.body, inside);
    }

    void statement(Stmt& stmt, Around around) {
        note("statement " + std::to_string(stmt.kind));
        Around inside = around;
        switch (stmt.stmtKind()) {
            case StmtKind::Assign: assignment(fuzz::edit<AssignStmt>(stmt)); break;
            case StmtKind::If:
                note("if of " + std::to_string(fuzz::edit<IfStmt>(stmt).branches.size()));
                break;
            case StmtKind::NumericFor:
                note(fuzz::edit<NumericForStmt>(stmt).step ? "for with a step"
                                                           : "for without a step");
                [[fallthrough]];
            case StmtKind::ForIn:
            case StmtKind::While:
                if (around.isInLoop) note("loop in a loop");
                if (around.isInTry) note("loop in a try");
                inside.isInLoop = true;
                inside.isInTryOfLoop = false;
                break;
            case StmtKind::Return:
                note(fuzz::edit<ReturnStmt>(stmt).value ? "return of a value" : "bare return");
                if (around.isInTry) note("return out of a try");
                if (around.isInLoop) note("return out of a loop");
                if (!around.isInFunction) note("return of the script");
                break;
            case StmtKind::Break:
                if (around.isInTryOfLoop) note("break out of a try");
                break;
            case StmtKind::Continue:
                if (around.isInTryOfLoop) note("continue out of a try");
                break;
            case StmtKind::Try: {
                if (around.isInTry) note("try in a try");
                if (around.isInCatch) note("try in a catch");
                if (around.isInLoop) note("try in a loop");
                inside.isInTry = true;
                inside.isInTryOfLoop = around.isInLoop;
                Around caught = around;
                caught.isInCatch = true;
                statements(fuzz::edit<TryStmt>(stmt).body, inside);
                statements(fuzz::edit<TryStmt>(stmt).handler, caught);
                return;
            }
            case StmtKind::Let:
            case StmtKind::Expr:
            case StmtKind::FunctionDecl: break;
        }
        fuzz::forEachChild(
            stmt, [&](ExprPtr& expr) { expression(*expr, around); },
            [&](FunctionLiteral& literal) { function(literal, around); },
            [&](pellum::Block& block) { statements(block, inside); });
    }

    void assignment(AssignStmt& stmt) {
        const char* const target = stmt.target->exprKind() == ExprKind::Name    ? "name"
                                   : stmt.target->exprKind() == ExprKind::Index ? "element"
                                                                                : "field";
        note(std::string(target) + " " + std::string(stmt.op) + "=");
    }

    void expression(Expr& expr, Around around) {
        note("expression " + std::to_string(expr.kind));
        if (expr.exprKind() == ExprKind::Binary)
            note("a " + std::string(as<BinaryExpr>(expr).op) + " b");
        if (expr.exprKind() == ExprKind::Unary) note(std::string(as<UnaryExpr>(expr).op) + " a");
        if (expr.exprKind() == ExprKind::Call) {
            const Expr& callee = *as<CallExpr>(expr).callee;
            if (callee.exprKind() == ExprKind::Name) {
                note("call of " + std::string(as<NameExpr>(callee).name.text()));
            }
        }
        fuzz::forEachChild(
            expr, [&](ExprPtr& child) { expression(*child, around); },
            [&](FunctionLiteral& literal) { function(literal, around); });
    }
};

TEST(Agreement, ProgramsAreMadeOfEverything) {
    Explorer explorer;
    std::set<TokenKind> tokens;
    for (std::uint64_t seed = 1; seed <= programs; ++seed) {
        const std::string source = textOf(generateProgram(seed));
        auto found = tokenize(source);
        for (const Token& token : found) tokens.insert(token.kind);
        auto program = parse(std::move(found));
        explorer.program(program);
    }
    for (std::uint32_t kind = 0; kind <= static_cast<std::uint32_t>(TokenKind::EndOfFile); ++kind) {
        EXPECT_TRUE(tokens.contains(static_cast<TokenKind>(kind))) << "no token of kind " << kind;
    }

    const auto expectSeen = [&](const std::string& what) {
        EXPECT_TRUE(explorer.seen.contains(what))
            << "none of " << programs << " programs has: " << what;
    };
    for (std::uint32_t kind = 0; kind <= static_cast<std::uint32_t>(StmtKind::Try); ++kind) {
        expectSeen("statement " + std::to_string(kind));
    }
    for (std::uint32_t kind = 0; kind <= static_cast<std::uint32_t>(ExprKind::Function); ++kind) {
        expectSeen("expression " + std::to_string(kind));
    }
    for (const std::string op :
         {"+", "-", "*", "/", "//", "%", "^", "==", "!=", "<", "<=", ">", ">=", "and", "or"}) {
        expectSeen("a " + op + " b");
    }
    for (const std::string target : {"name", "element", "field"}) {
        for (const std::string op : {"", "+", "-", "*", "/", "//", "%", "^"}) {
            expectSeen(target + " " + op + "=");
        }
    }
    for (const Builtin& row : builtinCatalogue()) expectSeen(std::string("call of ") + row.name);
    for (const char* what : {"- a",
                             "not a",
                             "if of 1",
                             "if of 2",
                             "if of 3",
                             "if of 4",
                             "for with a step",
                             "for without a step",
                             "loop in a loop",
                             "loop in a try",
                             "return of a value",
                             "bare return",
                             "return out of a try",
                             "return out of a loop",
                             "return of the script",
                             "break out of a try",
                             "continue out of a try",
                             "try in a try",
                             "try in a catch",
                             "try in a loop",
                             "function in a loop",
                             "function in a function",
                             "function in a try",
                             "function with 0 parameters",
                             "function with 1 parameters",
                             "function with 3 parameters"}) {
        expectSeen(what);
    }
}

}  // namespace

}  // namespace pellum::test
