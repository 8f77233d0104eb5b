#include "vm/value_stack.h"

#include <algorithm>
#include <new>

namespace pellum {

ValueStack::ValueStack()
    : slots_(static_cast<Value*>(::operator new(capacity * sizeof(Value)))),
      top_(slots_),
      constructedEnd_(slots_) {}

ValueStack::~ValueStack() {
    std::destroy(slots_, constructedEnd_);
    ::operator delete(slots_);
}

bool ValueStack::constructMore() noexcept {
    constexpr std::ptrdiff_t atOnce = 256;
    Value* const end = std::min(constructedEnd_ + atOnce, slots_ + capacity);
    if (constructedEnd_ == end) return false;
    std::uninitialized_default_construct(constructedEnd_, end);
    constructedEnd_ = end;
    return true;
}

void ValueStack::resize(std::size_t newSize) noexcept {
    while (size() > newSize) drop();
    while (size() < newSize) static_cast<void>(push(Value()));
}

}  // namespace pellum
