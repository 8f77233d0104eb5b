// The walk behind `checkCode`, shared by its sources: statements.cpp knows where control goes,
// expressions.cpp what is known of values.
#pragma once

#include "lint/code_rules.h"
#include "lint/known.h"

#include <string>
#include <utility>
#include <vector>

namespace pellum::lint {

class CodeChecker {
public:
    CodeChecker(const Names& names, const Places& places, Findings& findings)
        : names_(names), places_(places), findings_(findings) {}

    // Whether control may come out at the end of the block.
    bool block(const Block& block);

private:
    struct Loop {
        std::size_t tries;    // how many stand around it, in its function
        bool isLeft = false;  // by a `break`
    };

    // Statements; each says whether control may go on behind it.
    bool statement(const Stmt& stmt);
    bool ifStatement(const IfStmt& stmt);
    bool whileLoop(const WhileStmt& stmt);
    bool tryStatement(const TryStmt& stmt);
    bool expressionStatement(const ExprStmt& stmt);
    void numericFor(const NumericForStmt& stmt);
    void forIn(const ForInStmt& stmt);
    void leaveLoop(const Stmt& stmt, const char* word);
    void assignment(const AssignStmt& stmt);
    void function(const FunctionLiteral& literal);

    // Expressions.
    Known expression(const Expr& expr);
    Known operation(const Expr& expr, const Known& first);
    Known mapLiteral(const MapLitExpr& expr);
    Known unary(const UnaryExpr& expr);
    Known binary(const BinaryExpr& expr, const Known& left);
    Known comparison(const BinaryExpr& expr, const Known& left, const Known& right);
    Known arithmetic(const BinaryExpr& expr, const Known& left, const Known& right);
    Known call(const CallExpr& expr, const Known& callee);
    Known element(const Expr& expr, const Known& object);
    Known condition(const Expr& expr);
    bool hasTightPrefix(const BinaryExpr& expr);

    void report(Position at, Rule rule, std::string text) {
        findings_.push_back({at, rule, std::move(text)});
    }
    void report(const Node& node, Rule rule, std::string text) {
        report(places_.of(node), rule, std::move(text));
    }

    const Names& names_;
    const Places& places_;
    Findings& findings_;
    std::vector<Loop> loops_;  // of the function being looked at, innermost last
    std::size_t tries_ = 0;    // whose bodies stand around the statement, likewise
};

}  // namespace pellum::lint
