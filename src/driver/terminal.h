// What the program does for somebody who sits at a terminal. Where its streams are pipes and files
// there is nothing of this, so that whatever passes through them is the same everywhere.
#pragma once

#include "builtins/line_reader.h"
#include "driver/completion.h"
#include "driver/errors/errors.h"

#include <functional>

namespace pellum {

// How the prompt reads at a terminal; the lines that `input` reads there come from the same place.
class PromptReader : public LineReader {
public:
    using Completer = std::function<Completion(std::string_view before)>;

    // As readLine, for what is to be run: with history and completion, where there is such a thing.
    // What is returned may have several lines.
    virtual std::optional<std::string> readInput(std::string_view prompt) = 0;

    // Adds a complete input, which may have several lines, to the history.
    virtual void remember(std::string_view input) = 0;

    // Says what completes the text before the cursor.
    virtual void completeWith(Completer completer) = 0;

    // After Ctrl-C: drops what has been typed or pasted ahead, and ends the line on the screen.
    virtual void endInterruptedLine() = 0;
};

struct Terminal {
    PromptReader* prompt = nullptr;  // where standard input and output are a terminal
    Look diagnostics = Look::Plain;  // what suits standard error
};

// What suits standard error, by the customs of NO_COLOR and TERM.
Look lookOfStandardError();

// Whether escape sequences mean something to the terminal that TERM names.
bool terminalIsCapable();

}  // namespace pellum
