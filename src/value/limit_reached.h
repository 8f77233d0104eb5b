// What ends a program that has used up what its host allows it. Travels to whoever has started the
// program: no `try` of the language catches it, and it is no lack of memory that a builtin reports.
#pragma once

#include <cstdint>

namespace pellum {

struct LimitReached {
    enum class What : std::uint8_t { Steps, Memory, Interrupted };
    What what;
};

}  // namespace pellum
