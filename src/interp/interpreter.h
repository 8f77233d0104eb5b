// The tree-walking engine: evaluates the syntax tree directly, plain and obviously right. It is the
// yardstick for the virtual machine and the engine of the prompt. One interpreter may run several
// programs after each other; each sees the globals that the earlier ones left.
#pragma once

#include "builtins/native.h"
#include "interp/environment.h"
#include "interp/function.h"
#include "parser/ast.h"

namespace pellum {

class Interpreter final : public Caller {
public:
    // Makes the global scope and installs the builtins. REQUIRES: the console outlives this.
    explicit Interpreter(Console& console);
    // Empties the global scope, which the functions declared in it would otherwise keep alive.
    ~Interpreter() override;

    // Runs the statements in the global scope. Yields the value of the last one when it is an
    // expression statement, else nil; a `return` outside functions ends the program with nil.
    // REQUIRES: the program outlives this and every function value made from it. Throws
    // RuntimeError and ThrownValue, and Interrupted where that is asked for (value/interrupt.h).
    Value run(const Block& program);

    Value call(const Value& callee, Arguments args) override;

    const Environment& globals() const noexcept { return *globals_; }

private:
    // How a statement ended.
    enum class Completion { Normal, Break, Continue, Return };

    // What goes with a completion that is not normal.
    struct Exit {
        Value value;                 // of a return
        const Stmt* from = nullptr;  // the break or continue
    };

    // Statements.
    Value runTopLevel(const Block& program);
    Completion exec(const Stmt& stmt, Environment& scope, Exit& exit);
    Completion execStatements(const Block& block, Environment& scope, Exit& exit);
    Completion execInChildScope(const Block& block, Environment& scope, Exit& exit);
    Completion execIteration(const Block& body, Environment& scope, Exit& exit);
    Completion execIf(const IfStmt& stmt, Environment& scope, Exit& exit);
    Completion execWhile(const WhileStmt& stmt, Environment& scope, Exit& exit);
    Completion execNumericFor(const NumericForStmt& stmt, Environment& scope, Exit& exit);
    Completion execForIn(const ForInStmt& stmt, Environment& scope, Exit& exit);
    Completion execReturn(const ReturnStmt& stmt, Environment& scope, Exit& exit);
    Completion execTry(const TryStmt& stmt, Environment& scope, Exit& exit);
    void execAssign(const AssignStmt& stmt, Environment& scope);
    void assignName(const AssignStmt& stmt, const NameExpr& target, Value value,
                    Environment& scope);
    void assignElement(const AssignStmt& stmt, const Value& object, const Value& index,
                       Value value);

    // Expressions.
    Value eval(const Expr& expr, Environment& scope);
    Value evalListLit(const ListLitExpr& expr, Environment& scope);
    Value evalMapLit(const MapLitExpr& expr, Environment& scope);
    Value evalName(const NameExpr& expr, Environment& scope);
    Value evalUnary(const UnaryExpr& expr, Environment& scope);
    Value evalBinary(const BinaryExpr& expr, Environment& scope);
    Value evalCall(const CallExpr& expr, Environment& scope);
    Value evalIndex(const IndexExpr& expr, Environment& scope);
    Value evalGet(const GetExpr& expr, Environment& scope);
    Value arithmetic(BinaryOp code, std::string_view op, Value left, const Value& right,
                     Position at);
    Value makeFunction(const FunctionLiteral& literal, Environment& scope);
    Value callValue(const Value& callee, Arguments args, Position at);
    Value callFunction(const FunctionObj& function, Arguments args, Position at);

    Ref<Environment> globals_;
};

}  // namespace pellum
