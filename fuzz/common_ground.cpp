#include "fuzz/common_ground.h"

#include "fuzz/playing.h"
#include "fuzz/tree_children.h"
#include "fuzz/tree_making.h"

#include "value/value.h"

#include <optional>
#include <utility>
#include <vector>

namespace pellum::fuzz {

namespace {

// Captured variables are numbered with one byte, and nothing tells of one too many.
constexpr std::size_t maxVariables = 200;

// Evens out a caught message, before a program can look at its letters.
Value evenCaught(Caller&, Arguments args) {
    return args[0].isString() ? Value(evenMessage(args[0].asText())) : args[0];
}

// The engines count alike with integers that doubles hold, and only with these.
Value plainBound(Caller&, Arguments args) {
    constexpr std::int64_t limit = std::int64_t{1} << 52;
    const bool isPlain = args[0].isInt() && args[0].asInt() >= -limit && args[0].asInt() <= limit;
    if (!isPlain) throw CutShort{"a loop over other numbers"};
    return args[0];
}

Value plainStep(Caller& caller, Arguments args) {
    plainBound(caller, args);
    if (args[0].asInt() == 0) throw CutShort{"a loop without a step"};
    return args[0];
}

// Notices a bad key where it is written, as one engine does, not when the map is made.
Value checkedKey(Caller&, Arguments args) {
    if (!args[0].isString() && !args[0].isNumber()) {
        throw RuntimeError(std::string("map keys must be string or number, got ") +
                           typeName(args[0]));
    }
    return args[0];
}

class Rewriter {
public:
    bool run(Block& program) {
        for (StmtPtr& stmt : program) statement(stmt);
        return variables_ <= maxVariables;
    }

private:
    // What a statement stands in.
    struct Place {
        bool isInLoop = false;
        bool isInTry = false;  // between here and that loop
    };

    // --- Names: every local gets one of its own, so that looking a name up when the program runs
    // finds what the compiler has found in the text.

    bool isGlobalScope() const noexcept { return scopes_.empty(); }

    Symbol declare(const Symbol& name) {
        const Symbol own(std::string(name.text()) + "~" + std::to_string(++variables_));
        scopes_.back().emplace_back(name, own);
        return own;
    }

    std::optional<Symbol> localOf(const Symbol& name) const {
        for (auto scope = scopes_.rbegin(); scope != scopes_.rend(); ++scope) {
            for (auto binding = scope->rbegin(); binding != scope->rend(); ++binding) {
                if (binding->first == name) return binding->second;
            }
        }
        return std::nullopt;
    }

    void block(Block& statements, Place place) {
        scopes_.emplace_back();
        statementsAt(statements, place);
        scopes_.pop_back();
    }

    void statementsAt(Block& statements, Place place) {
        const Place outer = std::exchange(place_, place);
        for (StmtPtr& stmt : statements) statement(stmt);
        place_ = outer;
    }

    void function(FunctionLiteral& function) {
        scopes_.emplace_back();
        for (Symbol& parameter : function.params) parameter = declare(parameter);
        statementsAt(function.body, {});
        scopes_.pop_back();
    }

    // --- Expressions.

    void expression(ExprPtr& expr) {
        if (expr->exprKind() == ExprKind::Name) {
            auto& name = edit<NameExpr>(*expr).name;
            name = localOf(name).value_or(name);
            return;
        }
        forEachChild(
            *expr, [&](ExprPtr& child) { expression(child); },
            [&](FunctionLiteral& literal) { function(literal); });
        if (expr->exprKind() != ExprKind::MapLit) return;
        for (auto& entry : edit<MapLitExpr>(*expr).entries) wrap(entry.first, key_);
    }

    static void wrap(ExprPtr& expr, const Value& check) {
        const Node& place = *expr;
        expr = callOf(check, std::move(expr), place);
    }

    // --- Statements.

    void statement(StmtPtr& stmt) {
        switch (stmt->stmtKind()) {
            case StmtKind::Let: return let(edit<LetStmt>(*stmt));
            case StmtKind::Assign: return assignment(stmt);
            case StmtKind::NumericFor: return numericFor(edit<NumericForStmt>(*stmt));
            case StmtKind::ForIn: {
                auto& loop = edit<ForInStmt>(*stmt);
                expression(loop.iterable);
                return loopBody(loop.var, loop.body, *stmt);
            }
            case StmtKind::FunctionDecl: return functionDeclaration(edit<FunctionDeclStmt>(*stmt));
            case StmtKind::Break:
            case StmtKind::Continue: return leaveLoop(stmt);
            case StmtKind::Try: return attempt(edit<TryStmt>(*stmt));
            case StmtKind::While:
            case StmtKind::If:
            case StmtKind::Expr:
            case StmtKind::Return: break;
        }
        const bool isLoop = stmt->stmtKind() == StmtKind::While;
        forEachChild(
            *stmt, [&](ExprPtr& expr) { expression(expr); },
            [&](FunctionLiteral& literal) { function(literal); },
            [&](Block& body) {
                block(body, isLoop ? Place{true, false} : place_);
            });
    }

