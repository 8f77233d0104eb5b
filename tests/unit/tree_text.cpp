#include "unit/tree_text.h"

#include "value/format.h"

namespace pellum::test {

namespace {

class TreeWriter {
public:
    explicit TreeWriter(Positions positions) noexcept : positions_(positions) {}

    std::string take() { return std::move(out_); }

    void statements(const Block& block) {
        const char* separator = "";
        for (const StmtPtr& stmt : block) {
            out_ += separator;
            statement(*stmt);
            separator = " ";
        }
    }

private:
    void statement(const Stmt& stmt) {
        switch (stmt.stmtKind()) {
            case StmtKind::Let: return let(as<LetStmt>(stmt));
            case StmtKind::Assign: return assign(as<AssignStmt>(stmt));
            case StmtKind::Expr: return expressionStatement(as<ExprStmt>(stmt));
            case StmtKind::If: return choice(as<IfStmt>(stmt));
            case StmtKind::While: return whileLoop(as<WhileStmt>(stmt));
            case StmtKind::NumericFor: return numericFor(as<NumericForStmt>(stmt));
            case StmtKind::ForIn: return forIn(as<ForInStmt>(stmt));
            case StmtKind::FunctionDecl:
                open("declare", stmt);
                return function(as<FunctionDeclStmt>(stmt).function);
            case StmtKind::Return: return result(as<ReturnStmt>(stmt));
            case StmtKind::Break: return open("break", stmt), close();
            case StmtKind::Continue: return open("continue", stmt), close();
            case StmtKind::Try: return attempt(as<TryStmt>(stmt));
        }
    }

    void expression(const Expr& expr) {
        switch (expr.exprKind()) {
            case ExprKind::Literal: return atom(toReprString(as<LiteralExpr>(expr).value), expr);
            case ExprKind::ListLit: return list(as<ListLitExpr>(expr));
            case ExprKind::MapLit: return map(as<MapLitExpr>(expr));
            case ExprKind::Name: return atom(as<NameExpr>(expr).name.text(), expr);
            case ExprKind::Unary:
                open(as<UnaryExpr>(expr).op, expr);
                child(*as<UnaryExpr>(expr).operand);
                return close();
            case ExprKind::Binary:
                open(as<BinaryExpr>(expr).op, expr);
                child(*as<BinaryExpr>(expr).left);
                child(*as<BinaryExpr>(expr).right);
                return close();
            case ExprKind::Call: return call(as<CallExpr>(expr));
            case ExprKind::Index:
                open("index", expr);
                child(*as<IndexExpr>(expr).object);
                child(*as<IndexExpr>(expr).index);
                return close();
            case ExprKind::Get:
                open("get", expr);
                child(*as<GetExpr>(expr).object);
                word(as<GetExpr>(expr).name.text());
                return close();
            case ExprKind::Function:
                open("function", expr);
                return function(as<FunctionExpr>(expr).function);
        }
    }

    void let(const LetStmt& stmt) {
        open("let", stmt);
        word(stmt.name.text());
        child(*stmt.init);
        close();
    }

    void assign(const AssignStmt& stmt) {
        open(std::string(stmt.op) + "=", stmt);
        child(*stmt.target);
        child(*stmt.value);
        close();
    }

    // Bare, so its own position shows only where it is not that of the expression.
    void expressionStatement(const ExprStmt& stmt) {
        if (stmt.line != stmt.expr->line || stmt.column != stmt.expr->column) {
            atom("statement", stmt);
            out_ += ' ';
        }
        expression(*stmt.expr);
    }

    void choice(const IfStmt& stmt) {
        open("if", stmt);
        for (const IfStmt::Branch& branch : stmt.branches) {
            if (branch.cond) {
                child(*branch.cond);
            } else {
                word("else");
            }
            block(branch.body);
        }
        close();
    }

    void whileLoop(const WhileStmt& stmt) {
        open("while", stmt);
        child(*stmt.cond);
        block(stmt.body);
        close();
    }

    void numericFor(const NumericForStmt& stmt) {
        open("for", stmt);
        word(stmt.var.text());
        child(*stmt.start);
        child(*stmt.end);
        if (stmt.step) child(*stmt.step);
        block(stmt.body);
        close();
    }

    void forIn(const ForInStmt& stmt) {
        open("for-in", stmt);
        word(stmt.var.text());
        child(*stmt.iterable);
        block(stmt.body);
        close();
    }

    void result(const ReturnStmt& stmt) {
        open("return", stmt);
        if (stmt.value) child(*stmt.value);
        close();
    }

    void attempt(const TryStmt& stmt) {
        open("try", stmt);
        block(stmt.body);
        word(stmt.catchVar.text());
        block(stmt.handler);
        close();
    }

    void list(const ListLitExpr& expr) {
        open("list", expr);
        for (const ExprPtr& element : expr.elements) child(*element);
        close();
    }

    void map(const MapLitExpr& expr) {
        open("map", expr);
        for (const auto& [key, value] : expr.entries) {
            out_ += " [";
            expression(*key);
            out_ += ' ';
            expression(*value);
            out_ += ']';
        }
        close();
    }

    void call(const CallExpr& expr) {
        open("call", expr);
        child(*expr.callee);
        for (const ExprPtr& argument : expr.args) child(*argument);
        close();
    }

    // What follows the opening of both forms of function.
    void function(const FunctionLiteral& literal) {
        word(literal.name.text());
        out_ += " (";
        const char* separator = "";
        for (const Symbol& param : literal.params) {
            out_ += separator;
            out_ += param.text();
            separator = " ";
        }
        out_ += ')';
        block(literal.body);
        close();
    }

    void block(const Block& body) {
        out_ += " {";
        statements(body);
        out_ += '}';
    }

    void open(std::string_view text, const Node& node) {
        out_ += '(';
        atom(text, node);
    }
    void close() { out_ += ')'; }

    void atom(std::string_view text, const Node& node) {
        out_ += text;
        if (positions_ == Positions::Hidden) return;
        out_ += '@' + std::to_string(node.line) + ':' + std::to_string(node.column);
    }

    void word(std::string_view text) {
        out_ += ' ';
        out_ += text;
    }

    void child(const Expr& expr) {
        out_ += ' ';
        expression(expr);
    }

    Positions positions_;
    std::string out_;
};

}  // namespace

std::string treeText(const Block& program, Positions positions) {
    TreeWriter writer(positions);
    writer.statements(program);
    return writer.take();
}

}  // namespace pellum::test
