#include "lexer/lexer.h"

#include "driver/errors/errors.h"
#include "value/parse_number.h"

#include <algorithm>
#include <stdexcept>
#include <unordered_map>

namespace pellum {

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

bool isDigit(char byte) noexcept { return byte >= '0' && byte <= '9'; }

bool isLetter(char byte) noexcept {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
}

bool startsName(char byte) noexcept { return isLetter(byte) || byte == '_'; }
bool continuesName(char byte) noexcept { return startsName(byte) || isDigit(byte); }

bool isKeyword(TokenKind kind) noexcept {
    return kind >= TokenKind::Let && kind <= TokenKind::Catch;
}

// The keyword that `word` spells, or Name.
TokenKind nameKind(std::string_view word) {
    static const auto keywords = [] {
        std::unordered_map<std::string_view, TokenKind> table;
        const auto addKeyword = [&](TokenKind kind, std::string_view spelling) {
            if (isKeyword(kind)) table.emplace(spelling, kind);
        };
#define PELLUM_ADD_KEYWORD(name, spelling) addKeyword(TokenKind::name, spelling);
        PELLUM_TOKENS(PELLUM_ADD_KEYWORD)
#undef PELLUM_ADD_KEYWORD
        return table;
    }();
    const auto found = keywords.find(word);
    return found == keywords.end() ? TokenKind::Name : found->second;
}

class Lexer {
public:
    explicit Lexer(std::string_view source) noexcept : source_(source) {}

    std::vector<Token> run() {
        // Code has a token for every three or four bytes; the bound is for texts that are not code.
        tokens_.reserve(std::min<std::size_t>(source_.size() / 4, 4096));
        while (!atEnd()) scan();
        add(TokenKind::EndOfFile, "");
        return std::move(tokens_);
    }

private:
    void scan() {
        const char byte = peek();
        if (byte == '\n') {
            endOfLine();
        } else if (byte == ' ' || byte == '\t' || byte == '\r') {
            advance();
        } else if (byte == '#') {
            comment();
        } else if (startsName(byte)) {
            name();
        } else if (isDigit(byte) || (byte == '.' && isDigit(peek(1)))) {
            number();
        } else if (byte == '"' || byte == '\'') {
            string();
        } else {
            punctuation();
        }
    }

    // A line's end repeats the position of the token before it, so it begins none of its own.
    void endOfLine() {
        add(TokenKind::EndOfLine, "\\n");
        advance();
    }

    void comment() {
        while (!atEnd() && peek() != '\n') advance();
    }

    void name() {
        beginToken();
        while (continuesName(peek())) advance();
        add(nameKind(tokenText()), tokenText());
    }

    void number() {
        beginToken();
        bool isInteger = true;
        digits();
        if (peek() == '.' && isDigit(peek(1))) {
            isInteger = false;
            advance();
            digits();
        }
        if (peek() == 'e' || peek() == 'E') {
            isInteger = false;
            advance();
            if (peek() == '+' || peek() == '-') advance();
            if (!isDigit(peek())) failAtToken("malformed number: exponent has no digits");
            digits();
        }
        Token& token = add(TokenKind::Number, tokenText());
        token.number = literalValue(token.text);
        token.isInteger = isInteger;
    }

    void digits() {
        while (isDigit(peek())) advance();
    }

    static double literalValue(const std::string& literal) {
        const ParsedFloat parsed = parseFloatPrefix(literal);
        if (parsed.outOfRange) throw std::out_of_range("number literal out of range: " + literal);
        return parsed.value;
    }

    void string() {
        beginToken();
        const char quote = advance();
        std::string text;
        std::vector<StringPart> parts;
        const auto addText = [&] {
            if (!text.empty()) parts.push_back({StringPart::Kind::Text, std::move(text)});
            text.clear();
        };
        bool isInterpolated = false;
        while (peek() != quote) {
            if (atEnd() || peek() == '\n') failAtToken("unterminated string literal");
            if (peek() == '\\') {
                text += escape();
            } else if (quote == '"' && peek() == '$' && peek(1) == '{') {
                isInterpolated = true;
                addText();
                parts.push_back({StringPart::Kind::Expression, embeddedExpression()});
            } else {
                text += advance();
            }
        }
        advance();
        if (!isInterpolated) {
            add(TokenKind::String, std::move(text));
        } else {
            addText();
            add(TokenKind::InterpString, "").parts = std::move(parts);
        }
    }

    // The byte that an escape such as "\n" stands for.
    char escape() {
        advance();
        if (atEnd()) failAtToken("unterminated string literal");
        const char byte = advance();
        switch (byte) {
            case 'n': return '\n';
            case 't': return '\t';
            case 'r': return '\r';
            case '0': return '\0';
            case '\\':
            case '"':
            case '\'':
            case '$': return byte;
            default:
                throw LexError(std::string("unknown escape sequence '\\") + byte + "'", line_,
                               column_);
        }
    }

    // The source between "${" and the "}" that matches it.
    std::string embeddedExpression() {
        advance();
        advance();
        const std::size_t start = offset_;
        for (int depth = 1; depth > 0;) {
            if (atEnd() || peek() == '\n') failAtToken(unterminatedExpression);
            switch (peek()) {
                case '{': ++depth; break;
                case '}': --depth; break;
                case '"':
                case '\'': nestedString(); continue;
                default: break;
            }
            advance();
        }
        return std::string(source_.substr(start, offset_ - 1 - start));
    }

