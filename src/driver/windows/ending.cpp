#include "driver/ending.h"

#include "driver/descriptors.h"

#include <atomic>

#include <windows.h>

// The start-up code would replace "*" and "?" in arguments by names of files.
extern "C" {
int _dowildcard = 0;
}

namespace pellum::ending {

namespace {

// The system asks in a thread of its own, which puts the program's thread to sleep and then does
// what a signal handler would do.

HANDLE programThread = nullptr;
std::atomic<bool> isInterrupted = false;  // by Ctrl-C
std::atomic<bool> isAsked = false;
std::atomic<bool> isEnding = false;
std::atomic<bool> hasWritten = false;  // since the deadline was set

[[noreturn]] void end() noexcept {
    beforeForcedEnd();
    if (isInterrupted && isTerminal(errDescriptor)) {
        writeAll(errDescriptor, "\npellum: interrupted\n");
    }
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(STATUS_CONTROL_C_EXIT));
    for (;;) Sleep(INFINITE);  // what is asked for there may take a moment
}

[[noreturn]] void writeOutAndEnd() noexcept {
    isEnding = true;
    output->drain();
    end();
}

// A reader who takes nothing for a second ends the wait.
DWORD WINAPI watchDeadline(void*) {
    do {
        hasWritten = false;
        Sleep(1'000);
    } while (hasWritten);
    end();
}

BOOL WINAPI onRequest(DWORD event) {
    isInterrupted = event == CTRL_C_EVENT;
    if (isAsked.exchange(true) || !output) end();
    CloseHandle(CreateThread(nullptr, 0, watchDeadline, nullptr, 0, nullptr));
    SuspendThread(programThread);
    CONTEXT state{};
    GetThreadContext(programThread, &state);  // answers once it sleeps indeed
    if (!output->isWriting()) writeOutAndEnd();
    // The write alone knows how far it has come; it ends the process when it returns.
    ResumeThread(programThread);
    Sleep(INFINITE);  // the system may end the process when this returns
    return TRUE;
}

void afterWrite() noexcept {
    if (!isAsked) return;
    if (!isEnding) writeOutAndEnd();
    hasWritten = true;  // the reader is slow, but there
}

}  // namespace

void prepareProcess() noexcept {
    // Whoever started the program is told by its status, and not by a window that waits for a
    // click.
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
}

void handleRequests() noexcept {
    output->afterWrite = afterWrite;
    DuplicateHandle(GetCurrentProcess(), GetCurrentThread(), GetCurrentProcess(), &programThread, 0,
                    FALSE, DUPLICATE_SAME_ACCESS);
    SetConsoleCtrlHandler(onRequest, TRUE);
}

}  // namespace pellum::ending
