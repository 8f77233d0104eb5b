#include "vm/translator.h"

#include "value/format.h"
#include "vm/depth_analysis.h"

#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace pellum {

namespace {

// Where the abstract stack has a value.
struct Entry {
    enum class Where { Slot, Local, Pointer };
    Where where = Where::Slot;
    std::size_t local = 0;           // the slot of another local
    const Value* pointer = nullptr;  // a constant or a global
    bool isGlobal = false;
    bool mayBeReference = true;
};

// What an instruction reads.
struct Operand {
    bool isPointer;
    std::size_t slot;
    const Value* pointer;
    bool ends;  // a temporary that may hold a reference
    bool isGlobal = false;
};

// A conditional jump that consumes its condition on both ways.
struct Branch {
    bool onTrue;         // jumps when the condition holds
    std::size_t target;  // a code offset
    std::size_t resume;  // where to go on otherwise
};

constexpr std::uint32_t slotOffset(std::size_t slot) noexcept {
    return static_cast<std::uint32_t>(slot * sizeof(Value));
}

// The op of a form, given that of the first one.
enum class Form : std::uint32_t { RR, RP, PR, RI };
RegisterOp withForm(RegisterOp first, Form form) noexcept {
    return static_cast<RegisterOp>(static_cast<std::uint32_t>(first) +
                                   static_cast<std::uint32_t>(form));
}

Form formOf(const Operand& left, const Operand& right) noexcept {
    return right.isPointer ? Form::RP : left.isPointer ? Form::PR : Form::RR;
}

// Arithmetic and comparisons also take small integer constants as they are.
Form numericFormOf(const Operand& left, const Operand& right) noexcept {
    const bool isImmediate = right.isPointer && !right.isGlobal && right.pointer->isInt() &&
                             std::in_range<std::int32_t>(right.pointer->asInt());
    return isImmediate ? Form::RI : formOf(left, right);
}

const Value* literal(OpCode op) noexcept {
    static const Value nil, yes(true), no(false);
    return op == OpCode::NIL ? &nil : op == OpCode::TRUE ? &yes : &no;
}

class Translator {
public:
    Translator(RegisterCode& result, Globals& globals)
        : proto_(*result.proto),
          globals_(globals),
          analysis_(analyzeDepths(proto_)),
          result_(&result) {}

    void run() {
        // An earlier attempt may have ended half way for want of memory.
        result_->instructions.clear();
        result_->codeOffsets.clear();
        result_->pointers.clear();
        result_->maxDepth = analysis_.maxDepth;
        if (analysis_.isRegular && translateAll()) result_->arity = proto_.arity;
        result_->isTranslated = true;
    }

private:
    // --- Reading the stack code.

    OpCode opAt(std::size_t offset) const noexcept {
        return offset < proto_.code.size() ? static_cast<OpCode>(proto_.code[offset])
                                           : OpCode::HALT;
    }
    std::size_t u8At(std::size_t offset) const noexcept { return proto_.code[offset + 1]; }
    std::size_t u16At(std::size_t offset) const noexcept {
        return readU16(&proto_.code[offset] + 1);
    }
    std::size_t jumpTarget(std::size_t offset) const noexcept { return offset + 3 + u16At(offset); }
    std::size_t after(std::size_t offset) const noexcept {
        return offset + 1 + operandSize(opInfo[proto_.code[offset]].operand);
    }
    bool isLabel(std::size_t offset) const {
        return offset >= proto_.code.size() || analysis_.isLoopStart[offset] ||
               jumpsTo_.contains(offset);
    }
    // Whether these instructions follow each other from `offset` on, with no label between them.
    bool matches(std::size_t offset, std::initializer_list<OpCode> ops) const {
        bool isFirst = true;
        for (const OpCode op : ops) {
            if (opAt(offset) != op || (!isFirst && isLabel(offset))) return false;
            isFirst = false;
            offset = after(offset);
        }
        return true;
    }

    // --- Writing register code.

    Instruction& emit(RegisterOp op, std::size_t codeOffset) {
        Instruction& instruction = result_->instructions.emplace_back();
        instruction.op = op;
        result_->codeOffsets.push_back(static_cast<std::uint32_t>(codeOffset));
        return instruction;
    }
    std::size_t here() const noexcept { return result_->instructions.size(); }

