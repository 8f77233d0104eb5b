// The value stack that all frames of a machine share. Its capacity is fixed and its slots never
// move, so open upvalues may point at them; memory is touched only as deep as the stack has grown.
// A slot above the top is nil and never holds a reference.
#pragma once

#include "value/value.h"

#include <memory>
#include <utility>

namespace pellum {

class ValueStack {
public:
    static constexpr std::size_t capacity = 65'536;

    ValueStack();
    ValueStack(const ValueStack&) = delete;
    ValueStack& operator=(const ValueStack&) = delete;
    ~ValueStack();

    std::size_t size() const noexcept { return static_cast<std::size_t>(top_ - slots_); }

    // False, and nothing done, when the stack is full.
    [[nodiscard]] bool push(Value value) noexcept {
        if (top_ == constructedEnd_ && !constructMore()) return false;
        *top_++ = std::move(value);
        return true;
    }
    Value pop() noexcept { return std::move(*--top_); }
    void drop() noexcept { *--top_ = Value(); }
    Value& peek(std::size_t belowTop = 0) noexcept {
        return top_[-1 - static_cast<std::ptrdiff_t>(belowTop)];
    }
    Value* top() noexcept { return top_; }

    Value& operator[](std::size_t slot) noexcept { return slots_[slot]; }
    Value* slot(std::size_t index) noexcept { return slots_ + index; }

    // Drops what is above `newSize`, or fills up to it with nils. REQUIRES: newSize <= capacity.
    void resize(std::size_t newSize) noexcept;

private:
    bool constructMore() noexcept;

    Value* slots_;
    Value* top_;
    Value* constructedEnd_;  // the slots from here to the capacity are raw memory
};

}  // namespace pellum
