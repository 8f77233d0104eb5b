#include "compiler/compiler.h"

#include "compiler/function_state.h"
#include "value/host_stack.h"
#include "value/limits.h"

namespace pellum {

namespace {

constexpr std::size_t maxArguments = limit(255, 20);

class Compiler {
public:
    Ref<FunctionProto> script(const Block& program);

private:
    // Statements.
    void statement(const Stmt& stmt);
    void statements(const Block& block);
    void scoped(const Block& block, const Stmt& owner);
    void let(const LetStmt& stmt);
    void assign(const AssignStmt& stmt);
    void assignElement(const AssignStmt& stmt);
    void ifStatement(const IfStmt& stmt);
    void whileLoop(const WhileStmt& stmt);
    void numericFor(const NumericForStmt& stmt);
    void forIn(const ForInStmt& stmt);
    void functionDeclaration(const FunctionDeclStmt& stmt);
    void returnStatement(const ReturnStmt& stmt);
    void breakStatement(const BreakStmt& stmt);
    void continueStatement(const ContinueStmt& stmt);
    void tryStatement(const TryStmt& stmt);

    // Expressions; each leaves its value on the stack.
    void expression(const Expr& expr);
    void literal(const LiteralExpr& expr);
    void binary(const BinaryExpr& expr);
    void shortCircuit(const BinaryExpr& expr, OpCode jump);
    void call(const CallExpr& expr);
    void function(const FunctionLiteral& literal, const Node& node);

    // Parts of statements.
    void load(const Symbol& name, const Node& node);
    void store(const Symbol& name, const Node& node);
    void compoundOperator(const AssignStmt& stmt);
    void loopBody(const Block& body, const Stmt& owner);
    void leaveLoopBy(std::vector<std::size_t> Loop::*jumps, const Stmt& stmt, const char* problem);
    void finishLoop(std::size_t exitJump, const Stmt& owner);

    Emitter& code() noexcept { return current_->code; }
    std::size_t addName(const Symbol& name) { return code().addConstant(Value(name.string())); }

