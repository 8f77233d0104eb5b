#include "driver/errors/errors.h"
#include "lexer/lexer.h"
#include "value/format.h"
#include "value/number.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace pellum::test {

namespace {

using namespace std::string_view_literals;

const char* enumerator(TokenKind kind) {
    static constexpr const char* names[] = {
#define PELLUM_TOKEN_NAME(name, spelling) #name,
        PELLUM_TOKENS(PELLUM_TOKEN_NAME)
#undef PELLUM_TOKEN_NAME
    };
    return names[static_cast<std::size_t>(kind)];
}

std::string contents(const Token& token) {
    std::string out = quoteString(token.text);
    if (token.kind == TokenKind::Number) {
        out += '=';
        out += token.isInteger ? formatInt(truncateToInt(token.number)) : formatFloat(token.number);
    }
    for (const StringPart& part : token.parts()) {
        out += part.kind == StringPart::Kind::Text ? " text " : " code ";
        out += quoteString(part.text);
    }
    return out;
}

// The tokens of `source` as a test writes them down: kind, contents and position, one per line.
std::string tokens(std::string_view source) {
    std::string out;
    for (const Token& token : tokenize(source)) {
        out += enumerator(token.kind);
        if (token.kind != TokenKind::EndOfLine && token.kind != TokenKind::EndOfFile) {
            out += ' ' + contents(token);
        }
        out += " @" + std::to_string(token.line) + ':' + std::to_string(token.column) + '\n';
    }
    return out;
}

struct Row {
    std::string_view source, expected;
};

template <std::size_t count>
void expectTokens(const Row (&rows)[count]) {
    for (const Row& row : rows) {
        SCOPED_TRACE(row.source);
        EXPECT_EQ(tokens(row.source), row.expected);
    }
}

// The message and the place of the error that `source` gives.
std::string lexError(std::string_view source) {
    try {
        tokenize(source);
    } catch (const LexError& error) {
        EXPECT_EQ(error.kind, "SyntaxError (lexing)");
        return std::to_string(error.line) + ':' + std::to_string(error.column) + ' ' +
               error.message;
    }
    return "no error";
}

template <std::size_t count>
void expectErrors(const Row (&rows)[count]) {
    for (const Row& row : rows) {
        SCOPED_TRACE(row.source);
        EXPECT_EQ(lexError(row.source), row.expected);
    }
}

TEST(Tokens, EndsOfLinesAndOfTheFileRepeatTheTokenBefore) {
    expectTokens({
        {"", "EndOfFile @1:1\n"},
        {"\n", "EndOfLine @1:1\nEndOfFile @1:1\n"},
        {"  # nothing", "EndOfFile @1:1\n"},
        {"\n\n  \n", "EndOfLine @1:1\nEndOfLine @1:1\nEndOfLine @1:1\nEndOfFile @1:1\n"},
        {"x = 10\n",
         "Name \"x\" @1:1\nAssign \"=\" @1:3\nNumber \"10\"=10 @1:5\nEndOfLine @1:5\n"
         "EndOfFile @1:5\n"},
        {"a\n\nb",
         "Name \"a\" @1:1\nEndOfLine @1:1\nEndOfLine @1:1\nName \"b\" @3:1\nEndOfFile @3:1\n"},
        {"(\n  a # why\n)",
         "LeftParen \"(\" @1:1\nEndOfLine @1:1\nName \"a\" @2:3\nEndOfLine @2:3\n"
         "RightParen \")\" @3:1\nEndOfFile @3:1\n"},
    });
}

TEST(Tokens, TextOfTheTwoEnds) {
    const std::vector<Token> list = tokenize("\n");
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(list[0].text, "\\n");
    EXPECT_EQ(list[1].text, "");
}

TEST(Tokens, BlanksAndComments) {
    expectTokens({
        {" \t\r a", "Name \"a\" @1:5\nEndOfFile @1:5\n"},
        {"a\r\nb", "Name \"a\" @1:1\nEndOfLine @1:1\nName \"b\" @2:1\nEndOfFile @2:1\n"},
        {"a # b \" ' ${ ! \xC3\xA9 \0 \f\nc"sv,
         "Name \"a\" @1:1\nEndOfLine @1:1\nName \"c\" @2:1\nEndOfFile @2:1\n"},
        {"a#b", "Name \"a\" @1:1\nEndOfFile @1:1\n"},
        {"#", "EndOfFile @1:1\n"},
    });
}

TEST(Tokens, ByteOrderMarkIsSkippedOnceAndDoesNotCount) {
    expectTokens({
        {"\xEF\xBB\xBF", "EndOfFile @1:1\n"},
        {"\xEF\xBB\xBFx", "Name \"x\" @1:1\nEndOfFile @1:1\n"},
    });
    expectErrors({
        {"\xEF\xBB\xBF\xEF\xBB\xBF", "1:1 unexpected character '\xEF'"},
        {"\xEF\xBB", "1:1 unexpected character '\xEF'"},
        {" \xEF\xBB\xBF", "1:2 unexpected character '\xEF'"},
    });
}

TEST(Tokens, Names) {
    expectTokens({
        {"_ a1 B_2 _9z",
         "Name \"_\" @1:1\nName \"a1\" @1:3\nName \"B_2\" @1:6\nName \"_9z\" @1:10\n"
         "EndOfFile @1:10\n"},
        {"iff If IN end_",
         "Name \"iff\" @1:1\nName \"If\" @1:5\nName \"IN\" @1:8\n"
         "Name \"end_\" @1:11\nEndOfFile @1:11\n"},
    });
}

// Keywords, operators and punctuation: each spelling gives its own kind, alone and before others.
TEST(Tokens, EverySpellingInTheListGivesItsKind) {
    struct Spelling {
        TokenKind kind;
        std::string text;
    };
    const Spelling spellings[] = {
#define PELLUM_SPELLING(name, spelling) {TokenKind::name, spelling},
        PELLUM_TOKENS(PELLUM_SPELLING)
#undef PELLUM_SPELLING
    };
    int seen = 0;
    for (const auto& [kind, text] : spellings) {
        if (text.empty()) continue;
        SCOPED_TRACE(text);
        for (const std::string& source : {text, text + " =", text + "\n", " " + text + "#"}) {
            const Token token = tokenize(source).front();
            EXPECT_EQ(token.kind, kind);
            EXPECT_EQ(token.text, text);
        }
        ++seen;
    }
    EXPECT_EQ(seen, 52);
}

TEST(Tokens, KeywordNumbers) {
    const std::string_view words[] = {"let",   "function", "return", "if",   "then", "elif",
                                      "else",  "while",    "for",    "in",   "do",   "end",
                                      "break", "continue", "and",    "or",   "not",  "true",
                                      "false", "nil",      "try",    "catch"};
    std::uint32_t number = 34;
    for (const std::string_view word : words) {
        SCOPED_TRACE(word);
        EXPECT_EQ(static_cast<std::uint32_t>(tokenize(word).front().kind), number++);
    }
    EXPECT_EQ(number, static_cast<std::uint32_t>(TokenKind::EndOfLine));
}

TEST(Tokens, OperatorsTakeTheLongestSpelling) {
    expectTokens({
        {"x//2", "Name \"x\" @1:1\nSlashSlash \"//\" @1:2\nNumber \"2\"=2 @1:4\nEndOfFile @1:4\n"},
        {"///=", "SlashSlash \"//\" @1:1\nSlashAssign \"/=\" @1:3\nEndOfFile @1:3\n"},
        {"//=/=", "SlashSlashAssign \"//=\" @1:1\nSlashAssign \"/=\" @1:4\nEndOfFile @1:4\n"},
        {"===", "EqualEqual \"==\" @1:1\nAssign \"=\" @1:3\nEndOfFile @1:3\n"},
        {"<==", "LessEqual \"<=\" @1:1\nAssign \"=\" @1:3\nEndOfFile @1:3\n"},
        {"!==", "NotEqual \"!=\" @1:1\nAssign \"=\" @1:3\nEndOfFile @1:3\n"},
        {"- =", "Minus \"-\" @1:1\nAssign \"=\" @1:3\nEndOfFile @1:3\n"},
        {"a.b", "Name \"a\" @1:1\nDot \".\" @1:2\nName \"b\" @1:3\nEndOfFile @1:3\n"},
        {":=", "Colon \":\" @1:1\nAssign \"=\" @1:2\nEndOfFile @1:2\n"},
    });
}

TEST(Tokens, Numbers) {
    expectTokens({
        {"0", "Number \"0\"=0 @1:1\nEndOfFile @1:1\n"},
        {"007", "Number \"007\"=7 @1:1\nEndOfFile @1:1\n"},
        {"10.0", "Number \"10.0\"=10.0 @1:1\nEndOfFile @1:1\n"},
        {"1e1", "Number \"1e1\"=10.0 @1:1\nEndOfFile @1:1\n"},
        {"1.5e3", "Number \"1.5e3\"=1500.0 @1:1\nEndOfFile @1:1\n"},
        {"2E+2", "Number \"2E+2\"=200.0 @1:1\nEndOfFile @1:1\n"},
        {"5e-1", "Number \"5e-1\"=0.5 @1:1\nEndOfFile @1:1\n"},
        {".5", "Number \".5\"=0.5 @1:1\nEndOfFile @1:1\n"},
        {".5e1", "Number \".5e1\"=5.0 @1:1\nEndOfFile @1:1\n"},
        {"1.", "Number \"1\"=1 @1:1\nDot \".\" @1:2\nEndOfFile @1:2\n"},
        {"1.e5", "Number \"1\"=1 @1:1\nDot \".\" @1:2\nName \"e5\" @1:3\nEndOfFile @1:3\n"},
        {"3..4", "Number \"3\"=3 @1:1\nDot \".\" @1:2\nNumber \".4\"=0.4 @1:3\nEndOfFile @1:3\n"},
        {"1.2.3", "Number \"1.2\"=1.2 @1:1\nNumber \".3\"=0.3 @1:4\nEndOfFile @1:4\n"},
        {"1.5.x", "Number \"1.5\"=1.5 @1:1\nDot \".\" @1:4\nName \"x\" @1:5\nEndOfFile @1:5\n"},
        {"0x1F", "Number \"0\"=0 @1:1\nName \"x1F\" @1:2\nEndOfFile @1:2\n"},
        {"1_000", "Number \"1\"=1 @1:1\nName \"_000\" @1:2\nEndOfFile @1:2\n"},
        {"-5", "Minus \"-\" @1:1\nNumber \"5\"=5 @1:2\nEndOfFile @1:2\n"},
        {"1e2.5", "Number \"1e2\"=100.0 @1:1\nNumber \".5\"=0.5 @1:4\nEndOfFile @1:4\n"},
        {"9007199254740993", "Number \"9007199254740993\"=9007199254740992 @1:1\nEndOfFile @1:1\n"},
        {"4e-324", "Number \"4e-324\"=5e-324 @1:1\nEndOfFile @1:1\n"},
    });
    expectErrors({
        {"1e", "1:1 malformed number: exponent has no digits"},
        {" 1e+", "1:2 malformed number: exponent has no digits"},
        {"1e-x", "1:1 malformed number: exponent has no digits"},
        {"1.5E ", "1:1 malformed number: exponent has no digits"},
        {"1else", "1:1 malformed number: exponent has no digits"},
        {".5e", "1:1 malformed number: exponent has no digits"},
        {"\n  1e+-5", "2:3 malformed number: exponent has no digits"},
    });
}

TEST(Tokens, NumbersThatNoDoubleHoldsAreOutOfRange) {
    const std::string manyDigits(400, '9');
    for (const std::string& literal :
         {std::string("1e999"), std::string("1e-400"), std::string("2.5E+309"), manyDigits}) {
        SCOPED_TRACE(literal);
        try {
            const std::string source = "x = " + literal + " # y";
            tokenize(source);
            ADD_FAILURE() << "no error";
        } catch (const std::out_of_range& error) {
            EXPECT_EQ(error.what(), "number literal out of range: " + literal);
        }
    }
}

TEST(Tokens, Strings) {
    expectTokens({
        {R"("")", "String \"\" @1:1\nEndOfFile @1:1\n"},
        {R"('' "a")", "String \"\" @1:1\nString \"a\" @1:4\nEndOfFile @1:4\n"},
        {R"('It''s')", "String \"It\" @1:1\nString \"s\" @1:5\nEndOfFile @1:5\n"},
        {R"("it's" 'say "x"')",
         "String \"it's\" @1:1\nString \"say \\\"x\\\"\" @1:8\nEndOfFile @1:8\n"},
        {R"("a # b")", "String \"a # b\" @1:1\nEndOfFile @1:1\n"},
        {"'caf\xC3\xA9\t' x",
         "String \"caf\xC3\xA9\\t\" @1:1\nName \"x\" @1:10\nEndOfFile @1:10\n"},
        {"'a\0b\r'"sv, "String \"a\0b\\r\" @1:1\nEndOfFile @1:1\n"sv},
    });
    expectErrors({
        {"\"", "1:1 unterminated string literal"},
        {"  'abc", "1:3 unterminated string literal"},
        {"'abc\"", "1:1 unterminated string literal"},
        {"x = \"ab\ncd\"", "1:5 unterminated string literal"},
        {"'a\\'", "1:1 unterminated string literal"},
        {"\n 'a\\", "2:2 unterminated string literal"},
        {"\"${x}", "1:1 unterminated string literal"},
        {"\"${x}\n\"", "1:1 unterminated string literal"},
    });
}

TEST(Tokens, Escapes) {
    expectTokens({
        {R"("\n\t\r\\\"\'\$")", "String \"\\n\\t\\r\\\\\\\"'$\" @1:1\nEndOfFile @1:1\n"},
        {R"('\n\t\r\\\"\'\$')", "String \"\\n\\t\\r\\\\\\\"'$\" @1:1\nEndOfFile @1:1\n"},
        {R"('\0' "a\00")",
         "String \"\0\" @1:1\nString \"a\0"
         "0\" @1:6\nEndOfFile @1:6\n"sv},
    });
    expectErrors({
        {R"("\q")", "1:4 unknown escape sequence '\\q'"},
        {R"(x = 'ab\x41')", "1:10 unknown escape sequence '\\x'"},
        {R"("a\{b")", "1:5 unknown escape sequence '\\{'"},
        {R"("\N")", "1:4 unknown escape sequence '\\N'"},
        {"\n'\\\t'", "2:4 unknown escape sequence '\\\t'"},
        {"'a\\\nb'", "2:1 unknown escape sequence '\\\n'"},
        {"'a\\\r\nb'", "1:5 unknown escape sequence '\\\r'"},
        {"'\\\0'"sv, "1:4 unknown escape sequence '\\\0'"sv},
        {"'\\\xC3\xA9'", "1:4 unknown escape sequence '\\\xC3'"},
        {R"("${x}\q")", "1:8 unknown escape sequence '\\q'"},
    });
}

TEST(Tokens, Interpolation) {
    expectTokens({
        {R"("a${x}b")",
         "InterpString \"\" text \"a\" code \"x\" text \"b\" @1:1\nEndOfFile @1:1\n"},
        {R"("${a}${b}")", "InterpString \"\" code \"a\" code \"b\" @1:1\nEndOfFile @1:1\n"},
        {R"("${}")", "InterpString \"\" code \"\" @1:1\nEndOfFile @1:1\n"},
        {R"("\n${ x + 1 }\$")",
         "InterpString \"\" text \"\\n\" code \" x + 1 \" text \"$\" @1:1\nEndOfFile @1:1\n"},
        {R"("$" '${x}' "$x $$" "\${x}")",
         "String \"$\" @1:1\nString \"${x}\" @1:5\nString \"$x $$\" @1:12\n"
         "String \"${x}\" @1:20\nEndOfFile @1:20\n"},
        {R"("$${x}}")",
         "InterpString \"\" text \"$\" code \"x\" text \"}\" @1:1\nEndOfFile @1:1\n"},
        {R"("{${x}")", "InterpString \"\" text \"{\" code \"x\" @1:1\nEndOfFile @1:1\n"},
        {R"(x "${y}" z)",
         "Name \"x\" @1:1\nInterpString \"\" code \"y\" @1:3\nName \"z\" @1:10\n"
         "EndOfFile @1:10\n"},
    });
}

TEST(Tokens, CodeInAStringEndsAtItsOwnBrace) {
    expectTokens({
        {R"("${{a: 1}["a"]}!")",
         "InterpString \"\" code \"{a: 1}[\\\"a\\\"]\" text \"!\" @1:1\nEndOfFile @1:1\n"},
        {R"("${f("}")}")", "InterpString \"\" code \"f(\\\"}\\\")\" @1:1\nEndOfFile @1:1\n"},
        {R"("${'{'}")", "InterpString \"\" code \"'{'\" @1:1\nEndOfFile @1:1\n"},
        {R"("${'"}'}")", "InterpString \"\" code \"'\\\"}'\" @1:1\nEndOfFile @1:1\n"},
        {R"("${"\"}"}")", "InterpString \"\" code \"\\\"\\\\\\\"}\\\"\" @1:1\nEndOfFile @1:1\n"},
        {R"("${'\n'}")", "InterpString \"\" code \"'\\\\n'\" @1:1\nEndOfFile @1:1\n"},
        {R"("${\n}")", "InterpString \"\" code \"\\\\n\" @1:1\nEndOfFile @1:1\n"},
        {R"("${"${x}"}")", "InterpString \"\" code \"\\\"${x}\\\"\" @1:1\nEndOfFile @1:1\n"},
        {"\"${a # b}\"", "InterpString \"\" code \"a # b\" @1:1\nEndOfFile @1:1\n"},
        {"\"${'a\nb'}\" c",
         "InterpString \"\" code \"'a\\nb'\" @1:1\nName \"c\" @2:6\nEndOfFile @2:6\n"},
        {"\"${'a\\\nb'}\"", "InterpString \"\" code \"'a\\\\\\nb'\" @1:1\nEndOfFile @1:1\n"},
        {"\"${\0\xFF!}\""sv, "InterpString \"\" code \"\0\xFF!\" @1:1\nEndOfFile @1:1\n"sv},
    });
    expectErrors({
        {"\"${", "1:1 unterminated ${...} in string"},
        {"x \"a${\n}\"", "1:3 unterminated ${...} in string"},
        {"\"${a", "1:1 unterminated ${...} in string"},
        {"\"${{a}\"", "1:1 unterminated ${...} in string"},
        {"\"${'a}\"", "1:1 unterminated ${...} in string"},
        {"\"${a\"", "1:1 unterminated ${...} in string"},
        {"\"${'a\n\n", "1:1 unterminated ${...} in string"},
        {"\n \"${'a\\", "2:2 unterminated ${...} in string"},
        {"\"${x} ${\n", "1:1 unterminated ${...} in string"},
    });
}

TEST(Tokens, UnexpectedCharacters) {
    expectErrors({
        {"@", "1:1 unexpected character '@'"},
        {"a $b", "1:3 unexpected character '$'"},
        {"a\n\t;", "2:2 unexpected character ';'"},
        {"a && b", "1:3 unexpected character '&'"},
        {"a\\", "1:2 unexpected character '\\'"},
        {"\f", "1:1 unexpected character '\f'"},
        {"a \0"sv, "1:3 unexpected character '\0'"sv},
        {"caf\xC3\xA9", "1:4 unexpected character '\xC3'"},
        {"!", "1:1 '!' must be followed by '=' (did you mean 'not'?)"},
        {"x = !y", "1:5 '!' must be followed by '=' (did you mean 'not'?)"},
        {"a\n ! =", "2:2 '!' must be followed by '=' (did you mean 'not'?)"},
    });
}

TEST(Tokens, KindNames) {
    EXPECT_STREQ(tokenKindName(TokenKind::Number), "number");
    EXPECT_STREQ(tokenKindName(TokenKind::String), "string");
    EXPECT_STREQ(tokenKindName(TokenKind::InterpString), "interp-string");
    EXPECT_STREQ(tokenKindName(TokenKind::Name), "name");
    EXPECT_STREQ(tokenKindName(TokenKind::EndOfLine), "end of line");
    EXPECT_STREQ(tokenKindName(TokenKind::EndOfFile), "end of file");
    for (auto number = static_cast<std::uint32_t>(TokenKind::LeftParen);
         number <= static_cast<std::uint32_t>(TokenKind::Catch); ++number) {
        EXPECT_STREQ(tokenKindName(static_cast<TokenKind>(number)), "token");
    }
}

}  // namespace

}  // namespace pellum::test
