#include "vm/translator.h"

#include "vm/abstract_stack.h"
#include "vm/depth_analysis.h"
#include "vm/stack_code.h"

#include <algorithm>
#include <optional>
#include <unordered_map>
#include <unordered_set>

namespace pellum {

namespace {

// A conditional jump that consumes its condition on both ways.
struct Branch {
    bool onTrue;         // jumps when the condition holds
    std::size_t target;  // a code offset
    std::size_t resume;  // where to go on otherwise
};

// nil, false, true
const Value literals[] = {Value(), Value(false), Value(true)};

const Value* literal(OpCode op) noexcept {
    return op == OpCode::NIL ? &literals[0] : op == OpCode::FALSE ? &literals[1] : &literals[2];
}

class Translator {
public:
    Translator(RegisterCode& result, Globals& globals, Steps steps)
        : result_(result),
          steps_(steps),
          code_(*result.proto),
          globals_(globals),
          analysis_(analyzeDepths(*result.proto)),
          writer_(result),
          stack_(writer_, analysis_.isCaptured) {}

    void run() {
        result_.maxDepth = analysis_.maxDepth;
        if (analysis_.isRegular && translateAll()) result_.arity = result_.proto->arity;
        result_.isTranslated = true;
    }

private:
    bool isLabel(std::size_t offset) const {
        return offset >= code_.size() || analysis_.isLoopStart[offset] ||
               writer_.isJumpedTo(offset);
    }
    // Whether these instructions follow each other from `offset` on, with no label between them.
    bool matches(std::size_t offset, std::initializer_list<OpCode> ops) const {
        bool isFirst = true;
        for (const OpCode op : ops) {
            if (code_.opAt(offset) != op || (!isFirst && isLabel(offset))) return false;
            isFirst = false;
            offset = code_.after(offset);
        }
        return true;
    }

    // Where the result of the instruction at `offset_` goes: straight into the local that it is
    // assigned to, else to the top of the stack. REQUIRES: the operands have been popped.
    std::size_t destination(bool mayBeReference) {
        if (matches(next_, {OpCode::SET_LOCAL, OpCode::POP}) && !isLabel(next_)) {
            const std::size_t local = code_.u16At(next_);
            stack_.overwrite(local, mayBeReference);
            next_ += 4;
            return local;
        }
        stack_.pushSlot(mayBeReference);
        return stack_.depth() - 1;
    }

    // --- Jumps.

    // The branch that the instructions from `offset` on make of the value just computed.
    std::optional<Branch> branchAt(std::size_t offset) const {
        bool isInverted = false;
        for (; code_.opAt(offset) == OpCode::NOT && !isLabel(offset); ++offset) {
            isInverted = !isInverted;
        }
        const OpCode op = code_.opAt(offset);
        if (isLabel(offset) || (op != OpCode::JUMP_IF_FALSE && op != OpCode::JUMP_IF_TRUE)) {
            return std::nullopt;
        }
        const std::size_t otherwise = offset + 3;
        if (code_.opAt(otherwise) != OpCode::POP || isLabel(otherwise)) return std::nullopt;
        const bool onTrue = op == OpCode::JUMP_IF_TRUE;
        const auto target = code_.threaded(code_.jumpTarget(offset), onTrue);
        if (!target) return std::nullopt;
        return Branch{onTrue != isInverted, *target, otherwise + 1};
    }

    void jump(std::size_t target) {
        stack_.materializeAll();
        writer_.emit(RegisterOp::JUMP);
        writer_.jumpForward(target);
        isFlowing_ = false;
    }

