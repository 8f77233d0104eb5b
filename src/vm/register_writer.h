// Writes register code: appends instructions, each with the place in the stack code that it stands
// for, and connects jumps with their labels.
#pragma once

#include "vm/register_code.h"

#include <cstddef>
#include <unordered_map>
#include <vector>

namespace pellum {

constexpr std::uint32_t slotOffset(std::size_t slot) noexcept {
    return static_cast<std::uint32_t>(slot * sizeof(Value));
}

class RegisterWriter {
public:
    // Starts anew: an earlier attempt may have ended half way for want of memory.
    // REQUIRES: the code outlives this.
    explicit RegisterWriter(RegisterCode& code) : code_(code) {
        code_.instructions.clear();
        code_.codeOffsets.clear();
        code_.pointers.clear();
    }

    // What the instructions to come stand for: an offset in the stack code.
    void standFor(std::size_t codeOffset) noexcept { codeOffset_ = codeOffset; }

    // The reference is valid until the next instruction.
    Instruction& emit(RegisterOp op) {
        Instruction& instruction = code_.instructions.emplace_back();
        instruction.op = op;
        code_.codeOffsets.push_back(static_cast<std::uint32_t>(codeOffset_));
        return instruction;
    }

    // The next instruction.
    std::size_t here() const noexcept { return code_.instructions.size(); }

    // For instructions that need two pointers.
    std::uint32_t addPointer(const Value* pointer) {
        code_.pointers.push_back(pointer);
        return static_cast<std::uint32_t>(code_.pointers.size() - 1);
    }

    // The last instruction jumps to a place further on in the stack code, or back to an
    // instruction.
    void jumpForward(std::size_t codeOffset) { jumpsTo_[codeOffset].push_back(here() - 1); }
    void jumpBack(std::size_t target) {
        code_.instructions.back().extra = static_cast<std::int32_t>(
            static_cast<std::ptrdiff_t>(target) - static_cast<std::ptrdiff_t>(here() - 1));
    }

    bool isJumpedTo(std::size_t codeOffset) const { return jumpsTo_.contains(codeOffset); }
    void bindLabel(std::size_t codeOffset) {
        const auto found = jumpsTo_.find(codeOffset);
        if (found == jumpsTo_.end()) return;
        dropJumpToHere(found->second);
        for (const std::size_t jump : found->second) {
            code_.instructions[jump].extra = static_cast<std::int32_t>(here() - jump);
        }
        lastLabel_ = here();
    }

    // The instruction before the next, or the `back`th before that, if no forward jump leads
    // between it and the next; otherwise null.
    Instruction* latest(std::size_t back = 0) noexcept {
        if (here() <= back || here() - back <= lastLabel_) return nullptr;
        return &code_.instructions[here() - 1 - back];
    }

    // Drops what a slot holds, together with its neighbours where they are dropped in a row.
    void clear(std::size_t slot) {
        Instruction* const last = latest();
        const std::uint32_t above = slotOffset(slot + 1);
        if (last && last->op == RegisterOp::CLEAR && last->a == above) {
            last->op = RegisterOp::CLEAR_RANGE;
            last->b = above + slotOffset(1);
            last->a = slotOffset(slot);
        } else if (last && last->op == RegisterOp::CLEAR_RANGE && last->a == above) {
            last->a = slotOffset(slot);
        } else {
            emit(RegisterOp::CLEAR).a = slotOffset(slot);
        }
    }

private:
    // The last instruction, where it is a jump that would lead to the next.
    void dropJumpToHere(std::vector<std::size_t>& jumps) {
        const Instruction* const last = latest();
        if (!last || last->op != RegisterOp::JUMP || jumps.back() != here() - 1) return;
        jumps.pop_back();
        code_.instructions.pop_back();
        code_.codeOffsets.pop_back();
    }

    RegisterCode& code_;
    std::size_t codeOffset_ = 0;
    std::size_t lastLabel_ = 0;  // the latest instruction that something jumps forward to
    std::unordered_map<std::size_t, std::vector<std::size_t>> jumpsTo_;  // by code offset
};

}  // namespace pellum