    // The last instruction jumps to a place further on in the stack code.
    void jumpsForward(std::size_t target) { jumpsTo_[target].push_back(here() - 1); }
    // Or back to an instruction.
    void jumpsBack(std::size_t target) {
        result_->instructions.back().extra = static_cast<std::int32_t>(
            static_cast<std::ptrdiff_t>(target) - static_cast<std::ptrdiff_t>(here() - 1));
    }

    void bindLabel(std::size_t offset) {
        const auto found = jumpsTo_.find(offset);
        if (found == jumpsTo_.end()) return;
        for (const std::size_t jump : found->second) {
            result_->instructions[jump].extra = static_cast<std::int32_t>(here() - jump);
        }
        lastLabel_ = here();
    }

    // --- The abstract stack.

    std::size_t depth() const noexcept { return entries_.size(); }

    bool isCaptured(std::size_t slot) const noexcept {
        return slot < analysis_.isCaptured.size() && analysis_.isCaptured[slot];
    }

    void pushSlot(bool mayBeReference) {
        Entry entry;
        entry.mayBeReference = mayBeReference;
        entries_.push_back(entry);
    }

    void pushPointer(const Value* pointer, bool isGlobal) {
        Entry entry;
        entry.where = Entry::Where::Pointer;
        entry.pointer = pointer;
        entry.isGlobal = isGlobal;
        entry.mayBeReference = isGlobal || pointer->isObject();
        entries_.push_back(entry);
    }

    void pushLocal(std::size_t slot) {
        const Entry& local = entries_[slot];
        if (local.where != Entry::Where::Slot) {
            entries_.push_back(Entry(local));  // the same place
            return;
        }
        Entry entry;
        entry.where = Entry::Where::Local;
        entry.local = slot;
        entry.mayBeReference = local.mayBeReference || isCaptured(slot);
        entries_.push_back(entry);
    }

    void materialize(std::size_t position) {
        Entry& entry = entries_[position];
        if (entry.where == Entry::Where::Local) {
            Instruction& move = emit(RegisterOp::MOVE, offset_);
            move.a = slotOffset(position);
            move.b = slotOffset(entry.local);
        } else if (entry.where == Entry::Where::Pointer) {
            Instruction& load = emit(RegisterOp::LOAD, offset_);
            load.a = slotOffset(position);
            load.pointer = entry.pointer;
        }
        entry.where = Entry::Where::Slot;
    }

    template <typename Condition>
    void materializeIf(Condition condition) {
        for (std::size_t position = 0; position < depth(); ++position) {
            if (entries_[position].where != Entry::Where::Slot && condition(entries_[position])) {
                materialize(position);
            }
        }
    }
    void materializeAll() {
        materializeIf([](const Entry&) { return true; });
    }
    void materializeCopiesOf(std::size_t slot) {
        materializeIf([&](const Entry& entry) {
            return entry.where == Entry::Where::Local && entry.local == slot;
        });
    }
    void materializeGlobals() {
        materializeIf([](const Entry& entry) { return entry.isGlobal; });
    }

    const Value* constantOnTop() const {
        if (entries_.empty()) return nullptr;
        const Entry& top = entries_.back();
        return top.where == Entry::Where::Pointer && !top.isGlobal ? top.pointer : nullptr;
    }

    Operand operandAt(std::size_t position) const {
        const Entry& entry = entries_[position];
        switch (entry.where) {
            case Entry::Where::Slot: return {false, position, nullptr, entry.mayBeReference};
            case Entry::Where::Local: return {false, entry.local, nullptr, false};
            case Entry::Where::Pointer: break;
        }
        return {true, 0, entry.pointer, false, entry.isGlobal};
    }
    Operand popOperand() {
        const Operand operand = operandAt(depth() - 1);
        entries_.pop_back();
        return operand;
    }
    Operand popRegister() {
        if (entries_.back().where == Entry::Where::Pointer) materialize(depth() - 1);
        return popOperand();
    }

    // Where the result of the instruction at `offset_` goes: straight into the local that it is
    // assigned to, else to the top of the stack. REQUIRES: the operands have been popped.
    std::size_t destination(bool mayBeReference) {
        if (matches(next_, {OpCode::SET_LOCAL, OpCode::POP}) && !isLabel(next_)) {
            const std::size_t local = u16At(next_);
            materializeCopiesOf(local);
            entries_[local].where = Entry::Where::Slot;
            entries_[local].mayBeReference = mayBeReference || isCaptured(local);
            next_ += 4;
            return local;
        }
        pushSlot(mayBeReference);
        return depth() - 1;
    }

    // --- Jumps.

