#include "format/same_tree.h"

#include "value/format.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace pellum::tools {

namespace {

// Compares two nodes by themselves and puts off their children. Each function for a type of node
// answers whether what is not a child is the same.
class TreeComparison {
public:
    bool run(const Block& first, const Block& second) {
        if (!blocks(first, second)) return false;
        while (!pending_.empty()) {
            const auto [one, other, isStatement] = pending_.back();
            pending_.pop_back();
            if (one->kind != other->kind) return false;
            const bool isSame =
                isStatement
                    ? statement(static_cast<const Stmt&>(*one), static_cast<const Stmt&>(*other))
                    : expression(static_cast<const Expr&>(*one), static_cast<const Expr&>(*other));
            if (!isSame) return false;
        }
        return true;
    }

private:
    struct Pair {
        const Node* one;
        const Node* other;
        bool isStatement;
    };

    // The two nodes as what their common kind says, for a comparison of their fields.
    template <typename T, typename Base, typename Compare>
    static bool both(const Base& one, const Base& other, Compare compare) {
        return compare(as<T>(one), as<T>(other));
    }

    bool child(const ExprPtr& one, const ExprPtr& other) {
        if (!one || !other) return !one && !other;
        pending_.push_back({one.get(), other.get(), false});
        return true;
    }

    bool children(const std::vector<ExprPtr>& one, const std::vector<ExprPtr>& other) {
        return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                          [&](const auto& a, const auto& b) { return child(a, b); });
    }

    bool blocks(const Block& one, const Block& other) {
        for (std::size_t i = 0; i < std::min(one.size(), other.size()); ++i) {
            pending_.push_back({one[i].get(), other[i].get(), true});
        }
        return one.size() == other.size();
    }

    bool functions(const FunctionLiteral& one, const FunctionLiteral& other) {
        return one.name == other.name && one.params == other.params && blocks(one.body, other.body);
    }

    bool statement(const Stmt& first, const Stmt& second) {
        switch (first.stmtKind()) {
            case StmtKind::Let:
                return both<LetStmt>(first, second, [&](auto& a, auto& b) {
                    return a.name == b.name && child(a.init, b.init);
                });
            case StmtKind::Assign:
                return both<AssignStmt>(first, second, [&](auto& a, auto& b) {
                    return a.op == b.op && child(a.target, b.target) && child(a.value, b.value);
                });
            case StmtKind::Expr:
                return both<ExprStmt>(first, second,
                                      [&](auto& a, auto& b) { return child(a.expr, b.expr); });
            case StmtKind::If:
                return both<IfStmt>(first, second, [&](auto& a, auto& b) {
                    return std::equal(a.branches.begin(), a.branches.end(), b.branches.begin(),
                                      b.branches.end(), [&](auto& x, auto& y) {
                                          return child(x.cond, y.cond) && blocks(x.body, y.body);
                                      });
                });
            case StmtKind::While:
                return both<WhileStmt>(first, second, [&](auto& a, auto& b) {
                    return child(a.cond, b.cond) && blocks(a.body, b.body);
                });
            case StmtKind::NumericFor:
                return both<NumericForStmt>(first, second, [&](auto& a, auto& b) {
                    return a.var == b.var && child(a.start, b.start) && child(a.end, b.end) &&
                           child(a.step, b.step) && blocks(a.body, b.body);
                });
            case StmtKind::ForIn:
                return both<ForInStmt>(first, second, [&](auto& a, auto& b) {
                    return a.var == b.var && child(a.iterable, b.iterable) &&
                           blocks(a.body, b.body);
                });
            case StmtKind::FunctionDecl:
                return both<FunctionDeclStmt>(first, second, [&](auto& a, auto& b) {
                    return functions(a.function, b.function);
                });
            case StmtKind::Return:
                return both<ReturnStmt>(first, second,
                                        [&](auto& a, auto& b) { return child(a.value, b.value); });
            case StmtKind::Break:
            case StmtKind::Continue: return true;
            case StmtKind::Try:
                return both<TryStmt>(first, second, [&](auto& a, auto& b) {
                    return a.catchVar == b.catchVar && blocks(a.body, b.body) &&
                           blocks(a.handler, b.handler);
                });
        }
        return false;
    }

    bool expression(const Expr& first, const Expr& second) {
        switch (first.exprKind()) {
            case ExprKind::Literal:
                return both<LiteralExpr>(first, second, [](auto& a, auto& b) {
                    return toReprString(a.value) == toReprString(b.value);
                });
            case ExprKind::ListLit:
                return both<ListLitExpr>(first, second, [&](auto& a, auto& b) {
                    return children(a.elements, b.elements);
                });
            case ExprKind::MapLit:
                return both<MapLitExpr>(first, second, [&](auto& a, auto& b) {
                    return std::equal(a.entries.begin(), a.entries.end(), b.entries.begin(),
                                      b.entries.end(), [&](auto& x, auto& y) {
                                          return child(x.first, y.first) &&
                                                 child(x.second, y.second);
                                      });
                });
            case ExprKind::Name:
                return both<NameExpr>(first, second,
                                      [](auto& a, auto& b) { return a.name == b.name; });
            case ExprKind::Unary:
                return both<UnaryExpr>(first, second, [&](auto& a, auto& b) {
                    return a.op == b.op && child(a.operand, b.operand);
                });
            case ExprKind::Binary:
                return both<BinaryExpr>(first, second, [&](auto& a, auto& b) {
                    return a.op == b.op && child(a.left, b.left) && child(a.right, b.right);
                });
            case ExprKind::Call:
                return both<CallExpr>(first, second, [&](auto& a, auto& b) {
                    return child(a.callee, b.callee) && children(a.args, b.args);
                });
            case ExprKind::Index:
                return both<IndexExpr>(first, second, [&](auto& a, auto& b) {
                    return child(a.object, b.object) && child(a.index, b.index);
                });
            case ExprKind::Get:
                return both<GetExpr>(first, second, [&](auto& a, auto& b) {
                    return a.name == b.name && child(a.object, b.object);
                });
            case ExprKind::Function:
                return both<FunctionExpr>(first, second, [&](auto& a, auto& b) {
                    return functions(a.function, b.function);
                });
        }
        return false;
    }

    std::vector<Pair> pending_;
};

}  // namespace

bool isSameTree(const Block& first, const Block& second) {
    return TreeComparison().run(first, second);
}

}  // namespace pellum::tools