    // Jumps on the value on top of the abstract stack, which ends with it.
    void branchOnTop(const Branch& branch) {
        if (const Value* constant = stack_.constantOnTop()) {
            stack_.pop();
            if (isTruthy(*constant) == branch.onTrue) jump(branch.target);
        } else {
            const Source condition = stack_.popRegister();
            stack_.materializeAll();
            const RegisterOp op =
                condition.ends  ? branch.onTrue ? RegisterOp::IF_TEMP : RegisterOp::UNLESS_TEMP
                : branch.onTrue ? RegisterOp::IF
                                : RegisterOp::UNLESS;
            writer_.emit(op).a = slotOffset(condition.slot);
            writer_.jumpForward(branch.target);
        }
        next_ = branch.resume;
    }

    // --- Instructions.

    bool translateAll() {
        stack_.reset(result_.proto->arity);
        countStep();
        for (offset_ = 0; offset_ < code_.size() && isGood_; offset_ = next_) {
            next_ = code_.after(offset_);
            writer_.standFor(offset_);
            if (analysis_.depths[offset_] < 0) {
                isFlowing_ = false;
                continue;
            }
            if (isLabel(offset_) || !isFlowing_) {
                if (!isLabel(offset_)) continue;
                loopStep_ = isFlowing_ ? stack_.constantOnTop() : nullptr;
                if (isFlowing_) stack_.materializeAll();
                stack_.reset(static_cast<std::size_t>(analysis_.depths[offset_]));
                writer_.bindLabel(offset_);
                if (analysis_.isLoopStart[offset_]) loopStarts_[offset_] = writer_.here();
                isFlowing_ = true;
                if (forTest() || forInTest()) continue;
            }
            if (!forLoop() && !forInLoop()) translateOne();
        }
        return isGood_;
    }

    void countStep() {
        if (steps_ == Steps::Counted) writer_.emit(RegisterOp::STEP);
    }

    void translateOne() {
        const OpCode op = code_.opAt(offset_);
        switch (op) {
            case OpCode::CONSTANT: return stack_.pushPointer(&code_.constantAt(offset_), false);
            case OpCode::NIL:
            case OpCode::TRUE:
            case OpCode::FALSE: return stack_.pushPointer(literal(op), false);
            case OpCode::POP: return stack_.drop();
            case OpCode::DEFINE_GLOBAL: return setGlobal(RegisterOp::DEFINE_GLOBAL);
            case OpCode::GET_GLOBAL: return getGlobal();
            case OpCode::SET_GLOBAL: return setGlobal(RegisterOp::SET_GLOBAL);
            case OpCode::GET_LOCAL: return stack_.pushLocal(code_.u16At(offset_));
            case OpCode::SET_LOCAL: return setLocal();
            case OpCode::GET_UPVALUE: {
                const std::size_t to = destination(true);
                Instruction& get = writer_.emit(RegisterOp::GET_UPVALUE);
                get.a = slotOffset(to);
                get.b = static_cast<std::uint32_t>(code_.u8At(offset_));
                return;
            }
            case OpCode::SET_UPVALUE: {
                if (!takesPop()) return;
                store(writer_.emit(RegisterOp::SET_UPVALUE), stack_.pop());
                result_.instructions.back().a = static_cast<std::uint32_t>(code_.u8At(offset_));
                return;
            }
            case OpCode::CLOSE_UPVALUE:
                stack_.materializeAll();
                stack_.pop();
                writer_.emit(RegisterOp::CLOSE_UPVALUE).a = slotOffset(stack_.depth());
                return;
            case OpCode::BUILD_LIST: return build(RegisterOp::BUILD_LIST, code_.u16At(offset_));
            case OpCode::BUILD_MAP: return build(RegisterOp::BUILD_MAP, 2 * code_.u16At(offset_));
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
            case OpCode::JUMP: return jump(code_.jumpTarget(offset_));
            case OpCode::JUMP_IF_FALSE:
            case OpCode::JUMP_IF_TRUE:
                if (const auto branch = branchAt(offset_)) return branchOnTop(*branch);
                stack_.materializeAll();
                writer_.emit(op == OpCode::JUMP_IF_TRUE ? RegisterOp::IF : RegisterOp::UNLESS).a =
                    slotOffset(stack_.depth() - 1);
                writer_.jumpForward(code_.jumpTarget(offset_));
                return;
            case OpCode::LOOP:
                stack_.materializeAll();
                countStep();
                writer_.emit(RegisterOp::JUMP);
                writer_.jumpBack(loopStarts_.at(next_ - code_.u16At(offset_)));
                isFlowing_ = false;
                return;
            case OpCode::CALL: return call(code_.u8At(offset_));
            case OpCode::CLOSURE: {
                stack_.materializeAll();
                const std::size_t to = destination(true);
                Instruction& closure = writer_.emit(RegisterOp::CLOSURE);
                closure.a = slotOffset(to);
                closure.b = static_cast<std::uint32_t>(code_.u16At(offset_));
                return;
            }
            case OpCode::RETURN: return returnValue();
            case OpCode::ITER_LIST: return unary(RegisterOp::ITER_LIST);
            case OpCode::LEN: return unary(RegisterOp::LEN);
            case OpCode::TRY_BEGIN:
                stack_.materializeAll();
                writer_.emit(RegisterOp::TRY_BEGIN).a = slotOffset(stack_.depth());
                writer_.jumpForward(code_.jumpTarget(offset_));
                return;
            case OpCode::TRY_END: writer_.emit(RegisterOp::TRY_END); return;
            case OpCode::FOR_TEST:
            case OpCode::HALT: isGood_ = false; return;  // nothing that the compiler makes
        }
    }

