// The stack as the translator imagines it: each entry says where a value is, in its slot, or still
// where it came from. Values stay pending until somebody consumes them or `materialize` puts them
// into their slots, for which it writes a move.
#pragma once

#include "vm/register_writer.h"

#include <cstddef>
#include <utility>
#include <vector>

namespace pellum {

// Where an instruction reads a value from.
struct Source {
    bool isPointer;
    std::size_t slot;
    const Value* pointer;
    bool ends;  // a temporary that may hold a reference
    bool isGlobal = false;
};

// The forms of a binary instruction, in the order of its ops.
enum class Form : std::uint32_t { RR, RP, PR, RI };

// The op of a form, given that of the first one.
inline RegisterOp withForm(RegisterOp first, Form form) noexcept {
    return static_cast<RegisterOp>(static_cast<std::uint32_t>(first) +
                                   static_cast<std::uint32_t>(form));
}

inline Form formOf(const Source& left, const Source& right) noexcept {
    return right.isPointer ? Form::RP : left.isPointer ? Form::PR : Form::RR;
}

// Arithmetic and comparisons also take small integer constants as they are.
inline Form numericFormOf(const Source& left, const Source& right) noexcept {
    const bool isImmediate = right.isPointer && !right.isGlobal && right.pointer->isInt() &&
                             std::in_range<std::int32_t>(right.pointer->asInt());
    return isImmediate ? Form::RI : formOf(left, right);
}

class AbstractStack {
public:
    // `isCaptured` says, by slot, which locals a closure made in the function captures.
    // REQUIRES: both outlive this.
    AbstractStack(RegisterWriter& writer, const std::vector<bool>& isCaptured) noexcept
        : writer_(writer), isCaptured_(isCaptured) {}

    std::size_t depth() const noexcept { return entries_.size(); }
    bool isCaptured(std::size_t slot) const noexcept {
        return slot < isCaptured_.size() && isCaptured_[slot];
    }

    // Everything is in its slot, and may be anything.
    void reset(std::size_t depth) { entries_.assign(depth, Entry{}); }
    void shrink(std::size_t depth) { entries_.resize(depth); }

    void pushSlot(bool mayBeReference) { entries_.push_back({.mayBeReference = mayBeReference}); }
    void pushPointer(const Value* pointer, bool isGlobal) {
        entries_.push_back({.where = Where::Pointer,
                            .pointer = pointer,
                            .isGlobal = isGlobal,
                            .mayBeReference = isGlobal || pointer->isObject()});
    }
    void pushLocal(std::size_t slot) {
        const Entry local = entries_[slot];
        if (local.where != Where::Slot) {
            entries_.push_back(local);  // the same place
            return;
        }
        entries_.push_back({.where = Where::Local,
                            .local = slot,
                            .mayBeReference = local.mayBeReference || isCaptured(slot)});
    }

    Source operandAt(std::size_t position) const {
        const Entry& entry = entries_[position];
        switch (entry.where) {
            case Where::Slot: return {false, position, nullptr, entry.mayBeReference};
            case Where::Local: return {false, entry.local, nullptr, false};
            case Where::Pointer: break;
        }
        return {true, 0, entry.pointer, false, entry.isGlobal};
    }
    Source fromTop(std::size_t below = 0) const { return operandAt(depth() - 1 - below); }

    // The constant on top, or null.
    const Value* constantOnTop() const {
        if (entries_.empty()) return nullptr;
        const Entry& top = entries_.back();
        return top.where == Where::Pointer && !top.isGlobal ? top.pointer : nullptr;
    }

    Source pop() {
        const Source operand = fromTop();
        entries_.pop_back();
        return operand;
    }
    // Pops a value that must be in a slot.
    Source popRegister() {
        if (entries_.back().where == Where::Pointer) materialize(depth() - 1);
        return pop();
    }
    // Drops the top and releases what it may hold.
    void drop() {
        const Entry top = entries_.back();
        entries_.pop_back();
        if (top.where != Where::Slot) return;
        if (top.mayBeReference || isCaptured(depth())) writer_.clear(depth());
    }

    // A local has been given a value of its own: whoever still meant the old one gets that first.
    void overwrite(std::size_t local, bool mayBeReference) {
        materializeIf([&](const Entry& entry) {
            return entry.where == Where::Local && entry.local == local;
        });
        entries_[local].where = Where::Slot;
        entries_[local].mayBeReference = mayBeReference || isCaptured(local);
    }

    void materialize(std::size_t position) {
        Entry& entry = entries_[position];
        if (entry.where == Where::Local) {
            Instruction& move = writer_.emit(RegisterOp::MOVE);
            move.a = slotOffset(position);
            move.b = slotOffset(entry.local);
        } else if (entry.where == Where::Pointer) {
            Instruction& load = writer_.emit(RegisterOp::LOAD);
            load.a = slotOffset(position);
            load.pointer = entry.pointer;
        }
        entry.where = Where::Slot;
    }
    void materializeFrom(std::size_t first) {
        for (std::size_t position = first; position < depth(); ++position) materialize(position);
    }
    void materializeAll() { materializeFrom(0); }
    void materializeGlobals() {
        materializeIf([](const Entry& entry) { return entry.isGlobal; });
    }

    // What a call may change under pending values: globals, and locals that are captured. The
    // callee itself, at that position, is read by the call.
    void materializeForCall(std::size_t callee) {
        for (std::size_t position = 0; position < callee; ++position) {
            const Entry& entry = entries_[position];
            const bool mayChange =
                entry.isGlobal || (entry.where == Where::Local && isCaptured(entry.local));
            if (mayChange) materialize(position);
        }
        materializeFrom(callee + 1);
    }

private:
    enum class Where : std::uint8_t { Slot, Local, Pointer };

    struct Entry {
        Where where = Where::Slot;
        std::size_t local = 0;           // the slot of another local
        const Value* pointer = nullptr;  // a constant or a global
        bool isGlobal = false;
        bool mayBeReference = true;
    };

    template <typename Condition>
    void materializeIf(Condition condition) {
        for (std::size_t position = 0; position < depth(); ++position) {
            if (entries_[position].where != Where::Slot && condition(entries_[position])) {
                materialize(position);
            }
        }
    }

    RegisterWriter& writer_;
    const std::vector<bool>& isCaptured_;
    std::vector<Entry> entries_;
};

}  // namespace pellum
