#include "value/pool.h"

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

// What is left of the block that cells are being carved from. The rest of an older block is lost,
// which is less than one cell.
thread_local char* unused = nullptr;
thread_local char* unusedEnd = nullptr;

void takeBlock() {
    if (cellBlocks() < manyBlocks) {
        unused = static_cast<char*>(::operator new(blockSize));
        unusedEnd = unused + blockSize;
    } else {
        unused = static_cast<char*>(::operator new (largePage, std::align_val_t{largePage}));
        unusedEnd = unused + largePage;
        preferLargePages(unused, largePage);
    }
    blocks.fetch_add(1, std::memory_order_relaxed);
}

}  // namespace

constinit thread_local FreeCell* freeCells[maxCellSize / cellStep + 1] = {};

void* allocateFreshCell(std::size_t size) {
    if (size > maxCellSize) return ::operator new(size);
    const std::size_t rounded = (size + cellStep - 1) / cellStep * cellStep;
    if (static_cast<std::size_t>(unusedEnd - unused) < rounded) {
        takeBlock();
    }
    void* const cell = unused;
    unused += rounded;
    return cell;
}

}  // namespace pellum::detail

#endif
