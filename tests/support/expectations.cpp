#include "support/expectations.h"

#include "support/comments.h"
#include "support/text.h"

#include <algorithm>
#include <charconv>

namespace pellum::test {

namespace {

// Reads a comment from left to right.
class Cursor {
public:
    explicit Cursor(std::string_view text) : rest_(text) {}

    std::string_view rest() const { return rest_; }
    void skipBlanks() { rest_.remove_prefix(std::min(rest_.find_first_not_of(' '), rest_.size())); }
    bool accept(std::string_view word) {
        if (!rest_.starts_with(word)) return false;
        rest_.remove_prefix(word.size());
        return true;
    }
    std::optional<std::uint32_t> number() {
        std::uint32_t value = 0;
        const auto [end, error] = std::from_chars(rest_.data(), rest_.data() + rest_.size(), value);
        if (error != std::errc()) return std::nullopt;
        rest_.remove_prefix(static_cast<std::size_t>(end - rest_.data()));
        return value;
    }
    // Lower-case words and the blanks between them.
    std::string_view words() {
        const std::size_t length = rest_.find_first_not_of("abcdefghijklmnopqrstuvwxyz ");
        const std::string_view text = rest_.substr(0, length);
        rest_.remove_prefix(text.size());
        return trim(text);
    }

private:
    std::string_view rest_;
};

struct Form {
    std::string_view words;
    std::string_view errorKind;  // empty: about standard output
    bool isDiagnostic;
};

// What may stand between "expect" and the engine or the colon.
constexpr Form forms[] = {
    {"", "", false},
    {"without newline", "", false},
    {"error", "RuntimeError", true},
    {"syntax error", "SyntaxError", true},
    {"lexical error", "SyntaxError (lexing)", true},
    {"compile error", "CompileError", true},
    {"thrown", "Error", false},
    {"fatal", "pellum", false},
};

class ExpectationReader {
public:
    explicit ExpectationReader(std::string_view source) : source_(source) {}

    Expectations read() {
        for (const Comment& comment : commentsOf(source_)) readComment(comment);
        if (!expectsAnything_) {
            throw BadExpectation(1,
                                 "expects nothing: say \"# expect nothing\" where that is meant");
        }
        return std::move(expectations_);
    }

private:
    void readComment(const Comment& comment) {
        line_ = comment.line;
        // The comment may begin with a remark, as in "# the loop ends # expect: 3".
        const std::string whole = "#" + std::string(comment.text);
        for (const std::string_view word : {"# expect", "# input:", "# only", "# needs"}) {
            const std::size_t at = whole.find(word);
            if (at == whole.npos) continue;
            Cursor cursor(comment.text.substr(at + 1));
            if (cursor.accept("expect")) return readExpectation(cursor);
            if (cursor.accept("input:")) return readInput(cursor);
            if (cursor.accept("only")) return readOnly(cursor);
            if (cursor.accept("needs ")) return readNeed(cursor);
        }
    }

    void readInput(Cursor& cursor) {
        cursor.accept(" ");
        expectations_.input += std::string(cursor.rest()) + "\n";
    }

    void readOnly(Cursor& cursor) {
        cursor.skipBlanks();
        if (!cursor.rest().starts_with('(')) return;  // a remark that happens to begin like this
        expectations_.onlyEngine = acceptEngine(cursor);
        if (!expectations_.onlyEngine) fail("the engines are (tree) and (vm)");
    }

    void readNeed(Cursor& cursor) {
        if (cursor.accept("ordinary limits")) {
            const std::optional<Engine> engine = acceptEngine(cursor);
            if (engine != Engine::Vm) expectations_.tree.needsOrdinaryLimits = true;
            if (engine != Engine::Tree) expectations_.vm.needsOrdinaryLimits = true;
        } else if (cursor.accept("small limits")) {
            expectations_.needsSmallLimits = true;
        } else {
            return;  // a remark
        }
        colon(cursor);
        cursor.skipBlanks();
        if (cursor.rest().empty()) fail("the reason is missing");
    }