    // Where a jump to `target` ends up that leaves a value of known truth on the stack, if that
    // value is popped there and nothing else is done with it.
    std::optional<std::size_t> threaded(std::size_t target, bool truth) const {
        for (;;) {
            switch (opAt(target)) {
                case OpCode::POP: return target + 1;
                case OpCode::JUMP: target = jumpTarget(target); break;
                case OpCode::NOT:
                    truth = !truth;
                    ++target;
                    break;
                case OpCode::JUMP_IF_FALSE: target = truth ? target + 3 : jumpTarget(target); break;
                case OpCode::JUMP_IF_TRUE: target = truth ? jumpTarget(target) : target + 3; break;
                default: return std::nullopt;
            }
        }
    }

    // The branch that the instructions from `offset` on make of the value just computed.
    std::optional<Branch> branchAt(std::size_t offset) const {
        bool isInverted = false;
        for (; opAt(offset) == OpCode::NOT && !isLabel(offset); ++offset) isInverted = !isInverted;
        const OpCode op = opAt(offset);
        if (isLabel(offset) || (op != OpCode::JUMP_IF_FALSE && op != OpCode::JUMP_IF_TRUE)) {
            return std::nullopt;
        }
        const std::size_t otherwise = offset + 3;
        if (opAt(otherwise) != OpCode::POP || isLabel(otherwise)) return std::nullopt;
        const bool onTrue = op == OpCode::JUMP_IF_TRUE;
        const auto target = threaded(jumpTarget(offset), onTrue);
        if (!target) return std::nullopt;
        return Branch{onTrue != isInverted, *target, otherwise + 1};
    }

    // Jumps on the value on top of the abstract stack, which ends with it.
    void branchOnTop(const Branch& branch) {
        const Entry& top = entries_.back();
        if (top.where == Entry::Where::Pointer && !top.isGlobal) {
            const bool jumps = isTruthy(*top.pointer) == branch.onTrue;
            entries_.pop_back();
            if (jumps) {
                materializeAll();
                emit(RegisterOp::JUMP, offset_);
                jumpsForward(branch.target);
                isFlowing_ = false;
            }
        } else {
            const Operand condition = popRegister();
            materializeAll();
            const RegisterOp op =
                condition.ends  ? branch.onTrue ? RegisterOp::IF_TEMP : RegisterOp::UNLESS_TEMP
                : branch.onTrue ? RegisterOp::IF
                                : RegisterOp::UNLESS;
            emit(op, offset_).a = slotOffset(condition.slot);
            jumpsForward(branch.target);
        }
        next_ = branch.resume;
    }

    // --- Instructions.

    bool translateAll() {
        entries_.assign(proto_.arity, Entry{});
        for (offset_ = 0; offset_ < proto_.code.size() && isGood_; offset_ = next_) {
            next_ = after(offset_);
            if (analysis_.depths[offset_] < 0) {
                isFlowing_ = false;
                continue;
            }
            if (isLabel(offset_) || !isFlowing_) {
                if (!isLabel(offset_) && offset_ != 0) continue;
                loopStep_ = isFlowing_ ? constantOnTop() : nullptr;
                if (isFlowing_) materializeAll();
                entries_.assign(static_cast<std::size_t>(analysis_.depths[offset_]), Entry{});
                bindLabel(offset_);
                if (analysis_.isLoopStart[offset_]) loopStarts_[offset_] = here();
                isFlowing_ = true;
                if (forTest() || forInTest()) continue;
            }
            if (!forLoop() && !forInLoop()) translateOne();
        }
        return isGood_;
    }

