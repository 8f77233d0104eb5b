#include "driver/repl.h"

#include "driver/completion.h"
#include "driver/interrupts.h"
#include "driver/source.h"
#include "interp/interpreter.h"
#include "lexer/lexer.h"
#include "parser/parser.h"
#include "value/format.h"
#include "value/interrupt.h"

#include <deque>

namespace pellum {

namespace {

constexpr std::string_view freshPrompt = ">> ";
constexpr std::string_view continuedPrompt = ".. ";
constexpr std::string_view sourceName = "<repl>";

// How many brackets and blocks the tokens open, less those that they close.
std::int64_t constructsOpenedBy(const std::vector<Token>& tokens) {
    std::int64_t open = 0;
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
    return open;
}

// Lexes the code inside strings, which the parser does later, for what is no error of the program
// and so must not wait for the rest of an open input: a number that no double holds.
void checkInterpolations(const std::vector<Token>& tokens, int depth = 0) {
    if (depth == maxInterpolationDepth) return;
    for (const Token& token : tokens) {
        for (const StringPart& piece : token.parts()) {
            if (piece.kind != StringPart::Kind::Expression) continue;
            try {
                checkInterpolations(tokenize(piece.text), depth + 1);
            } catch (const LexError&) {
                // waits for the rest, as all errors of the program do
            }
        }
    }
}

class Repl {
public:
    explicit Repl(Session& session) : session_(session), interpreter_(session.console) {
        if (!reader_) return;
        reader_->completeWith([this](std::string_view before) {
            return completionOf(pending_ + "\n" + std::string(before), interpreter_.globals());
        });
    }

    ExitStatus run() {
        session_.console.write("Pellum " + std::string(version) +
                               "  --  type Ctrl-D (or 'exit') to quit\n");
        std::optional<InterruptsStopPrograms> stopping;
        if (reader_) stopping.emplace();
        for (;;) {
            try {
                const auto line = readLine();
                if (!line) {
                    session_.console.write("\n");
                    return exitSuccess;
                }
                if (pending_.empty() && (*line == "exit" || *line == "quit")) return exitSuccess;
                takeLine(*line);
            } catch (const Interrupted&) {
                reader_->endInterruptedLine();
                forgetInput();
            }
        }
    }

private:
    std::optional<std::string> readLine() {
        const std::string_view prompt = openConstructs_ > 0 ? continuedPrompt : freshPrompt;
        if (reader_) return reader_->readInput(prompt);
        session_.console.write(prompt);
        return session_.console.readLine();
    }

    void forgetInput() {
        pending_.clear();
        openConstructs_ = 0;
    }

    void takeLine(const std::string& line) {
        const std::size_t start = pending_.size();
        if (start > 0) pending_ += '\n';
        pending_ += line;
        try {
            if (pending_.size() > maxSourceLength) {
                session_.complain("input longer than " + std::to_string(maxSourceLength) +
                                  " bytes");
            } else if (staysOpen(std::string_view(pending_).substr(start))) {
                return;
            } else {
                if (reader_ && !pending_.empty()) reader_->remember(pending_);
                runInput(parse(tokenize(pending_)));
            }
        } catch (const PellumError& error) {
            session_.diagnose(error, pending_, sourceName);
        } catch (const std::exception& failure) {
            session_.complain(failure);
        }
        forgetInput();
    }

    // Whether the input is open behind its newest line. No token reaches over the end of a line, so
    // each line is counted once, however long the input gets.
    bool staysOpen(std::string_view line) {
        try {
            const std::vector<Token> tokens = tokenize(line);
            openConstructs_ += constructsOpenedBy(tokens);
            if (openConstructs_ > 0) checkInterpolations(tokens);
            return openConstructs_ > 0;
        } catch (const LexError&) {
            return false;  // the whole input will tell the place
        }
    }

    void runInput(Block program) {
        programs_.push_back(std::move(program));
        try {
            const Value result = interpreter_.run(programs_.back());
            if (!result.isNil()) session_.console.write(toReprString(result) + "\n");
        } catch (const PellumError& error) {
            session_.diagnose(error, "", sourceName);
        } catch (const ThrownValue& thrown) {
            session_.diagnose(thrown);
        } catch (const Interrupted&) {
            reader_->endInterruptedLine();
            session_.complain("interrupted");
        } catch (const std::exception& failure) {
            session_.complain(failure);
        }
        const bool makesFunctions = pending_.find("function") != pending_.npos;
        if (!makesFunctions) programs_.pop_back();
    }

    Session& session_;
    PromptReader* const reader_ = session_.promptReader();
    std::deque<Block> programs_;  // of inputs that make functions, which point into these
    Interpreter interpreter_;
    std::string pending_;              // the input so far, while a statement is open
    std::int64_t openConstructs_ = 0;  // in pending_
};

}  // namespace

ExitStatus runRepl(Session& session) {
    try {
        return Repl(session).run();
    } catch (const LineTooLong&) {
        session.complain("input line longer than " + std::to_string(maxLineLength) + " bytes");
        return exitFailure;
    }
}

bool isIncomplete(std::string_view text) {
    try {
        return constructsOpenedBy(tokenize(text)) > 0;
    } catch (const PellumError&) {
        return false;
    }
}

}  // namespace pellum
