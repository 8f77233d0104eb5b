// The interactive prompt: reads statements line by line and runs each complete input on one
// long-lived tree-walker.
#pragma once

#include "driver/run_main.h"
#include "driver/session.h"

namespace pellum {

ExitStatus runRepl(Session& session);

// Whether `text` stops inside an open bracket or block, so that more lines belong to it. A text
// that cannot even be tokenized is not incomplete.
bool isIncomplete(std::string_view text);

}  // namespace pellum
