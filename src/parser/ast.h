// The syntax tree: plain nodes that know their kind, their position and their children, and own
// their children alone. The parser builds it once; the tree-walker and the compiler read it and
// switch on the kind. Whoever called the parser owns the tree, and must keep it for as long as the
// tree-walker runs over it, since function values point into it.
#pragma once

#include "value/pool.h"
#include "value/string.h"
#include "value/value.h"

#include <cassert>
#include <memory>
#include <string_view>
#include <vector>

namespace pellum {

// What every node begins with. Its position is that of the token that begins the construct, except
// that operators, assignments, calls, indexing and field access stand at their operator, "=", "(",
// "[" or ".".
class Node {
public:
    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;
    virtual ~Node() = default;

    static void* operator new(std::size_t size) { return allocateCell(size); }
    static void operator delete(void* memory, std::size_t size) noexcept {
        releaseCell(memory, size);
    }

    const std::uint32_t kind;  // a StmtKind or an ExprKind
    std::uint32_t line;        // from 1
    std::uint32_t column;      // from 1, in bytes

protected:
    Node(std::uint32_t kindNumber, std::uint32_t atLine, std::uint32_t atColumn) noexcept
        : kind(kindNumber), line(atLine), column(atColumn) {}
};

// Deletes a tree without recursing on the host's stack, however deep it is: nodes that die while
// another is being deleted wait in a list for their turn.
struct NodeDeleter {
    void operator()(Node* node) const noexcept;
};

enum class ExprKind : std::uint32_t {
    Literal,
    ListLit,
    MapLit,
    Name,
    Unary,
    Binary,
    Call,
    Index,
    Get,
    Function,
};

enum class StmtKind : std::uint32_t {
    Let,
    Assign,
    Expr,
    If,
    While,
    NumericFor,
    ForIn,
    FunctionDecl,
    Return,
    Break,
    Continue,
    Try,
};

struct Expr : Node {
    ExprKind exprKind() const noexcept { return static_cast<ExprKind>(kind); }

protected:
    using Node::Node;
};

struct Stmt : Node {
    StmtKind stmtKind() const noexcept { return static_cast<StmtKind>(kind); }

protected:
    using Node::Node;
};

using ExprPtr = std::unique_ptr<Expr, NodeDeleter>;
using StmtPtr = std::unique_ptr<Stmt, NodeDeleter>;
using Block = std::vector<StmtPtr>;

// The kind comes from the type, so the two cannot drift apart.
template <ExprKind Kind>
struct ExprOf : Expr {
    static constexpr ExprKind staticKind = Kind;
    ExprOf(std::uint32_t atLine, std::uint32_t atColumn) noexcept
        : Expr(static_cast<std::uint32_t>(Kind), atLine, atColumn) {}
};

template <StmtKind Kind>
struct StmtOf : Stmt {
    static constexpr StmtKind staticKind = Kind;
    StmtOf(std::uint32_t atLine, std::uint32_t atColumn) noexcept
        : Stmt(static_cast<std::uint32_t>(Kind), atLine, atColumn) {}
};

// The node as what its kind says it is. REQUIRES: the kind is T's.
template <typename T, typename Base>
const T& as(const Base& node) noexcept {
    assert(node.kind == static_cast<std::uint32_t>(T::staticKind));
    return static_cast<const T&>(node);
}

// A binary operator: the arithmetic ones first, in the order in which the instructions have them,
// then the comparisons, then the two that may skip their right side.
enum class BinaryOp : std::uint8_t {
    Add,
    Subtract,
    Multiply,
    Divide,
    FloorDivide,
    Modulo,
    Power,
    Equal,
    NotEqual,
    Less,
    LessEqual,
    Greater,
    GreaterEqual,
    And,
    Or,
    Unknown,  // the text names no operator; the parser never makes one
};

// The operator that a text such as "//" names, or Unknown.
BinaryOp binaryOp(std::string_view text) noexcept;

// What a function literal and a function declaration have in common.
struct FunctionLiteral {
    Symbol name;  // "<anonymous>" for a literal
    std::vector<Symbol> params;
    Block body;
};

struct LiteralExpr final : ExprOf<ExprKind::Literal> {
    using ExprOf::ExprOf;
    Value value;  // nil, bool, integer, float or string
};

struct ListLitExpr final : ExprOf<ExprKind::ListLit> {
    using ExprOf::ExprOf;
    std::vector<ExprPtr> elements;
};

struct MapLitExpr final : ExprOf<ExprKind::MapLit> {
    using ExprOf::ExprOf;
    std::vector<std::pair<ExprPtr, ExprPtr>> entries;  // key and value, in source order
};

struct NameExpr final : ExprOf<ExprKind::Name> {
    using ExprOf::ExprOf;
    Symbol name;
};

struct UnaryExpr final : ExprOf<ExprKind::Unary> {
    using ExprOf::ExprOf;
    std::string_view op;  // "-" or "not"
    ExprPtr operand;
};

struct BinaryExpr final : ExprOf<ExprKind::Binary> {
    using ExprOf::ExprOf;
    // REQUIRES: the text outlives the tree.
    void setOperator(std::string_view text) {
        op = text;
        code = binaryOp(text);
    }
    std::string_view op;
    BinaryOp code = BinaryOp::Unknown;  // what `op` names
    ExprPtr left, right;
};

struct CallExpr final : ExprOf<ExprKind::Call> {
    using ExprOf::ExprOf;
    ExprPtr callee;
    std::vector<ExprPtr> args;
};

struct IndexExpr final : ExprOf<ExprKind::Index> {
    using ExprOf::ExprOf;
    ExprPtr object, index;
};

struct GetExpr final : ExprOf<ExprKind::Get> {
    using ExprOf::ExprOf;
    ExprPtr object;
    Symbol name;  // the field after "."
};

struct FunctionExpr final : ExprOf<ExprKind::Function> {
    using ExprOf::ExprOf;
    FunctionLiteral function;
};

struct LetStmt final : StmtOf<StmtKind::Let> {
    using StmtOf::StmtOf;
    Symbol name;
    ExprPtr init;  // never null
};

struct AssignStmt final : StmtOf<StmtKind::Assign> {
    using StmtOf::StmtOf;
    // REQUIRES: the text outlives the tree.
    void setOperator(std::string_view text) {
        op = text;
        code = binaryOp(text);
    }
    bool isCompound() const noexcept { return !op.empty(); }

