#include "lint/tree.h"

#include "driver/errors/errors.h"
#include "value/host_stack.h"

#include <algorithm>

namespace pellum::lint {

void checkNesting(const Node& node) {
    if (hostStackIsLow()) throw ParseError("nesting too deep", node.line, node.column);
}

const Expr* firstOperand(const Expr& expr) noexcept {
    switch (expr.exprKind()) {
        case ExprKind::Binary: return as<BinaryExpr>(expr).left.get();
        case ExprKind::Call: return as<CallExpr>(expr).callee.get();
        case ExprKind::Index: return as<IndexExpr>(expr).object.get();
        case ExprKind::Get: return as<GetExpr>(expr).object.get();
        case ExprKind::Literal:
        case ExprKind::ListLit:
        case ExprKind::MapLit:
        case ExprKind::Name:
        case ExprKind::Unary:
        case ExprKind::Function: return nullptr;
    }
    return nullptr;
}

std::vector<const Expr*> spineOf(const Expr& expr) {
    std::vector<const Expr*> spine;
    for (const Expr* at = &expr; at; at = firstOperand(*at)) spine.push_back(at);
    std::ranges::reverse(spine);
    return spine;
}

}  // namespace pellum::lint
