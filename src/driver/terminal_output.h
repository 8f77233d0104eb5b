// Writing to the terminal behind standard output, past the console, which has written out all that
// it held before it asks for a line.
#pragma once

#include <string_view>

namespace pellum {

// What cannot be written is left to whoever writes next.
void writeToTerminal(std::string_view text) noexcept;

}  // namespace pellum
