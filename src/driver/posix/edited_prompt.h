// The prompt at a terminal with line editing, by libedit: history, completion, and what else its
// users know. Knows UTF-8 under any locale.
#pragma once

#include "driver/terminal.h"
#include "driver/terminal_input.h"

#include <memory>

namespace pellum {

// REQUIRES: the input outlives the prompt. Where libedit cannot be loaded, or is of no use, the
// lines are read plainly.
std::unique_ptr<PromptReader> makeEditedPrompt(TerminalInput& input);

}  // namespace pellum
