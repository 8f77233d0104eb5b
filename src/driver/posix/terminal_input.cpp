#include "driver/terminal_input.h"

#include "driver/descriptors.h"
#include "driver/posix/terminal_mode.h"
#include "value/interrupt.h"

#include <cerrno>
#include <csignal>
#include <utility>

#include <sys/select.h>

namespace pellum {

namespace {

// Keeps signals from coming between a look at what they have left behind and the wait.
class BlockedSignals {
public:
    BlockedSignals() noexcept {
        sigset_t set;
        sigemptyset(&set);
        for (const int signal : {SIGINT, SIGTSTP, SIGWINCH}) sigaddset(&set, signal);
        sigprocmask(SIG_BLOCK, &set, &before_);
    }
    ~BlockedSignals() { sigprocmask(SIG_SETMASK, &before_, nullptr); }
    BlockedSignals(const BlockedSignals&) = delete;
    BlockedSignals& operator=(const BlockedSignals&) = delete;

    const sigset_t* before() const noexcept { return &before_; }

private:
    sigset_t before_;
};

}  // namespace

TerminalInput::Event TerminalInput::wait(int milliseconds) {
    const BlockedSignals blocked;
    if (interruptIsWanted) {
        interruptIsWanted = false;
        return Event::Interrupt;
    }
    // One that has come before the wait would not end it.
    const int changes = QuietTerminal::changes();
    if (std::exchange(changesSeen_, changes) != changes) return Event::Signal;
    fd_set streams;
    FD_ZERO(&streams);
    FD_SET(inDescriptor, &streams);
    const timespec limit{milliseconds / 1000, long{milliseconds % 1000} * 1'000'000};
    const int ready = pselect(inDescriptor + 1, &streams, nullptr, nullptr,
                              milliseconds < 0 ? nullptr : &limit, blocked.before());
    if (ready == 0) return Event::Timeout;
    if (ready > 0) return readSome();
    if (errno != EINTR) return Event::End;
    if (!interruptIsWanted) return Event::Signal;
    interruptIsWanted = false;
    return Event::Interrupt;
}

}  // namespace pellum
