#include "lexer/lexer.h"

#include "driver/errors/errors.h"
#include "value/limits.h"
#include "value/parse_number.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace pellum {

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

// What a byte can be part of.
//
// digit   ::=  ? "0" to "9" ?
// letter  ::=  ? "A" to "Z" or "a" to "z" ?
enum ByteClass : std::uint8_t { digitByte = 1, nameByte = 2, blankByte = 4 };

constexpr auto byteClasses = [] {
    std::array<std::uint8_t, 256> classes{};
    for (std::size_t byte = '0'; byte <= '9'; ++byte) classes[byte] = digitByte | nameByte;
    for (std::size_t byte = 'a'; byte <= 'z'; ++byte) classes[byte] = nameByte;
    for (std::size_t byte = 'A'; byte <= 'Z'; ++byte) classes[byte] = nameByte;
    classes['_'] = nameByte;
    classes[' '] = classes['\t'] = classes['\r'] = blankByte;
    return classes;
}();

bool is(ByteClass wanted, char byte) noexcept {
    return (byteClasses[static_cast<unsigned char>(byte)] & wanted) != 0;
}
bool isDigit(char byte) noexcept { return is(digitByte, byte); }
bool continuesName(char byte) noexcept { return is(nameByte, byte); }

constexpr bool isKeyword(TokenKind kind) noexcept {
    return kind >= TokenKind::Let && kind <= TokenKind::Catch;
}

constexpr std::size_t keywordSlots = 64;

// The keyword that `word` spells, or Name.
TokenKind nameKind(std::string_view word) {
    struct Keyword {
        std::string_view spelling;
        TokenKind kind;
    };
    // A perfect hash over the 22 words, found by trying: building it fails when two collide.
    static constexpr auto slotOf = [](std::string_view text) -> std::size_t {
        const auto first = static_cast<unsigned char>(text.front());
        const auto last = static_cast<unsigned char>(text.back());
        return (first + last * 6 + text.size() * 11) % keywordSlots;
    };
    static constexpr auto keywords = [] {
        std::array<Keyword, keywordSlots> table{};
        const auto addKeyword = [&](TokenKind kind, std::string_view spelling) {
            if (!isKeyword(kind)) return;
            Keyword& slot = table[slotOf(spelling)];
            if (!slot.spelling.empty()) throw spelling;
            slot = {spelling, kind};
        };
#define PELLUM_ADD_KEYWORD(name, spelling) addKeyword(TokenKind::name, spelling);
        PELLUM_TOKENS(PELLUM_ADD_KEYWORD)
#undef PELLUM_ADD_KEYWORD
        return table;
    }();
    const Keyword& candidate = keywords[slotOf(word)];
    return candidate.spelling == word ? candidate.kind : TokenKind::Name;
}

class Lexer {
public:
    explicit Lexer(std::string_view source) noexcept : source_(source) {}

    std::vector<Token> run() {
        makeRoom();
        while (!atEnd()) scan();
        add(TokenKind::EndOfFile, "");
        return std::move(tokens_);
    }

private:
    // Code has a token for every four bytes or so. Where so many find no room, fewer may do.
    void makeRoom() {
        constexpr int mostReserved = limit(1 << 24, 2);
        const std::size_t expected = std::min<std::size_t>(source_.size() / 4 + 1, mostReserved);
        try {
            tokens_.reserve(expected);
            preferLargePages(tokens_.data(), expected * sizeof(Token));
        } catch (const std::bad_alloc&) {
        }
    }

    // blank  ::=  ? space, tab or carriage return ? | comment
    // Blanks may stand between any two tokens, and make none.
    void scan() {
        const char byte = peek();
        if (byte == '\n') {
            endOfLine();
        } else if (is(blankByte, byte)) {
            ++offset_;
        } else if (byte == '#') {
            comment();
        } else if (isDigit(byte) || (byte == '.' && isDigit(peek(1)))) {
            number();
        } else if (continuesName(byte)) {
            name();
        } else if (byte == '"' || byte == '\'') {
            string();
        } else {
            punctuation();
        }
    }

    // line-end  ::=  ? newline ?
    // It repeats the position of the token before it, so it begins none of its own.
    void endOfLine() {
        add(TokenKind::EndOfLine, "\\n");
        passLineEnd();
    }

    // comment  ::=  "#" { ? any byte but a newline ? }
    void comment() { offset_ = std::min(source_.find('\n', offset_), source_.size()); }

    // name  ::=  ( letter | "_" ) { letter | "_" | digit }
    void name() {
        beginToken();
        while (continuesName(peek())) ++offset_;
        add(nameKind(tokenText()), tokenText());
    }

    // number  ::=  ( digits [ "." digits ] | "." digits ) [ ( "e" | "E" ) [ "+" | "-" ] digits ]
    void number() {
        beginToken();
        bool isInteger = true;
        digits();
        if (peek() == '.' && isDigit(peek(1))) {
            isInteger = false;
            ++offset_;
            digits();
        }
        if (peek() == 'e' || peek() == 'E') {
            isInteger = false;
            ++offset_;
            if (peek() == '+' || peek() == '-') ++offset_;
            if (!isDigit(peek())) failAtToken("malformed number: exponent has no digits");
            digits();
        }
        Token& token = add(TokenKind::Number, tokenText());
        token.number = literalValue(token.text);
        token.isInteger = isInteger;
    }

    // digits  ::=  digit { digit }
    void digits() noexcept {
        while (isDigit(peek())) ++offset_;
    }

