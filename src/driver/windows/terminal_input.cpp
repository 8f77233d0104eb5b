#include "driver/terminal_input.h"

#include "value/interrupt.h"

#include <windows.h>

namespace pellum {

// The console edits lines itself and hands them over whole, so that there is nothing to wait for
// but the next one.
TerminalInput::Event TerminalInput::wait(int) {
    const Event event = readSome();
    // Some consoles go on with the line, so that there was nothing to stop.
    if (event == Event::Byte) interruptIsWanted = false;
    if (event != Event::Signal) return event;
    // The thread that is told about Ctrl-C may not have come to it yet.
    for (int tries = 0; tries < 1'000; ++tries) {
        if (interruptIsWanted.exchange(false)) return Event::Interrupt;
        Sleep(1);
    }
    return event;
}

}  // namespace pellum
