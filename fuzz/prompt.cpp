// The target for sessions at the prompt.
#include "fuzz/memory.h"
#include "fuzz/targets.h"

#include "driver/errors/errors.h"
#include "driver/run_main.h"
#include "lexer/lexer.h"

#include <sstream>

namespace pellum::fuzz {

namespace {

// The prompt parses for itself, so its fuel stands in the text: behind each "do" and each list of
// parameters. A session that uses these names itself, or writes functions inside strings, is not
// played.
constexpr std::string_view fuel = "fuelLeft__";
constexpr std::string_view declaration = "let fuelLeft__ = 200";
constexpr std::string_view loopGuard = "\nfuelLeft__ -= 1\nif fuelLeft__ < 0 then break end\n";
constexpr std::string_view callGuard = "\nfuelLeft__ -= 1\nif fuelLeft__ < 0 then return nil end\n";

class Guard {
public:
    bool isPlayable() const noexcept { return isPlayable_; }

    std::string guarded(std::string_view line) {
        std::vector<Token> tokens;
        try {
            tokens = tokenize(line);
        } catch (const std::exception&) {
            return std::string(line);  // nothing of it will run
        }
        const std::size_t start = line.starts_with("\xEF\xBB\xBF") ? 3 : 0;
        std::string text(line.substr(0, start));
        std::size_t copied = start;
        for (const Token& token : tokens) {
            if (token.kind == TokenKind::Name && token.text == fuel) isPlayable_ = false;
            for (const StringPart& piece : token.parts()) {
                if (piece.text.find("function") != piece.text.npos ||
                    piece.text.find(fuel) != piece.text.npos) {
                    isPlayable_ = false;
                }
            }
            if (token.kind == TokenKind::Function) isInParameters_ = true;
            const bool endsParameters = isInParameters_ && token.kind == TokenKind::RightParen;
            if (endsParameters) isInParameters_ = false;
            if (!endsParameters && token.kind != TokenKind::Do) continue;
            const std::size_t end = start + token.column - 1 + token.text.size();
            text += line.substr(copied, end - copied);
            text += endsParameters ? callGuard : loopGuard;
            copied = end;
        }
        text += line.substr(copied);
        return text;
    }

private:
    bool isPlayable_ = true;
    bool isInParameters_ = false;
};

}  // namespace

void fuzzPrompt(Bytes input) {
    std::string session(declaration);
    Guard guard;
    std::istringstream lines{std::string(textOf(input))};
    for (std::string line; std::getline(lines, line);) session += "\n" + guard.guarded(line);
    if (!guard.isPlayable()) return;

    std::istringstream in(session);
    std::ostringstream out;
    std::ostringstream err;
    int status = 0;
    {
        const MemoryBudget budget(std::size_t{256} << 10, std::size_t{32} << 20);
        status = runMain({}, in, out, err);
        // What has no memory left to say what is wrong may end.
        if (budget.wasExceeded()) return;
    }
    require(status == 0, "a session ends with status 0");
    require(out.str().starts_with("Pellum "), "a session begins with the banner");
    const std::string last = out.str().substr(out.str().size() - 1);
    const bool isAtEnd = in.eof() || in.peek() == std::istringstream::traits_type::eof();
    require(!isAtEnd || last == "\n" || last == " ", "a session ends behind a line or a prompt");
}

}  // namespace pellum::fuzz
