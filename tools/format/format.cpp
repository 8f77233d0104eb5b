#include "format/format.h"

#include "driver/errors/errors.h"
#include "driver/pragmas.h"
#include "driver/source.h"
#include "format/printer.h"
#include "format/same_tree.h"
#include "format/spacing.h"
#include "parser/parser.h"

namespace pellum::tools {

namespace {

// A source and what it means.
struct Program {
    explicit Program(std::string_view text)
        : source(text), lexed(lexSource(text)), tree(parse(lexed.tokens)) {}

    std::string_view source;
    LexedSource lexed;
    Block tree;
};

std::string layOut(const Program& program) {
    Pieces pieces = piecesOf(program.lexed, program.source);
    const Structure structure = structureOf(pieces);
    setSpaces(pieces);
    return print(pieces, structure, maxSourceLength);
}

// Goes over the tokens of a source that layout does not decide about.
class TokenWalk {
public:
    explicit TokenWalk(const LexedSource& source) : source_(source) { settle(); }

    TokenKind kind() const { return source_.tokens[at_].kind; }
    std::string_view written() const { return source_.written[at_]; }
    void next() {
        ++at_;
        settle();
    }

private:
    bool isAt(std::size_t index, TokenKind kind) const {
        return source_.tokens[index].kind == kind;
    }

    // Passes line ends, and commas that nothing but a closing bracket follows.
    void settle() {
        for (;; ++at_) {
            if (isAt(at_, TokenKind::EndOfLine)) continue;
            if (!isAt(at_, TokenKind::Comma)) return;
            std::size_t behind = at_ + 1;
            while (isAt(behind, TokenKind::EndOfLine)) ++behind;
            if (!isAt(behind, TokenKind::RightBracket) && !isAt(behind, TokenKind::RightBrace)) {
                return;
            }
        }
    }

    const LexedSource& source_;
    std::size_t at_ = 0;
};

void checkTokens(const LexedSource& before, const LexedSource& after) {
    TokenWalk one(before), other(after);
    for (; one.kind() != TokenKind::EndOfFile; one.next(), other.next()) {
        if (one.kind() != other.kind() || one.written() != other.written()) {
            throw FormatterFault("a token got lost");
        }
    }
    if (other.kind() != TokenKind::EndOfFile) throw FormatterFault("a token came up");
}

std::string_view withoutBlanks(std::string_view text) noexcept {
    return text.substr(0, text.find_last_not_of(" \t\r") + 1);
}

void checkComments(const LexedSource& before, const LexedSource& after) {
    bool isSame = before.comments.size() == after.comments.size();
    for (std::size_t i = 0; isSame && i < before.comments.size(); ++i) {
        isSame = withoutBlanks(before.comments[i].text) == withoutBlanks(after.comments[i].text);
    }
    if (!isSame) throw FormatterFault("a comment got lost");
}

// They mean something only in front of the first line of code.
void checkPragmas(std::string_view before, std::string_view after) {
    const auto one = scanPragmas(before).pragmas, other = scanPragmas(after).pragmas;
    bool isSame = one.size() == other.size();
    for (std::size_t i = 0; isSame && i < one.size(); ++i) {
        isSame = one[i].name == other[i].name && one[i].value == other[i].value;
    }
    if (!isSame) throw FormatterFault("a pragma got lost");
}

void checkSame(const Program& before, std::string_view text) {
    try {
        const Program after(text);
        checkTokens(before.lexed, after.lexed);
        checkComments(before.lexed, after.lexed);
        checkPragmas(before.source, after.source);
        if (!isSameTree(before.tree, after.tree)) throw FormatterFault("the tree has changed");
    } catch (const PellumError& error) {
        throw FormatterFault("the result is no program: " + error.message);
    }
}

}  // namespace

std::string format(std::string_view source) {
    const Program program(source);
    std::string text = layOut(program);
    if (text != source) checkSame(program, text);
    return text;
}

void checkSameProgram(std::string_view before, std::string_view after) {
    checkSame(Program(before), after);
}

}  // namespace pellum::tools
