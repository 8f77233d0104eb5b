// The prompt at a terminal without line editing: the terminal itself hands over whole lines.
#pragma once

#include "driver/terminal.h"
#include "driver/terminal_input.h"

namespace pellum {

class PlainPrompt final : public PromptReader {
public:
    // REQUIRES: the input outlives this.
    explicit PlainPrompt(TerminalInput& input) noexcept : input_(input) {}

    std::optional<std::string> readLine(std::string_view prompt) override;
    std::optional<std::string> readInput(std::string_view prompt) override {
        return readLine(prompt);
    }
    void remember(std::string_view) override {}
    void completeWith(Completer) override {}
    void endInterruptedLine() override;

private:
    TerminalInput& input_;
};

}  // namespace pellum
