#include "driver/terminal.h"

#include <cstdlib>

#include <unistd.h>

namespace pellum {

namespace {

std::string_view environment(const char* name) {
    const char* value = std::getenv(name);
    return value ? std::string_view(value) : std::string_view();
}

}  // namespace

bool terminalIsCapable() {
    const std::string_view type = environment("TERM");
    return !type.empty() && type != "dumb";
}

Look lookOfStandardError() {
    if (!isatty(STDERR_FILENO)) return Look::Plain;
    return environment("NO_COLOR").empty() && terminalIsCapable() ? Look::Coloured : Look::Terminal;
}

}  // namespace pellum