    // The compiler pops the value of every assignment at once; other code is left to the plain
    // machine.
    bool takesPop() {
        if (code_.opAt(next_) != OpCode::POP || isLabel(next_)) return isGood_ = false;
        ++next_;
        return true;
    }

    // Fills in where an instruction takes a value from that it stores elsewhere.
    static void store(Instruction& instruction, const Source& value) {
        if (value.isPointer) {
            instruction.pointer = value.pointer;
            instruction.extra = 2;
        } else {
            instruction.b = slotOffset(value.slot);
            instruction.extra = value.ends ? 1 : 0;
        }
    }

    void getGlobal() {
        GlobalCell& cell = globals_.cell(code_.constantAt(offset_).asString());
        if (cell.isDefined || definedHere_.contains(&cell)) {
            return stack_.pushPointer(&cell.value, true);
        }
        const std::size_t to = destination(true);
        Instruction& get = writer_.emit(RegisterOp::GET_GLOBAL);
        get.a = slotOffset(to);
        get.pointer = &cell.value;
    }

    void setGlobal(RegisterOp op) {
        GlobalCell& cell = globals_.cell(code_.constantAt(offset_).asString());
        if (op == RegisterOp::SET_GLOBAL && !takesPop()) return;
        const Source value = stack_.popRegister();
        stack_.materializeGlobals();
        Instruction& set = writer_.emit(op);
        set.b = slotOffset(value.slot);
        set.extra = value.ends ? 1 : 0;
        set.pointer = &cell.value;
        if (op == RegisterOp::DEFINE_GLOBAL) definedHere_.insert(&cell);
    }

    void setLocal() {
        const std::size_t local = code_.u16At(offset_);
        if (!takesPop()) return;
        const Source value = stack_.pop();
        if (!value.isPointer && value.slot == local) return;
        stack_.overwrite(local, true);
        if (value.isPointer) {
            Instruction& load = writer_.emit(RegisterOp::LOAD);
            load.a = slotOffset(local);
            load.pointer = value.pointer;
        } else {
            Instruction& move = writer_.emit(value.ends ? RegisterOp::TAKE : RegisterOp::MOVE);
            move.a = slotOffset(local);
            move.b = slotOffset(value.slot);
        }
    }

