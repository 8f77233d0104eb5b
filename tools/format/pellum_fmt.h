// The program `pellum-fmt`, behind its `main`.
#pragma once

#include "common/command_line.h"

namespace pellum::tools {

extern const Tool pellumFmt;

}  // namespace pellum::tools
