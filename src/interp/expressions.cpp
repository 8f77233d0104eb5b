#include "interp/interpreter.h"
#include "interp/signals.h"
#include "interp/support.h"

#include "operations/operations.h"
#include "value/interrupt.h"
#include "value/map.h"

#include <iterator>

namespace pellum {

Value Interpreter::eval(const Expr& expr, Environment& scope) {
    checkHostStack(positionOf(expr));
    switch (expr.exprKind()) {
        case ExprKind::Literal: return as<LiteralExpr>(expr).value;
        case ExprKind::ListLit: return evalListLit(as<ListLitExpr>(expr), scope);
        case ExprKind::MapLit: return evalMapLit(as<MapLitExpr>(expr), scope);
        case ExprKind::Name: return evalName(as<NameExpr>(expr), scope);
        case ExprKind::Unary: return evalUnary(as<UnaryExpr>(expr), scope);
        case ExprKind::Binary: return evalBinary(as<BinaryExpr>(expr), scope);
        case ExprKind::Call: return evalCall(as<CallExpr>(expr), scope);
        case ExprKind::Index: return evalIndex(as<IndexExpr>(expr), scope);
        case ExprKind::Get: return evalGet(as<GetExpr>(expr), scope);
        case ExprKind::Function: return makeFunction(as<FunctionExpr>(expr).function, scope);
    }
    fail(expr, "cannot evaluate expression");
}

Value Interpreter::evalListLit(const ListLitExpr& expr, Environment& scope) {
    Values elements;
    elements.reserve(expr.elements.size());
    for (const ExprPtr& element : expr.elements) elements.push_back(eval(*element, scope));
    return makeList(std::move(elements));
}

Value Interpreter::evalMapLit(const MapLitExpr& expr, Environment& scope) {
    auto map = makeRef<MapData>();
    for (const auto& [keyExpr, valueExpr] : expr.entries) {
        const Value key = eval(*keyExpr, scope);
        if (!key.isString() && !key.isNumber()) {
            fail(expr, std::string("map keys must be string or number, got ") + typeName(key));
        }
        map->set(key, eval(*valueExpr, scope));
    }
    return Value(std::move(map));
}

Value Interpreter::evalName(const NameExpr& expr, Environment& scope) {
    const Value* bound = scope.lookup(expr.name);
    if (!bound) fail(expr, "undefined variable '" + std::string(expr.name.text()) + "'");
    return *bound;
}

Value Interpreter::evalUnary(const UnaryExpr& expr, Environment& scope) {
    const Value operand = eval(*expr.operand, scope);
    return expr.op == "not" ? Value(!isTruthy(operand)) : negate(operand, positionOf(expr));
}

Value Interpreter::evalBinary(const BinaryExpr& expr, Environment& scope) {
    Value left = eval(*expr.left, scope);
    if (expr.code == BinaryOp::And) return isTruthy(left) ? eval(*expr.right, scope) : left;
    if (expr.code == BinaryOp::Or) return isTruthy(left) ? left : eval(*expr.right, scope);

    const Value right = eval(*expr.right, scope);
    const Position at = positionOf(expr);
    switch (expr.code) {
        case BinaryOp::Equal: return Value(valuesEqual(left, right));
        case BinaryOp::NotEqual: return Value(!valuesEqual(left, right));
        case BinaryOp::Less: return Value(compare(Comparison::Less, left, right, at));
        case BinaryOp::LessEqual: return Value(compare(Comparison::LessEqual, left, right, at));
        case BinaryOp::Greater: return Value(compare(Comparison::Greater, left, right, at));
        case BinaryOp::GreaterEqual:
            return Value(compare(Comparison::GreaterEqual, left, right, at));
        default: return arithmetic(expr.code, expr.op, std::move(left), right, at);
    }
}

Value Interpreter::arithmetic(BinaryOp code, std::string_view op, Value left, const Value& right,
                              Position at) {
    static_assert(static_cast<int>(BinaryOp::Power) == static_cast<int>(ArithmeticOp::Power));
    if (code == BinaryOp::Add) return add(std::move(left), right, at);
    if (!left.isNumber() || !right.isNumber()) {
        fail(at, "operator '" + std::string(op) + "' needs numbers, got " + typeName(left) +
                     " and " + typeName(right));
    }
    if (code > BinaryOp::Power) fail(at, "unknown operator " + std::string(op));
    return numberArithmetic(static_cast<ArithmeticOp>(code), left, right, at);
}

Value Interpreter::evalCall(const CallExpr& expr, Environment& scope) {
    const Value callee = eval(*expr.callee, scope);
    Values args;
    args.reserve(expr.args.size());
    for (const ExprPtr& arg : expr.args) args.push_back(eval(*arg, scope));
    return callValue(callee, args, positionOf(expr));
}

Value Interpreter::evalIndex(const IndexExpr& expr, Environment& scope) {
    const Value object = eval(*expr.object, scope);
    const Value index = eval(*expr.index, scope);
    return readIndex(object, index, positionOf(expr));
}

Value Interpreter::evalGet(const GetExpr& expr, Environment& scope) {
    const Value object = eval(*expr.object, scope);
    return readIndex(object, Value(expr.name.string()), positionOf(expr));
}

Value Interpreter::makeFunction(const FunctionLiteral& literal, Environment& scope) {
    return Value(Ref<CallableObj>(makeRef<FunctionObj>(literal, Ref<Environment>(&scope))));
}

Value Interpreter::call(const Value& callee, Arguments args) {
    return callValue(callee, args, Position{});
}

Value Interpreter::callValue(const Value& callee, Arguments args, Position at) {
    checkHostStack(at);
    stopIfInterrupted();
    switch (callee.kind()) {
        case ValueKind::Native:
            return callNative(static_cast<const NativeObj&>(callee.asFunction()), *this, args, at);
        case ValueKind::Function:
            return callFunction(static_cast<const FunctionObj&>(callee.asFunction()), args, at);
        default: fail(at, std::string(typeName(callee)) + " is not callable");
    }
}

Value Interpreter::callFunction(const FunctionObj& function, Arguments args, Position at) {
    if (args.size() != function.params.size()) {
        throw arityError(function.name.text(), std::to_string(function.params.size()), args.size(),
                         at);
    }
    const auto scope = makeRef<Environment>(function.closure);
    for (std::size_t position = 0; position < args.size(); ++position) {
        scope->define(function.params[position], std::move(args[position]));
    }
    Exit exit;
    switch (execStatements(function.body, *scope, exit)) {
        case Completion::Normal: break;
        case Completion::Return: return std::move(exit.value);
        case Completion::Break: throw BreakSignal{positionOf(*exit.from)};
        case Completion::Continue: throw ContinueSignal{positionOf(*exit.from)};
    }
    return {};
}

}  // namespace pellum
