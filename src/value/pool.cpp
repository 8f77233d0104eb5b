#include "value/pool.h"

#include "value/heap.h"

#include <atomic>
#include <cstdint>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace pellum {

namespace {

constexpr std::size_t largePage = std::size_t{2} << 20;

}  // namespace

void preferLargePages([[maybe_unused]] void* memory, [[maybe_unused]] std::size_t size) noexcept {
#if defined(__linux__)
    const auto start = reinterpret_cast<std::uintptr_t>(memory);
    const std::size_t skipped = (largePage - start % largePage) % largePage;
    if (size < skipped + largePage) return;
    const std::size_t covered = (size - skipped) / largePage * largePage;
    madvise(static_cast<char*>(memory) + skipped, covered, MADV_HUGEPAGE);
#endif
}

}  // namespace pellum

#if !defined(PELLUM_NO_POOLS)

namespace pellum {

namespace {

std::atomic<std::size_t> blocks = 0;

}  // namespace

std::size_t cellBlocks() noexcept { return blocks.load(std::memory_order_relaxed); }

}  // namespace pellum

namespace pellum::detail {

namespace {

// A small program needs a few of the small blocks; one that needs more than a megabyte gets it in
// large ones.
constexpr std::size_t blockSize = std::size_t{32} << 10;
constexpr std::size_t manyBlocks = 32;

void takeBlock() {
    if (Heap* const heap = Heap::current()) return heap->takeBlock(cells);
    if (cellBlocks() < manyBlocks) {
        cells.unused = static_cast<char*>(::operator new(blockSize));
        cells.unusedEnd = cells.unused + blockSize;
    } else {
        cells.unused = static_cast<char*>(::operator new (largePage, std::align_val_t{largePage}));
        cells.unusedEnd = cells.unused + largePage;
        preferLargePages(cells.unused, largePage);
    }
    blocks.fetch_add(1, std::memory_order_relaxed);
}

}  // namespace

constinit thread_local Cells cells = {};

void* allocateFreshCell(std::size_t size) {
    if (size > maxCellSize) return allocateLarge(size);
    const std::size_t rounded = (size + cellStep - 1) / cellStep * cellStep;
    if (static_cast<std::size_t>(cells.unusedEnd - cells.unused) < rounded) {
        takeBlock();
    }
    void* const cell = cells.unused;
    cells.unused += rounded;
    return cell;
}

}  // namespace pellum::detail

#endif
