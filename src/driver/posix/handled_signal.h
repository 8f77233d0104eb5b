// A signal that is handled for a while.
#pragma once

#include <csignal>

namespace pellum {

class HandledSignal {
public:
    // Without SA_RESTART, so that waiting for input ends. A signal that is ignored stays ignored.
    HandledSignal(int signal, void (*handler)(int)) noexcept : signal_(signal) {
        sigaction(signal_, nullptr, &before_);
        if (before_.sa_handler == SIG_IGN) return;
        struct sigaction action {};
        action.sa_handler = handler;
        sigaction(signal_, &action, nullptr);
    }
    ~HandledSignal() { sigaction(signal_, &before_, nullptr); }
    HandledSignal(const HandledSignal&) = delete;
    HandledSignal& operator=(const HandledSignal&) = delete;

private:
    int signal_;
    struct sigaction before_ {};
};

}  // namespace pellum
