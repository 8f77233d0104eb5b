#include "lint/code_checker.h"

#include "value/format.h"

#include <algorithm>
#include <initializer_list>
#include <unordered_set>

namespace pellum::lint {

namespace {

std::string onOperands(Type left, Type right) {
    std::string text = " always fails on " + std::string(withArticle(left));
    if (left != Type::Unknown && right != Type::Unknown) text += " and ";
    return text += withArticle(right);
}

bool isUnknownOr(Type type, std::initializer_list<Type> allowed) noexcept {
    if (type == Type::Unknown) return true;
    return std::find(allowed.begin(), allowed.end(), type) != allowed.end();
}

bool differ(Type left, Type right) noexcept {
    return left != Type::Unknown && right != Type::Unknown && left != right;
}

// As a program would write it, in a line that is not too long.
std::string shown(const Value& literal) {
    constexpr std::size_t mostBytes = 40;
    std::string text = toReprString(literal);
    if (text.size() > mostBytes) text.replace(mostBytes - 3, text.npos, "...");
    return text;
}

}  // namespace

// What is known of the first operand is handed on from each part of a chain to the next.
Known CodeChecker::expression(const Expr& expr) {
    checkNesting(expr);
    Known known;
    for (const Expr* const part : spineOf(expr)) known = operation(*part, known);
    return known;
}

Known CodeChecker::operation(const Expr& expr, const Known& first) {
    switch (expr.exprKind()) {
        case ExprKind::Literal: {
            const Value& value = as<LiteralExpr>(expr).value;
            Known known = Known::of(typeOf(value));
            known.literal = &value;
            known.truth = isTruthy(value) ? Truth::Always : Truth::Never;
            return known;
        }
        case ExprKind::ListLit: {
            Known known = Known::of(Type::List);
            known.isNew = true;
            for (const ExprPtr& element : as<ListLitExpr>(expr).elements) {
                known.hasCall |= expression(*element).hasCall;
            }
            return known;
        }
        case ExprKind::MapLit: return mapLiteral(as<MapLitExpr>(expr));
        case ExprKind::Name: return {};
        case ExprKind::Unary: return unary(as<UnaryExpr>(expr));
        case ExprKind::Binary: return binary(as<BinaryExpr>(expr), first);
        case ExprKind::Call: return call(as<CallExpr>(expr), first);
        case ExprKind::Index:
        case ExprKind::Get: return element(expr, first);
        case ExprKind::Function: {
            function(as<FunctionExpr>(expr).function);
            Known known = Known::of(Type::Function);
            known.isNew = true;
            return known;
        }
    }
    return {};
}

Known CodeChecker::mapLiteral(const MapLitExpr& expr) {
    Known known = Known::of(Type::Map);
    known.isNew = true;
    std::unordered_set<std::string_view> texts;
    std::unordered_set<double> numbers;
    for (const auto& [key, value] : expr.entries) {
        const Known knownKey = expression(*key);
        known.hasCall |= knownKey.hasCall;
        known.hasCall |= expression(*value).hasCall;
        if (!isUnknownOr(knownKey.type, {Type::String, Type::Number})) {
            report(places_.beginningOf(*key), Rule::BadOperand,
                   "a key of a map cannot be " + std::string(withArticle(knownKey.type)));
        }
        if (!knownKey.literal) continue;
        const Value& literal = *knownKey.literal;
        const bool isFirst = literal.isString()   ? texts.insert(literal.asText()).second
                             : literal.isNumber() ? numbers.insert(literal.asNumber()).second
                                                  : true;
        if (!isFirst) {
            report(*key, Rule::DuplicateKey,
                   "the key " + shown(literal) + " comes twice, and the last value counts");
        }
    }
    return known;
}

Known CodeChecker::unary(const UnaryExpr& expr) {
    const Known operand = expression(*expr.operand);
    Known known = Known::of(expr.op == "not" ? Type::Bool : Type::Number);
    known.hasCall = operand.hasCall;
    if (expr.op != "not") {
        if (!isUnknownOr(operand.type, {Type::Number})) {
            report(expr, Rule::BadOperand, "'-'" + onOperands(operand.type, Type::Unknown));
        }
    } else if (operand.truth != Truth::Unknown) {
        known.truth = operand.truth == Truth::Always ? Truth::Never : Truth::Always;
    }
    return known;
}

Known CodeChecker::binary(const BinaryExpr& expr, const Known& left) {
    const Known right = expression(*expr.right);
    Known known;
    if (expr.code == BinaryOp::And) return both(left, right);
    if (expr.code == BinaryOp::Or) return either(left, right);
    if (hasTightPrefix(expr)) {
        known = Known::of(expr.code == BinaryOp::Power ? Type::Number : Type::Bool);
    } else if (expr.code <= BinaryOp::Power) {
        known = arithmetic(expr, left, right);
    } else {
        known = comparison(expr, left, right);
    }
    known.hasCall = left.hasCall || right.hasCall;
    return known;
}

// `not a == b` and `-a ^ b`, where nothing shows that it is meant.
bool CodeChecker::hasTightPrefix(const BinaryExpr& expr) {
    if (expr.left->exprKind() != ExprKind::Unary) return false;
    const std::string_view prefix = as<UnaryExpr>(*expr.left).op;
    const bool isPower = expr.code == BinaryOp::Power;
    if (prefix == "not" ? expr.code < BinaryOp::Equal : !isPower) return false;
    if (places_.isLeftGrouped(expr)) return false;
    report(*expr.left, Rule::TightPrefix,
           "'" + std::string(prefix) + "' binds tighter than '" + std::string(expr.op) + "'");
    return true;
}

Known CodeChecker::comparison(const BinaryExpr& expr, const Known& left, const Known& right) {
    if (expr.code != BinaryOp::Equal && expr.code != BinaryOp::NotEqual) {
        if (differ(left.type, right.type) ||
            !isUnknownOr(left.type, {Type::Number, Type::String}) ||
            !isUnknownOr(right.type, {Type::Number, Type::String})) {
            report(expr, Rule::BadOperand,
                   "'" + std::string(expr.op) + "'" + onOperands(left.type, right.type));
        }
        return Known::of(Type::Bool);
    }
    const Value* const name = left.isTypeName ? right.literal : left.literal;
    if (differ(left.type, right.type)) {
        report(expr, Rule::ConstantComparison,
               std::string(withArticle(left.type)) + " and " +
                   std::string(withArticle(right.type)) + " are never equal");
    } else if (left.isNew || right.isNew) {
        report(expr, Rule::ConstantComparison,
               std::string(withArticle(left.isNew ? left.type : right.type)) +
                   " that is made here is equal to nothing else");
    } else if ((left.isTypeName || right.isTypeName) && name && !isTypeName(name->asText())) {
        report(expr, Rule::TypeName, "there is no type " + shown(*name));
    }
    return Known::of(Type::Bool);
}

Known CodeChecker::arithmetic(const BinaryExpr& expr, const Known& left, const Known& right) {
    const bool isAdd = expr.code == BinaryOp::Add;
    const auto isFit = [&](Type type) {
        return isAdd ? isUnknownOr(type, {Type::Number, Type::String, Type::List})
                     : isUnknownOr(type, {Type::Number});
    };
    if (!isFit(left.type) || !isFit(right.type) || differ(left.type, right.type)) {
        report(expr, Rule::BadOperand,
               "'" + std::string(expr.op) + "'" + onOperands(left.type, right.type));
        return {};
    }
    Known known = Known::of(!isAdd                       ? Type::Number
                            : left.type != Type::Unknown ? left.type
                                                         : right.type);
    known.isNew = known.type == Type::List;
    return known;
}

Known CodeChecker::call(const CallExpr& expr, const Known& callee) {
    Known known;
    known.hasCall = callee.hasCall || !places_.isInterpolation(expr);
    for (const ExprPtr& arg : expr.args) known.hasCall |= expression(*arg).hasCall;
    if (!isUnknownOr(callee.type, {Type::Function})) {
        report(expr, Rule::BadOperand, std::string(withArticle(callee.type)) + " cannot be called");
    }
    const NativeObj* const builtin = names_.builtin(*expr.callee);
    if (builtin && (builtin->name == "type" || builtin->name == "str")) {
        known.type = Type::String;
        known.truth = Truth::Always;
        known.isTypeName = builtin->name == "type";
    }
    return known;
}

Known CodeChecker::element(const Expr& expr, const Known& object) {
    Known known;
    known.hasCall = object.hasCall;
    if (expr.exprKind() == ExprKind::Index) {
        known.hasCall |= expression(*as<IndexExpr>(expr).index).hasCall;
    }
    if (!isUnknownOr(object.type, {Type::String, Type::List, Type::Map})) {
        report(expr, Rule::BadOperand, std::string(withArticle(object.type)) + " has no elements");
    }
    return known;
}

Known CodeChecker::condition(const Expr& expr) {
    const Known known = expression(expr);
    if (known.truth != Truth::Unknown) {
        report(places_.beginningOf(expr), Rule::ConstantCondition,
               known.truth == Truth::Always ? "this condition is always true"
                                            : "this condition is never true");
    }
    return known;
}

}  // namespace pellum::lint
