#include "fuzz/memory.h"

#include <malloc.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

struct Budget {
    bool isSet = false;
    bool wasExceeded = false;
    std::ptrdiff_t single = 0;
    std::ptrdiff_t left = 0;  // what is released counts too, even when it is older than the budget
};

Budget budget;
bool (*judge)() noexcept = nullptr;
std::atomic<std::int64_t> blocks = 0;

void* allocateOrNull(std::size_t size, std::size_t alignment = 1) noexcept {
    if (judge && !judge()) return nullptr;
    if (budget.isSet) {
        const auto wanted = static_cast<std::ptrdiff_t>(size);
        if (wanted < 0 || wanted > budget.single || wanted > budget.left) {
            budget.wasExceeded = true;
            return nullptr;
        }
    }
    void* const memory = alignment > alignof(std::max_align_t) ? std::aligned_alloc(alignment, size)
                                                               : std::malloc(size ? size : 1);
    if (!memory) return nullptr;
    blocks.fetch_add(1, std::memory_order_relaxed);
    if (budget.isSet) {
        budget.left -= static_cast<std::ptrdiff_t>(malloc_usable_size(memory));
    }
    return memory;
}

void* allocate(std::size_t size, std::size_t alignment = 1) {
    void* const memory = allocateOrNull(size, alignment);
    if (!memory) throw std::bad_alloc();
    return memory;
}

void release(void* memory) noexcept {
    if (!memory) return;
    blocks.fetch_sub(1, std::memory_order_relaxed);
    if (budget.isSet) budget.left += static_cast<std::ptrdiff_t>(malloc_usable_size(memory));
    std::free(memory);
}

}  // namespace

void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return allocateOrNull(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return allocateOrNull(size);
}
// REQUIRES: the size is a multiple of the alignment.
void* operator new(std::size_t size, std::align_val_t alignment) {
    return allocate(size, static_cast<std::size_t>(alignment));
}
void operator delete(void* memory) noexcept { release(memory); }
void operator delete[](void* memory) noexcept { release(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { release(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { release(memory); }
void operator delete(void* memory, std::size_t) noexcept { release(memory); }
void operator delete[](void* memory, std::size_t) noexcept { release(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { release(memory); }

namespace pellum::fuzz {

MemoryBudget::MemoryBudget(std::size_t single, std::size_t total) noexcept {
    budget = {true, false, static_cast<std::ptrdiff_t>(single), static_cast<std::ptrdiff_t>(total)};
}

MemoryBudget::~MemoryBudget() { budget.isSet = false; }

bool MemoryBudget::wasExceeded() const noexcept { return budget.wasExceeded; }

void setAllocationJudge(bool (*grants)() noexcept) noexcept { judge = grants; }

std::int64_t liveBlocks() noexcept { return blocks.load(std::memory_order_relaxed); }

}  // namespace pellum::fuzz
