#include "driver/posix/terminal_mode.h"

#include "driver/descriptors.h"
#include "driver/process.h"
#include "driver/terminal_output.h"

#include <cerrno>
#include <string_view>
#include <utility>

#include <termios.h>

namespace pellum {

namespace {

constexpr std::string_view beginMarkingPastes = "\x1b[?2004h";
constexpr std::string_view endMarkingPastes = "\x1b[?2004l";

// What the signal handlers need to know. It changes only while none of them can run, or in a way
// that makes no difference to them.
volatile std::sig_atomic_t isQuiet = false;
volatile std::sig_atomic_t changeCount = 0;
termios usual;  // while it is quiet: what it was before

void countChange() noexcept { changeCount = changeCount + 1; }

extern "C" void onResize(int) { countChange(); }

void giveBack() noexcept {
    if (!isQuiet) return;
    isQuiet = false;
    writeToTerminal(endMarkingPastes);
    tcsetattr(inDescriptor, TCSANOW, &usual);
}

extern "C" void onStop(int signal) {
    const int problem = errno;
    termios quiet{};
    tcgetattr(inDescriptor, &quiet);
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
        tcsetattr(inDescriptor, TCSANOW, &quiet);
        writeToTerminal(beginMarkingPastes);
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

}  // namespace

bool terminalEditsLines() noexcept {
    termios now{};
    if (tcgetattr(inDescriptor, &now) != 0) return false;
    return (now.c_lflag & ICANON) != 0 && (now.c_lflag & ECHO) != 0;
}

QuietTerminal::QuietTerminal() noexcept
    : stop_(SIGTSTP, onStop), quit_(SIGQUIT, onQuit), resize_(SIGWINCH, onResize) {
    tcgetattr(inDescriptor, &usual);
    termios quiet = usual;
    quiet.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO | ECHONL);
    quiet.c_cc[VMIN] = 1;
    quiet.c_cc[VTIME] = 0;
    onForcedEnd(giveBack);
    isQuiet = true;
    tcsetattr(inDescriptor, TCSANOW, &quiet);
    writeToTerminal(beginMarkingPastes);
}

QuietTerminal::~QuietTerminal() {
    giveBack();
    onForcedEnd(nullptr);
}

int QuietTerminal::changes() noexcept { return changeCount; }

bool QuietTerminal::mustBeRedrawn() noexcept {
    static int seen = 0;
    const int now = changeCount;
    return std::exchange(seen, now) != now;
}

}  // namespace pellum
