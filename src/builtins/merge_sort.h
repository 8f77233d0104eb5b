// A stable merge sort that is safe whatever the order is: it always ends after at most
// n * ceil(log2 n) comparisons, reads nothing outside the elements, and keeps each of them
// exactly once, even where the answers contradict each other, as those about NaN do.
#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace pellum {

// Sorts by `isBefore(later, earlier)`, asked only with the element that stood later first. When
// that throws, some elements have been moved out of `elements`.
template <typename T, typename IsBefore>
void mergeSort(std::vector<T>& elements, IsBefore isBefore) {
    const std::size_t count = elements.size();
    std::vector<T> merged(count);
    for (std::size_t width = 1; width < count; width *= 2) {
        for (std::size_t start = 0; start < count; start += 2 * width) {
            const std::size_t middle = std::min(start + width, count);
            const std::size_t end = std::min(middle + width, count);
            std::size_t left = start;
            std::size_t right = middle;
            for (std::size_t to = start; to < end; ++to) {
                const bool takesRight =
                    right < end && (left == middle || isBefore(elements[right], elements[left]));
                merged[to] = std::move(elements[takesRight ? right++ : left++]);
            }
        }
        std::swap(elements, merged);
    }
}

}  // namespace pellum
