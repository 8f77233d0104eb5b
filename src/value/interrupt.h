// How a running program is asked to stop from outside: the prompt does so when Ctrl-C is typed. A
// signal handler sets the flag, and whoever runs code or writes output looks at it now and then.
#pragma once

#include <atomic>

namespace pellum {

// Travels to whoever has started the program. No `try` of the language catches it.
struct Interrupted {};

inline std::atomic<bool> interruptIsWanted = false;
static_assert(std::atomic<bool>::is_always_lock_free);

// Takes the wish back.
[[noreturn]] void throwInterrupted();

inline void stopIfInterrupted() {
    if (interruptIsWanted.load(std::memory_order_relaxed)) [[unlikely]]
        throwInterrupted();
}

}  // namespace pellum
