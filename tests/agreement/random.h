// The dice of the program generator: the same numbers from the same seed with every library, which
// the distributions of the standard library do not promise.
#pragma once

#include <cstdint>
#include <random>
#include <vector>

namespace pellum::test {

class Random {
public:
    explicit Random(std::uint64_t seed) : engine_(seed) {}

    // One of 0 to count - 1. REQUIRES: count is above 0.
    int below(int count) { return static_cast<int>(engine_() % static_cast<std::uint64_t>(count)); }
    int between(int first, int last) { return first + below(last - first + 1); }
    bool chance(int percent) { return below(100) < percent; }

    template <typename T>
    const T& pick(const std::vector<T>& choices) {
        return choices[static_cast<std::size_t>(below(static_cast<int>(choices.size())))];
    }

private:
    std::mt19937_64 engine_;
};

}  // namespace pellum::test
