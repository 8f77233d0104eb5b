#include "lint/code_checker.h"

#include <algorithm>

namespace pellum::lint {

namespace {

// clang-format off
constexpr std::string_view withoutEffects[] = {
    "abs", "bin", "bool", "capitalize", "ceil", "char", "chars", "clamp", "clock", "contains",
    "copy", "cos", "count", "ends_with", "enumerate", "exp", "find", "floor", "get", "has", "hex",
    "is_bool", "is_function", "is_list", "is_map", "is_nil", "is_number", "is_string", "items",
    "join", "keys", "len", "log", "lower", "max", "min", "oct", "ord", "pow", "range", "repeat",
    "replace", "repr", "reverse", "round", "sign", "sin", "slice", "sort", "split", "sqrt",
    "starts_with", "str", "sum", "tan", "trim", "type", "upper", "values", "zip",
};
// clang-format on

// Whether reading both gives the same variable or element, without a call in between.
bool isSamePlace(const Expr& left, const Expr& right) {
    const Expr* a = &left;
    const Expr* b = &right;
    for (;;) {
        if (a->kind != b->kind) return false;
        switch (a->exprKind()) {
            case ExprKind::Name: return as<NameExpr>(*a).name == as<NameExpr>(*b).name;
            case ExprKind::Get:
                if (as<GetExpr>(*a).name != as<GetExpr>(*b).name) return false;
                break;
            case ExprKind::Index: {
                const Expr& i = *as<IndexExpr>(*a).index;
                const Expr& j = *as<IndexExpr>(*b).index;
                if (i.kind != j.kind) return false;
                if (i.exprKind() == ExprKind::Name) {
                    if (as<NameExpr>(i).name != as<NameExpr>(j).name) return false;
                } else if (i.exprKind() != ExprKind::Literal ||
                           !valuesEqual(as<LiteralExpr>(i).value, as<LiteralExpr>(j).value)) {
                    return false;
                }
                break;
            }
            default: return false;
        }
        a = firstOperand(*a);
        b = firstOperand(*b);
    }
}

}  // namespace

std::span<const std::string_view> builtinsWithoutEffects() noexcept { return withoutEffects; }

void checkCode(const Block& program, const Names& names, const Places& places, Findings& findings) {
    CodeChecker(names, places, findings).block(program);
}

// The rest of a block behind a statement that control never leaves is reported once, at its
// beginning.
bool CodeChecker::block(const Block& block) {
    bool isReached = true;
    bool isReported = false;
    for (const StmtPtr& stmt : block) {
        if (!isReached && !std::exchange(isReported, true)) {
            report(places_.beginningOf(*stmt), Rule::UnreachableCode,
                   "this statement is never reached");
        }
        if (!statement(*stmt)) isReached = false;
    }
    return isReached;
}

bool CodeChecker::statement(const Stmt& stmt) {
    checkNesting(stmt);
    switch (stmt.stmtKind()) {
        case StmtKind::Let: expression(*as<LetStmt>(stmt).init); return true;
        case StmtKind::Assign: assignment(as<AssignStmt>(stmt)); return true;
        case StmtKind::Expr: return expressionStatement(as<ExprStmt>(stmt));
        case StmtKind::If: return ifStatement(as<IfStmt>(stmt));
        case StmtKind::While: return whileLoop(as<WhileStmt>(stmt));
        case StmtKind::NumericFor: numericFor(as<NumericForStmt>(stmt)); return true;
        case StmtKind::ForIn: forIn(as<ForInStmt>(stmt)); return true;
        case StmtKind::FunctionDecl: function(as<FunctionDeclStmt>(stmt).function); return true;
        case StmtKind::Return:
            if (as<ReturnStmt>(stmt).value) expression(*as<ReturnStmt>(stmt).value);
            return false;
        case StmtKind::Break: leaveLoop(stmt, "break"); return false;
        case StmtKind::Continue: leaveLoop(stmt, "continue"); return false;
        case StmtKind::Try: return tryStatement(as<TryStmt>(stmt));
    }
    return true;
}

bool CodeChecker::ifStatement(const IfStmt& stmt) {
    bool goesOn = false;
    for (const IfStmt::Branch& branch : stmt.branches) {
        if (branch.cond) condition(*branch.cond);
        goesOn |= block(branch.body);
    }
    return goesOn || stmt.branches.back().cond;
}

// `while true` is how a loop is written that is left from within.
bool CodeChecker::whileLoop(const WhileStmt& stmt) {
    const Expr& cond = *stmt.cond;
    const bool isTrue = cond.exprKind() == ExprKind::Literal &&
                        as<LiteralExpr>(cond).value.isBool() &&
                        as<LiteralExpr>(cond).value.asBool();
    const Truth truth = isTrue ? Truth::Always : condition(cond).truth;
    loops_.push_back({tries_});
    block(stmt.body);
    const bool isLeft = loops_.back().isLeft;
    loops_.pop_back();
    return isLeft || truth != Truth::Always;
}

void CodeChecker::numericFor(const NumericForStmt& stmt) {
    forEachExpression(stmt, [&](const Expr& expr) {
        const Known known = expression(expr);
        if (known.type != Type::Unknown && known.type != Type::Number) {
            report(places_.beginningOf(expr), Rule::BadOperand,
                   "a loop cannot count by " + std::string(withArticle(known.type)));
        }
    });
    loops_.push_back({tries_});
    block(stmt.body);
    loops_.pop_back();
}

void CodeChecker::forIn(const ForInStmt& stmt) {
    const Type type = expression(*stmt.iterable).type;
    if (type == Type::Nil || type == Type::Bool || type == Type::Number || type == Type::Function) {
        report(places_.beginningOf(*stmt.iterable), Rule::BadOperand,
               "a loop cannot visit " + std::string(withArticle(type)));
    }
    loops_.push_back({tries_});
    block(stmt.body);
    loops_.pop_back();
}

// What fails in the body goes on in the handler.
bool CodeChecker::tryStatement(const TryStmt& stmt) {
    ++tries_;
    const bool bodyGoesOn = block(stmt.body);
    --tries_;
    return block(stmt.handler) || bodyGoesOn;
}

void CodeChecker::leaveLoop(const Stmt& stmt, const char* word) {
    const std::string quoted = "'" + std::string(word) + "'";
    if (loops_.empty()) {
        report(stmt, Rule::StrayExit, quoted + " stands in no loop of its function");
        return;
    }
    Loop& loop = loops_.back();
    loop.isLeft |= stmt.stmtKind() == StmtKind::Break;
    if (tries_ > loop.tries) {
        report(stmt, Rule::TryExit,
               quoted + " leaves a 'try', whose 'catch' stays in force on the virtual machine");
    }
}

bool CodeChecker::expressionStatement(const ExprStmt& stmt) {
    const Known known = expression(*stmt.expr);
    if (!known.hasCall) {
        // In a `try`, an operation may be there for the error that it raises.
        const bool mayFail =
            stmt.expr->exprKind() != ExprKind::Name && stmt.expr->exprKind() != ExprKind::Literal;
        if (tries_ > 0 && mayFail) return true;
        report(places_.beginningOf(stmt), Rule::NoEffect, "this value is dropped");
        return true;
    }
    if (stmt.expr->exprKind() != ExprKind::Call) return true;
    const auto& call = as<CallExpr>(*stmt.expr);
    const NativeObj* const builtin = names_.builtin(*call.callee);
    if (!builtin || places_.isInterpolation(call)) return true;
    if (std::ranges::find(withoutEffects, builtin->name) != std::end(withoutEffects)) {
        report(places_.beginningOf(stmt), Rule::DroppedResult,
               "'" + builtin->name + "' changes nothing, and the value that it gives is dropped");
    }
    return builtin->name != "error";
}

void CodeChecker::assignment(const AssignStmt& stmt) {
    if (stmt.target->exprKind() != ExprKind::Name) expression(*stmt.target);
    expression(*stmt.value);
    if (!stmt.isCompound() && isSamePlace(*stmt.target, *stmt.value)) {
        report(places_.beginningOf(stmt), Rule::SelfAssignment, "this is assigned to itself");
    }
}

void CodeChecker::function(const FunctionLiteral& literal) {
    std::vector<Loop> loops = std::exchange(loops_, {});
    const std::size_t tries = std::exchange(tries_, 0);
    block(literal.body);
    loops_ = std::move(loops);
    tries_ = tries;
}

}  // namespace pellum::lint
