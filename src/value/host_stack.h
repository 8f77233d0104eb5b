// A guard for everything that recurses on the host's stack: deep nesting in a source, recursion in
// the tree-walker, callbacks nested through natives. Whoever recurses asks `hostStackIsLow` and
// raises an error of its own kind instead of crashing.
#pragma once

#include <cstdint>

namespace pellum {

namespace detail {
extern thread_local std::uintptr_t hostStackLimit;
bool hostStackIsLowBelowLimit(std::uintptr_t frame) noexcept;
}  // namespace detail

// True when the stack of this thread is nearly used up: enough is left to build and throw an error
// and to run any builtin that does not call back, not to recurse further. Costs a comparison.
inline bool hostStackIsLow() noexcept {
#if defined(_WIN32)
    // With the pointer to a frame that the other way makes, GCC tells the system wrong places of
    // the registers that an exception has to bring back.
    const volatile char local = 0;
    const auto frame = reinterpret_cast<std::uintptr_t>(&local);
#else
    const auto frame = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
#endif
    return frame < detail::hostStackLimit && detail::hostStackIsLowBelowLimit(frame);
}

// Raises the soft stack limit of the process as far as the system lets it and recursion is worth
// it. Called once at program start, before anything recurses.
void raiseHostStackLimit() noexcept;

}  // namespace pellum
