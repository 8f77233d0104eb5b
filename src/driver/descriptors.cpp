#include "driver/descriptors.h"

#include <cerrno>

namespace pellum {

bool writeAll(int descriptor, std::string_view bytes) noexcept {
    while (!bytes.empty()) {
        const std::ptrdiff_t count = writeTo(descriptor, bytes);
        if (count > 0) {
            bytes.remove_prefix(static_cast<std::size_t>(count));
        } else if (count == 0 || errno != EINTR) {
            return false;
        }
    }
    return true;
}

}  // namespace pellum
