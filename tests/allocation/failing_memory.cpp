#include "allocation/failing_memory.h"

#include <cstddef>
#include <cstdlib>
#include <limits>

namespace pellum::test {

namespace {

struct Countdown {
    bool isOn = false;
    std::uint64_t allocations = 0;
    std::uint64_t firstFailing = 0;
    std::uint64_t lastFailing = 0;
};

constinit thread_local Countdown countdown;

bool failsNow() noexcept {
    if (!countdown.isOn) return false;
    const std::uint64_t turn = ++countdown.allocations;
    return turn >= countdown.firstFailing && turn <= countdown.lastFailing;
}

bool grants() noexcept { return !failsNow(); }

}  // namespace

MemoryTrial::MemoryTrial(std::uint64_t nth, Failing failing) noexcept {
    constexpr std::uint64_t never = std::numeric_limits<std::uint64_t>::max();
    countdown = {true, 0, nth == 0 ? never : nth, failing == Failing::Once ? nth : never};
    fuzz::setAllocationJudge(grants);
}

MemoryTrial::~MemoryTrial() {
    fuzz::setAllocationJudge(nullptr);
    countdown.isOn = false;
}

std::uint64_t MemoryTrial::allocations() const noexcept { return countdown.allocations; }

}  // namespace pellum::test

// The linker leads the program's calls of `calloc` here (--wrap).
extern "C" {
void* __real_calloc(std::size_t count, std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size);

void* __wrap_calloc(std::size_t count, std::size_t size) {
    return pellum::test::failsNow() ? nullptr : __real_calloc(count, size);
}
}
