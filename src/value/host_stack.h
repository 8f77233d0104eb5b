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
    const auto frame = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
    return frame < detail::hostStackLimit && detail::hostStackIsLowBelowLimit(frame);
}

// Raises the soft stack limit of the process as far as the system lets it and recursion is worth
// it. Called once at program start, before anything recurses.
void raiseHostStackLimit() noexcept;

}  // namespace pellum