    void translateOne() {
        const OpCode op = opAt(offset_);
        switch (op) {
            case OpCode::CONSTANT: return pushPointer(&proto_.constants[u16At(offset_)], false);
            case OpCode::NIL:
            case OpCode::TRUE:
            case OpCode::FALSE: return pushPointer(literal(op), false);
            case OpCode::POP: return pop();
            case OpCode::DEFINE_GLOBAL: return setGlobal(RegisterOp::DEFINE_GLOBAL);
            case OpCode::GET_GLOBAL: return getGlobal();
            case OpCode::SET_GLOBAL: return setGlobal(RegisterOp::SET_GLOBAL);
            case OpCode::GET_LOCAL: return pushLocal(u16At(offset_));
            case OpCode::SET_LOCAL: return setLocal();
            case OpCode::GET_UPVALUE: {
                const std::size_t to = destination(true);
                Instruction& get = emit(RegisterOp::GET_UPVALUE, offset_);
                get.a = slotOffset(to);
                get.b = static_cast<std::uint32_t>(u8At(offset_));
                return;
            }
            case OpCode::SET_UPVALUE: {
                if (!takesPop()) return;
                store(emit(RegisterOp::SET_UPVALUE, offset_), popOperand());
                result_->instructions.back().a = static_cast<std::uint32_t>(u8At(offset_));
                return;
            }
            case OpCode::CLOSE_UPVALUE:
                materializeAll();
                entries_.pop_back();
                emit(RegisterOp::CLOSE_UPVALUE, offset_).a = slotOffset(depth());
                return;
            case OpCode::BUILD_LIST: return build(RegisterOp::BUILD_LIST, u16At(offset_));
            case OpCode::BUILD_MAP: return build(RegisterOp::BUILD_MAP, 2 * u16At(offset_));
            case OpCode::INDEX_GET: return indexGet(false);
            case OpCode::INDEX_GET_KEEP: return indexGet(true);
            case OpCode::INDEX_SET: return indexSet();
            case OpCode::ADD: return arithmetic(RegisterOp::ADD_RR);
            case OpCode::SUB: return arithmetic(RegisterOp::SUB_RR);
            case OpCode::MUL: return arithmetic(RegisterOp::MUL_RR);
            case OpCode::DIV: return arithmetic(RegisterOp::DIV_RR);
            case OpCode::FLOOR_DIV: return arithmetic(RegisterOp::FLOOR_DIV_RR);
            case OpCode::MOD: return arithmetic(RegisterOp::MOD_RR);
            case OpCode::POW: return arithmetic(RegisterOp::POW_RR);
            case OpCode::NEGATE: return unary(RegisterOp::NEGATE);
            case OpCode::NOT:
                if (const auto branch = branchAt(offset_)) return branchOnTop(*branch);
                return unary(RegisterOp::NOT);
            case OpCode::EQUAL:
                return comparison(RegisterOp::EQUAL_RR, RegisterOp::IF_EQUAL_RR,
                                  RegisterOp::UNLESS_EQUAL_RR);
            case OpCode::NOT_EQUAL:
                return comparison(RegisterOp::NOT_EQUAL_RR, RegisterOp::UNLESS_EQUAL_RR,
                                  RegisterOp::IF_EQUAL_RR);
            case OpCode::LESS:
                return comparison(RegisterOp::LESS_RR, RegisterOp::IF_LESS_RR,
                                  RegisterOp::UNLESS_LESS_RR);
            case OpCode::LESS_EQUAL:
                return comparison(RegisterOp::LESS_EQUAL_RR, RegisterOp::IF_LESS_EQUAL_RR,
                                  RegisterOp::UNLESS_LESS_EQUAL_RR);
            case OpCode::GREATER:
                return comparison(RegisterOp::GREATER_RR, RegisterOp::IF_GREATER_RR,
                                  RegisterOp::UNLESS_GREATER_RR);
            case OpCode::GREATER_EQUAL:
                return comparison(RegisterOp::GREATER_EQUAL_RR, RegisterOp::IF_GREATER_EQUAL_RR,
                                  RegisterOp::UNLESS_GREATER_EQUAL_RR);
            case OpCode::JUMP:
                materializeAll();
                emit(RegisterOp::JUMP, offset_);
                jumpsForward(jumpTarget(offset_));
                isFlowing_ = false;
                return;
            case OpCode::JUMP_IF_FALSE:
            case OpCode::JUMP_IF_TRUE:
                if (const auto branch = branchAt(offset_)) return branchOnTop(*branch);
                materializeAll();
                emit(op == OpCode::JUMP_IF_TRUE ? RegisterOp::IF : RegisterOp::UNLESS, offset_).a =
                    slotOffset(depth() - 1);
                jumpsForward(jumpTarget(offset_));
                return;
            case OpCode::LOOP:
                materializeAll();
                emit(RegisterOp::JUMP, offset_);
                jumpsBack(loopStarts_.at(next_ - u16At(offset_)));
                isFlowing_ = false;
                return;
            case OpCode::CALL: return call(u8At(offset_));
            case OpCode::CLOSURE: {
                materializeAll();
                const std::size_t to = destination(true);
                Instruction& closure = emit(RegisterOp::CLOSURE, offset_);
                closure.a = slotOffset(to);
                closure.b = static_cast<std::uint32_t>(u16At(offset_));
                return;
            }
            case OpCode::RETURN: return returnValue();
            case OpCode::ITER_LIST: return unary(RegisterOp::ITER_LIST);
            case OpCode::LEN: return unary(RegisterOp::LEN);
            case OpCode::TRY_BEGIN:
                materializeAll();
                emit(RegisterOp::TRY_BEGIN, offset_).a = slotOffset(depth());
                jumpsForward(jumpTarget(offset_));
                return;
            case OpCode::TRY_END: emit(RegisterOp::TRY_END, offset_); return;
            case OpCode::FOR_TEST:
            case OpCode::HALT: isGood_ = false; return;  // nothing that the compiler makes
        }
    }

