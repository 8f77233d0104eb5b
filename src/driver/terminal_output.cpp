#include "driver/terminal_output.h"

#include <cerrno>

#include <unistd.h>

namespace pellum {

void writeToTerminal(std::string_view text) noexcept {
    while (!text.empty()) {
        const ssize_t count = write(STDOUT_FILENO, text.data(), text.size());
        if (count > 0) {
            text.remove_prefix(static_cast<std::size_t>(count));
        } else if (count == 0 || errno != EINTR) {
            return;
        }
    }
}

}  // namespace pellum
