// Memory for small things that come and go by the million: heap objects, syntax nodes and short
// lists. Cells of a size that has been used before wait in a list of their own, so that taking or
// giving back one costs a few instructions; fresh cells are carved from larger blocks. Memory stays
// with the thread for cells of the same size, or with the `Heap` that the thread has entered. Built
// with PELLUM_NO_POOLS every cell comes from the system, so that the sanitizers see each one begin
// and end.
#pragma once

#include <cstddef>
#include <new>
#include <vector>

namespace pellum {

// Asks the system to back what is about to be filled with large pages, where it has them: each page
// that is touched for the first time costs as much as a thousand instructions.
void preferLargePages(void* memory, std::size_t size) noexcept;

// Memory from the system or, where the thread has entered a heap, from that.
void* allocateLarge(std::size_t size);
void releaseLarge(void* memory, std::size_t size) noexcept;

#if defined(PELLUM_NO_POOLS)

inline void* allocateCell(std::size_t size) { return allocateLarge(size); }
inline void releaseCell(void* cell, std::size_t size) noexcept { releaseLarge(cell, size); }
inline std::size_t cellBlocks() noexcept { return 0; }

#else

namespace detail {

inline constexpr std::size_t cellStep = 8;
inline constexpr std::size_t maxCellSize = 256;  // larger ones come from the system

struct FreeCell {
    FreeCell* next;
};

struct Cells {
    FreeCell* free[maxCellSize / cellStep + 1];  // by size, in steps, rounded up
    // What is left of the block that cells are being carved from. The rest of an older block is
    // lost, which is less than one cell.
    char* unused;
    char* unusedEnd;
};
extern constinit thread_local Cells cells;

void* allocateFreshCell(std::size_t size);

}  // namespace detail

// Memory for `size` bytes, aligned for pointers and numbers. Throws std::bad_alloc.
inline void* allocateCell(std::size_t size) {
    if (size <= detail::maxCellSize) {
        detail::FreeCell*& first =
            detail::cells.free[(size + detail::cellStep - 1) / detail::cellStep];
        if (detail::FreeCell* const cell = first) {
            first = cell->next;
            return cell;
        }
    }
    return detail::allocateFreshCell(size);
}

// REQUIRES: `cell` is from allocateCell with the same size.
inline void releaseCell(void* cell, std::size_t size) noexcept {
    if (size > detail::maxCellSize) return releaseLarge(cell, size);
    detail::FreeCell*& first = detail::cells.free[(size + detail::cellStep - 1) / detail::cellStep];
    first = new (cell) detail::FreeCell{first};
}

// How many blocks all threads have taken to carve cells from.
std::size_t cellBlocks() noexcept;

#endif

// Lets containers keep what they hold in cells.
template <typename T>
struct CellAllocator {
    using value_type = T;

    CellAllocator() noexcept = default;
    template <typename U>
    CellAllocator(const CellAllocator<U>&) noexcept {}

    T* allocate(std::size_t count) { return static_cast<T*>(allocateCell(count * sizeof(T))); }
    void deallocate(T* memory, std::size_t count) noexcept {
        releaseCell(memory, count * sizeof(T));
    }

    template <typename U>
    friend bool operator==(const CellAllocator&, const CellAllocator<U>&) noexcept {
        return true;
    }
};

template <typename T>
using CellVector = std::vector<T, CellAllocator<T>>;

}  // namespace pellum