    // The compiler pops the value of every assignment at once; other code is left to the plain
    // machine.
    bool takesPop() {
        if (opAt(next_) != OpCode::POP || isLabel(next_)) return isGood_ = false;
        ++next_;
        return true;
    }

    // Fills in where an instruction takes a value from that it stores elsewhere.
    static void store(Instruction& instruction, const Operand& value) {
        if (value.isPointer) {
            instruction.pointer = value.pointer;
            instruction.extra = 2;
        } else {
            instruction.b = slotOffset(value.slot);
            instruction.extra = value.ends ? 1 : 0;
        }
    }

    void pop() {
        const Entry top = entries_.back();
        entries_.pop_back();
        if (top.where != Entry::Where::Slot) return;
        if (!top.mayBeReference && !isCaptured(depth())) return;
        clear(depth());
    }

    void clear(std::size_t slot) {
        if (here() > 0 && here() != lastLabel_) {
            Instruction& last = result_->instructions.back();
            if (last.op == RegisterOp::CLEAR && last.a == slotOffset(slot + 1)) {
                last.op = RegisterOp::CLEAR_RANGE;
                last.b = last.a + static_cast<std::uint32_t>(sizeof(Value));
                last.a = slotOffset(slot);
                return;
            }
            if (last.op == RegisterOp::CLEAR_RANGE && last.a == slotOffset(slot + 1)) {
                last.a = slotOffset(slot);
                return;
            }
        }
        emit(RegisterOp::CLEAR, offset_).a = slotOffset(slot);
    }

    void getGlobal() {
        GlobalCell& cell = globals_.cell(proto_.constants[u16At(offset_)].asString());
        if (cell.isDefined || definedHere_.contains(&cell)) return pushPointer(&cell.value, true);
        const std::size_t to = destination(true);
        Instruction& get = emit(RegisterOp::GET_GLOBAL, offset_);
        get.a = slotOffset(to);
        get.pointer = &cell.value;
    }

    void setGlobal(RegisterOp op) {
        GlobalCell& cell = globals_.cell(proto_.constants[u16At(offset_)].asString());
        if (op == RegisterOp::SET_GLOBAL && !takesPop()) return;
        const Operand value = popRegister();
        materializeGlobals();
        Instruction& set = emit(op, offset_);
        set.b = slotOffset(value.slot);
        set.extra = value.ends ? 1 : 0;
        set.pointer = &cell.value;
        if (op == RegisterOp::DEFINE_GLOBAL) definedHere_.insert(&cell);
    }

    void setLocal() {
        const std::size_t local = u16At(offset_);
        if (!takesPop()) return;
        const Operand value = popOperand();
        if (!value.isPointer && value.slot == local) return;
        const bool mayBeReference = value.isPointer ? value.pointer->isObject() || true : true;
        materializeCopiesOf(local);
        entries_[local].where = Entry::Where::Slot;
        entries_[local].mayBeReference = mayBeReference;
        if (value.isPointer) {
            Instruction& load = emit(RegisterOp::LOAD, offset_);
            load.a = slotOffset(local);
            load.pointer = value.pointer;
        } else {
            Instruction& move = emit(value.ends ? RegisterOp::TAKE : RegisterOp::MOVE, offset_);
            move.a = slotOffset(local);
            move.b = slotOffset(value.slot);
        }
    }

    // Makes a list or map of the top `count` values.
    void build(RegisterOp op, std::size_t count) {
        const std::size_t first = depth() - count;
        for (std::size_t position = first; position < depth(); ++position) materialize(position);
        entries_.resize(first);
        const std::size_t to = destination(true);
        Instruction& make = emit(op, offset_);
        make.a = slotOffset(to);
        make.b = slotOffset(first);
        make.c = static_cast<std::uint32_t>(count);
    }

    void arithmetic(RegisterOp first) {
        const bool mayBeReference = first == RegisterOp::ADD_RR;
        binary(first, [&] { return destination(mayBeReference); });
    }

