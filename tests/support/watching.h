// What the system tells about a running child.
#pragma once

#include <sys/types.h>

namespace pellum::test {

// Waits until the process has worked for a third of a second of processor time, which is far more
// than it takes to start. False when it does not come that far.
bool waitForWork(pid_t child);

// Waits until the process does nothing but wait. False when that does not come.
bool waitForSleep(pid_t child);

}  // namespace pellum::test