    // Makes a list or map of the top `count` values.
    void build(RegisterOp op, std::size_t count) {
        const std::size_t first = stack_.depth() - count;
        stack_.materializeFrom(first);
        stack_.shrink(first);
        const std::size_t to = destination(true);
        Instruction& make = writer_.emit(op);
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
        if (stack_.fromTop().isPointer && stack_.fromTop(1).isPointer) {
            stack_.materialize(stack_.depth() - 2);
        }
        const Source right = stack_.pop();
        const Source left = stack_.pop();
        const std::size_t slot = to();
        Instruction& instruction = writer_.emit(withForm(first, numericFormOf(left, right)));
        instruction.a = slotOffset(slot);
        instruction.extra =
            static_cast<std::int32_t>((left.ends ? endsLeft : 0U) | (right.ends ? endsRight : 0U));
        fillOperands(instruction, left, right);
    }

    static void fillOperands(Instruction& instruction, const Source& left, const Source& right) {
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
        if (stack_.fromTop().isPointer && stack_.fromTop(1).isPointer) {
            stack_.materialize(stack_.depth() - 2);
        }
        const Source right = stack_.pop();
        const Source left = stack_.pop();
        stack_.materializeAll();
        Instruction& instruction =
            writer_.emit(withForm(branch->onTrue ? ifTrue : ifFalse, numericFormOf(left, right)));
        instruction.a = (left.ends ? endsLeft : 0U) | (right.ends ? endsRight : 0U);
        fillOperands(instruction, left, right);
        writer_.jumpForward(branch->target);
        next_ = branch->resume;
    }

    void unary(RegisterOp op) {
        const Source operand = stack_.popRegister();
        const std::size_t to = destination(op == RegisterOp::ITER_LIST);
        Instruction& instruction = writer_.emit(op);
        instruction.a = slotOffset(to);
        instruction.b = slotOffset(operand.slot);
        instruction.extra = operand.ends ? 1 : 0;
    }

    // With `keeps` the object and the index stay on the stack.
    void indexGet(bool keeps) {
        const auto isField = [](const Source& index) {
            return index.isPointer && index.pointer->isString();
        };
        Source index = stack_.fromTop();
        const bool objectIsPointer = stack_.fromTop(1).isPointer;
        const bool isConstantField = isField(index) && !stack_.fromTop().isGlobal;
        if (objectIsPointer && index.isPointer && !isConstantField) {
            stack_.materialize(stack_.depth() - 1);
            index = stack_.fromTop();
        }
        Source object = stack_.fromTop(1);
        if (keeps) {
            index.ends = object.ends = false;
        } else {
            stack_.shrink(stack_.depth() - 2);
        }
        const std::size_t to = destination(true);
        const std::uint32_t ends = (object.ends ? endsLeft : 0U) | (index.ends ? endsRight : 0U);
        if (isConstantField) {
            Instruction& get =
                writer_.emit(objectIsPointer ? RegisterOp::FIELD_P : RegisterOp::FIELD_R);
            get.a = slotOffset(to);
            get.b = objectIsPointer ? writer_.addPointer(object.pointer) : slotOffset(object.slot);
            get.c = ends;
            get.key = &index.pointer->asString();
            if (!objectIsPointer) borrowElement(object, RegisterOp::INDEX_THEN_FIELD);
            return;
        }
        Instruction& get = writer_.emit(withForm(RegisterOp::INDEX_RR, formOf(object, index)));
        get.a = slotOffset(to);
        get.extra = static_cast<std::int32_t>(ends);
        fillOperands(get, object, index);
        if (get.op == RegisterOp::INDEX_RR) borrowElement(object, RegisterOp::INDEX_THEN_INDEX);
    }

    // Where the instruction before the last has only fetched the container that the last one looks
    // into, it may do the work of both.
    void borrowElement(const Source& container, RegisterOp both) {
        Instruction* const fetch = writer_.latest(1);
        if (!fetch || fetch->op != RegisterOp::INDEX_RR || !container.ends) return;
        const bool isFetched = fetch->a == slotOffset(container.slot);
        if (isFetched && !(static_cast<std::uint32_t>(fetch->extra) & endsLeft)) fetch->op = both;
    }

