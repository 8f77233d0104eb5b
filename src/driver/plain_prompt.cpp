#include "driver/plain_prompt.h"

#include "builtins/console.h"
#include "driver/terminal_output.h"
#include "value/interrupt.h"

namespace pellum {

std::optional<std::string> PlainPrompt::readLine(std::string_view prompt) {
    writeToTerminal(prompt);
    for (std::size_t seen = 0;;) {
        const std::string_view text = input_.waiting();
        const std::size_t newline = text.find('\n', seen);
        if (newline != text.npos || text.size() > maxLineLength) {
            std::string line(text.substr(0, newline));
            input_.take(line.size() + (newline != text.npos ? 1 : 0));
            if (line.size() > maxLineLength) throw LineTooLong();
            return line;
        }
        seen = text.size();
        switch (input_.wait()) {
            case TerminalInput::Event::Interrupt: throw Interrupted();
            case TerminalInput::Event::End: {
                std::string line(input_.waiting());
                input_.take(line.size());
                if (line.empty()) return std::nullopt;
                return line;
            }
            default: break;
        }
    }
}

void PlainPrompt::endInterruptedLine() {
    input_.drop();
    writeToTerminal("\n");  // the terminal has shown "^C" already
}

}  // namespace pellum
