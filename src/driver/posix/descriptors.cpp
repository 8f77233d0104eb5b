#include "driver/descriptors.h"

#include <cerrno>

#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace pellum {

bool isTerminal(int descriptor) noexcept {
    termios attributes;
    return tcgetattr(descriptor, &attributes) == 0;  // isatty is not for signal handlers
}

std::ptrdiff_t readFrom(int descriptor, char* bytes, std::size_t size) noexcept {
    return read(descriptor, bytes, size);
}

std::ptrdiff_t writeTo(int descriptor, std::string_view bytes) noexcept {
    return write(descriptor, bytes.data(), bytes.size());
}

bool mayTryAgain(int descriptor, Direction direction) noexcept {
    if (errno == EINTR) return true;
    if (errno != EAGAIN && errno != EWOULDBLOCK) return false;
    pollfd waited{descriptor, direction == Direction::Read ? short{POLLIN} : short{POLLOUT}, 0};
    return poll(&waited, 1, -1) >= 0 || errno == EINTR;
}

}  // namespace pellum
