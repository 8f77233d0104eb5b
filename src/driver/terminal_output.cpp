#include "driver/terminal_output.h"

#include "driver/descriptors.h"

namespace pellum {

void writeToTerminal(std::string_view text) noexcept { writeAll(outDescriptor, text); }

}  // namespace pellum
