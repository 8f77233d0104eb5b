#include "allocation/failing_memory.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <new>

namespace pellum::test {

namespace {

struct Countdown {
    bool isOn = false;
    std::uint64_t allocations = 0;
    std::uint64_t firstFailing = 0;
    std::uint64_t lastFailing = 0;
};

constinit thread_local Countdown countdown;
constinit std::atomic<std::int64_t> blocks = 0;

bool failsNow() noexcept {
    if (!countdown.isOn) return false;
    const std::uint64_t turn = ++countdown.allocations;
    return turn >= countdown.firstFailing && turn <= countdown.lastFailing;
}

void* allocate(std::size_t size) {
    void* memory = failsNow() ? nullptr : std::malloc(size ? size : 1);
    if (!memory) throw std::bad_alloc();
    blocks.fetch_add(1, std::memory_order_relaxed);
    return memory;
}

void deallocate(void* memory) noexcept {
    if (!memory) return;
    blocks.fetch_sub(1, std::memory_order_relaxed);
    std::free(memory);
}

}  // namespace

MemoryTrial::MemoryTrial(std::uint64_t nth, Failing failing) noexcept {
    constexpr std::uint64_t never = std::numeric_limits<std::uint64_t>::max();
    countdown = {true, 0, nth == 0 ? never : nth, failing == Failing::Once ? nth : never};
}

MemoryTrial::~MemoryTrial() { countdown.isOn = false; }

std::uint64_t MemoryTrial::allocations() const noexcept { return countdown.allocations; }

std::int64_t liveBlocks() noexcept { return blocks.load(std::memory_order_relaxed); }

}  // namespace pellum::test

// The linker leads the program's calls of `calloc` here (--wrap).
extern "C" {
void* __real_calloc(std::size_t count, std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size);

void* __wrap_calloc(std::size_t count, std::size_t size) {
    return pellum::test::failsNow() ? nullptr : __real_calloc(count, size);
}
}

void* operator new(std::size_t size) { return pellum::test::allocate(size); }
void* operator new[](std::size_t size) { return pellum::test::allocate(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    try {
        return pellum::test::allocate(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept {
    return operator new(size, tag);
}
void operator delete(void* memory) noexcept { pellum::test::deallocate(memory); }
void operator delete[](void* memory) noexcept { pellum::test::deallocate(memory); }
void operator delete(void* memory, std::size_t) noexcept { pellum::test::deallocate(memory); }
void operator delete[](void* memory, std::size_t) noexcept { pellum::test::deallocate(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept {
    pellum::test::deallocate(memory);
}
void operator delete[](void* memory, const std::nothrow_t&) noexcept {
    pellum::test::deallocate(memory);
}
