#include "driver/repl.h"

#include "interp/interpreter.h"
#include "lexer/lexer.h"
#include "parser/parser.h"
#include "value/format.h"

#include <deque>

namespace pellum {

namespace {

constexpr std::string_view freshPrompt = ">> ";
constexpr std::string_view continuedPrompt = ".. ";
constexpr std::string_view sourceName = "<repl>";

class Repl {
public:
    explicit Repl(Session& session) : session_(session), interpreter_(session.console) {}

    void run() {
        session_.console.write("Pellum " + std::string(version) +
                               "  --  type Ctrl-D (or 'exit') to quit\n");
        for (;;) {
            session_.console.write(isContinuing_ ? continuedPrompt : freshPrompt);
            const auto line = session_.console.readLine();
            if (!line) {
                session_.console.write("\n");
                return;
            }
            if (pending_.empty() && (*line == "exit" || *line == "quit")) return;
            takeLine(*line);
        }
    }

private:
    void takeLine(const std::string& line) {
        pending_ = pending_.empty() ? line : pending_ + "\n" + line;
        try {
            programs_.push_back(parse(tokenize(pending_)));
        } catch (const PellumError& error) {
            isContinuing_ = isIncomplete(pending_);
            if (isContinuing_) return;
            session_.diagnose(error, pending_, sourceName);
            pending_.clear();
            return;
        } catch (const std::exception& failure) {
            session_.diagnose(std::string("pellum: ") + failure.what());
            isContinuing_ = false;
            pending_.clear();
            return;
        }
        isContinuing_ = false;
        pending_.clear();
        runInput(programs_.back());
    }

    void runInput(const Block& input) {
        try {
            const Value result = interpreter_.run(input);
            if (!result.isNil()) session_.console.write(toReprString(result) + "\n");
        } catch (const PellumError& error) {
            session_.diagnose(error, "", sourceName);
        } catch (const ThrownValue& thrown) {
            session_.diagnose(thrown);
        } catch (const std::exception& failure) {
            session_.diagnose(std::string("pellum: ") + failure.what());
        }
    }

    Session& session_;
    std::deque<Block> programs_;  // of all inputs: functions made by them point into these
    Interpreter interpreter_;
    std::string pending_;  // the input so far, while a statement is open
    bool isContinuing_ = false;
};

}  // namespace

ExitStatus runRepl(Session& session) {
    Repl(session).run();
    return exitSuccess;
}

bool isIncomplete(std::string_view text) {
    std::vector<Token> tokens;
    try {
        tokens = tokenize(text);
    } catch (const PellumError&) {
        return false;
    }
    int open = 0;
    for (const Token& token : tokens) {
        switch (token.kind) {
            case TokenKind::LeftParen:
            case TokenKind::LeftBracket:
            case TokenKind::LeftBrace:
            case TokenKind::Function:
            case TokenKind::If:
            case TokenKind::While:
            case TokenKind::For:
            case TokenKind::Try: ++open; break;
            case TokenKind::RightParen:
            case TokenKind::RightBracket:
            case TokenKind::RightBrace:
            case TokenKind::End: --open; break;
            default: break;
        }
    }
    return open > 0;
}

}  // namespace pellum
