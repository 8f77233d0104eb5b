// The children of a syntax tree's nodes, for those who edit a tree before it is run.
#pragma once

#include "parser/ast.h"

namespace pellum::fuzz {

// The node as what its kind says it is, to be changed.
template <typename T, typename Base>
T& edit(Base& node) noexcept {
    return const_cast<T&>(as<T>(node));
}

// Calls `onExpr` with each expression and `onFunction` with each function directly inside `expr`,
// in the order of the source.
template <typename OnExpr, typename OnFunction>
void forEachChild(Expr& expr, OnExpr onExpr, OnFunction onFunction) {
    switch (expr.exprKind()) {
        case ExprKind::Literal:
        case ExprKind::Name: return;
        case ExprKind::ListLit:
            for (ExprPtr& element : edit<ListLitExpr>(expr).elements) onExpr(element);
            return;
        case ExprKind::MapLit:
            for (auto& [key, value] : edit<MapLitExpr>(expr).entries) {
                onExpr(key);
                onExpr(value);
            }
            return;
        case ExprKind::Unary: return onExpr(edit<UnaryExpr>(expr).operand);
        case ExprKind::Binary:
            onExpr(edit<BinaryExpr>(expr).left);
            return onExpr(edit<BinaryExpr>(expr).right);
        case ExprKind::Call:
            onExpr(edit<CallExpr>(expr).callee);
            for (ExprPtr& arg : edit<CallExpr>(expr).args) onExpr(arg);
            return;
        case ExprKind::Index:
            onExpr(edit<IndexExpr>(expr).object);
            return onExpr(edit<IndexExpr>(expr).index);
        case ExprKind::Get: return onExpr(edit<GetExpr>(expr).object);
        case ExprKind::Function: return onFunction(edit<FunctionExpr>(expr).function);
    }
}

// The same for a statement, whose blocks go to `onBlock`.
template <typename OnExpr, typename OnFunction, typename OnBlock>
void forEachChild(Stmt& stmt, OnExpr onExpr, OnFunction onFunction, OnBlock onBlock) {
    switch (stmt.stmtKind()) {
        case StmtKind::Let: return onExpr(edit<LetStmt>(stmt).init);
        case StmtKind::Assign:
            onExpr(edit<AssignStmt>(stmt).target);
            return onExpr(edit<AssignStmt>(stmt).value);
        case StmtKind::Expr: return onExpr(edit<ExprStmt>(stmt).expr);
        case StmtKind::If:
            for (IfStmt::Branch& branch : edit<IfStmt>(stmt).branches) {
                if (branch.cond) onExpr(branch.cond);
                onBlock(branch.body);
            }
            return;
        case StmtKind::While:
            onExpr(edit<WhileStmt>(stmt).cond);
            return onBlock(edit<WhileStmt>(stmt).body);
        case StmtKind::NumericFor: {
            auto& loop = edit<NumericForStmt>(stmt);
            onExpr(loop.start);
            onExpr(loop.end);
            if (loop.step) onExpr(loop.step);
            return onBlock(loop.body);
        }
        case StmtKind::ForIn:
            onExpr(edit<ForInStmt>(stmt).iterable);
            return onBlock(edit<ForInStmt>(stmt).body);
        case StmtKind::FunctionDecl: return onFunction(edit<FunctionDeclStmt>(stmt).function);
        case StmtKind::Return:
            if (edit<ReturnStmt>(stmt).value) onExpr(edit<ReturnStmt>(stmt).value);
            return;
        case StmtKind::Break:
        case StmtKind::Continue: return;
        case StmtKind::Try:
            onBlock(edit<TryStmt>(stmt).body);
            return onBlock(edit<TryStmt>(stmt).handler);
    }
}

}  // namespace pellum::fuzz