    static double literalValue(std::string_view literal) {
        const ParsedFloat parsed = parseFloatPrefix(literal);
        if (parsed.outOfRange) {
            throw std::out_of_range("number literal out of range: " + std::string(literal));
        }
        return parsed.value;
    }

    // string  ::=  '"' { plain | escape } '"' | "'" { plain | escape } "'"
    // Most strings are nothing but their bytes; the others get contents of their own.
    void string() {
        beginToken();
        const char quote = peek();
        const std::size_t start = ++offset_;
        passPlainText(quote);
        if (peek() == quote) {
            ++offset_;
            add(TokenKind::String, source_.substr(start, offset_ - 1 - start));
            return;
        }
        richString(quote, start);
    }

    // interpolated-string  ::=  '"' { plain | escape } embedded { plain | escape | embedded } '"'
    // Goes on, from the first byte that is more than itself, with a string of either kind that
    // began at `start`.
    void richString(char quote, std::size_t start) {
        const auto contents = makeRef<StringContents>();
        std::string text(source_.substr(start, offset_ - start));
        const auto keepText = [&]() -> std::string_view {
            return contents->decoded.emplace_back(std::exchange(text, {}));
        };
        const auto addText = [&] {
            if (!text.empty()) contents->parts.push_back({StringPart::Kind::Text, keepText()});
        };
        bool isInterpolated = false;
        while (peek() != quote) {
            if (atEnd() || peek() == '\n') failAtToken("unterminated string literal");
            if (peek() == '\\') {
                text += escape();
            } else if (startsExpression(quote)) {
                isInterpolated = true;
                addText();
                contents->parts.push_back({StringPart::Kind::Expression, embeddedExpression()});
            } else {
                text += source_[offset_++];
            }
            const std::size_t plain = offset_;
            passPlainText(quote);
            text += source_.substr(plain, offset_ - plain);
        }
        ++offset_;
        contents->written = tokenText();
        if (isInterpolated) addText();
        Token& token =
            isInterpolated ? add(TokenKind::InterpString, "") : add(TokenKind::String, keepText());
        token.contents = contents;
    }

    // plain  ::=  ? any byte but a newline, "\", the quote around it and, between '"', a "${" ?
    // Up to the quote, or whatever else needs a closer look.
    void passPlainText(char quote) noexcept {
        while (!atEnd()) {
            const char byte = source_[offset_];
            if (byte == quote || byte == '\\' || byte == '\n' || startsExpression(quote)) return;
            ++offset_;
        }
    }

    bool startsExpression(char quote) const noexcept {
        return quote == '"' && peek() == '$' && peek(1) == '{';
    }

    // escape  ::=  "\" ( "n" | "t" | "r" | "0" | "\" | '"' | "'" | "$" )
    // The byte that it stands for.
    char escape() {
        ++offset_;
        if (atEnd()) failAtToken("unterminated string literal");
        const char byte = source_[offset_++];
        switch (byte) {
            case 'n': return '\n';
            case 't': return '\t';
            case 'r': return '\r';
            case '0': return '\0';
            case '\\':
            case '"':
            case '\'':
            case '$': return byte;
            default: failAtEscape(byte);
        }
    }

    [[noreturn]] void failAtEscape(char byte) {
        if (byte == '\n') {
            --offset_;
            passLineEnd();
        }
        throw LexError(std::string("unknown escape sequence '\\") + byte + "'", line_, column());
    }

    // embedded  ::=  "${" interpolation "}"
    // The source between "${" and the "}" that matches it.
    std::string_view embeddedExpression() {
        offset_ += 2;
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
            ++offset_;
        }
        return source_.substr(start, offset_ - 1 - start);
    }

    // Passes over a string inside "${...}"; it is decoded when the expression is lexed.
    void nestedString() {
        const char quote = source_[offset_++];
        while (peek() != quote) {
            if (peek() == '\\') ++offset_;
            if (atEnd()) failAtToken(unterminatedExpression);
            if (peek() == '\n') {
                passLineEnd();
            } else {
                ++offset_;
            }
        }
        ++offset_;
    }

    // Operators and punctuation.
    void punctuation() {
        beginToken();
        const char byte = source_[offset_++];
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

    bool accept(char byte) noexcept {
        if (peek() != byte) return false;
        ++offset_;
        return true;
    }

    // REQUIRES: at a line end. All other bytes are passed by moving on the offset.
    void passLineEnd() noexcept {
        lineStart_ = ++offset_;
        ++line_;
    }

    std::uint32_t column() const noexcept {
        return static_cast<std::uint32_t>(offset_ - lineStart_) + 1;
    }

    void beginToken() noexcept {
        tokenOffset_ = offset_;
        tokenLine_ = line_;
        tokenColumn_ = column();
    }

    // What has been consumed of the token that is being scanned.
    std::string_view tokenText() const noexcept {
        return source_.substr(tokenOffset_, offset_ - tokenOffset_);
    }

    Token& add(TokenKind kind, std::string_view text) {
        Token& token = tokens_.emplace_back();
        token.kind = kind;
        token.text = text;
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
    std::size_t lineStart_ = 0;
    std::uint32_t line_ = 1;
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

std::string_view spellingOf(TokenKind kind) noexcept {
    static constexpr std::string_view spellings[] = {
#define PELLUM_TOKEN_SPELLING(name, spelling) spelling,
        PELLUM_TOKENS(PELLUM_TOKEN_SPELLING)
#undef PELLUM_TOKEN_SPELLING
    };
    return spellings[static_cast<std::size_t>(kind)];
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
