#include "driver/terminal_input.h"

#include "driver/terminal_mode.h"
#include "value/interrupt.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <utility>

#include <sys/select.h>
#include <unistd.h>

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
    FD_SET(STDIN_FILENO, &streams);
    const timespec limit{milliseconds / 1000, long{milliseconds % 1000} * 1'000'000};
    const int ready = pselect(STDIN_FILENO + 1, &streams, nullptr, nullptr,
                              milliseconds < 0 ? nullptr : &limit, blocked.before());
    if (ready == 0) return Event::Timeout;
    if (ready > 0) return readSome();
    if (errno != EINTR) return Event::End;
    if (!interruptIsWanted) return Event::Signal;
    interruptIsWanted = false;
    return Event::Interrupt;
}

TerminalInput::Event TerminalInput::readSome() {
    std::array<char, 4096> chunk;
    const ssize_t count = read(STDIN_FILENO, chunk.data(), chunk.size());
    if (count > 0) {
        bytes_.erase(0, taken_);
        taken_ = 0;
        bytes_.append(chunk.data(), static_cast<std::size_t>(count));
        return Event::Byte;
    }
    const bool isPassing = count < 0 && (errno == EINTR || errno == EAGAIN);
    return isPassing ? Event::Signal : Event::End;
}

std::optional<std::string> TerminalInput::takePlainLine() {
    const auto isControl = [](char c) {
        return (static_cast<unsigned char>(c) < 0x20 && c != '\t') || c == 0x7F;
    };
    const auto text = waiting();
    const auto end = std::ranges::find_if(text, isControl);
    if (end == text.end() || (*end != '\n' && *end != '\r')) return std::nullopt;
    std::string line(text.begin(), end);
    take(line.size() + 1);
    return line;
}

}  // namespace pellum
