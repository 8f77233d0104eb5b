#include "driver/process.h"

#include "value/host_stack.h"

#include <csignal>
#include <iostream>

#if defined(__unix__)
#include <unistd.h>
#endif

namespace pellum {

void prepareProcess() {
    raiseHostStackLimit();
    std::ios::sync_with_stdio(false);
    std::cin.tie(nullptr);
#if defined(__unix__)
    std::signal(SIGPIPE, SIG_IGN);
    if (isatty(STDOUT_FILENO)) std::cout << std::unitbuf;
#endif
}

}  // namespace pellum