    void indexSet() {
        if (!takesPop()) return;
        const bool bothAreRegisters = !stack_.fromTop(1).isPointer && !stack_.fromTop(2).isPointer;
        const bool isConstant = bothAreRegisters && stack_.constantOnTop();
        const Source value = isConstant ? stack_.pop() : stack_.popRegister();
        Source index = stack_.fromTop();
        const bool isConstantField =
            index.isPointer && index.pointer->isString() && !stack_.fromTop().isGlobal;
        const bool objectIsPointer = stack_.fromTop(1).isPointer;
        if (objectIsPointer && index.isPointer && !isConstantField) {
            stack_.materialize(stack_.depth() - 1);
            index = stack_.fromTop();
        }
        const Source object = stack_.fromTop(1);
        stack_.shrink(stack_.depth() - 2);
        const std::uint32_t ends = (object.ends ? endsLeft : 0U) | (index.ends ? endsRight : 0U) |
                                   (value.ends ? endsValue : 0U);
        if (isConstantField) {
            Instruction& set =
                writer_.emit(objectIsPointer ? RegisterOp::SET_FIELD_P : RegisterOp::SET_FIELD_R);
            set.a = slotOffset(value.slot);
            set.b = objectIsPointer ? writer_.addPointer(object.pointer) : slotOffset(object.slot);
            set.c = ends;
            set.key = &index.pointer->asString();
            return;
        }
        const RegisterOp op = isConstant
                                  ? RegisterOp::SET_INDEX_RR_P
                                  : withForm(RegisterOp::SET_INDEX_RR, formOf(object, index));
        Instruction& set = writer_.emit(op);
        set.extra = static_cast<std::int32_t>(ends);
        fillOperands(set, object, index);
        if (isConstant) {
            set.pointer = value.pointer;
        } else {
            set.a = slotOffset(value.slot);
        }
    }

    void call(std::size_t argCount) {
        const std::size_t callee = stack_.depth() - argCount - 1;
        stack_.materializeForCall(callee);
        const Source function = stack_.operandAt(callee);
        if (!function.isPointer) stack_.materialize(callee);
        stack_.shrink(callee);
        Instruction& instruction =
            writer_.emit(function.isPointer ? RegisterOp::CALL_P : RegisterOp::CALL);
        instruction.a = slotOffset(callee);
        instruction.b = static_cast<std::uint32_t>(argCount);
        instruction.pointer = function.pointer;
        stack_.pushSlot(true);
    }

    void returnValue() {
        const std::size_t live = stack_.depth();
        const Source value = stack_.pop();
        Instruction& instruction =
            writer_.emit(value.isPointer ? RegisterOp::RETURN_P : RegisterOp::RETURN_LOCAL);
        instruction.a = slotOffset(value.slot);
        instruction.b = slotOffset(live);
        instruction.extra = (analysis_.capturesLocals ? 1 : 0) | (analysis_.hasHandlers ? 2 : 0);
        instruction.pointer = value.pointer;
        isFlowing_ = false;
    }

    // --- Loops, whose fixed patterns become one instruction at either end.

    // An instruction whose errors are those of another place than the first of the pattern.
    Instruction& emitFor(std::size_t codeOffset, RegisterOp op) {
        writer_.standFor(codeOffset);
        Instruction& instruction = writer_.emit(op);
        writer_.standFor(offset_);
        return instruction;
    }

