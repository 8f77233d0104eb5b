// New nodes for edited trees. They stand where another node stands, so that errors find a line.
#pragma once

#include "builtins/native.h"
#include "parser/ast.h"

#include <string_view>
#include <utility>

namespace pellum::fuzz {

template <typename T>
std::unique_ptr<T, NodeDeleter> nodeAt(const Node& place) {
    return std::unique_ptr<T, NodeDeleter>(new T(place.line, place.column));
}

// A native function that a tree can call without a name for it.
inline Value nativeValue(std::string_view name, NativeFunction function, std::int32_t minimum,
                         std::int32_t maximum) {
    return Value(Ref<CallableObj>(makeRef<NativeObj>(name, function, minimum, maximum)));
}

inline ExprPtr literalOf(Value value, const Node& place) {
    auto literal = nodeAt<LiteralExpr>(place);
    literal->value = std::move(value);
    return literal;
}

inline ExprPtr nameOf(const Symbol& name, const Node& place) {
    auto expr = nodeAt<NameExpr>(place);
    expr->name = name;
    return expr;
}

// Calls `function` without an argument, or with one.
inline ExprPtr callOf(Value function, ExprPtr argument, const Node& place) {
    auto call = nodeAt<CallExpr>(place);
    call->callee = literalOf(std::move(function), place);
    if (argument) call->args.push_back(std::move(argument));
    return call;
}

inline StmtPtr statementOf(ExprPtr expr, const Node& place) {
    auto statement = nodeAt<ExprStmt>(place);
    statement->expr = std::move(expr);
    return statement;
}

inline StmtPtr letOf(const Symbol& name, ExprPtr init, const Node& place) {
    auto let = nodeAt<LetStmt>(place);
    let->name = name;
    let->init = std::move(init);
    return let;
}

}  // namespace pellum::fuzz
