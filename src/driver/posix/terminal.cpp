#include "driver/terminal.h"

#include <cstdlib>

namespace pellum {

bool terminalIsCapable() {
    const char* type = std::getenv("TERM");
    return type && *type && type != std::string_view("dumb");
}

}  // namespace pellum
