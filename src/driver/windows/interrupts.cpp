#include "driver/interrupts.h"

#include "value/interrupt.h"

#include <windows.h>

namespace pellum {

namespace {

BOOL WINAPI onConsoleEvent(DWORD event) {
    if (event != CTRL_C_EVENT) return FALSE;
    interruptIsWanted = true;
    return TRUE;
}

}  // namespace

InterruptsStopPrograms::InterruptsStopPrograms() noexcept {
    SetConsoleCtrlHandler(onConsoleEvent, TRUE);
}

InterruptsStopPrograms::~InterruptsStopPrograms() { SetConsoleCtrlHandler(onConsoleEvent, FALSE); }

}  // namespace pellum
