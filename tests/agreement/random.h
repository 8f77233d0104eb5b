// The dice of the program generator: the same numbers from the same seed with every library, which
// the distributions of the standard library do not promise. A fuzzer throws them itself: then each
// number comes from the next bytes of its input, and from dice of their own where that ends.
#pragma once

#include <cstdint>
#include <random>
#include <span>
#include <vector>

namespace pellum::test {

class Random {
public:
    explicit Random(std::uint64_t seed) : engine_(seed) {}
    // REQUIRES: the bytes outlive this.
    explicit Random(std::span<const std::uint8_t> choices)
        : choices_(choices), engine_(choices.size()) {}

    // One of 0 to count - 1. REQUIRES: count is above 0.
    int below(int count) {
        return static_cast<int>(next(count) % static_cast<std::uint64_t>(count));
    }
    int between(int first, int last) { return first + below(last - first + 1); }
    bool chance(int percent) { return below(100) < percent; }

    template <typename T>
    const T& pick(const std::vector<T>& choices) {
        return choices[static_cast<std::size_t>(below(static_cast<int>(choices.size())))];
    }

private:
    std::uint64_t next(int count) {
        std::uint64_t number = 0;
        for (; count > 0; count >>= 8) {
            if (choices_.empty()) return engine_();
            number = number << 8 | choices_.front();
            choices_ = choices_.subspan(1);
        }
        return number;
    }

    std::span<const std::uint8_t> choices_;
    std::mt19937_64 engine_;
};

}  // namespace pellum::test