    void readExpectation(Cursor& cursor) {
        const std::string_view words = cursor.words();
        expectsAnything_ = true;
        if (words == "nothing" && cursor.rest().empty()) return;
        const auto form =
            std::find_if(std::begin(forms), std::end(forms),
                         [&](const Form& candidate) { return candidate.words == words; });
        if (form == std::end(forms)) fail("unknown expectation \"" + std::string(words) + "\"");
        const std::optional<Engine> engine = acceptEngine(cursor);
        if (engine) expectations_.areOneForBoth = false;
        if (form->errorKind.empty()) {
            readOutput(cursor, *form, engine);
        } else {
            readError(cursor, *form, engine);
        }
    }

    void readOutput(Cursor& cursor, const Form& form, std::optional<Engine> engine) {
        colon(cursor);
        cursor.accept(" ");
        ExpectedLine expected;
        expected.text = cursor.rest();
        if (form.words.empty()) expected.text += '\n';
        expected.commentLine = line_;
        expected.byteOffset = static_cast<std::size_t>(cursor.rest().data() - source_.data());
        expected.byteLength = cursor.rest().size();
        if (engine != Engine::Vm) expectations_.tree.output.push_back(expected);
        if (engine != Engine::Tree) expectations_.vm.output.push_back(expected);
    }

    void readError(Cursor& cursor, const Form& form, std::optional<Engine> engine) {
        ExpectedError expected;
        expected.kind = form.errorKind;
        expected.isDiagnostic = form.isDiagnostic;
        expected.commentLine = line_;
        if (form.isDiagnostic) readPosition(cursor, expected);
        colon(cursor);
        if (form.isDiagnostic) {
            cursor.skipBlanks();
        } else {
            cursor.accept(" ");
        }
        expected.message = cursor.rest();
        if (engine != Engine::Vm) setError(expectations_.tree, expected);
        // The virtual machine knows lines only.
        if (!engine && expected.kind == "RuntimeError") expected.column = 0;
        if (engine != Engine::Tree) setError(expectations_.vm, expected);
    }

    void readPosition(Cursor& cursor, ExpectedError& expected) {
        cursor.skipBlanks();
        const std::optional<std::uint32_t> line = cursor.number();
        if (!line) return;
        expected.line = *line;
        Cursor ahead = cursor;
        if (!ahead.accept(":")) return;
        if (const std::optional<std::uint32_t> column = ahead.number()) {
            expected.column = *column;
            cursor = ahead;
        }
    }

    // Several lines of one thrown text are several expectations.
    void setError(Wanted& wanted, const ExpectedError& error) {
        if (!wanted.error) {
            wanted.error = error;
        } else if (error.kind == "Error" && wanted.error->kind == "Error") {
            wanted.error->message += "\n" + error.message;
        } else {
            fail("a program ends with one error only");
        }
    }

    std::optional<Engine> acceptEngine(Cursor& cursor) {
        cursor.skipBlanks();
        if (cursor.accept("(tree)")) return Engine::Tree;
        if (cursor.accept("(vm)")) return Engine::Vm;
        return std::nullopt;
    }

    void colon(Cursor& cursor) {
        cursor.skipBlanks();
        if (!cursor.accept(":"))
            fail("a colon is missing before \"" + std::string(cursor.rest()) + "\"");
    }

    [[noreturn]] void fail(const std::string& message) const {
        throw BadExpectation(line_, message);
    }

    std::string_view source_;
    std::size_t line_ = 0;
    bool expectsAnything_ = false;
    Expectations expectations_;
};

}  // namespace

Expectations expectationsOf(std::string_view source) { return ExpectationReader(source).read(); }

std::string wantedErrors(const ExpectedError& error, std::string_view source,
                         std::string_view name) {
    std::string text = error.kind + ": " + error.message + "\n";
    if (!error.isDiagnostic || error.line == 0) return text;
    const std::string line = std::to_string(error.line);
    text += "  --> " + std::string(name) + ":" + line + ":" + std::to_string(error.column) + "\n";

    // Unlike for splitLines, the empty text after a final newline is a line here.
    const std::vector<std::string> lines = splitLines(std::string(source) + "\n");
    if (source.empty() || error.line > lines.size()) return text;
    std::string excerpt = lines[error.line - 1];
    std::erase(excerpt, '\r');
    const std::string gutter = line + " | ";
    text += gutter + excerpt + "\n";
    text += std::string(gutter.size() + std::max(error.column, 1U) - 1, ' ') + "^\n";
    return text;
}

}  // namespace pellum::test
