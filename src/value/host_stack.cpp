#include "value/host_stack.h"

#include "value/limits.h"

#include <algorithm>
#include <cstddef>
#include <limits>

#if defined(__unix__)
#include <pthread.h>
#include <sys/resource.h>
#elif defined(_WIN32)
#include <windows.h>
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
constexpr std::size_t wantedStack = limit(60 << 20, 8 << 20);
#else
constexpr std::size_t wantedStack = limit(128 << 20, 4 << 20);
#endif

// The part of a thread's stack that is kept back for work between two checks.
std::size_t reserve(std::size_t stackSize) noexcept {
    return std::clamp(stackSize / 4, std::size_t{64} << 10, std::size_t{256} << 10);
}

// What may be used of a thread's stack, as long as there is memory for it.
struct StackBounds {
    std::uintptr_t lowest = 0;  // address
    std::size_t reserve = 0;    // kept back above it

    std::uintptr_t lowestLimit() const noexcept { return lowest + reserve; }
};

#if defined(__unix__)

// The stack that recursion may use: a quarter of the address space where that is limited, since
// each call needs memory beside the stack too, and so does the error that ends it.
std::size_t grantedStack() noexcept {
    rlimit limit{};
    if (getrlimit(RLIMIT_AS, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) return wantedStack;
    return static_cast<std::size_t>(std::min<rlim_t>(limit.rlim_cur / 4, wantedStack));
}

StackBounds boundsOfThisThread(std::uintptr_t frame) noexcept {
    const std::size_t granted = grantedStack();
    pthread_attr_t attributes;
    void* start = nullptr;
    std::size_t size = 0;
    // For the first thread this takes the limit of the process and the neighbouring mappings into
    // account; it is a costly question, asked once.
    if (pthread_getattr_np(pthread_self(), &attributes) == 0) {
        pthread_attr_getstack(&attributes, &start, &size);
        pthread_attr_destroy(&attributes);
    }
    if (start) {
        const auto bottom = reinterpret_cast<std::uintptr_t>(start);
        const std::uintptr_t top = bottom + size;
        const std::uintptr_t wanted = top - std::min<std::uintptr_t>(top, granted);
        return {std::max(bottom, wanted), reserve(std::min(size, granted))};
    }
    // Only for the first thread it has to look into a file, which may be out of reach. Then a
    // quarter is left to the arguments and the environment, as the system does.
    rlimit limit{};
    size = std::size_t{128} << 10;
    if (getrlimit(RLIMIT_STACK, &limit) == 0) {
        size = static_cast<std::size_t>(std::min<rlim_t>(limit.rlim_cur, granted)) / 4 * 3;
    }
    return {frame - std::min<std::uintptr_t>(frame, size), reserve(size)};
}

// Whether the stack reaches down to `address`, or can be made to. Where the address space is
// limited and used up the system does not let it grow, and kills who touches what is missing; but a
// system call that is to write there merely fails. Elsewhere nothing has to be tried out. REQUIRES:
// the address is between the bounds of the stack and what is in use.
bool stackReaches(std::uintptr_t address) noexcept {
    rlimit space{};
    if (getrlimit(RLIMIT_AS, &space) == 0 && space.rlim_cur == RLIM_INFINITY) return true;
    constexpr std::uintptr_t alignment = 64;
    const std::uintptr_t aligned = (address / alignment + 1) * alignment;
    // NOLINTNEXTLINE(performance-no-int-to-ptr): there is no object there yet to point to
    return getrlimit(RLIMIT_STACK, reinterpret_cast<rlimit*>(aligned)) == 0;
}

#else

StackBounds boundsOfThisThread([[maybe_unused]] std::uintptr_t frame) noexcept {
#if defined(_WIN32)
    ULONG_PTR bottom = 0;
    ULONG_PTR top = 0;
    GetCurrentThreadStackLimits(&bottom, &top);
    const std::uintptr_t wanted = top - std::min<std::uintptr_t>(top, wantedStack);
    const std::uintptr_t lowest = std::max<std::uintptr_t>(bottom, wanted);
    return {lowest, reserve(top - lowest)};
#else
    const std::size_t size = std::size_t{512} << 10;
    return {frame - size, reserve(size)};
#endif
}

bool stackReaches(std::uintptr_t) noexcept { return true; }

#endif

}  // namespace

namespace detail {

// Until the first check every address is below the limit, so that nothing is asked at start-up.
// From then on the limit goes down in steps, each made sure of before it is granted.
thread_local std::uintptr_t hostStackLimit = std::numeric_limits<std::uintptr_t>::max();

bool hostStackIsLowBelowLimit(std::uintptr_t frame) noexcept {
    constexpr std::uintptr_t greatestStep = std::uintptr_t{1} << 20;
    constexpr std::uintptr_t smallestStep = std::uintptr_t{16} << 10;

    thread_local StackBounds bounds;
    if (bounds.lowest == 0) bounds = boundsOfThisThread(frame);
    for (std::uintptr_t step = greatestStep; step >= smallestStep; step /= 4) {
        const std::uintptr_t limit = std::max(frame - step, bounds.lowestLimit());
        if (limit >= frame) return true;
        if (!stackReaches(limit - bounds.reserve)) continue;
        hostStackLimit = limit;
        return false;
    }
    return true;
}

}  // namespace detail

// Where nothing is done here, it is the linker who says how much stack the program gets.
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
