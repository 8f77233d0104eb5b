// What keeps a program that grows from exhausting a fuzzer: while a budget exists, allocations
// beyond it are refused as the system would refuse them.
#pragma once

#include <cstddef>

namespace pellum::fuzz {

class MemoryBudget {
public:
    // No single allocation above `single` bytes, and no more than `total` bytes at a time. One
    // budget at a time.
    MemoryBudget(std::size_t single, std::size_t total) noexcept;
    ~MemoryBudget();
    MemoryBudget(const MemoryBudget&) = delete;
    MemoryBudget& operator=(const MemoryBudget&) = delete;

    // Whether anything has been refused.
    bool wasExceeded() const noexcept;
};

}  // namespace pellum::fuzz
