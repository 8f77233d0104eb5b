#include "value/heap.h"

#include "value/limit_reached.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace pellum {

constinit thread_local Heap* Heap::current_ = nullptr;

Heap::Heap(std::size_t limit) : limit_(limit) {
    const Inside inside(*this);
    try {
        strings_.emplace();
    } catch (...) {
        giveBackAll(large_);
        giveBackAll(blocks_);
        throw;
    }
}

Heap::~Heap() {
    {
        const Inside inside(*this);
        strings_.reset();
    }
    giveBackAll(large_);
    giveBackAll(blocks_);
}

namespace {

#if !defined(PELLUM_NO_POOLS)
// The free cells of a thread while it is inside some heap.
thread_local constinit detail::Cells cellsOfTheThread = {};
#endif

}  // namespace

Heap* Heap::enter(Heap* heap) noexcept {
    Heap* const left = std::exchange(current_, heap);
    if (left == heap) return left;
#if !defined(PELLUM_NO_POOLS)
    (left ? left->cells_ : cellsOfTheThread) = detail::cells;
    detail::cells = heap ? heap->cells_ : cellsOfTheThread;
#endif
    SharedStrings::use(heap && heap->strings_ ? &*heap->strings_ : nullptr);
    return left;
}

Heap::Piece* Heap::take(Piece& ring, std::size_t size) {
    const std::size_t whole = sizeof(Piece) + size;
    if (whole < size) throw std::bad_alloc();
    requireRoom(whole);
    auto* const piece = new (::operator new(whole)) Piece;
    used_ += whole;
    piece->size = size;
    piece->previous = &ring;
    piece->next = ring.next;
    ring.next->previous = piece;
    ring.next = piece;
    return piece;
}

void Heap::giveBack(Piece* piece, std::size_t size) noexcept {
    piece->previous->next = piece->next;
    piece->next->previous = piece->previous;
    used_ -= sizeof(Piece) + size;
    ::operator delete(piece);
}

void Heap::giveBackAll(Piece& ring) noexcept {
    while (ring.next != &ring) giveBack(ring.next, ring.next->size);
}

void Heap::requireRoom(std::size_t size) {
    if (size <= limit_ - std::min(used_, limit_) || makeRoomFor(size)) return;
    throw LimitReached{LimitReached::What::Memory};
}

void* Heap::allocate(std::size_t size) { return take(large_, size)->bytes(); }

void Heap::release(void* memory, std::size_t size) noexcept {
    giveBack(static_cast<Piece*>(memory) - 1, size);
}

// Returning blocks takes as long as there are free cells, so it has to be worth it: what is short
// of a sixteenth of all memory is as good as out of it.
bool Heap::makeRoomFor(std::size_t size) noexcept {
    try {
        returnFreeBlocks();
    } catch (const std::bad_alloc&) {
        return false;
    }
    const std::size_t worthwhile = limit_ - limit_ / 16;
    return used_ <= worthwhile && size <= worthwhile - used_;
}

#if defined(PELLUM_NO_POOLS)

void Heap::returnFreeBlocks() {}

#else

void Heap::takeBlock(detail::Cells& cells) {
    // Small enough for the limit to be met early, and large enough to be few.
    constexpr std::size_t firstSize = std::size_t{32} << 10;
    constexpr std::size_t laterSize = std::size_t{256} << 10;
    constexpr std::size_t manyBlocks = 32;
    const std::size_t size = (blockCount_ < manyBlocks ? firstSize : laterSize) - sizeof(Piece);

    Piece* const block = take(blocks_, size);
    ++blockCount_;
    if (block->next != &blocks_) {
        block->next->unused = static_cast<std::size_t>(cells.unusedEnd - cells.unused);
    }
    cells.unused = block->bytes();
    cells.unusedEnd = cells.unused + size;
}

// Gives back the blocks all of whose cells are free, but for the one that is being carved.
void Heap::returnFreeBlocks() {
    struct Block {
        char* start;
        Piece* piece;
        std::size_t free;
    };
    if (blocks_.next == &blocks_) return;
    std::vector<Block> blocks;
    blocks.reserve(blockCount_);
    for (Piece* piece = blocks_.next->next; piece != &blocks_; piece = piece->next) {
        blocks.push_back({piece->bytes(), piece, piece->unused});
    }
    std::ranges::sort(blocks, std::less<>(), &Block::start);
    // The block that a cell lies in, or null where that is being carved.
    const auto blockOf = [&](const detail::FreeCell* cell) -> Block* {
        const auto* const address = reinterpret_cast<const char*>(cell);
        const auto after =
            std::ranges::upper_bound(blocks, address, std::less<const char*>(),
                                     [](const Block& block) -> const char* { return block.start; });
        if (after == blocks.begin()) return nullptr;
        Block& block = *(after - 1);
        return address < block.start + block.piece->size ? &block : nullptr;
    };

    detail::Cells& cells = detail::cells;
    for (std::size_t step = 0; step < std::size(cells.free); ++step) {
        for (detail::FreeCell* cell = cells.free[step]; cell; cell = cell->next) {
            if (Block* const block = blockOf(cell)) block->free += step * detail::cellStep;
        }
    }
    for (detail::FreeCell*& first : cells.free) {
        for (detail::FreeCell** link = &first; *link;) {
            const Block* const block = blockOf(*link);
            if (block && block->free == block->piece->size) {
                *link = (*link)->next;
            } else {
                link = &(*link)->next;
            }
        }
    }
    for (const Block& block : blocks) {
        if (block.free != block.piece->size) continue;
        giveBack(block.piece, block.piece->size);
        --blockCount_;
    }
}

#endif

void* allocateLarge(std::size_t size) {
    if (Heap* const heap = Heap::current()) [[unlikely]]
        return heap->allocate(size);
    return ::operator new(size);
}

void releaseLarge(void* memory, std::size_t size) noexcept {
    if (Heap* const heap = Heap::current()) [[unlikely]]
        return heap->release(memory, size);
    ::operator delete(memory);
}

void requireRoom(std::size_t size) {
    if (Heap* const heap = Heap::current()) heap->requireRoom(size);
}

}  // namespace pellum
