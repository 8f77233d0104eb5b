// Memory and shared strings of its own for one engine among several in a process. While a thread is
// inside a heap, all cells and larger pieces come from there and are counted. So engines have
// nothing in common, an engine may go from thread to thread, and what it has taken is given back
// when its heap ends, even where values refer to each other in circles. The program `pellum` has no
// heaps, and its threads their own memory.
#pragma once

#include "value/pool.h"
#include "value/string.h"

#include <cstddef>
#include <limits>
#include <optional>

namespace pellum {

class Heap {
public:
    static constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();

    // Throws std::bad_alloc or LimitReached where there is no memory to begin with.
    explicit Heap(std::size_t limit = unlimited);
    Heap(const Heap&) = delete;
    Heap& operator=(const Heap&) = delete;
    // Gives all memory back, without another look at what lies there. REQUIRES: no thread is
    // inside.
    ~Heap();

    // The heap that this thread is inside of, or null.
    static Heap* current() noexcept { return current_; }

    // Bytes that have been taken from the system and not given back. Free cells count until their
    // block goes back, which is when memory is short.
    std::size_t used() const noexcept { return used_; }
    // What `used` may come to. Whoever asks for more meets LimitReached.
    void setLimit(std::size_t limit) noexcept { limit_ = limit; }

    // Inside this heap. May be nested, in other heaps and in this one again; the same thread leaves
    // in reverse order. REQUIRES: no other thread is inside.
    class Inside {
    public:
        explicit Inside(Heap& heap) noexcept : outer_(enter(&heap)) {}
        ~Inside() { enter(outer_); }
        Inside(const Inside&) = delete;
        Inside& operator=(const Inside&) = delete;

    private:
        Heap* outer_;
    };

    // Throws LimitReached where there is no room for so many bytes more. REQUIRES: the thread is
    // inside.
    void requireRoom(std::size_t size);

    // Drops the interned strings that nobody holds. REQUIRES: the thread is inside.
    void forgetUnusedStrings() noexcept { strings_->forgetUnused(); }

    // For the pool. REQUIRES, for all: the thread is inside.
    void* allocate(std::size_t size);
    void release(void* memory, std::size_t size) noexcept;
#if !defined(PELLUM_NO_POOLS)
    void takeBlock(detail::Cells& cells);
#endif

private:
    // In front of each piece of memory, in a ring for each kind. Keeps what follows aligned.
    struct alignas(std::max_align_t) Piece {
        Piece* previous = this;
        Piece* next = this;
        std::size_t size = 0;    // of blocks: without this
        std::size_t unused = 0;  // of blocks: what has been lost at the end

        char* bytes() noexcept { return reinterpret_cast<char*>(this + 1); }
    };

    static Heap* enter(Heap* heap) noexcept;
    Piece* take(Piece& ring, std::size_t size);
    void giveBack(Piece* piece, std::size_t size) noexcept;
    bool makeRoomFor(std::size_t size) noexcept;
    void giveBackAll(Piece& ring) noexcept;
    void returnFreeBlocks();

    static constinit thread_local Heap* current_;

    std::size_t used_ = 0;
    std::size_t limit_;
    Piece large_;
    Piece blocks_;  // that cells are carved from; the latest is the first
#if !defined(PELLUM_NO_POOLS)
    std::size_t blockCount_ = 0;
    detail::Cells cells_ = {};  // while no thread is inside
#endif
    std::optional<SharedStrings> strings_;
};

// Throws LimitReached where the heap that this thread is inside of has no room for another `size`
// bytes: for what is large, passing, and not itself counted.
void requireRoom(std::size_t size);

}  // namespace pellum
