#include "driver/process.h"

#include "driver/run_main.h"
#include "value/host_stack.h"

#include <csignal>
#include <exception>
#include <new>
#include <string_view>

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>
#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace pellum {

namespace {

// Everything from here to endBySignal also runs inside signal handlers, so it may only use what a
// handler may.

OutputBuffer* output = nullptr;             // standard output, while there is an object for it
volatile std::sig_atomic_t askedToEnd = 0;  // the signal
volatile std::sig_atomic_t isEnding = false;

void say(std::string_view line) noexcept {
    while (!line.empty()) {
        const ssize_t count = write(STDERR_FILENO, line.data(), line.size());
        if (count <= 0) return;
        line.remove_prefix(static_cast<std::size_t>(count));
    }
}

void unblock(int signal) noexcept {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, signal);
    sigprocmask(SIG_UNBLOCK, &set, nullptr);
}

void (*volatile actionBeforeEnd)() noexcept = nullptr;

void beforeForcedEnd() noexcept {
    if (actionBeforeEnd) actionBeforeEnd();
}

bool isTerminal(int stream) noexcept {
    termios attributes;
    return tcgetattr(stream, &attributes) == 0;  // isatty is not for signal handlers
}

[[noreturn]] void endBySignal(int signal) noexcept {
    beforeForcedEnd();
    // The terminal has written "^C", and maybe something that stands before it.
    if (signal == SIGINT && isTerminal(STDERR_FILENO)) say("\npellum: interrupted\n");
    if (signal == SIGXCPU) {
        say("pellum: out of processor time\n");
        _exit(exitFailure);
    }
    std::signal(signal, SIG_DFL);
    unblock(signal);
    raise(signal);
    _exit(exitFailure);
}

extern "C" void onDeadline(int) { endBySignal(askedToEnd); }

void setDeadline() noexcept {
    struct sigaction action {};
    action.sa_handler = onDeadline;
    sigaction(SIGALRM, &action, nullptr);
    unblock(SIGALRM);
    alarm(1);
}

[[noreturn]] void writeOutAndEnd() noexcept {
    isEnding = true;
    setDeadline();
    output->drain();
    endBySignal(askedToEnd);
}

extern "C" void onEndingSignal(int signal) {
    askedToEnd = signal;
    if (isEnding || !output) endBySignal(signal);
    if (!output->isWriting()) writeOutAndEnd();
    // The interrupted write alone knows how far it has come; it ends the process when it returns.
    setDeadline();
}

void afterWrite() noexcept {
    if (!askedToEnd) return;
    if (!isEnding) writeOutAndEnd();
    setDeadline();  // the reader is slow, but there
}

constexpr int endingSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGXCPU};

void handleEndingSignals() noexcept {
    struct sigaction action {};
    action.sa_handler = onEndingSignal;
    for (const int signal : endingSignals) sigaddset(&action.sa_mask, signal);
    for (const int signal : endingSignals) {
        struct sigaction before {};
        if (sigaction(signal, nullptr, &before) != 0 || before.sa_handler == SIG_IGN) continue;
        sigaction(signal, &action, nullptr);
    }
}

// The last resort. An exception that finds no memory for itself comes here without one.
[[noreturn]] void endOnTerminate() noexcept {
    const char* problem = "pellum: out of memory\n";
    try {
        if (std::current_exception()) throw;
    } catch (const std::bad_alloc&) {
    } catch (...) {
        problem = "pellum: internal error\n";
    }
    if (output && !output->isWriting()) output->drain();
    beforeForcedEnd();
    say(problem);
    _exit(exitFailure);
}

// A folder can be neither read as a stream nor written, so whoever uses the descriptor is told.
void fillClosedStreams() noexcept {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) >= 0) continue;
        if (open("/", O_RDONLY | O_DIRECTORY) < 0) return;
    }
}

// Containers that grow give memory back and ask for more all the time. Handing each piece to the
// system and having it cleared again may take as long as the work itself.
void keepFreedMemory() noexcept {
#if defined(__GLIBC__)
    mallopt(M_MMAP_THRESHOLD, 4 << 20);
    mallopt(M_TRIM_THRESHOLD, 64 << 20);
#endif
}

}  // namespace

void prepareProcess() noexcept {
    keepFreedMemory();
    std::set_terminate(endOnTerminate);
    fillClosedStreams();
    raiseHostStackLimit();
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

void onForcedEnd(void (*action)() noexcept) noexcept { actionBeforeEnd = action; }

StandardStreams::StandardStreams()
    : outBuffer_(STDOUT_FILENO),
      errBuffer_(STDERR_FILENO),
      inBuffer_(STDIN_FILENO),
      in(&inBuffer_),
      out(&outBuffer_),
      err(&errBuffer_) {
    if (isatty(STDOUT_FILENO)) out << std::unitbuf;
    outBuffer_.afterWrite = afterWrite;
    output = &outBuffer_;
    handleEndingSignals();
}

StandardStreams::~StandardStreams() { output = nullptr; }

}  // namespace pellum
