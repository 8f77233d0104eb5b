// Small memory: cells that do not overlap, are aligned, and come back.
#include "value/pool.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <set>
#include <vector>

namespace pellum::test {
namespace {

TEST(Pool, CellsOfEverySizeHoldTheirBytes) {
    struct Cell {
        unsigned char* bytes;
        std::size_t size;
    };
    std::vector<Cell> cells;
    for (std::size_t size = 1; size <= 600; ++size) {
        auto* bytes = static_cast<unsigned char*>(allocateCell(size));
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(bytes) % alignof(double), 0u) << size;
        std::memset(bytes, static_cast<int>(size % 251), size);
        cells.push_back({bytes, size});
    }
    for (const Cell& cell : cells) {
        for (std::size_t at = 0; at < cell.size; ++at) {
            ASSERT_EQ(cell.bytes[at], cell.size % 251) << cell.size;
        }
        releaseCell(cell.bytes, cell.size);
    }
}

#if !defined(PELLUM_NO_POOLS)
// What has been given back is used before anything fresh, so that a run which repeats itself does
// not grow.
TEST(Pool, CellsOfASizeAreUsedAgain) {
    std::set<void*> first;
    for (int i = 0; i < 5'000; ++i) first.insert(allocateCell(33));
    ASSERT_EQ(first.size(), 5'000u);
    for (void* cell : first) releaseCell(cell, 33);
    std::set<void*> second;
    for (int i = 0; i < 5'000; ++i) second.insert(allocateCell(40));  // the same step
    EXPECT_EQ(second, first);
    for (void* cell : second) releaseCell(cell, 40);
}
#endif

}  // namespace
}  // namespace pellum::test
