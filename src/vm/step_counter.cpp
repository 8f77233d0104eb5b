#include "vm/step_counter.h"

#include "value/limit_reached.h"

#include <algorithm>

namespace pellum {

void StepCounter::check() {
    constexpr std::uint64_t betweenChecks = 1024;  // well below a millisecond
    if (isInterrupted.load(std::memory_order_relaxed)) {
        throw LimitReached{LimitReached::What::Interrupted};
    }
    if (left_ == 0) throw LimitReached{LimitReached::What::Steps};
    untilCheck_ = std::min(left_, betweenChecks);
    left_ -= untilCheck_;
}

}  // namespace pellum
