#include "driver/interrupts.h"

#include "driver/posix/handled_signal.h"
#include "value/interrupt.h"

#include <optional>

namespace pellum {

namespace {

std::optional<HandledSignal> handled;

extern "C" void onInterrupt(int) { interruptIsWanted = true; }

}  // namespace

InterruptsStopPrograms::InterruptsStopPrograms() noexcept { handled.emplace(SIGINT, onInterrupt); }

InterruptsStopPrograms::~InterruptsStopPrograms() { handled.reset(); }

}  // namespace pellum