    // Passes over a string inside "${...}"; it is decoded when the expression is lexed.
    void nestedString() {
        const char quote = advance();
        while (peek() != quote) {
            if (peek() == '\\') advance();
            if (atEnd()) failAtToken(unterminatedExpression);
            advance();
        }
        advance();
    }

    // Operators and punctuation.
    void punctuation() {
        beginToken();
        const char byte = advance();
        switch (byte) {
            case '(': addPunctuation(TokenKind::LeftParen); break;
            case ')': addPunctuation(TokenKind::RightParen); break;
            case '[': addPunctuation(TokenKind::LeftBracket); break;
            case ']': addPunctuation(TokenKind::RightBracket); break;
            case '{': addPunctuation(TokenKind::LeftBrace); break;
            case '}': addPunctuation(TokenKind::RightBrace); break;
            case ',': addPunctuation(TokenKind::Comma); break;
            case ':': addPunctuation(TokenKind::Colon); break;
            case '.': addPunctuation(TokenKind::Dot); break;
            case '+': addPunctuation(TokenKind::Plus, TokenKind::PlusAssign); break;
            case '-': addPunctuation(TokenKind::Minus, TokenKind::MinusAssign); break;
            case '*': addPunctuation(TokenKind::Star, TokenKind::StarAssign); break;
            case '%': addPunctuation(TokenKind::Percent, TokenKind::PercentAssign); break;
            case '^': addPunctuation(TokenKind::Caret, TokenKind::CaretAssign); break;
            case '=': addPunctuation(TokenKind::Assign, TokenKind::EqualEqual); break;
            case '<': addPunctuation(TokenKind::Less, TokenKind::LessEqual); break;
            case '>': addPunctuation(TokenKind::Greater, TokenKind::GreaterEqual); break;
            case '/':
                if (accept('/')) {
                    addPunctuation(TokenKind::SlashSlash, TokenKind::SlashSlashAssign);
                } else {
                    addPunctuation(TokenKind::Slash, TokenKind::SlashAssign);
                }
                break;
            case '!':
                if (!accept('=')) {
                    failAtToken("'!' must be followed by '=' (did you mean 'not'?)");
                }
                addPunctuation(TokenKind::NotEqual);
                break;
            default: failAtToken(std::string("unexpected character '") + byte + "'");
        }
    }

    void addPunctuation(TokenKind kind) { add(kind, tokenText()); }
    void addPunctuation(TokenKind plain, TokenKind withEqual) {
        const TokenKind kind = accept('=') ? withEqual : plain;
        add(kind, tokenText());
    }

    bool atEnd() const noexcept { return offset_ == source_.size(); }

    // A byte further on, or 0 past the end.
    char peek(std::size_t ahead = 0) const noexcept {
        return ahead < source_.size() - offset_ ? source_[offset_ + ahead] : '\0';
    }

    // REQUIRES: not at the end.
    char advance() noexcept {
        const char byte = source_[offset_++];
        if (byte == '\n') {
            ++line_;
            column_ = 1;
        } else {
            ++column_;
        }
        return byte;
    }

    bool accept(char byte) noexcept {
        if (peek() != byte) return false;
        advance();
        return true;
    }

    void beginToken() noexcept {
        tokenOffset_ = offset_;
        tokenLine_ = line_;
        tokenColumn_ = column_;
    }

    // What has been consumed of the token that is being scanned.
    std::string_view tokenText() const noexcept {
        return source_.substr(tokenOffset_, offset_ - tokenOffset_);
    }

    template <typename Text>
    Token& add(TokenKind kind, Text&& text) {
        Token& token = tokens_.emplace_back();
        token.kind = kind;
        token.text = std::forward<Text>(text);
        token.line = tokenLine_;
        token.column = tokenColumn_;
        return token;
    }

    [[noreturn]] void failAtToken(std::string message) const {
        throw LexError(std::move(message), tokenLine_, tokenColumn_);
    }

    static constexpr const char* unterminatedExpression = "unterminated ${...} in string";

    std::string_view source_;
    std::size_t offset_ = 0;
    std::uint32_t line_ = 1;
    std::uint32_t column_ = 1;
    std::vector<Token> tokens_;
    // Where the token being scanned, or else the last one, began.
    std::size_t tokenOffset_ = 0;
    std::uint32_t tokenLine_ = 1;
    std::uint32_t tokenColumn_ = 1;
};

}  // namespace

std::vector<Token> tokenize(std::string_view source) {
    if (source.starts_with(byteOrderMark)) source.remove_prefix(byteOrderMark.size());
    return Lexer(source).run();
}

const char* tokenKindName(TokenKind kind) noexcept {
    switch (kind) {
        case TokenKind::Number: return "number";
        case TokenKind::String: return "string";
        case TokenKind::InterpString: return "interp-string";
        case TokenKind::Name: return "name";
        case TokenKind::EndOfLine: return "end of line";
        case TokenKind::EndOfFile: return "end of file";
        default: return "token";
    }
}

}  // namespace pellum