    FunctionState script_{nullptr};
    FunctionState* current_ = &script_;  // of the function being compiled
};

void checkNesting(const Node& node) {
    if (hostStackIsLow()) failCompile(node, "nesting too deep");
}

// The instruction of an operator that is neither "and" nor "or".
OpCode instructionFor(BinaryOp op) noexcept {
    const int number = static_cast<int>(op);
    return op <= BinaryOp::Power ? static_cast<OpCode>(static_cast<int>(OpCode::ADD) + number)
                                 : static_cast<OpCode>(static_cast<int>(OpCode::EQUAL) + number -
                                                       static_cast<int>(BinaryOp::Equal));
}

Ref<FunctionProto> Compiler::script(const Block& program) {
    statements(program);
    // The end of the script belongs to its last statement.
    const BreakStmt beginning(1, 1);
    const Node& last = program.empty() ? static_cast<const Node&>(beginning) : *program.back();
    code().emit(OpCode::NIL, last);
    code().emit(OpCode::RETURN, last);
    return script_.proto;
}

void Compiler::statements(const Block& block) {
    for (const StmtPtr& stmt : block) statement(*stmt);
}

void Compiler::scoped(const Block& block, const Stmt& owner) {
    current_->beginScope();
    statements(block);
    current_->endScope(owner);
}

void Compiler::statement(const Stmt& stmt) {
    checkNesting(stmt);
    switch (stmt.stmtKind()) {
        case StmtKind::Let: return let(as<LetStmt>(stmt));
        case StmtKind::Assign: return assign(as<AssignStmt>(stmt));
        case StmtKind::Expr:
            expression(*as<ExprStmt>(stmt).expr);
            code().emit(OpCode::POP, stmt);
            return;
        case StmtKind::If: return ifStatement(as<IfStmt>(stmt));
        case StmtKind::While: return whileLoop(as<WhileStmt>(stmt));
        case StmtKind::NumericFor: return numericFor(as<NumericForStmt>(stmt));
        case StmtKind::ForIn: return forIn(as<ForInStmt>(stmt));
        case StmtKind::FunctionDecl: return functionDeclaration(as<FunctionDeclStmt>(stmt));
        case StmtKind::Return: return returnStatement(as<ReturnStmt>(stmt));
        case StmtKind::Break: return breakStatement(as<BreakStmt>(stmt));
        case StmtKind::Continue: return continueStatement(as<ContinueStmt>(stmt));
        case StmtKind::Try: return tryStatement(as<TryStmt>(stmt));
    }
}

void Compiler::let(const LetStmt& stmt) {
    if (current_->isGlobalScope()) {
        const std::size_t name = addName(stmt.name);
        expression(*stmt.init);
        code().emitU16(OpCode::DEFINE_GLOBAL, name, stmt);
    } else {
        expression(*stmt.init);  // which cannot see the new name yet
        current_->declareLocal(stmt.name);
    }
}

void Compiler::load(const Symbol& name, const Node& node) {
    if (const auto slot = current_->resolveLocal(name)) {
        code().emitU16(OpCode::GET_LOCAL, *slot, node);
    } else if (const auto upvalue = current_->resolveUpvalue(name)) {
        code().emitU8(OpCode::GET_UPVALUE, *upvalue, node);
    } else {
        code().emitU16(OpCode::GET_GLOBAL, addName(name), node);
    }
}

void Compiler::store(const Symbol& name, const Node& node) {
    if (const auto slot = current_->resolveLocal(name)) {
        code().emitU16(OpCode::SET_LOCAL, *slot, node);
    } else if (const auto upvalue = current_->resolveUpvalue(name)) {
        code().emitU8(OpCode::SET_UPVALUE, *upvalue, node);
    } else {
        code().emitU16(OpCode::SET_GLOBAL, addName(name), node);
    }
}

void Compiler::assign(const AssignStmt& stmt) {
    if (stmt.target->exprKind() == ExprKind::Name) {
        const Symbol& name = as<NameExpr>(*stmt.target).name;
        if (stmt.isCompound()) load(name, stmt);
        expression(*stmt.value);
        if (stmt.isCompound()) compoundOperator(stmt);
        store(name, stmt);
    } else {
        assignElement(stmt);
    }
    code().emit(OpCode::POP, stmt);
}

void Compiler::assignElement(const AssignStmt& stmt) {
    if (stmt.target->exprKind() == ExprKind::Index) {
        const auto& target = as<IndexExpr>(*stmt.target);
        expression(*target.object);
        expression(*target.index);
    } else {
        const auto& target = as<GetExpr>(*stmt.target);
        expression(*target.object);
        code().emitConstant(Value(target.name.string()), stmt);
    }
    if (stmt.isCompound()) code().emit(OpCode::INDEX_GET_KEEP, stmt);
    expression(*stmt.value);
    if (stmt.isCompound()) compoundOperator(stmt);
    code().emit(OpCode::INDEX_SET, stmt);
}

void Compiler::compoundOperator(const AssignStmt& stmt) {
    if (stmt.code > BinaryOp::Power) failCompile(stmt, "bad operator " + std::string(stmt.op));
    code().emit(instructionFor(stmt.code), stmt);
}

void Compiler::ifStatement(const IfStmt& stmt) {
    std::vector<std::size_t> endJumps;
    for (const IfStmt::Branch& branch : stmt.branches) {
        if (!branch.cond) {
            scoped(branch.body, stmt);
            continue;
        }
        expression(*branch.cond);
        const std::size_t nextBranch = code().emitJump(OpCode::JUMP_IF_FALSE, stmt);
        code().emit(OpCode::POP, stmt);
        scoped(branch.body, stmt);
        endJumps.push_back(code().emitJump(OpCode::JUMP, stmt));
        code().patchJump(nextBranch, stmt);
        code().emit(OpCode::POP, stmt);
    }
    for (const std::size_t jump : endJumps) code().patchJump(jump, stmt);
}

// The body in its own scope, with `continue` leading to its end.
void Compiler::loopBody(const Block& body, const Stmt& owner) {
    current_->loops.push_back({current_->depth(), {}, {}});
    scoped(body, owner);
    for (const std::size_t jump : current_->loops.back().continueJumps) {
        code().patchJump(jump, owner);
    }
}

// Where the loop's condition fails, and behind that, where `break` leads.
void Compiler::finishLoop(std::size_t exitJump, const Stmt& owner) {
    code().patchJump(exitJump, owner);
    code().emit(OpCode::POP, owner);
    for (const std::size_t jump : current_->loops.back().breakJumps) code().patchJump(jump, owner);
    current_->loops.pop_back();
}

void Compiler::whileLoop(const WhileStmt& stmt) {
    const std::size_t start = code().here();
    expression(*stmt.cond);
    const std::size_t exitJump = code().emitJump(OpCode::JUMP_IF_FALSE, stmt);
    code().emit(OpCode::POP, stmt);
    loopBody(stmt.body, stmt);
    code().emitLoop(start, stmt);
    finishLoop(exitJump, stmt);
}

void Compiler::numericFor(const NumericForStmt& stmt) {
    current_->beginScope();
    expression(*stmt.start);
    const std::size_t variable = current_->declareLocal(stmt.var);
    expression(*stmt.end);
    const std::size_t limit = current_->declareLocal(Symbol("$limit"));
    if (stmt.step) {
        expression(*stmt.step);
    } else {
        code().emitConstant(Value(1), stmt);
    }
    const std::size_t step = current_->declareLocal(Symbol("$step"));

    const std::size_t start = code().here();
    code().emitU16(OpCode::GET_LOCAL, variable, stmt);
    code().emitU16(OpCode::GET_LOCAL, limit, stmt);
    code().emitU16(OpCode::GET_LOCAL, step, stmt);
    code().emit(OpCode::FOR_TEST, stmt);
    const std::size_t exitJump = code().emitJump(OpCode::JUMP_IF_FALSE, stmt);
    code().emit(OpCode::POP, stmt);

    loopBody(stmt.body, stmt);

    code().emitU16(OpCode::GET_LOCAL, variable, stmt);
    code().emitU16(OpCode::GET_LOCAL, step, stmt);
    code().emit(OpCode::ADD, stmt);
    code().emitU16(OpCode::SET_LOCAL, variable, stmt);
    code().emit(OpCode::POP, stmt);
    code().emitLoop(start, stmt);
    finishLoop(exitJump, stmt);
    current_->endScope(stmt);
}

void Compiler::forIn(const ForInStmt& stmt) {
    current_->beginScope();
    expression(*stmt.iterable);
    code().emit(OpCode::ITER_LIST, stmt);
    const std::size_t list = current_->declareLocal(Symbol("$iter"));
    code().emitConstant(Value(0), stmt);
    const std::size_t index = current_->declareLocal(Symbol("$idx"));
    code().emit(OpCode::NIL, stmt);
    const std::size_t variable = current_->declareLocal(stmt.var);

    const std::size_t start = code().here();
    code().emitU16(OpCode::GET_LOCAL, index, stmt);
    code().emitU16(OpCode::GET_LOCAL, list, stmt);
    code().emit(OpCode::LEN, stmt);
    code().emit(OpCode::LESS, stmt);
    const std::size_t exitJump = code().emitJump(OpCode::JUMP_IF_FALSE, stmt);
    code().emit(OpCode::POP, stmt);

    code().emitU16(OpCode::GET_LOCAL, list, stmt);
    code().emitU16(OpCode::GET_LOCAL, index, stmt);
    code().emit(OpCode::INDEX_GET, stmt);
    code().emitU16(OpCode::SET_LOCAL, variable, stmt);
    code().emit(OpCode::POP, stmt);

    loopBody(stmt.body, stmt);

    code().emitU16(OpCode::GET_LOCAL, index, stmt);
    code().emitConstant(Value(1), stmt);
    code().emit(OpCode::ADD, stmt);
    code().emitU16(OpCode::SET_LOCAL, index, stmt);
    code().emit(OpCode::POP, stmt);
    code().emitLoop(start, stmt);
    finishLoop(exitJump, stmt);
    current_->endScope(stmt);
}

void Compiler::functionDeclaration(const FunctionDeclStmt& stmt) {
    if (current_->isGlobalScope()) {
        const std::size_t name = addName(stmt.function.name);
        function(stmt.function, stmt);
        code().emitU16(OpCode::DEFINE_GLOBAL, name, stmt);
    } else {
        // Declared first: the closure will land in that very slot, so the body can call itself.
        current_->declareLocal(stmt.function.name);
        function(stmt.function, stmt);
    }
}

void Compiler::returnStatement(const ReturnStmt& stmt) {
    if (stmt.value) {
        expression(*stmt.value);
    } else {
        code().emit(OpCode::NIL, stmt);
    }
    code().emit(OpCode::RETURN, stmt);
}

void Compiler::breakStatement(const BreakStmt& stmt) {
    leaveLoopBy(&Loop::breakJumps, stmt, "'break' outside a loop");
}

void Compiler::continueStatement(const ContinueStmt& stmt) {
    leaveLoopBy(&Loop::continueJumps, stmt, "'continue' outside a loop");
}

void Compiler::leaveLoopBy(std::vector<std::size_t> Loop::*jumps, const Stmt& stmt,
                           const char* problem) {
    if (current_->loops.empty()) failCompile(stmt, problem);
    Loop& loop = current_->loops.back();
    current_->emitLeaveScopes(loop.depth, stmt);
    (loop.*jumps).push_back(code().emitJump(OpCode::JUMP, stmt));
}

// A `break`, `continue` or `return` out of the body leaves the handler in place: it stays until the
// function returns.
void Compiler::tryStatement(const TryStmt& stmt) {
    const std::size_t handler = code().emitJump(OpCode::TRY_BEGIN, stmt);
    scoped(stmt.body, stmt);
    code().emit(OpCode::TRY_END, stmt);
    const std::size_t end = code().emitJump(OpCode::JUMP, stmt);
    code().patchJump(handler, stmt);
    current_->beginScope();
    current_->declareLocal(stmt.catchVar);  // the machine has pushed the caught value
    statements(stmt.handler);
    current_->endScope(stmt);
    code().patchJump(end, stmt);
}

void Compiler::expression(const Expr& expr) {
    checkNesting(expr);
    switch (expr.exprKind()) {
        case ExprKind::Literal: return literal(as<LiteralExpr>(expr));
        case ExprKind::ListLit: {
            const auto& list = as<ListLitExpr>(expr);
            for (const ExprPtr& element : list.elements) expression(*element);
            code().emitU16(OpCode::BUILD_LIST, list.elements.size(), expr);
            return;
        }
        case ExprKind::MapLit: {
            const auto& map = as<MapLitExpr>(expr);
            for (const auto& [key, value] : map.entries) {
                expression(*key);
                expression(*value);
            }
            code().emitU16(OpCode::BUILD_MAP, map.entries.size(), expr);
            return;
        }
        case ExprKind::Name: return load(as<NameExpr>(expr).name, expr);
        case ExprKind::Unary: {
            const auto& unary = as<UnaryExpr>(expr);
            expression(*unary.operand);
            code().emit(unary.op == "not" ? OpCode::NOT : OpCode::NEGATE, expr);
            return;
        }
        case ExprKind::Binary: return binary(as<BinaryExpr>(expr));
        case ExprKind::Call: return call(as<CallExpr>(expr));
        case ExprKind::Index: {
            const auto& index = as<IndexExpr>(expr);
            expression(*index.object);
            expression(*index.index);
            code().emit(OpCode::INDEX_GET, expr);
            return;
        }
        case ExprKind::Get: {
            const auto& get = as<GetExpr>(expr);
            expression(*get.object);
            code().emitConstant(Value(get.name.string()), expr);
            code().emit(OpCode::INDEX_GET, expr);
            return;
        }
        case ExprKind::Function: return function(as<FunctionExpr>(expr).function, expr);
    }
}

void Compiler::literal(const LiteralExpr& expr) {
    switch (expr.value.kind()) {
        case ValueKind::Nil: return code().emit(OpCode::NIL, expr);
        case ValueKind::Bool:
            return code().emit(expr.value.asBool() ? OpCode::TRUE : OpCode::FALSE, expr);
        default: return code().emitConstant(expr.value, expr);
    }
}

void Compiler::binary(const BinaryExpr& expr) {
    if (expr.code == BinaryOp::And) return shortCircuit(expr, OpCode::JUMP_IF_FALSE);
    if (expr.code == BinaryOp::Or) return shortCircuit(expr, OpCode::JUMP_IF_TRUE);
    expression(*expr.left);
    expression(*expr.right);
    if (expr.code == BinaryOp::Unknown)
        failCompile(expr, "unknown operator " + std::string(expr.op));
    code().emit(instructionFor(expr.code), expr);
}

void Compiler::shortCircuit(const BinaryExpr& expr, OpCode jump) {
    expression(*expr.left);
    const std::size_t end = code().emitJump(jump, expr);
    code().emit(OpCode::POP, expr);
    expression(*expr.right);
    code().patchJump(end, expr);
}

void Compiler::call(const CallExpr& expr) {
    expression(*expr.callee);
    for (const ExprPtr& arg : expr.args) expression(*arg);
    if (expr.args.size() > maxArguments) failCompile(expr, "too many arguments");
    code().emitU8(OpCode::CALL, expr.args.size(), expr);
}

void Compiler::function(const FunctionLiteral& literal, const Node& node) {
    FunctionState state(current_);
    state.proto->name = literal.name.text();
    state.proto->arity = static_cast<std::uint32_t>(literal.params.size());
    FunctionState* const enclosing = std::exchange(current_, &state);
    for (const Symbol& param : literal.params) state.declareLocal(param);
    statements(literal.body);
    code().emit(OpCode::NIL, node);
    code().emit(OpCode::RETURN, node);
    current_ = enclosing;

    current_->proto->functions.push_back(state.proto);
    code().emitU16(OpCode::CLOSURE, current_->proto->functions.size() - 1, node);
}

}  // namespace

Ref<FunctionProto> compile(const Block& program) { return Compiler().script(program); }

}  // namespace pellum
