// What the process as a whole needs before anything runs. Not for programs that embed the rest.
#pragma once

namespace pellum {

// Makes room for recursion on the stack, lets a closed pipe fail a write instead of killing the
// process, and sets the standard streams up for speed; output to a terminal appears at once.
void prepareProcess();

}  // namespace pellum