    void let(LetStmt& stmt) {
        expression(stmt.init);
        if (!isGlobalScope()) stmt.name = declare(stmt.name);
    }

    void functionDeclaration(FunctionDeclStmt& stmt) {
        if (!isGlobalScope()) stmt.function.name = declare(stmt.function.name);
        function(stmt.function);
    }

    // The variable that the body sees is a copy: it may be kept by a function, and assigned to.
    void loopBody(Symbol& variable, Block& body, const Node& owner) {
        const Symbol counter(std::string(variable.text()) + "~" + std::to_string(++variables_));
        scopes_.emplace_back();
        const Symbol copy = declare(variable);
        statementsAt(body, {true, false});
        scopes_.pop_back();
        body.insert(body.begin(), letOf(copy, nameOf(counter, owner), owner));
        variable = counter;
    }

    void numericFor(NumericForStmt& stmt) {
        for (ExprPtr* bound : {&stmt.start, &stmt.end, &stmt.step}) {
            if (!*bound) continue;
            expression(*bound);
            wrap(*bound, bound == &stmt.step ? step_ : bound_);
        }
        loopBody(stmt.var, stmt.body, stmt);
    }

    // One that would leave a handler behind, or has no loop, becomes something to look at.
    void leaveLoop(StmtPtr& stmt) {
        if (place_.isInLoop && !place_.isInTry) return;
        const Node& place = *stmt;
        auto print = nodeAt<CallExpr>(place);
        print->callee = nameOf(Symbol("print"), place);
        print->args.push_back(literalOf(Value("not here"), place));
        StmtPtr look = statementOf(std::move(print), place);
        stmt = std::move(look);
    }

    void attempt(TryStmt& stmt) {
        block(stmt.body, {place_.isInLoop, true});
        scopes_.emplace_back();
        stmt.catchVar = declare(stmt.catchVar);
        statementsAt(stmt.handler, place_);
        scopes_.pop_back();
        auto evened = nodeAt<AssignStmt>(stmt);
        evened->target = nameOf(stmt.catchVar, stmt);
        evened->value = callOf(evenCaught_, nameOf(stmt.catchVar, stmt), stmt);
        stmt.handler.insert(stmt.handler.begin(), std::move(evened));
    }

    // Object, index and value are computed in the order in which they stand, whatever the order of
    // the engine, where more than one of them could matter.
    void assignment(StmtPtr& stmt) {
        auto& assign = edit<AssignStmt>(*stmt);
        expression(assign.target);
        expression(assign.value);
        if (isHarmless(*assign.value)) return;
        const Node& place = *stmt;
        Block steps;
        if (assign.target->exprKind() == ExprKind::Index) {
            hold(edit<IndexExpr>(*assign.target).object, steps, place);
            hold(edit<IndexExpr>(*assign.target).index, steps, place);
        } else if (assign.target->exprKind() == ExprKind::Get) {
            hold(edit<GetExpr>(*assign.target).object, steps, place);
        } else if (!assign.isCompound()) {
            return;
        }
        hold(assign.value, steps, place);
        auto inOrder = nodeAt<IfStmt>(place);
        steps.push_back(std::move(stmt));
        inOrder->branches.push_back({literalOf(Value(true), *inOrder), std::move(steps)});
        stmt = std::move(inOrder);
    }

    // Whether it neither does anything nor fails.
    static bool isHarmless(const Expr& expr) {
        return expr.exprKind() == ExprKind::Literal ||
               (expr.exprKind() == ExprKind::Name &&
                as<NameExpr>(expr).name.text().find('~') != std::string_view::npos);
    }

    void hold(ExprPtr& expr, Block& steps, const Node& place) {
        const Symbol name("~" + std::to_string(++holders_));
        const Node& at = *expr;
        ExprPtr held = nameOf(name, at);
        steps.push_back(letOf(name, std::move(expr), place));
        expr = std::move(held);
    }

    std::vector<std::vector<std::pair<Symbol, Symbol>>> scopes_;  // names and what they became
    Place place_;
    std::size_t variables_ = 0;
    std::size_t holders_ = 0;
    const Value evenCaught_ = nativeValue("even", evenCaught, 1, 1);
    const Value bound_ = nativeValue("bound", plainBound, 1, 1);
    const Value step_ = nativeValue("step", plainStep, 1, 1);
    const Value key_ = nativeValue("key", checkedKey, 1, 1);
};

}  // namespace

bool moveToCommonGround(Block& program) { return Rewriter().run(program); }

std::string evenMessage(std::string_view message) {
    constexpr std::string_view named = "operator '";
    constexpr std::string_view needs = "' needs numbers";
    constexpr std::string_view assign = "cannot assign to undefined variable '";
    std::string even(message);
    if (const auto at = even.find(named); at != even.npos) {
        const auto end = even.find(needs, at);
        if (end != even.npos) even.replace(at, end + 1 - at, "arithmetic");
    }
    if (const auto at = even.find(assign); at != even.npos) {
        const auto end = even.find(" (use 'let' to declare it)", at);
        if (end != even.npos) even.erase(end);
        even.erase(at, assign.size() - std::string_view("undefined variable '").size());
    }
    return even;
}

}  // namespace pellum::fuzz