    bool forTest() {
        if (!matches(offset_, {OpCode::GET_LOCAL, OpCode::GET_LOCAL, OpCode::GET_LOCAL,
                               OpCode::FOR_TEST, OpCode::JUMP_IF_FALSE, OpCode::POP})) {
            return false;
        }
        const std::size_t test = offset_ + 9;
        const auto branch = branchAt(test + 1);
        if (!branch || branch->onTrue) return false;
        const std::size_t variable = code_.u16At(offset_);
        Instruction& instruction = emitFor(test, RegisterOp::FOR_TEST);
        instruction.a = slotOffset(variable);
        instruction.b = slotOffset(code_.u16At(offset_ + 3));
        instruction.c = slotOffset(code_.u16At(offset_ + 6));
        writer_.jumpForward(branch->target);
        next_ = branch->resume;
        const bool isSmall = loopStep_ && loopStep_->isInt() && loopStep_->asInt() > 0 &&
                             std::in_range<std::uint32_t>(loopStep_->asInt());
        forBodies_[offset_] = {writer_.here(),
                               isSmall ? static_cast<std::uint32_t>(loopStep_->asInt()) : 0};
        return true;
    }

    bool forLoop() {
        if (!matches(offset_, {OpCode::GET_LOCAL, OpCode::GET_LOCAL, OpCode::ADD, OpCode::SET_LOCAL,
                               OpCode::POP, OpCode::LOOP})) {
            return false;
        }
        const std::size_t loop = offset_ + 11;
        const auto body = forBodies_.find(loop + 3 - code_.u16At(loop));
        if (body == forBodies_.end()) return false;
        stack_.materializeAll();
        countStep();
        const auto [start, step] = body->second;
        Instruction& instruction =
            emitFor(offset_ + 6, step > 0 ? RegisterOp::FOR_LOOP_UP : RegisterOp::FOR_LOOP);
        instruction.a = slotOffset(code_.u16At(offset_));
        instruction.b = slotOffset(code_.u16At(offset_) + 1);
        instruction.c = step;
        writer_.jumpBack(start);
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
        Instruction& instruction = writer_.emit(RegisterOp::FOR_IN_TEST);
        instruction.a = slotOffset(code_.u16At(offset_ + 19));
        instruction.b = slotOffset(code_.u16At(offset_));
        instruction.c = slotOffset(code_.u16At(offset_ + 3));
        writer_.jumpForward(branch->target);
        next_ = offset_ + 23;
        forInBodies_[offset_] = writer_.here();
        return true;
    }

    bool forInLoop() {
        if (!matches(offset_, {OpCode::GET_LOCAL, OpCode::CONSTANT, OpCode::ADD, OpCode::SET_LOCAL,
                               OpCode::POP, OpCode::LOOP})) {
            return false;
        }
        const std::size_t loop = offset_ + 11;
        const auto body = forInBodies_.find(loop + 3 - code_.u16At(loop));
        if (body == forInBodies_.end()) return false;
        const std::size_t index = code_.u16At(offset_);
        stack_.materializeAll();
        countStep();
        Instruction& instruction = writer_.emit(RegisterOp::FOR_IN_LOOP);
        instruction.a = slotOffset(index + 1);
        instruction.b = slotOffset(index);
        instruction.c = slotOffset(index - 1);
        writer_.jumpBack(body->second);
        isFlowing_ = false;
        next_ = loop + 3;
        return true;
    }

    RegisterCode& result_;
    Steps steps_;
    StackCode code_;
    Globals& globals_;
    DepthAnalysis analysis_;
    RegisterWriter writer_;
    AbstractStack stack_;
    std::size_t offset_ = 0;  // of the stack instruction being translated
    std::size_t next_ = 0;    // of the one to go on with
    bool isFlowing_ = true;   // whether control can come here from the instruction before
    bool isGood_ = true;
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

bool isLiteral(const Value* pointer) noexcept {
    return std::ranges::any_of(literals, [&](const Value& each) { return pointer == &each; });
}

void translate(RegisterCode& code, Globals& globals, const void* const* arms, Steps steps) {
    Translator(code, globals, steps).run();
    if (!arms || !code.isUsable()) return;
    for (Instruction& instruction : code.instructions) {
        instruction.arm = arms[static_cast<std::size_t>(instruction.op)];
    }
}

}  // namespace pellum
