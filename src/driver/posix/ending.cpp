#include "driver/ending.h"

#include "driver/descriptors.h"
#include "driver/run_main.h"

#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace pellum::ending {

namespace {

// All of this also runs inside signal handlers, so it may only use what a handler may.

volatile std::sig_atomic_t askedToEnd = 0;  // the signal
volatile std::sig_atomic_t isEnding = false;

void unblock(int signal) noexcept {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, signal);
    sigprocmask(SIG_UNBLOCK, &set, nullptr);
}

[[noreturn]] void endBySignal(int signal) noexcept {
    beforeForcedEnd();
    // The terminal has written "^C", and maybe something that stands before it.
    if (signal == SIGINT && isTerminal(errDescriptor)) {
        writeAll(errDescriptor, "\npellum: interrupted\n");
    }
    if (signal == SIGXCPU) {
        writeAll(errDescriptor, "pellum: out of processor time\n");
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

extern "C" void onRequest(int signal) {
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

constexpr int requests[] = {SIGINT, SIGTERM, SIGHUP, SIGXCPU};

}  // namespace

void prepareProcess() noexcept {
    // A folder can be neither read as a stream nor written, so whoever uses the descriptor is told.
    for (const int stream : {inDescriptor, outDescriptor, errDescriptor}) {
        if (fcntl(stream, F_GETFD) >= 0) continue;
        if (open("/", O_RDONLY | O_DIRECTORY) < 0) break;
    }
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

void handleRequests() noexcept {
    output->afterWrite = afterWrite;
    struct sigaction action {};
    action.sa_handler = onRequest;
    for (const int signal : requests) sigaddset(&action.sa_mask, signal);
    for (const int signal : requests) {
        struct sigaction before {};
        if (sigaction(signal, nullptr, &before) != 0 || before.sa_handler == SIG_IGN) continue;
        sigaction(signal, &action, nullptr);
    }
}

}  // namespace pellum::ending
