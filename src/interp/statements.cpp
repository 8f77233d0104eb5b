#include "interp/interpreter.h"
#include "interp/signals.h"
#include "interp/support.h"

#include "builtins/builtins.h"
#include "operations/operations.h"
#include "value/interrupt.h"
#include "value/number.h"

#include <algorithm>

namespace pellum {

namespace {

// Only a block that binds names directly needs a scope of its own.
bool bindsNames(const Block& block) noexcept {
    return std::ranges::any_of(block, [](const StmtPtr& stmt) {
        return stmt->stmtKind() == StmtKind::Let || stmt->stmtKind() == StmtKind::FunctionDecl;
    });
}

// An empty scope for the next iteration: the last one's, unless a closure has captured it.
void renewScope(Ref<Environment>& scope, Environment& parent) {
    if (scope && scope->isUnshared()) {
        scope->clear();
    } else {
        scope = makeRef<Environment>(Ref<Environment>(&parent));
    }
}

}  // namespace

Interpreter::Interpreter(Console& console) : Caller(console), globals_(makeRef<Environment>()) {
    registerBuiltins(*globals_);
}

Interpreter::~Interpreter() { globals_->clear(); }

Value Interpreter::run(const Block& program) {
    try {
        return runTopLevel(program);
    } catch (const BreakSignal& stray) {
        fail(stray.from, "'break' outside a loop");
    } catch (const ContinueSignal& stray) {
        fail(stray.from, "'continue' outside a loop");
    }
}

Value Interpreter::runTopLevel(const Block& program) {
    Value result;
    for (const StmtPtr& stmt : program) {
        if (stmt->stmtKind() == StmtKind::Expr) {
            result = eval(*as<ExprStmt>(*stmt).expr, *globals_);
            continue;
        }
        result = Value();
        Exit exit;
        switch (exec(*stmt, *globals_, exit)) {
            case Completion::Normal: break;
            case Completion::Return: return {};
            case Completion::Break: throw BreakSignal{positionOf(*exit.from)};
            case Completion::Continue: throw ContinueSignal{positionOf(*exit.from)};
        }
    }
    return result;
}

Interpreter::Completion Interpreter::exec(const Stmt& stmt, Environment& scope, Exit& exit) {
    checkHostStack(positionOf(stmt));
    switch (stmt.stmtKind()) {
        case StmtKind::Let: {
            const auto& let = as<LetStmt>(stmt);
            scope.define(let.name, eval(*let.init, scope));
            return Completion::Normal;
        }
        case StmtKind::Assign: execAssign(as<AssignStmt>(stmt), scope); return Completion::Normal;
        case StmtKind::Expr: eval(*as<ExprStmt>(stmt).expr, scope); return Completion::Normal;
        case StmtKind::If: return execIf(as<IfStmt>(stmt), scope, exit);
        case StmtKind::While: return execWhile(as<WhileStmt>(stmt), scope, exit);
        case StmtKind::NumericFor: return execNumericFor(as<NumericForStmt>(stmt), scope, exit);
        case StmtKind::ForIn: return execForIn(as<ForInStmt>(stmt), scope, exit);
        case StmtKind::FunctionDecl: {
            const FunctionLiteral& function = as<FunctionDeclStmt>(stmt).function;
            scope.define(function.name, makeFunction(function, scope));
            return Completion::Normal;
        }
        case StmtKind::Return: return execReturn(as<ReturnStmt>(stmt), scope, exit);
        case StmtKind::Break: exit.from = &stmt; return Completion::Break;
        case StmtKind::Continue: exit.from = &stmt; return Completion::Continue;
        case StmtKind::Try: break;
    }
    return execTry(as<TryStmt>(stmt), scope, exit);
}

Interpreter::Completion Interpreter::execStatements(const Block& block, Environment& scope,
                                                    Exit& exit) {
    for (const StmtPtr& stmt : block) {
        const Completion completion = exec(*stmt, scope, exit);
        if (completion != Completion::Normal) return completion;
    }
    return Completion::Normal;
}

Interpreter::Completion Interpreter::execInChildScope(const Block& block, Environment& scope,
                                                      Exit& exit) {
    if (!bindsNames(block)) return execStatements(block, scope, exit);
    const auto child = makeRef<Environment>(Ref<Environment>(&scope));
    return execStatements(block, *child, exit);
}

void Interpreter::execAssign(const AssignStmt& stmt, Environment& scope) {
    Value value = eval(*stmt.value, scope);  // before anything of the target
    if (stmt.target->exprKind() == ExprKind::Name) {
        assignName(stmt, as<NameExpr>(*stmt.target), std::move(value), scope);
    } else if (stmt.target->exprKind() == ExprKind::Index) {
        const auto& target = as<IndexExpr>(*stmt.target);
        const Value object = eval(*target.object, scope);
        const Value index = eval(*target.index, scope);
        assignElement(stmt, object, index, std::move(value));
    } else {
        const auto& target = as<GetExpr>(*stmt.target);
        const Value object = eval(*target.object, scope);
        assignElement(stmt, object, Value(target.name.string()), std::move(value));
    }
}

void Interpreter::assignName(const AssignStmt& stmt, const NameExpr& target, Value value,
                             Environment& scope) {
    Value* bound = scope.lookup(target.name);
    if (!bound) {
        fail(stmt, "cannot assign to undefined variable '" + std::string(target.name.text()) +
                       "' (use 'let' to declare it)");
    }
    if (stmt.isCompound()) value = arithmetic(stmt.code, stmt.op, *bound, value, positionOf(stmt));
    *bound = std::move(value);
}

void Interpreter::assignElement(const AssignStmt& stmt, const Value& object, const Value& index,
                                Value value) {
    const Position at = positionOf(stmt);
    if (stmt.isCompound()) {
        value = arithmetic(stmt.code, stmt.op, readIndex(object, index, at), value, at);
    }
    writeIndex(object, index, std::move(value), at);
}

Interpreter::Completion Interpreter::execIf(const IfStmt& stmt, Environment& scope, Exit& exit) {
    for (const IfStmt::Branch& branch : stmt.branches) {
        if (!branch.cond || isTruthy(eval(*branch.cond, scope))) {
            return execInChildScope(branch.body, scope, exit);
        }
    }
    return Completion::Normal;
}

// Runs a loop's body once. Signals out of functions that the body calls are caught here.
Interpreter::Completion Interpreter::execIteration(const Block& body, Environment& scope,
                                                   Exit& exit) {
    stopIfInterrupted();
    try {
        return execStatements(body, scope, exit);
    } catch (const BreakSignal&) {
        return Completion::Break;
    } catch (const ContinueSignal&) {
        return Completion::Continue;
    }
}

Interpreter::Completion Interpreter::execWhile(const WhileStmt& stmt, Environment& scope,
                                               Exit& exit) {
    const bool needsScope = bindsNames(stmt.body);
    Ref<Environment> child;
    while (isTruthy(eval(*stmt.cond, scope))) {
        if (needsScope) renewScope(child, scope);
        const Completion completion = execIteration(stmt.body, needsScope ? *child : scope, exit);
        if (completion == Completion::Break) break;
        if (completion == Completion::Return) return completion;
    }
    return Completion::Normal;
}

Interpreter::Completion Interpreter::execNumericFor(const NumericForStmt& stmt, Environment& scope,
                                                    Exit& exit) {
    const Value start = eval(*stmt.start, scope);
    const Value end = eval(*stmt.end, scope);
    const Value step = stmt.step ? eval(*stmt.step, scope) : Value(1);
    if (!start.isNumber() || !end.isNumber()) fail(stmt, "numeric for-loop bounds must be numbers");
    if (!step.isNumber()) fail(stmt, "for step must be a number");
    if (step.asNumber() == 0) fail(stmt, "for-loop step cannot be 0");

    const bool isInteger = start.isInt() && end.isInt() && step.isInt();
    const double last = end.asNumber();
    const double increment = step.asNumber();
    Ref<Environment> child;
    for (double counter = start.asNumber();; counter += increment) {
        if ((increment > 0 && counter > last) || (increment < 0 && counter < last)) break;
        renewScope(child, scope);
        child->define(stmt.var, isInteger ? Value(truncateToInt(counter)) : Value(counter));
        const Completion completion = execIteration(stmt.body, *child, exit);
        if (completion == Completion::Break) break;
        if (completion == Completion::Return) return completion;
    }
    return Completion::Normal;
}

Interpreter::Completion Interpreter::execForIn(const ForInStmt& stmt, Environment& scope,
                                               Exit& exit) {
    const Value iterable = eval(*stmt.iterable, scope);
    Ref<Environment> child;
    for (Value& element : elementsToVisit(iterable, positionOf(stmt))) {
        renewScope(child, scope);
        child->define(stmt.var, std::move(element));
        const Completion completion = execIteration(stmt.body, *child, exit);
        if (completion == Completion::Break) break;
        if (completion == Completion::Return) return completion;
    }
    return Completion::Normal;
}

Interpreter::Completion Interpreter::execReturn(const ReturnStmt& stmt, Environment& scope,
                                                Exit& exit) {
    exit.value = stmt.value ? eval(*stmt.value, scope) : Value();
    return Completion::Return;
}

Interpreter::Completion Interpreter::execTry(const TryStmt& stmt, Environment& scope, Exit& exit) {
    Value caught;
    try {
        return execInChildScope(stmt.body, scope, exit);
    } catch (const ThrownValue& thrown) {
        caught = thrown.value;
    } catch (const RuntimeError& error) {
        caught = Value(error.message);
    }
    const auto child = makeRef<Environment>(Ref<Environment>(&scope));
    child->define(stmt.catchVar, std::move(caught));
    return execStatements(stmt.handler, *child, exit);
}

}  // namespace pellum
