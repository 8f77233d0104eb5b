#include "fuzz/fuel.h"

#include "fuzz/playing.h"
#include "fuzz/tree_children.h"
#include "fuzz/tree_making.h"

#include "builtins/builtins.h"

namespace pellum::fuzz {

namespace {

int stepsLeft = 0;

Value burn(Caller&, Arguments) {
    if (--stepsLeft < 0) throw CutShort{"out of fuel"};
    return {};
}

Value steadyClock(Caller&, Arguments) { return Value(1.5); }
Value steadyRandom(Caller&, Arguments) { return Value(0.625); }

// Fails as the builtin does.
Value steadyRandint(Caller& caller, Arguments args) {
    for (const Builtin& row : builtinCatalogue()) {
        if (std::string_view(row.name) != "randint") continue;
        const Value low = args[0];
        row.fn(caller, args);
        return low;
    }
    return {};
}

class Bounder {
public:
    void block(Block& block) {
        for (StmtPtr& stmt : block) statement(*stmt);
    }

private:
    void statement(Stmt& stmt) {
        const bool assignsToName = stmt.stmtKind() == StmtKind::Assign &&
                                   as<AssignStmt>(stmt).target->exprKind() == ExprKind::Name;
        forEachChild(
            stmt,
            [&](ExprPtr& expr) {
                const bool isTarget = assignsToName && &expr == &edit<AssignStmt>(stmt).target;
                if (!isTarget) expression(expr);
            },
            [&](FunctionLiteral& function) { body(function.body, stmt); },
            [&](Block& inner) {
                const StmtKind kind = stmt.stmtKind();
                const bool isLoop = kind == StmtKind::While || kind == StmtKind::NumericFor ||
                                    kind == StmtKind::ForIn;
                isLoop ? body(inner, stmt) : block(inner);
            });
    }

    void expression(ExprPtr& expr) {
        if (expr->exprKind() == ExprKind::Name) return steady(expr);
        forEachChild(
            *expr, [&](ExprPtr& child) { expression(child); },
            [&](FunctionLiteral& function) { body(function.body, *expr); });
    }

    void body(Block& inner, const Node& owner) {
        block(inner);
        inner.insert(inner.begin(), statementOf(callOf(burn_, nullptr, owner), owner));
    }

    void steady(ExprPtr& expr) {
        const std::string_view name = as<NameExpr>(*expr).name.text();
        if (name == "clock") expr = literalOf(clock_, *expr);
        if (name == "random") expr = literalOf(random_, *expr);
        if (name == "randint") expr = literalOf(randint_, *expr);
    }

    const Value burn_ = nativeValue("burn", burn, 0, 0);
    const Value clock_ = nativeValue("clock", steadyClock, 0, 0);
    const Value random_ = nativeValue("random", steadyRandom, 0, 0);
    const Value randint_ = nativeValue("randint", steadyRandint, 2, 2);
};

}  // namespace

void boundSteps(Block& program) { Bounder().block(program); }

void refuel(int steps) noexcept { stepsLeft = steps; }

}  // namespace pellum::fuzz
