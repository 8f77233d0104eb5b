// Tokens: what the lexer makes of a source text and the parser, the prompt and the token dump read.
#pragma once

#include "value/object.h"

#include <cstdint>
#include <deque>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace pellum {

// One row for each kind, in the order of its number: enumerator, and the spelling where the kind
// has but one. The rows from Let to Catch are the keywords.
#define PELLUM_TOKENS(TOKEN)       \
    TOKEN(Number, "")              \
    TOKEN(String, "")              \
    TOKEN(InterpString, "")        \
    TOKEN(Name, "")                \
    TOKEN(LeftParen, "(")          \
    TOKEN(RightParen, ")")         \
    TOKEN(LeftBracket, "[")        \
    TOKEN(RightBracket, "]")       \
    TOKEN(LeftBrace, "{")          \
    TOKEN(RightBrace, "}")         \
    TOKEN(Comma, ",")              \
    TOKEN(Colon, ":")              \
    TOKEN(Dot, ".")                \
    TOKEN(Plus, "+")               \
    TOKEN(Minus, "-")              \
    TOKEN(Star, "*")               \
    TOKEN(Slash, "/")              \
    TOKEN(SlashSlash, "//")        \
    TOKEN(Percent, "%")            \
    TOKEN(Caret, "^")              \
    TOKEN(Assign, "=")             \
    TOKEN(EqualEqual, "==")        \
    TOKEN(NotEqual, "!=")          \
    TOKEN(Less, "<")               \
    TOKEN(LessEqual, "<=")         \
    TOKEN(Greater, ">")            \
    TOKEN(GreaterEqual, ">=")      \
    TOKEN(PlusAssign, "+=")        \
    TOKEN(MinusAssign, "-=")       \
    TOKEN(StarAssign, "*=")        \
    TOKEN(SlashAssign, "/=")       \
    TOKEN(SlashSlashAssign, "//=") \
    TOKEN(PercentAssign, "%=")     \
    TOKEN(CaretAssign, "^=")       \
    TOKEN(Let, "let")              \
    TOKEN(Function, "function")    \
    TOKEN(Return, "return")        \
    TOKEN(If, "if")                \
    TOKEN(Then, "then")            \
    TOKEN(Elif, "elif")            \
    TOKEN(Else, "else")            \
    TOKEN(While, "while")          \
    TOKEN(For, "for")              \
    TOKEN(In, "in")                \
    TOKEN(Do, "do")                \
    TOKEN(End, "end")              \
    TOKEN(Break, "break")          \
    TOKEN(Continue, "continue")    \
    TOKEN(And, "and")              \
    TOKEN(Or, "or")                \
    TOKEN(Not, "not")              \
    TOKEN(True, "true")            \
    TOKEN(False, "false")          \
    TOKEN(Nil, "nil")              \
    TOKEN(Try, "try")              \
    TOKEN(Catch, "catch")          \
    TOKEN(EndOfLine, "")           \
    TOKEN(EndOfFile, "")

enum class TokenKind : std::uint32_t {
#define PELLUM_TOKEN_ENUMERATOR(name, spelling) name,
    PELLUM_TOKENS(PELLUM_TOKEN_ENUMERATOR)
#undef PELLUM_TOKEN_ENUMERATOR
};

static_assert(static_cast<int>(TokenKind::Let) == 34);
static_assert(static_cast<int>(TokenKind::EndOfFile) == 57);

// A piece of an interpolated string.
struct StringPart {
    enum class Kind : std::uint8_t { Text = 0, Expression = 1 };
    Kind kind;
    std::string_view text;  // decoded for Text; source exactly as written for Expression
};

// What a string token has beside the source text: its pieces, and whatever had to be decoded.
struct StringContents final : Object {
    std::vector<StringPart> parts;    // of an interpolated string
    std::deque<std::string> decoded;  // texts with escapes, which the views look into
    std::string_view written;         // the whole string in the source, with its quotes
};

// Small, since a source has one for every few bytes. The texts are views into the source, or into
// what the token shares with its copies, so the source must outlive the token.
struct Token {
    TokenKind kind = TokenKind::EndOfFile;
    bool isInteger = false;  // a number written without fraction and exponent
    // Where the first character stands, from 1. Ends of lines and of the file repeat the position
    // of the last other token (1:1 when there is none).
    std::uint32_t line = 1;
    std::uint32_t column = 1;
    // The characters as written; for a string its decoded contents; for an interpolated string
    // nothing; for an end of line a backslash and an "n"; for the end of file nothing.
    std::string_view text;
    double number = 0;             // the value of a number literal
    Ref<StringContents> contents;  // of a string with escapes or interpolations, else null

    // The pieces of an interpolated string; none for other tokens.
    std::span<const StringPart> parts() const noexcept {
        return contents ? std::span<const StringPart>(contents->parts)
                        : std::span<const StringPart>();
    }
};

}  // namespace pellum
