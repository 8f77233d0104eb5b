// The memory of the fuzzers and of the tests: every `operator new` goes through here. A budget
// keeps a program that grows from exhausting a fuzzer, and a judge lets tests refuse what they
// choose; both refuse as the system would.
#pragma once

#include <cstddef>
#include <cstdint>

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

// Asked before each allocation, from now on, whether it is granted. Null: nobody is asked.
void setAllocationJudge(bool (*grants)() noexcept) noexcept;

// Blocks that have been allocated and not yet given back.
std::int64_t liveBlocks() noexcept;

}  // namespace pellum::fuzz