    // A binary instruction; its destination is asked for once the operands have been popped.
    template <typename Destination>
    void binary(RegisterOp first, Destination to) {
        if (operandAt(depth() - 1).isPointer && operandAt(depth() - 2).isPointer) {
            materialize(depth() - 2);
        }
        const Operand right = popOperand();
        const Operand left = popOperand();
        const std::size_t slot = to();
        Instruction& instruction = emit(withForm(first, numericFormOf(left, right)), offset_);
        instruction.a = slotOffset(slot);
        instruction.extra =
            static_cast<std::int32_t>((left.ends ? endsLeft : 0U) | (right.ends ? endsRight : 0U));
        fillOperands(instruction, left, right);
    }

    static void fillOperands(Instruction& instruction, const Operand& left, const Operand& right) {
        if (left.isPointer) {
            instruction.pointer = left.pointer;
        } else {
            instruction.b = slotOffset(left.slot);
        }
        if (right.isPointer) {
            instruction.pointer = right.pointer;
            if (right.pointer->isInt()) {  // where it is small, forms with an immediate find it
                instruction.c = static_cast<std::uint32_t>(right.pointer->asInt());
            }
        } else {
            instruction.c = slotOffset(right.slot);
        }
    }

    // A comparison, fused with the branch that follows it where there is one.
    void comparison(RegisterOp plain, RegisterOp ifTrue, RegisterOp ifFalse) {
        const auto branch = branchAt(next_);
        if (!branch) return binary(plain, [&] { return destination(false); });
        if (operandAt(depth() - 1).isPointer && operandAt(depth() - 2).isPointer) {
            materialize(depth() - 2);
        }
        const Operand right = popOperand();
        const Operand left = popOperand();
        materializeAll();
        Instruction& instruction =
            emit(withForm(branch->onTrue ? ifTrue : ifFalse, numericFormOf(left, right)), offset_);
        instruction.a = (left.ends ? endsLeft : 0U) | (right.ends ? endsRight : 0U);
        fillOperands(instruction, left, right);
        jumpsForward(branch->target);
        next_ = branch->resume;
    }

    void unary(RegisterOp op) {
        const Operand operand = popRegister();
        const std::size_t to = destination(op == RegisterOp::ITER_LIST);
        Instruction& instruction = emit(op, offset_);
        instruction.a = slotOffset(to);
        instruction.b = slotOffset(operand.slot);
        instruction.extra = operand.ends ? 1 : 0;
    }

    std::uint32_t addPointer(const Value* pointer) {
        result_->pointers.push_back(pointer);
        return static_cast<std::uint32_t>(result_->pointers.size() - 1);
    }

    // With `keeps` the object and the index stay on the stack.
    void indexGet(bool keeps) {
        const auto isField = [](const Operand& index) {
            return index.isPointer && index.pointer->isString();
        };
        Operand index = operandAt(depth() - 1);
        const bool objectIsPointer = operandAt(depth() - 2).isPointer;
        const bool isConstantField = isField(index) && !entries_.back().isGlobal;
        if (objectIsPointer && index.isPointer && !isConstantField) {
            materialize(depth() - 1);
            index = operandAt(depth() - 1);
        }
        Operand object = operandAt(depth() - 2);
        if (keeps) {
            index.ends = object.ends = false;
        } else {
            entries_.resize(depth() - 2);
        }
        const std::size_t to = destination(true);
        const std::uint32_t ends = (object.ends ? endsLeft : 0U) | (index.ends ? endsRight : 0U);
        if (isConstantField) {
            Instruction& get =
                emit(objectIsPointer ? RegisterOp::FIELD_P : RegisterOp::FIELD_R, offset_);
            get.a = slotOffset(to);
            get.b = objectIsPointer ? addPointer(object.pointer) : slotOffset(object.slot);
            get.c = ends;
            get.key = &index.pointer->asString();
            if (!objectIsPointer) borrowElement(object, RegisterOp::INDEX_THEN_FIELD);
            return;
        }
        Instruction& get = emit(withForm(RegisterOp::INDEX_RR, formOf(object, index)), offset_);
        get.a = slotOffset(to);
        get.extra = static_cast<std::int32_t>(ends);
        fillOperands(get, object, index);
        if (get.op == RegisterOp::INDEX_RR) borrowElement(object, RegisterOp::INDEX_THEN_INDEX);
    }

