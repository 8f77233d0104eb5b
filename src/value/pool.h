// Memory for small things that come and go by the million: heap objects and syntax nodes. Cells of
// a size that has been used before wait in a list of their own, so that taking or giving back one
// costs a few instructions; fresh cells are carved from larger blocks. Memory stays with the thread
// for cells of the same size. Built with PELLUM_NO_POOLS every cell comes from the system, so that
// the sanitizers see each one begin and end.
#pragma once

#include <cstddef>
#include <new>

namespace pellum {

// Asks the system to back what is about to be filled with large pages, where it has them: each page
// that is touched for the first time costs as much as a thousand instructions.
void preferLargePages(void* memory, std::size_t size) noexcept;

#if defined(PELLUM_NO_POOLS)

inline void* allocateCell(std::size_t size) { return ::operator new(size); }
inline void releaseCell(void* cell, std::size_t) noexcept { ::operator delete(cell); }
inline std::size_t cellBlocks() noexcept { return 0; }

#else

namespace detail {

inline constexpr std::size_t cellStep = 8;
inline constexpr std::size_t maxCellSize = 256;  // larger ones come from the system

struct FreeCell {
    FreeCell* next;
};

// By size, in steps, rounded up.
extern constinit thread_local FreeCell* freeCells[maxCellSize / cellStep + 1];

void* allocateFreshCell(std::size_t size);

}  // namespace detail

// Memory for `size` bytes, aligned for pointers and numbers. Throws std::bad_alloc.
inline void* allocateCell(std::size_t size) {
    if (size <= detail::maxCellSize) {
        detail::FreeCell*& first =
            detail::freeCells[(size + detail::cellStep - 1) / detail::cellStep];
        if (detail::FreeCell* const cell = first) {
            first = cell->next;
            return cell;
        }
    }
    return detail::allocateFreshCell(size);
}

// REQUIRES: `cell` is from allocateCell with the same size.
inline void releaseCell(void* cell, std::size_t size) noexcept {
    if (size > detail::maxCellSize) return ::operator delete(cell);
    detail::FreeCell*& first = detail::freeCells[(size + detail::cellStep - 1) / detail::cellStep];
    first = new (cell) detail::FreeCell{first};
}

// How many blocks all threads have taken to carve cells from.
std::size_t cellBlocks() noexcept;

#endif

}  // namespace pellum
