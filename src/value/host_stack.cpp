#include "value/host_stack.h"

#include <algorithm>
#include <cstddef>
#include <limits>

#if defined(__unix__)
#include <pthread.h>
#include <sys/resource.h>
#endif

namespace pellum {

namespace {

// As much stack as recursion may use where the system grants it: room for well over 20,000 calls of
// the tree-walker, and an endless recursion is still told within a second or so. The address
// sanitizer cannot clean up behind exceptions on stacks of 64 MiB and more.
#if defined(__SANITIZE_ADDRESS__)
#define PELLUM_ADDRESS_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define PELLUM_ADDRESS_SANITIZER 1
#endif
#endif
#if defined(PELLUM_ADDRESS_SANITIZER)
constexpr std::size_t wantedStack = std::size_t{60} << 20;
#else
constexpr std::size_t wantedStack = std::size_t{128} << 20;
#endif

// The part of a thread's stack that is kept back for work between two checks.
std::size_t reserve(std::size_t stackSize) noexcept {
    return std::clamp(stackSize / 4, std::size_t{64} << 10, std::size_t{256} << 10);
}

#if defined(__unix__)

// The lowest address of the stack of this thread that may be used.
std::uintptr_t lowestUsableAddress(std::uintptr_t frame) noexcept {
    pthread_attr_t attributes;
    void* lowest = nullptr;
    std::size_t size = 0;
    // For the first thread this takes the limit of the process and the neighbouring mappings into
    // account; it is a costly question, asked once.
    if (pthread_getattr_np(pthread_self(), &attributes) == 0) {
        pthread_attr_getstack(&attributes, &lowest, &size);
        pthread_attr_destroy(&attributes);
    }
    if (!lowest) return frame - (std::uintptr_t{128} << 10);
    const auto bottom = reinterpret_cast<std::uintptr_t>(lowest);
    const std::uintptr_t top = bottom + size;
    return std::max(bottom, top - std::min<std::uintptr_t>(top, wantedStack)) + reserve(size);
}

#else

std::uintptr_t lowestUsableAddress(std::uintptr_t frame) noexcept {
    return frame - (std::uintptr_t{512} << 10);
}

#endif

}  // namespace

namespace detail {

// Until the first check every address is below the limit, so that nothing is asked at start-up.
thread_local std::uintptr_t hostStackLimit = std::numeric_limits<std::uintptr_t>::max();

bool hostStackIsLowBelowLimit(std::uintptr_t frame) noexcept {
    thread_local bool isKnown = false;
    if (!isKnown) {
        hostStackLimit = lowestUsableAddress(frame);
        isKnown = true;
    }
    return frame < hostStackLimit;
}

}  // namespace detail

void raiseHostStackLimit() noexcept {
#if defined(__unix__)
    rlimit limit{};
    if (getrlimit(RLIMIT_STACK, &limit) != 0) return;
    if (limit.rlim_cur == RLIM_INFINITY || limit.rlim_cur >= wantedStack) return;
    limit.rlim_cur = limit.rlim_max == RLIM_INFINITY
                         ? rlim_t{wantedStack}
                         : std::min(rlim_t{wantedStack}, limit.rlim_max);
    setrlimit(RLIMIT_STACK, &limit);
#endif
}

}  // namespace pellum
