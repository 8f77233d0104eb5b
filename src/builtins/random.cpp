#include "builtins/families.h"

#include <random>

namespace pellum::library {

namespace {

__extension__ using Wide = unsigned __int128;

std::uint64_t draw() {
    thread_local std::mt19937_64 generator(std::random_device{}());
    return generator();
}

// A uniform integer below `bound`: the upper half of draw * bound. The lower half tells whether the
// draw is one of the few that would favour some results; those are thrown away.
// REQUIRES: bound > 0.
std::uint64_t drawBelow(std::uint64_t bound) {
    const std::uint64_t excess = (0 - bound) % bound;  // 2^64 mod bound
    for (;;) {
        const Wide product = static_cast<Wide>(draw()) * bound;
        if (static_cast<std::uint64_t>(product) >= excess) {
            return static_cast<std::uint64_t>(product >> 64);
        }
    }
}

}  // namespace

Value random(Caller&, Arguments) {
    constexpr double unit = 1.0 / 9007199254740992.0;  // 2^-53: a double has 53 bits to fill
    return Value(static_cast<double>(draw() >> 11) * unit);
}

Value randint(Caller&, Arguments args) {
    const std::int64_t low = truncatedArg(args[0], "randint");
    const std::int64_t high = truncatedArg(args[1], "randint");
    require(low <= high, "randint: low must be <= high");
    const std::uint64_t first = static_cast<std::uint64_t>(low);
    // Never 2^64: the bounds come through doubles, whose largest below 2^63 is not 2^63 - 1.
    const std::uint64_t count = static_cast<std::uint64_t>(high) - first + 1;
    return Value(static_cast<std::int64_t>(first + drawBelow(count)));
}

}  // namespace pellum::library
