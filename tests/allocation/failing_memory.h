// The memory of the test program, which can be told to run out: every `operator new` and `calloc`
// of the program goes through here, is counted, and fails when its turn has come.
#pragma once

#include "fuzz/memory.h"

#include <cstdint>

namespace pellum::test {

using fuzz::liveBlocks;

// What fails once the chosen allocation is reached.
enum class Failing {
    Once,        // that one alone: a request too large, perhaps, for what is left
    FromThenOn,  // that one and all later ones: memory is used up
};

// While one of these lives, the allocations of this thread are counted, and the `nth` (from 1; 0 is
// none) throws std::bad_alloc. REQUIRES: one at a time.
class MemoryTrial {
public:
    MemoryTrial(std::uint64_t nth, Failing failing) noexcept;
    ~MemoryTrial();
    MemoryTrial(const MemoryTrial&) = delete;
    MemoryTrial& operator=(const MemoryTrial&) = delete;

    // Allocations so far, failed ones included.
    std::uint64_t allocations() const noexcept;
};

}  // namespace pellum::test
