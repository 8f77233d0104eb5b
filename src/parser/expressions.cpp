#include "parser/parser_impl.h"

#include "lexer/lexer.h"
#include "value/limits.h"
#include "value/number.h"

#include <array>

namespace pellum {

namespace {

enum class Side { Left, Right };

// How tightly a binary operator binds, and on which side a chain of its level nests.
//
// binary-operator  ::=  "or" | "and" | "==" | "!=" | "<" | "<=" | ">" | ">="
//                    |  "+" | "-" | "*" | "/" | "//" | "%" | "^"
struct Binding {
    TokenKind kind;
    int level;
    Side side;
};

// clang-format off
constexpr Binding bindings[] = {
    {TokenKind::Or,           1, Side::Left},
    {TokenKind::And,          2, Side::Left},
    {TokenKind::EqualEqual,   3, Side::Left},
    {TokenKind::NotEqual,     3, Side::Left},
    {TokenKind::Less,         4, Side::Left},
    {TokenKind::LessEqual,    4, Side::Left},
    {TokenKind::Greater,      4, Side::Left},
    {TokenKind::GreaterEqual, 4, Side::Left},
    {TokenKind::Plus,         5, Side::Left},
    {TokenKind::Minus,        5, Side::Left},
    {TokenKind::Star,         6, Side::Left},
    {TokenKind::Slash,        6, Side::Left},
    {TokenKind::SlashSlash,   6, Side::Left},
    {TokenKind::Percent,      6, Side::Left},
    {TokenKind::Caret,        8, Side::Right},
};
// clang-format on

// The rows above by token kind; a token that is no binary operator has a level below all others.
constexpr auto bindingByKind = [] {
    std::array<Binding, static_cast<std::size_t>(TokenKind::EndOfFile) + 1> table{};
    table.fill({TokenKind::EndOfFile, -1, Side::Left});
    for (const Binding& row : bindings) table[static_cast<std::size_t>(row.kind)] = row;
    return table;
}();

// Texts up to this length are shared by all who spell them; longer ones are seldom keys.
constexpr std::size_t maxInternedLength = limit(64, 3);

Value stringValue(std::string_view text) {
    return text.size() <= maxInternedLength ? Value(Symbol(text).string()) : Value(text);
}

ExprPtr makeLiteral(const Token& token, const Value& value) {
    auto literal = makeNode<LiteralExpr>(token);
    literal->value = value;
    return literal;
}

ExprPtr makeName(const Token& token, std::string_view text) {
    auto name = makeNode<NameExpr>(token);
    name->name = Symbol(text);
    return name;
}

}  // namespace

// expression  ::=  unary { binary-operator unary }
ExprPtr Parser::expression() { return binary(0); }

// The same, up to the first operator below `minLevel`: the levels say how a chain nests.
ExprPtr Parser::binary(int minLevel) {
    ExprPtr left = unary();
    for (;;) {
        const Binding& binding = bindingByKind[static_cast<std::size_t>(current().kind)];
        if (binding.level < minLevel) return left;
        const Token& op = advance();
        auto node = makeNode<BinaryExpr>(op);
        node->setOperator(spellingOf(op.kind));
        node->left = std::move(left);
        node->right = binary(binding.side == Side::Left ? binding.level + 1 : binding.level);
        left = std::move(node);
    }
}

// unary  ::=  ( "-" | "not" ) unary | postfix
// So it binds tighter than every binary operator, "^" included.
ExprPtr Parser::unary() {
    if (!at(TokenKind::Minus) && !at(TokenKind::Not)) return postfix();
    checkNesting();
    const Token& op = advance();
    auto node = makeNode<UnaryExpr>(op);
    node->op = spellingOf(op.kind);
    node->operand = unary();
    return node;
}

// postfix  ::=  primary { call | index | field }
ExprPtr Parser::postfix() {
    ExprPtr expr = primary();
    for (;;) {
        switch (current().kind) {
            case TokenKind::LeftParen: expr = call(std::move(expr)); break;
            case TokenKind::LeftBracket: expr = index(std::move(expr)); break;
            case TokenKind::Dot: expr = field(std::move(expr)); break;
            default: return expr;
        }
    }
}

// call  ::=  "(" [ expression { "," expression } ] ")"
ExprPtr Parser::call(ExprPtr callee) {
    auto node = makeNode<CallExpr>(advance());
    node->callee = std::move(callee);
    if (!at(TokenKind::RightParen)) {
        do {
            node->args.push_back(expression());
        } while (accept(TokenKind::Comma));
    }
    expect(TokenKind::RightParen, "')' after arguments");
    return node;
}

// index  ::=  "[" expression "]"
ExprPtr Parser::index(ExprPtr object) {
    auto node = makeNode<IndexExpr>(advance());
    node->object = std::move(object);
    node->index = expression();
    expect(TokenKind::RightBracket, "']' after index");
    return node;
}

// field  ::=  "." name
ExprPtr Parser::field(ExprPtr object) {
    auto node = makeNode<GetExpr>(advance());
    node->object = std::move(object);
    node->name = expectName("a field name after '.'");
    return node;
}

// primary  ::=  number | string | interpolated-string | name | "true" | "false" | "nil"
//            |  grouping | list | map | function-literal
ExprPtr Parser::primary() {
    checkNesting();
    switch (current().kind) {
        case TokenKind::Number: return number();
        case TokenKind::String: return string();
        case TokenKind::InterpString: return interpolatedString();
        case TokenKind::Name: return name();
        case TokenKind::True: return makeLiteral(advance(), Value(true));
        case TokenKind::False: return makeLiteral(advance(), Value(false));
        case TokenKind::Nil: return makeLiteral(advance(), Value());
        case TokenKind::LeftParen: return grouping();
        case TokenKind::LeftBracket: return listLiteral();
        case TokenKind::LeftBrace: return mapLiteral();
        case TokenKind::Function: return functionLiteral();
        default: fail("unexpected " + description() + " in expression");
    }
}

// Integers come from the double too, so those beyond 2^53 are rounded.
ExprPtr Parser::number() {
    const Token& token = advance();
    return makeLiteral(token,
                       token.isInteger ? Value(truncateToInt(token.number)) : Value(token.number));
}

ExprPtr Parser::string() {
    const Token& token = advance();
    return makeLiteral(token, stringValue(token.text));
}

// Pieces joined by "+" from left to right; all nodes made here stand where the string does.
ExprPtr Parser::interpolatedString() {
    if (interpolationDepth_ == maxInterpolationDepth) fail(nestingTooDeep);
    const Token& token = advance();
    ExprPtr joined;
    for (const StringPart& part : token.parts()) {
        ExprPtr piece = interpolatedPiece(token, part);
        if (!joined) {
            joined = std::move(piece);
            continue;
        }
        auto node = makeNode<BinaryExpr>(token);
        node->setOperator("+");
        node->left = std::move(joined);
        node->right = std::move(piece);
        joined = std::move(node);
    }
    return joined;
}

// A literal piece as it is; an embedded expression as "str(expression)".
ExprPtr Parser::interpolatedPiece(const Token& token, const StringPart& part) {
    if (part.kind == StringPart::Kind::Text) return makeLiteral(token, stringValue(part.text));
    auto node = makeNode<CallExpr>(token);
    node->callee = makeName(token, "str");
    node->args.push_back(Parser(tokenize(part.text), interpolationDepth_ + 1).interpolation());
    return node;
}

ExprPtr Parser::name() {
    const Token& token = advance();
    return makeName(token, token.text);
}

// grouping  ::=  "(" expression ")"
ExprPtr Parser::grouping() {
    advance();
    ExprPtr inner = expression();
    expect(TokenKind::RightParen, "')' to close grouping");
    return inner;
}

// items(item)  ::=  { line-end } [ item { "," { line-end } item } [ "," ] ] { line-end }
// A line end is allowed nowhere else; `close` is looked for, and left to the caller.
template <typename ParseItem>
void Parser::items(TokenKind close, ParseItem parseItem) {
    skipLineEnds();
    while (!at(close)) {
        parseItem();
        if (!accept(TokenKind::Comma)) break;
        skipLineEnds();
    }
    skipLineEnds();
}

// list  ::=  "[" items(expression) "]"
ExprPtr Parser::listLiteral() {
    auto list = makeNode<ListLitExpr>(advance());
    items(TokenKind::RightBracket, [&] { list->elements.push_back(expression()); });
    expect(TokenKind::RightBracket, "']' to close list");
    return list;
}

// map  ::=  "{" items(map-key ":" expression) "}"
ExprPtr Parser::mapLiteral() {
    auto map = makeNode<MapLitExpr>(advance());
    items(TokenKind::RightBrace, [&] {
        ExprPtr key = mapKey();
        expect(TokenKind::Colon, "':' between map key and value");
        map->entries.emplace_back(std::move(key), expression());
    });
    expect(TokenKind::RightBrace, "'}' to close map");
    return map;
}

// map-key  ::=  name | "[" expression "]" | primary - list
ExprPtr Parser::mapKey() {
    if (at(TokenKind::Name)) {
        const Token& token = advance();
        return makeLiteral(token, Value(Symbol(token.text).string()));
    }
    if (!accept(TokenKind::LeftBracket)) return primary();
    ExprPtr key = expression();
    expect(TokenKind::RightBracket, "']' after computed map key");
    return key;
}

// function-literal  ::=  "function" function-rest
ExprPtr Parser::functionLiteral() {
    auto literal = makeNode<FunctionExpr>(advance());
    literal->function.name = Symbol("<anonymous>");
    functionRest(literal->function);
    return literal;
}

}  // namespace pellum
