// The targets that look at source text without running it.
#include "fuzz/targets.h"

#include "compiler/compiler.h"
#include "compiler/disassembler.h"
#include "driver/errors/errors.h"
#include "lexer/lexer.h"
#include "parser/parser.h"
#include "vm/depth_analysis.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace pellum::fuzz {

namespace {

std::string quoted(std::string_view decoded) {
    std::string text;
    for (const char byte : decoded) {
        switch (byte) {
            case '\n': text += "\\n"; break;
            case '\t': text += "\\t"; break;
            case '\r': text += "\\r"; break;
            case '\0': text += "\\0"; break;
            case '"':
            case '\\':
            case '$': text += '\\'; [[fallthrough]];
            default: text += byte;
        }
    }
    return text;
}

// A source text that falls into these tokens.
std::string spelled(const std::vector<Token>& tokens) {
    std::string text;
    for (const Token& token : tokens) {
        switch (token.kind) {
            case TokenKind::EndOfLine: text += '\n'; break;
            case TokenKind::EndOfFile: break;
            case TokenKind::String: text += '"' + quoted(token.text) + "\" "; break;
            case TokenKind::InterpString:
                text += '"';
                for (const StringPart& piece : token.parts()) {
                    text += piece.kind == StringPart::Kind::Text
                                ? quoted(piece.text)
                                : "${" + std::string(piece.text) + "}";
                }
                text += "\" ";
                break;
            default: text.append(token.text) += ' ';
        }
    }
    return text;
}

bool areAlike(const Token& a, const Token& b) {
    const auto same = [](const StringPart& one, const StringPart& other) {
        return one.kind == other.kind && one.text == other.text;
    };
    return a.kind == b.kind && a.text == b.text && a.isInteger == b.isInteger &&
           (a.number < b.number || a.number > b.number) == false &&
           std::ranges::equal(a.parts(), b.parts(), same);
}

std::vector<std::string_view> linesOf(std::string_view source) {
    if (source.starts_with("\xEF\xBB\xBF")) source.remove_prefix(3);
    std::vector<std::string_view> lines;
    for (;;) {
        const std::size_t end = source.find('\n');
        lines.push_back(source.substr(0, end));
        if (end == source.npos) return lines;
        source.remove_prefix(end + 1);
    }
}

// Every byte of a text has a place, and so has its end.
void requirePlace(const std::vector<std::string_view>& lines, std::uint32_t line,
                  std::uint32_t column) {
    require(line >= 1 && line <= lines.size(), "the line is one of the text");
    require(column >= 1 && column <= lines[line - 1].size() + 1, "the column is one of the line");
}

void requireReport(const PellumError& error, std::string_view source) {
    const std::string report = renderError(error, source, "<fuzz>");
    require(report.starts_with(error.kind + ": " + error.message),
            "a report begins with the error");
}

std::optional<std::vector<Token>> tokensOf(std::string_view source) {
    try {
        return tokenize(source);
    } catch (const LexError& error) {
        requirePlace(linesOf(source), error.line, error.column);
        requireReport(error, source);
    } catch (const std::out_of_range&) {  // a number literal that no double can hold
    }
    return std::nullopt;
}

void requireSoundTokens(std::string_view source, const std::vector<Token>& tokens) {
    require(!tokens.empty() && tokens.back().kind == TokenKind::EndOfFile,
            "tokens end with the end of the file");
    const auto lines = linesOf(source);
    const Token* last = nullptr;
    for (const Token& token : tokens) {
        requirePlace(lines, token.line, token.column);
        if (last) {
            require(last->line < token.line ||
                        (last->line == token.line && last->column <= token.column),
                    "tokens stand in the order of the text");
            require(last->kind != TokenKind::EndOfFile, "nothing follows the end of the file");
        }
        last = &token;
        const bool isWritten = token.kind != TokenKind::String &&
                               token.kind != TokenKind::InterpString &&
                               token.kind < TokenKind::EndOfLine;
        if (isWritten) {
            require(lines[token.line - 1].substr(token.column - 1).starts_with(token.text),
                    "a token stands where it says");
        }
    }
}

void inspect(const FunctionProto& proto) {
    const DepthAnalysis analysis = analyzeDepths(proto);
    require(analysis.depths.size() == proto.code.size(), "each byte has a depth");
    require(proto.lines.size() == proto.code.size(), "each byte has a line");
    for (const Ref<FunctionProto>& inner : proto.functions) inspect(*inner);
}

}  // namespace

void fuzzLexer(Bytes input) {
    const std::string_view source = textOf(input);
    const auto tokens = tokensOf(source);
    if (!tokens) return;
    requireSoundTokens(source, *tokens);
    const std::string rewritten = spelled(*tokens);
    const auto again = tokensOf(rewritten);
    require(again && std::ranges::equal(*tokens, *again, areAlike),
            "tokens written out are the same tokens");
}

void fuzzParser(Bytes input) {
    const std::string_view source = textOf(input);
    auto tokens = tokensOf(source);
    if (!tokens) return;
    try {
        const Block program = parse(std::move(*tokens));
        const Ref<FunctionProto> proto = compile(program);
        inspect(*proto);
        const std::string listing = disassemble(*proto);
        require(listing == disassemble(*compile(program)), "compiling again gives the same");
    } catch (const PellumError& error) {
        requireReport(error, source);
    } catch (const std::out_of_range&) {
    }
}

}  // namespace pellum::fuzz