    ExprPtr target;  // a NameExpr, IndexExpr or GetExpr
    ExprPtr value;
    std::string_view op;                // empty for "=", else the arithmetic operator
    BinaryOp code = BinaryOp::Unknown;  // what `op` names
};

struct ExprStmt final : StmtOf<StmtKind::Expr> {
    using StmtOf::StmtOf;
    ExprPtr expr;
};

struct IfStmt final : StmtOf<StmtKind::If> {
    using StmtOf::StmtOf;
    struct Branch {
        ExprPtr cond;  // null for the "else" part, which comes last
        Block body;
    };
    std::vector<Branch> branches;
};

struct WhileStmt final : StmtOf<StmtKind::While> {
    using StmtOf::StmtOf;
    ExprPtr cond;
    Block body;
};

struct NumericForStmt final : StmtOf<StmtKind::NumericFor> {
    using StmtOf::StmtOf;
    Symbol var;
    ExprPtr start, end;
    ExprPtr step;  // null when omitted
    Block body;
};

struct ForInStmt final : StmtOf<StmtKind::ForIn> {
    using StmtOf::StmtOf;
    Symbol var;
    ExprPtr iterable;
    Block body;
};

struct FunctionDeclStmt final : StmtOf<StmtKind::FunctionDecl> {
    using StmtOf::StmtOf;
    FunctionLiteral function;
};

struct ReturnStmt final : StmtOf<StmtKind::Return> {
    using StmtOf::StmtOf;
    ExprPtr value;  // null for a bare return
};

struct BreakStmt final : StmtOf<StmtKind::Break> {
    using StmtOf::StmtOf;
};

struct ContinueStmt final : StmtOf<StmtKind::Continue> {
    using StmtOf::StmtOf;
};

struct TryStmt final : StmtOf<StmtKind::Try> {
    using StmtOf::StmtOf;
    Block body;
    Symbol catchVar;
    Block handler;
};

}  // namespace pellum