    // Where the instruction before the last has only fetched the container that the last one looks
    // into, it may do the work of both.
    void borrowElement(const Operand& container, RegisterOp both) {
        const std::size_t last = here() - 1;
        if (last == 0 || lastLabel_ == last || !container.ends) return;
        Instruction& fetch = result_->instructions[last - 1];
        const bool isFetched =
            fetch.op == RegisterOp::INDEX_RR && fetch.a == slotOffset(container.slot);
        if (isFetched && !(static_cast<std::uint32_t>(fetch.extra) & endsLeft)) fetch.op = both;
    }

    void indexSet() {
        if (!takesPop()) return;
        const bool bothAreRegisters =
            !operandAt(depth() - 2).isPointer && !operandAt(depth() - 3).isPointer;
        const bool isConstant = bothAreRegisters && constantOnTop();
        const Operand value = isConstant ? popOperand() : popRegister();
        Operand index = operandAt(depth() - 1);
        const bool isConstantField =
            index.isPointer && index.pointer->isString() && !entries_.back().isGlobal;
        const bool objectIsPointer = operandAt(depth() - 2).isPointer;
        if (objectIsPointer && index.isPointer && !isConstantField) {
            materialize(depth() - 1);
            index = operandAt(depth() - 1);
        }
        const Operand object = operandAt(depth() - 2);
        entries_.resize(depth() - 2);
        const std::uint32_t ends = (object.ends ? endsLeft : 0U) | (index.ends ? endsRight : 0U) |
                                   (value.ends ? endsValue : 0U);
        if (isConstantField) {
            Instruction& set =
                emit(objectIsPointer ? RegisterOp::SET_FIELD_P : RegisterOp::SET_FIELD_R, offset_);
            set.a = slotOffset(value.slot);
            set.b = objectIsPointer ? addPointer(object.pointer) : slotOffset(object.slot);
            set.c = ends;
            set.key = &index.pointer->asString();
            return;
        }
        const RegisterOp op = isConstant
                                  ? RegisterOp::SET_INDEX_RR_P
                                  : withForm(RegisterOp::SET_INDEX_RR, formOf(object, index));
        Instruction& set = emit(op, offset_);
        set.extra = static_cast<std::int32_t>(ends);
        fillOperands(set, object, index);
        if (isConstant) {
            set.pointer = value.pointer;
        } else {
            set.a = slotOffset(value.slot);
        }
    }

    void call(std::size_t argCount) {
        const std::size_t callee = depth() - argCount - 1;
        for (std::size_t position = 0; position < depth(); ++position) {
            const Entry& entry = entries_[position];
            const bool isInCall = position > callee;
            const bool mayChange =
                entry.isGlobal || (entry.where == Entry::Where::Local && isCaptured(entry.local));
            if (isInCall || (mayChange && position != callee)) materialize(position);
        }
        const Operand function = operandAt(callee);
        if (!function.isPointer) materialize(callee);
        entries_.resize(callee);
        Instruction& instruction =
            emit(function.isPointer ? RegisterOp::CALL_P : RegisterOp::CALL, offset_);
        instruction.a = slotOffset(callee);
        instruction.b = static_cast<std::uint32_t>(argCount);
        instruction.pointer = function.pointer;
        pushSlot(true);
    }

    void returnValue() {
        const std::size_t live = depth();
        const Operand value = popOperand();
        Instruction& instruction =
            emit(value.isPointer ? RegisterOp::RETURN_P : RegisterOp::RETURN_LOCAL, offset_);
        instruction.a = slotOffset(value.slot);
        instruction.b = slotOffset(live);
        instruction.extra = (analysis_.capturesLocals ? 1 : 0) | (analysis_.hasHandlers ? 2 : 0);
        instruction.pointer = value.pointer;
        isFlowing_ = false;
    }

    // --- Loops, whose fixed patterns become one instruction at either end.

    bool forTest() {
        if (!matches(offset_, {OpCode::GET_LOCAL, OpCode::GET_LOCAL, OpCode::GET_LOCAL,
                               OpCode::FOR_TEST, OpCode::JUMP_IF_FALSE, OpCode::POP})) {
            return false;
        }
        const std::size_t test = offset_ + 9;
        const auto branch = branchAt(test + 1);
        if (!branch || branch->onTrue) return false;
        const std::size_t variable = u16At(offset_);
        Instruction& instruction = emit(RegisterOp::FOR_TEST, test);
        instruction.a = slotOffset(variable);
        instruction.b = slotOffset(u16At(offset_ + 3));
        instruction.c = slotOffset(u16At(offset_ + 6));
        jumpsForward(branch->target);
        next_ = branch->resume;
        const bool isSmall = loopStep_ && loopStep_->isInt() && loopStep_->asInt() > 0 &&
                             std::in_range<std::uint32_t>(loopStep_->asInt());
        forBodies_[offset_] = {here(),
                               isSmall ? static_cast<std::uint32_t>(loopStep_->asInt()) : 0};
        return true;
    }

