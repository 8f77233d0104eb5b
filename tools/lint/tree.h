// Ways through a syntax tree that all rules share. A chain such as `a + b + c` or `f(x)(y).z` is as
// deep a tree as it is long, and its first operand lies at the bottom; who follows `spineOf` needs
// no stack for it.
#pragma once

#include "parser/ast.h"

#include <vector>

namespace pellum::lint {

// Throws a ParseError where the host's stack is nearly used up, as the parser does.
void checkNesting(const Node& node);

// The expression that `expr` begins with and then goes on from, or null.
const Expr* firstOperand(const Expr& expr) noexcept;

// `expr`, its first operand, the first operand of that, and so on, innermost first.
std::vector<const Expr*> spineOf(const Expr& expr);

// Calls `visit` with each expression directly inside `expr` but its first operand, in the order of
// the source. Functions are not entered.
template <typename Visit>
void forEachFurtherOperand(const Expr& expr, Visit visit) {
    switch (expr.exprKind()) {
        case ExprKind::Literal:
        case ExprKind::Name:
        case ExprKind::Get:
        case ExprKind::Function: return;
        case ExprKind::ListLit:
            for (const ExprPtr& element : as<ListLitExpr>(expr).elements) visit(*element);
            return;
        case ExprKind::MapLit:
            for (const auto& [key, value] : as<MapLitExpr>(expr).entries) {
                visit(*key);
                visit(*value);
            }
            return;
        case ExprKind::Unary: return visit(*as<UnaryExpr>(expr).operand);
        case ExprKind::Binary: return visit(*as<BinaryExpr>(expr).right);
        case ExprKind::Call:
            for (const ExprPtr& arg : as<CallExpr>(expr).args) visit(*arg);
            return;
        case ExprKind::Index: return visit(*as<IndexExpr>(expr).index);
    }
}

// Calls `visit` with each expression directly inside `stmt`, in the order of the source.
template <typename Visit>
void forEachExpression(const Stmt& stmt, Visit visit) {
    switch (stmt.stmtKind()) {
        case StmtKind::Let: return visit(*as<LetStmt>(stmt).init);
        case StmtKind::Assign:
            visit(*as<AssignStmt>(stmt).target);
            return visit(*as<AssignStmt>(stmt).value);
        case StmtKind::Expr: return visit(*as<ExprStmt>(stmt).expr);
        case StmtKind::If:
            for (const IfStmt::Branch& branch : as<IfStmt>(stmt).branches) {
                if (branch.cond) visit(*branch.cond);
            }
            return;
        case StmtKind::While: return visit(*as<WhileStmt>(stmt).cond);
        case StmtKind::NumericFor: {
            const auto& loop = as<NumericForStmt>(stmt);
            visit(*loop.start);
            visit(*loop.end);
            if (loop.step) visit(*loop.step);
            return;
        }
        case StmtKind::ForIn: return visit(*as<ForInStmt>(stmt).iterable);
        case StmtKind::Return:
            if (as<ReturnStmt>(stmt).value) visit(*as<ReturnStmt>(stmt).value);
            return;
        case StmtKind::FunctionDecl:
        case StmtKind::Break:
        case StmtKind::Continue:
        case StmtKind::Try: return;
    }
}

// Calls `visit` with each block directly inside `stmt`; the body of a function is none.
template <typename Visit>
void forEachBlock(const Stmt& stmt, Visit visit) {
    switch (stmt.stmtKind()) {
        case StmtKind::If:
            for (const IfStmt::Branch& branch : as<IfStmt>(stmt).branches) visit(branch.body);
            return;
        case StmtKind::While: return visit(as<WhileStmt>(stmt).body);
        case StmtKind::NumericFor: return visit(as<NumericForStmt>(stmt).body);
        case StmtKind::ForIn: return visit(as<ForInStmt>(stmt).body);
        case StmtKind::Try: visit(as<TryStmt>(stmt).body); return visit(as<TryStmt>(stmt).handler);
        case StmtKind::Let:
        case StmtKind::Assign:
        case StmtKind::Expr:
        case StmtKind::FunctionDecl:
        case StmtKind::Return:
        case StmtKind::Break:
        case StmtKind::Continue: return;
    }
}

}  // namespace pellum::lint
