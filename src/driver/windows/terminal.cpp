#include "driver/terminal.h"

#include <cstdlib>

#include <windows.h>

namespace pellum {

// Consoles have to be asked to obey escape sequences; those before Windows 10 do not know how.
bool terminalIsCapable() {
    const char* type = std::getenv("TERM");
    if (type && type == std::string_view("dumb")) return false;
    const HANDLE console = GetStdHandle(STD_ERROR_HANDLE);
    DWORD mode = 0;
    return GetConsoleMode(console, &mode) &&
           SetConsoleMode(console, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

}  // namespace pellum
