#include "driver/terminal_mode.h"

#include "driver/process.h"
#include "value/interrupt.h"

#include <cerrno>
#include <iterator>
#include <string_view>
#include <utility>

#include <termios.h>
#include <unistd.h>

namespace pellum {

namespace {

constexpr std::string_view beginMarkingPastes = "\x1b[?2004h";
constexpr std::string_view endMarkingPastes = "\x1b[?2004l";

// What the signal handlers need to know. It changes only while none of them can run, or in a way
// that makes no difference to them.
volatile std::sig_atomic_t isQuiet = false;
volatile std::sig_atomic_t changeCount = 0;
termios usual;  // while it is quiet: what it was before

void send(std::string_view text) noexcept {
    [[maybe_unused]] const ssize_t count = write(STDOUT_FILENO, text.data(), text.size());
}

extern "C" void onInterrupt(int) { interruptIsWanted = true; }

void countChange() noexcept { changeCount = changeCount + 1; }

extern "C" void onResize(int) { countChange(); }

void giveBack() noexcept {
    if (!isQuiet) return;
    isQuiet = false;
    send(endMarkingPastes);
    tcsetattr(STDIN_FILENO, TCSANOW, &usual);
}

extern "C" void onStop(int signal) {
    const int problem = errno;
    termios quiet{};
    tcgetattr(STDIN_FILENO, &quiet);
    const bool wasQuiet = isQuiet;
    giveBack();

    struct sigaction byDefault {};
    struct sigaction before {};
    byDefault.sa_handler = SIG_DFL;
    sigaction(signal, &byDefault, &before);
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, signal);
    raise(signal);
    sigprocmask(SIG_UNBLOCK, &set, nullptr);
    // Here it stays until somebody continues the process.
    sigprocmask(SIG_BLOCK, &set, nullptr);
    sigaction(signal, &before, nullptr);

    if (wasQuiet) {
        tcsetattr(STDIN_FILENO, TCSANOW, &quiet);
        send(beginMarkingPastes);
        isQuiet = true;
    }
    countChange();
    errno = problem;
}

extern "C" void onQuit(int signal) {
    giveBack();
    std::signal(signal, SIG_DFL);
    raise(signal);
}

struct Handled {
    int signal;
    void (*handler)(int);
};

constexpr Handled handledSignals[] = {{SIGTSTP, onStop}, {SIGQUIT, onQuit}, {SIGWINCH, onResize}};
struct sigaction handledBefore[std::size(handledSignals)];

// Without SA_RESTART, so that waiting for input ends.
void handle(int signal, void (*handler)(int), struct sigaction& before) noexcept {
    sigaction(signal, nullptr, &before);
    if (before.sa_handler == SIG_IGN) return;
    struct sigaction action {};
    action.sa_handler = handler;
    sigaction(signal, &action, nullptr);
}

}  // namespace

InterruptsStopPrograms::InterruptsStopPrograms() noexcept { handle(SIGINT, onInterrupt, before_); }

InterruptsStopPrograms::~InterruptsStopPrograms() { sigaction(SIGINT, &before_, nullptr); }

bool terminalEditsLines() noexcept {
    termios now{};
    if (tcgetattr(STDIN_FILENO, &now) != 0) return false;
    return (now.c_lflag & ICANON) != 0 && (now.c_lflag & ECHO) != 0;
}

QuietTerminal::QuietTerminal() noexcept {
    tcgetattr(STDIN_FILENO, &usual);
    termios quiet = usual;
    quiet.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO | ECHONL);
    quiet.c_cc[VMIN] = 1;
    quiet.c_cc[VTIME] = 0;
    onForcedEnd(giveBack);
    for (std::size_t i = 0; i < std::size(handledSignals); ++i) {
        handle(handledSignals[i].signal, handledSignals[i].handler, handledBefore[i]);
    }
    isQuiet = true;
    tcsetattr(STDIN_FILENO, TCSANOW, &quiet);
    send(beginMarkingPastes);
}

QuietTerminal::~QuietTerminal() {
    giveBack();
    for (std::size_t i = 0; i < std::size(handledSignals); ++i) {
        sigaction(handledSignals[i].signal, &handledBefore[i], nullptr);
    }
    onForcedEnd(nullptr);
}

int QuietTerminal::changes() noexcept { return changeCount; }

bool QuietTerminal::mustBeRedrawn() noexcept {
    static int seen = 0;
    const int now = changeCount;
    return std::exchange(seen, now) != now;
}

}  // namespace pellum
