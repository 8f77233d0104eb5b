// A stable merge sort that is safe whatever the order is: it always ends after at most
// n * ceil(log2 n) comparisons, reads nothing outside the elements, and keeps each of them
// exactly once, even where the answers contradict each other, as those about NaN do.
#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace pellum {

// Merges two sorted neighbours, [left, middle) and [middle, end), by way of `room`, which has place
// for the left one.
template <typename T, typename IsBefore>
void mergeNeighbours(T* left, T* middle, T* end, T* room, IsBefore& isBefore) {
    T* const roomEnd = std::move(left, middle, room);
    T* to = left;
    T* right = middle;
    while (room != roomEnd && right != end) {
        *to++ = std::move(isBefore(*right, *room) ? *right++ : *room++);
    }
    std::move(room, roomEnd, to);
}

// Halves are sorted one after the other, so that short ones are merged while they are in the cache.
template <typename T, typename IsBefore>
void mergeSort(T* start, T* end, T* room, IsBefore& isBefore) {
    if (end - start < 2) return;
    T* const middle = start + (end - start) / 2;
    mergeSort(start, middle, room, isBefore);
    mergeSort(middle, end, room, isBefore);
    mergeNeighbours(start, middle, end, room, isBefore);
}

// Sorts by `isBefore(later, earlier)`, asked only with the element that stood later first. When
// that throws, some elements have been moved out of `elements`.
template <typename T, typename Allocator, typename IsBefore>
void mergeSort(std::vector<T, Allocator>& elements, IsBefore isBefore) {
    if (elements.size() < 2) return;
    std::vector<T, Allocator> room(elements.size() / 2);
    mergeSort(elements.data(), elements.data() + elements.size(), room.data(), isBefore);
}

}  // namespace pellum
