#include "driver/terminal.h"

#include "driver/descriptors.h"

#include <cstdlib>

namespace pellum {

Look lookOfStandardError() {
    if (!isTerminal(errDescriptor)) return Look::Plain;
    const char* noColor = std::getenv("NO_COLOR");
    const bool mayColour = !noColor || !*noColor;
    return mayColour && terminalIsCapable() ? Look::Coloured : Look::Terminal;
}

}  // namespace pellum
