// The ways in which a terminal is left to itself or taken over, and the signals that go with them.
// Whatever ends or stops the process meanwhile, the terminal is given back as it was.
#pragma once

#include "driver/posix/handled_signal.h"

namespace pellum {

// Whether the terminal behind standard input shows what is typed and hands it over line by line,
// as it does unless somebody has asked it for something else.
bool terminalEditsLines() noexcept;

// While an object lives, the terminal shows nothing of what is typed and hands it over at once, and
// it marks what is pasted. There is at most one at a time.
class QuietTerminal {
public:
    QuietTerminal() noexcept;
    ~QuietTerminal();
    QuietTerminal(const QuietTerminal&) = delete;
    QuietTerminal& operator=(const QuietTerminal&) = delete;

    // Whether the terminal has got another size, or the process has been stopped and continued,
    // since this was last asked.
    static bool mustBeRedrawn() noexcept;

    // How often either has happened so far.
    static int changes() noexcept;

private:
    HandledSignal stop_, quit_, resize_;
};

}  // namespace pellum
