// The engine room: one arm for each register instruction, in the order of their list. An arm that
// cannot finish in a line or two calls a member function; whatever may fail saves `pc` first, so
// that the error finds its line. Arms leave by NEXT or by a jump, never by falling out, and hold no
// object with a destructor across either.

#include "vm/vm.h"

#include "value/map.h"
#include "value/number.h"

#include <iterator>

#if defined(__GNUC__) && !defined(PELLUM_SWITCH_DISPATCH)
#define PELLUM_LABELS_AS_VALUES 1
#pragma GCC diagnostic ignored "-Wpedantic"
#endif

namespace pellum {

namespace {

// Within these bounds an integer is its own double conversion, and no other integer shares it.
bool isExactDouble(std::int64_t n) noexcept {
    constexpr std::uint64_t limit = (std::uint64_t{1} << 53) - 1;
    return static_cast<std::uint64_t>(n) + limit <= 2 * limit;
}

// Integers compare as doubles. The plain comparison decides unless a number is too large for that.
bool isLess(std::int64_t a, std::int64_t b) noexcept {
    return a < b && (isExactDouble(b) || static_cast<double>(a) < static_cast<double>(b));
}
bool isLessEqual(std::int64_t a, std::int64_t b) noexcept {
    return a <= b || (!isExactDouble(a) && static_cast<double>(a) <= static_cast<double>(b));
}
bool isEqual(std::int64_t a, std::int64_t b) noexcept {
    return a == b || (!isExactDouble(a) && static_cast<double>(a) == static_cast<double>(b));
}
bool isLess(double a, double b) noexcept { return a < b; }
bool isLessEqual(double a, double b) noexcept { return a <= b; }
bool isEqual(double a, double b) noexcept { return a == b; }

template <typename Number>
bool goesOn(Number counter, Number limit, Number step) noexcept {
    return step < 0 ? isLessEqual(limit, counter) : isLessEqual(counter, limit);
}

}  // namespace

#define R(offset) (*reinterpret_cast<Value*>(reinterpret_cast<char*>(base) + (offset)))
#define P (*const_cast<Value*>(pc->pointer))
#define ENDS static_cast<std::uint32_t>(pc->extra)
#define SAVE() (frame->pc = pc)

#if defined(PELLUM_LABELS_AS_VALUES)
#define ARM(name) arm_##name:
#define DISPATCH() goto * pc->arm
#else
#define ARM(name) case RegisterOp::name:
#define DISPATCH() continue
#endif
#define NEXT() \
    ++pc;      \
    DISPATCH()
#define JUMP_TO(distance) \
    pc += (distance);     \
    DISPATCH()

// The three forms of a binary instruction, with `left` and `right` bound to its operands.
#define FORMS(name, ...)         \
    ARM(name##_RR) {             \
        Value& left = R(pc->b);  \
        Value& right = R(pc->c); \
        __VA_ARGS__              \
    }                            \
    ARM(name##_RP) {             \
        Value& left = R(pc->b);  \
        Value& right = P;        \
        __VA_ARGS__              \
    }                            \
    ARM(name##_PR) {             \
        Value& left = P;         \
        Value& right = R(pc->c); \
        __VA_ARGS__              \
    }

#define ARITHMETIC(name, op, integers, floats)                     \
    FORMS(                                                         \
        name,                                                      \
        if (left.isInt() && right.isInt()) {                       \
            [[maybe_unused]] const std::int64_t a = left.asInt();  \
            [[maybe_unused]] const std::int64_t b = right.asInt(); \
            integers                                               \
        } else if (left.isFloat() && right.isFloat()) {            \
            [[maybe_unused]] const double a = left.asFloat();      \
            [[maybe_unused]] const double b = right.asFloat();     \
            floats                                                 \
        } SAVE();                                                  \
        vm->binarySlowly(ArithmeticOp::op, R(pc->a), left, right, ENDS); NEXT();)

#define YIELD(expression)         \
    R(pc->a) = Value(expression); \
    NEXT();

#define COMPARISON(name, test, swapped, slow)                                                    \
    FORMS(                                                                                       \
        name, bool holds; if (left.isInt() && right.isInt()) {                                   \
            holds =                                                                              \
                swapped ? test(right.asInt(), left.asInt()) : test(left.asInt(), right.asInt()); \
        } else if (left.isFloat() && right.isFloat()) {                                          \
            holds = swapped ? test(right.asFloat(), left.asFloat())                              \
                            : test(left.asFloat(), right.asFloat());                             \
        } else {                                                                                 \
            SAVE();                                                                              \
            holds = slow(ENDS);                                                                  \
        } YIELD(holds))

#define BRANCHES(name, test, swapped, slow)       \
    BRANCH(IF_##name, test, swapped, slow, holds) \
    BRANCH(UNLESS_##name, test, swapped, slow, !holds)

#define BRANCH(name, test, swapped, slow, jumps)                                                 \
    FORMS(                                                                                       \
        name, bool holds; if (left.isInt() && right.isInt()) {                                   \
            holds =                                                                              \
                swapped ? test(right.asInt(), left.asInt()) : test(left.asInt(), right.asInt()); \
        } else if (left.isFloat() && right.isFloat()) {                                          \
            holds = swapped ? test(right.asFloat(), left.asFloat())                              \
                            : test(left.asFloat(), right.asFloat());                             \
        } else {                                                                                 \
            SAVE();                                                                              \
            holds = slow(pc->a);                                                                 \
        } if (jumps) { JUMP_TO(pc->extra); } NEXT();)

#define SLOW_EQUAL(ends) vm->equalSlowly(left, right, ends)
#define SLOW_NOT_EQUAL(ends) !vm->equalSlowly(left, right, ends)
#define SLOW_LESS(ends) vm->compareSlowly(Comparison::Less, left, right, ends)
#define SLOW_LESS_EQUAL(ends) vm->compareSlowly(Comparison::LessEqual, left, right, ends)
#define SLOW_GREATER(ends) vm->compareSlowly(Comparison::Greater, left, right, ends)
#define SLOW_GREATER_EQUAL(ends) vm->compareSlowly(Comparison::GreaterEqual, left, right, ends)

#define LIST_ELEMENT(object, index, body)                                \
    if (object.isList() && index.isInt()) {                              \
        std::vector<Value>& items = object.asList().items;               \
        const auto position = static_cast<std::uint64_t>(index.asInt()); \
        if (position < items.size()) {                                   \
            body                                                         \
        }                                                                \
    }

const void* const* VM::runRegisterCode(VM* vm) {
#if defined(PELLUM_LABELS_AS_VALUES)
#define PELLUM_ARM_ADDRESS(name) &&arm_##name,
    static const void* const arms[] = {PELLUM_REGISTER_OPS(PELLUM_ARM_ADDRESS)};
#undef PELLUM_ARM_ADDRESS
    if (!vm) return arms;
#else
    if (!vm) return nullptr;
#endif

    Frame* frame = vm->frame_;
    const Instruction* pc = frame->pc;
    Value* base = frame->base;

#if defined(PELLUM_LABELS_AS_VALUES)
    DISPATCH();
#else
    for (;;) switch (pc->op) {
#endif

    ARM(MOVE) {
        R(pc->a) = R(pc->b);
        NEXT();
    }
    ARM(TAKE) {
        R(pc->a) = std::move(R(pc->b));
        NEXT();
    }
    ARM(LOAD) {
        R(pc->a) = *pc->pointer;
        NEXT();
    }
    ARM(CLEAR) {
        R(pc->a) = Value();
        NEXT();
    }
    ARM(CLEAR_RANGE) {
        for (Value *slot = &R(pc->a), *end = &R(pc->b); slot != end; ++slot) *slot = Value();
        NEXT();
    }
    ARM(GET_GLOBAL) {
        const auto* cell = reinterpret_cast<const GlobalCell*>(pc->pointer);
        if (!cell->isDefined) {
            SAVE();
            vm->failUndefined(*cell);
        }
        R(pc->a) = cell->value;
        NEXT();
    }
    ARM(SET_GLOBAL) {
        auto* cell = reinterpret_cast<GlobalCell*>(const_cast<Value*>(pc->pointer));
        if (!cell->isDefined) {
            SAVE();
            vm->failAssignUndefined(*cell);
        }
        if (pc->extra) {
            cell->value = std::move(R(pc->b));
        } else {
            cell->value = R(pc->b);
        }
        NEXT();
    }
    ARM(DEFINE_GLOBAL) {
        auto* cell = reinterpret_cast<GlobalCell*>(const_cast<Value*>(pc->pointer));
        cell->isDefined = true;
        if (pc->extra) {
            cell->value = std::move(R(pc->b));
        } else {
            cell->value = R(pc->b);
        }
        NEXT();
    }
    ARM(GET_UPVALUE) {
        R(pc->a) = *frame->closure->upvalues[pc->b]->location;
        NEXT();
    }
    ARM(SET_UPVALUE) {
        Value& to = *frame->closure->upvalues[pc->a]->location;
        if (pc->extra == 1) {
            to = std::move(R(pc->b));
        } else if (pc->extra == 0) {
            to = R(pc->b);
        } else {
            to = *pc->pointer;
        }
        NEXT();
    }
    ARM(CLOSE_UPVALUE) {
        vm->closeUpvalues(&R(pc->a));
        R(pc->a) = Value();
        NEXT();
    }

    ARITHMETIC(ADD, Add, YIELD(wrapAdd(a, b)), YIELD(a + b))
    ARITHMETIC(SUB, Subtract, YIELD(wrapSubtract(a, b)), YIELD(a - b))
    ARITHMETIC(MUL, Multiply, YIELD(wrapMultiply(a, b)), YIELD(a * b))
    ARITHMETIC(DIV, Divide, if (b != 0){YIELD(static_cast<double>(a) / static_cast<double>(b))},
               if (b != 0){YIELD(a / b)})
    ARITHMETIC(FLOOR_DIV, FloorDivide, if (b != 0){YIELD(floorDivide(a, b))},
               if (b != 0){YIELD(floorDivide(a, b))})
    ARITHMETIC(MOD, Modulo, if (b != 0){YIELD(truncatedRemainder(a, b))},
               if (b != 0){YIELD(truncatedRemainder(a, b))})
    ARITHMETIC(POW, Power, , )
    ARM(NEGATE) {
        SAVE();
        vm->negateSlowly(R(pc->a), R(pc->b), ENDS);
        NEXT();
    }
    ARM(NOT) {
        const bool truth = isTruthy(R(pc->b));
        if (pc->extra) R(pc->b) = Value();
        YIELD(!truth)
    }

    COMPARISON(EQUAL, isEqual, false, SLOW_EQUAL)
    FORMS(NOT_EQUAL, SAVE(); const bool holds = SLOW_NOT_EQUAL(ENDS); YIELD(holds))
    COMPARISON(LESS, isLess, false, SLOW_LESS)
    COMPARISON(LESS_EQUAL, isLessEqual, false, SLOW_LESS_EQUAL)
    COMPARISON(GREATER, isLess, true, SLOW_GREATER)
    COMPARISON(GREATER_EQUAL, isLessEqual, true, SLOW_GREATER_EQUAL)

    BRANCHES(EQUAL, isEqual, false, SLOW_EQUAL)
    BRANCHES(LESS, isLess, false, SLOW_LESS)
    BRANCHES(LESS_EQUAL, isLessEqual, false, SLOW_LESS_EQUAL)
    BRANCHES(GREATER, isLess, true, SLOW_GREATER)
    BRANCHES(GREATER_EQUAL, isLessEqual, true, SLOW_GREATER_EQUAL)

    ARM(IF) {
        if (isTruthy(R(pc->a))) {
            JUMP_TO(pc->extra);
        }
        NEXT();
    }
    ARM(UNLESS) {
        if (!isTruthy(R(pc->a))) {
            JUMP_TO(pc->extra);
        }
        NEXT();
    }
    ARM(IF_TEMP) {
        const bool truth = isTruthy(R(pc->a));
        R(pc->a) = Value();
        if (truth) {
            JUMP_TO(pc->extra);
        }
        NEXT();
    }
    ARM(UNLESS_TEMP) {
        const bool truth = isTruthy(R(pc->a));
        R(pc->a) = Value();
        if (!truth) {
            JUMP_TO(pc->extra);
        }
        NEXT();
    }
    ARM(JUMP) { JUMP_TO(pc->extra); }

    ARM(FOR_TEST) {
        const Value& counter = R(pc->a);
        const Value& limit = R(pc->b);
        const Value& step = R(pc->c);
        bool on;
        if (counter.isInt() && limit.isInt() && step.isInt()) {
            on = goesOn(counter.asInt(), limit.asInt(), step.asInt());
        } else {
            SAVE();
            on = vm->forTestSlowly(counter, limit, step);
        }
        if (!on) {
            JUMP_TO(pc->extra);
        }
        NEXT();
    }
    ARM(FOR_LOOP) {
        Value& counter = R(pc->a);
        const Value& limit = R(pc->b);
        const Value& step = R(pc->c);
        bool on;
        if (counter.isInt() && limit.isInt() && step.isInt()) {
            const std::int64_t next = wrapAdd(counter.asInt(), step.asInt());
            counter = Value(next);
            on = goesOn(next, limit.asInt(), step.asInt());
        } else if (counter.isFloat() && limit.isFloat() && step.isFloat()) {
            const double next = counter.asFloat() + step.asFloat();
            counter = Value(next);
            on = goesOn(next, limit.asFloat(), step.asFloat());
        } else if (counter.isInt() && limit.isFloat() && step.isInt()) {
            const std::int64_t next = wrapAdd(counter.asInt(), step.asInt());
            counter = Value(next);
            on = goesOn(static_cast<double>(next), limit.asFloat(),
                        static_cast<double>(step.asInt()));
        } else {
            SAVE();
            vm->advanceSlowly(counter, step);
            on = vm->forTestSlowly(counter, limit, step);
        }
        if (on) {
            JUMP_TO(pc->extra);
        }
        NEXT();
    }
    ARM(FOR_IN_TEST) {
        const std::vector<Value>& items = R(pc->c).asList().items;
        const auto position = static_cast<std::uint64_t>(R(pc->b).asInt());
        if (position >= items.size()) {
            JUMP_TO(pc->extra);
        }
        R(pc->a) = items[position];
        NEXT();
    }
    ARM(FOR_IN_LOOP) {
        const std::vector<Value>& items = R(pc->c).asList().items;
        const auto position = static_cast<std::uint64_t>(R(pc->b).asInt()) + 1;
        R(pc->b) = Value(position);
        if (position < items.size()) {
            R(pc->a) = items[position];
            JUMP_TO(pc->extra);
        }
        NEXT();
    }

    FORMS(INDEX, if (ENDS == 0) LIST_ELEMENT(left, right, YIELD(items[position])) SAVE();
          vm->indexSlowly(R(pc->a), left, right, ENDS); NEXT();)
    ARM(FIELD_R) {
        SAVE();
        vm->field(const_cast<Instruction&>(*pc), R(pc->a), R(pc->b));
        NEXT();
    }
    ARM(FIELD_P) {
        SAVE();
        Value& object = const_cast<Value&>(*frame->closure->code->pointers[pc->b]);
        vm->field(const_cast<Instruction&>(*pc), R(pc->a), object);
        NEXT();
    }
    FORMS(SET_INDEX, if ((ENDS & ~endsValue) == 0) LIST_ELEMENT(
                         left, right, if (ENDS) { items[position] = std::move(R(pc->a)); } else {
                             items[position] = R(pc->a);
                         } NEXT();) SAVE();
          vm->setIndexSlowly(left, right, R(pc->a), ENDS); NEXT();)
    ARM(SET_FIELD_R) {
        SAVE();
        vm->setField(const_cast<Instruction&>(*pc), R(pc->b), R(pc->a));
        NEXT();
    }
    ARM(SET_FIELD_P) {
        SAVE();
        Value& object = const_cast<Value&>(*frame->closure->code->pointers[pc->b]);
        vm->setField(const_cast<Instruction&>(*pc), object, R(pc->a));
        NEXT();
    }
    ARM(BUILD_LIST) {
        SAVE();
        vm->buildList(R(pc->a), &R(pc->b), pc->c);
        NEXT();
    }
    ARM(BUILD_MAP) {
        SAVE();
        vm->buildMap(R(pc->a), &R(pc->b), pc->c);
        NEXT();
    }
    ARM(ITER_LIST) {
        SAVE();
        vm->iterList(R(pc->a), R(pc->b), ENDS);
        NEXT();
    }
    ARM(LEN) {
        SAVE();
        vm->lengthSlowly(R(pc->a), R(pc->b), ENDS);
        NEXT();
    }

    ARM(CALL_P) {
        R(pc->a) = *pc->pointer;
        goto call;
    }
    ARM(CALL)
call : {
    Value* const callee = &R(pc->a);
    if (callee->kind() == ValueKind::Closure) {
        auto& closure = static_cast<VMClosure&>(*static_cast<CallableObj*>(callee->object()));
        const RegisterCode& code = *closure.code;
        if (code.isUsable && pc->b == code.arity && frame != vm->lastFrame_ &&
            vm->stack_.end() - callee > static_cast<std::ptrdiff_t>(code.maxDepth)) {
            frame->pc = pc + 1;
            base = callee + 1;
            ++frame;
            frame->closure = &closure;
            frame->base = base;
            frame->isPlain = false;
            frame->isExact = false;
            vm->frame_ = frame;
            pc = code.instructions.data();
            DISPATCH();
        }
    }
    SAVE();
    if (!vm->callSlowly(callee, pc->b)) {
        NEXT();
    }
    frame->pc = pc + 1;
    frame = vm->frame_;
    if (frame->isPlain) return nullptr;
    pc = frame->pc;
    base = frame->base;
    DISPATCH();
}
    ARM(CLOSURE) {
        SAVE();
        R(pc->a) = vm->makeClosure(pc->b);
        NEXT();
    }
    ARM(RETURN_P) {
        if (pc->extra) vm->leaveScopes(base, pc->extra);
        for (Value *slot = base, *end = &R(pc->b); slot != end; ++slot) *slot = Value();
        base[-1] = *pc->pointer;
        goto leave;
    }
    ARM(RETURN_LOCAL) {
        if (pc->extra) vm->leaveScopes(base, pc->extra);
        base[-1].swap(R(pc->a));
        for (Value *slot = base, *end = &R(pc->b); slot != end; ++slot) *slot = Value();
    }
leave : {
    vm->stack_.setTop(base);
    vm->frame_ = --frame;
    pc = frame->pc;
    base = frame->base;
    DISPATCH();
}
    ARM(TRY_BEGIN) {
        vm->enterTry(&R(pc->a), pc + pc->extra);
        NEXT();
    }
    ARM(TRY_END) {
        vm->leaveTry();
        NEXT();
    }
    ARM(EXIT) { return nullptr; }

#if !defined(PELLUM_LABELS_AS_VALUES)
}
#endif
}

}  // namespace pellum
