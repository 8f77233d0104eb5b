#include "value/pool.h"

#if !defined(PELLUM_NO_POOLS)

#include <atomic>

namespace pellum {

namespace {

std::atomic<std::size_t> blocks = 0;

}  // namespace

std::size_t cellBlocks() noexcept { return blocks.load(std::memory_order_relaxed); }

}  // namespace pellum

namespace pellum::detail {

namespace {

// A small program needs a few of these, and a large one is not slowed down by them.
constexpr std::size_t blockSize = std::size_t{32} << 10;

// What is left of the block that cells are being carved from. The rest of an older block is lost,
// which is less than one cell.
thread_local char* unused = nullptr;
thread_local char* unusedEnd = nullptr;

}  // namespace

constinit thread_local FreeCell* freeCells[maxCellSize / cellStep + 1] = {};

void* allocateFreshCell(std::size_t size) {
    if (size > maxCellSize) return ::operator new(size);
    const std::size_t rounded = (size + cellStep - 1) / cellStep * cellStep;
    if (static_cast<std::size_t>(unusedEnd - unused) < rounded) {
        unused = static_cast<char*>(::operator new(blockSize));
        unusedEnd = unused + blockSize;
        blocks.fetch_add(1, std::memory_order_relaxed);
    }
    void* const cell = unused;
    unused += rounded;
    return cell;
}

}  // namespace pellum::detail

#endif
