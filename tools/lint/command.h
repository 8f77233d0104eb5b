// The command line of the linter.
#pragma once

#include "common/command_line.h"

namespace pellum::lint {

extern const tools::Tool lintTool;

}  // namespace pellum::lint
