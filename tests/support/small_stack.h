// A place where recursion soon comes to its end.
#pragma once

#include <functional>

namespace pellum::test {

// Runs `body` on a thread with a stack of 1 MiB, whatever the limits of the process are.
void onSmallStack(const std::function<void()>& body);

}  // namespace pellum::test