    bool forLoop() {
        if (!matches(offset_, {OpCode::GET_LOCAL, OpCode::GET_LOCAL, OpCode::ADD, OpCode::SET_LOCAL,
                               OpCode::POP, OpCode::LOOP})) {
            return false;
        }
        const std::size_t loop = offset_ + 11;
        const auto body = forBodies_.find(loop + 3 - u16At(loop));
        if (body == forBodies_.end()) return false;
        materializeAll();
        const auto [start, step] = body->second;
        Instruction& instruction =
            emit(step > 0 ? RegisterOp::FOR_LOOP_UP : RegisterOp::FOR_LOOP, offset_ + 6);
        instruction.a = slotOffset(u16At(offset_));
        instruction.b = slotOffset(u16At(offset_) + 1);
        instruction.c = step;
        jumpsBack(start);
        isFlowing_ = false;
        next_ = loop + 3;
        return true;
    }

    bool forInTest() {
        if (!matches(offset_,
                     {OpCode::GET_LOCAL, OpCode::GET_LOCAL, OpCode::LEN, OpCode::LESS,
                      OpCode::JUMP_IF_FALSE, OpCode::POP, OpCode::GET_LOCAL, OpCode::GET_LOCAL,
                      OpCode::INDEX_GET, OpCode::SET_LOCAL, OpCode::POP})) {
            return false;
        }
        const auto branch = branchAt(offset_ + 8);
        if (!branch || branch->onTrue) return false;
        Instruction& instruction = emit(RegisterOp::FOR_IN_TEST, offset_);
        instruction.a = slotOffset(u16At(offset_ + 19));
        instruction.b = slotOffset(u16At(offset_));
        instruction.c = slotOffset(u16At(offset_ + 3));
        jumpsForward(branch->target);
        next_ = offset_ + 23;
        forInBodies_[offset_] = here();
        return true;
    }

    bool forInLoop() {
        if (!matches(offset_, {OpCode::GET_LOCAL, OpCode::CONSTANT, OpCode::ADD, OpCode::SET_LOCAL,
                               OpCode::POP, OpCode::LOOP})) {
            return false;
        }
        const std::size_t loop = offset_ + 11;
        const auto body = forInBodies_.find(loop + 3 - u16At(loop));
        if (body == forInBodies_.end()) return false;
        const std::size_t index = u16At(offset_);
        materializeAll();
        Instruction& instruction = emit(RegisterOp::FOR_IN_LOOP, offset_);
        instruction.a = slotOffset(index + 1);
        instruction.b = slotOffset(index);
        instruction.c = slotOffset(index - 1);
        jumpsBack(body->second);
        isFlowing_ = false;
        next_ = loop + 3;
        return true;
    }

    const FunctionProto& proto_;
    Globals& globals_;
    DepthAnalysis analysis_;
    RegisterCode* result_;
    std::vector<Entry> entries_;
    std::size_t offset_ = 0;  // of the stack instruction being translated
    std::size_t next_ = 0;    // of the one to go on with
    bool isFlowing_ = true;   // whether control can come here from the instruction before
    bool isGood_ = true;
    std::size_t lastLabel_ = 0;  // the latest instruction that something jumps forward to
    std::unordered_map<std::size_t, std::vector<std::size_t>> jumpsTo_;  // by code offset
    std::unordered_map<std::size_t, std::size_t> loopStarts_;  // code offset -> instruction
    struct ForBody {
        std::size_t start;
        std::uint32_t step;  // where that is a small constant and positive, else 0
    };
    std::unordered_map<std::size_t, ForBody> forBodies_;
    const Value* loopStep_ = nullptr;  // of the numeric loop that may start here, if constant
    std::unordered_map<std::size_t, std::size_t> forInBodies_;
    std::unordered_set<const GlobalCell*> definedHere_;
};

}  // namespace

void translate(RegisterCode& code, Globals& globals, const void* const* arms) {
    Translator(code, globals).run();
    if (!arms || !code.isUsable()) return;
    for (Instruction& instruction : code.instructions) {
        instruction.arm = arms[static_cast<std::size_t>(instruction.op)];
    }
}

}  // namespace pellum
