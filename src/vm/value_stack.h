// The value stack that all frames of a machine share. Its capacity is fixed and its slots never
// move, so open upvalues may point at them; memory is touched only as deep as the stack has grown.
// A slot that is not live never holds a reference.
#pragma once

#include "value/limits.h"
#include "value/value.h"

#include <cstdlib>
#include <new>
#include <utility>

namespace pellum {

class ValueStack {
public:
    static constexpr std::size_t capacity = limit(65'536, 4'000);

    // Zeroed memory, which the system hands out without touching it, is a stack of nils.
    ValueStack() : slots_(static_cast<Value*>(std::calloc(capacity, sizeof(Value)))), top_(slots_) {
        if (!slots_) throw std::bad_alloc();
    }
    ValueStack(const ValueStack&) = delete;
    ValueStack& operator=(const ValueStack&) = delete;
    ~ValueStack() {
        while (top_ != slots_) drop();
        std::free(slots_);
    }

    std::size_t size() const noexcept { return static_cast<std::size_t>(top_ - slots_); }
    Value* slot(std::size_t index) noexcept { return slots_ + index; }
    Value* begin() noexcept { return slots_; }
    Value* end() noexcept { return slots_ + capacity; }
    Value* top() noexcept { return top_; }

    // Tells how deep the stack is, where code that knows has written slots directly.
    void setTop(Value* top) noexcept { top_ = top; }

    // False, and nothing done, when the stack is full.
    [[nodiscard]] bool push(Value value) noexcept {
        if (top_ == end()) return false;
        *top_++ = std::move(value);
        return true;
    }
    Value pop() noexcept { return std::move(*--top_); }
    void drop() noexcept { *--top_ = Value(); }
    Value& peek(std::size_t belowTop = 0) noexcept {
        return top_[-1 - static_cast<std::ptrdiff_t>(belowTop)];
    }

    // Drops what is above `newSize`, or fills up to it with nils. REQUIRES: newSize <= capacity.
    void resize(std::size_t newSize) noexcept {
        while (size() > newSize) drop();
        while (size() < newSize) *top_++ = Value();
    }

private:
    Value* slots_;
    Value* top_;
};

}  // namespace pellum
