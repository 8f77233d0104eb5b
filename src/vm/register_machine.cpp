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

// Integers compare as doubles. The plain comparison decides unless both are too large for that.
bool isLess(std::int64_t a, std::int64_t b) noexcept {
    return a < b && (isExactDouble(b) || isExactDouble(a) ||
                     static_cast<double>(a) < static_cast<double>(b));
}
bool isLessEqual(std::int64_t a, std::int64_t b) noexcept {
    return a <= b || (!isExactDouble(b) && !isExactDouble(a) &&
                      static_cast<double>(a) <= static_cast<double>(b));
}
bool isEqual(std::int64_t a, std::int64_t b) noexcept {
    return a == b || (!isExactDouble(b) && !isExactDouble(a) &&
                      static_cast<double>(a) == static_cast<double>(b));
}
bool isLess(double a, double b) noexcept { return a < b; }
bool isLessEqual(double a, double b) noexcept { return a <= b; }
bool isEqual(double a, double b) noexcept { return a == b; }

template <typename Number>
[[gnu::always_inline]] inline bool goesOn(Number counter, Number limit, Number step) noexcept {
    return step < 0 ? isLessEqual(limit, counter) : isLessEqual(counter, limit);
}

// The operands as doubles, if they are numbers.
[[gnu::always_inline]] inline bool areNumbers(const Value& left, const Value& right, double& a,
                                              double& b) noexcept {
    if (left.isFloat()) [[likely]] {
        a = left.asFloat();
    } else if (left.isInt()) {
        a = static_cast<double>(left.asInt());
    } else {
        return false;
    }
    if (right.isFloat()) [[likely]] {
        b = right.asFloat();
    } else if (right.isInt()) {
        b = static_cast<double>(right.asInt());
    } else {
        return false;
    }
    return true;
}

// The element of a list that a plain index means, or null.
[[gnu::always_inline]] inline Value* elementAt(const Value& object, const Value& index) noexcept {
    if (!object.isList() || !index.isInt()) return nullptr;
    Values& items = object.asList().items;
    const auto position = static_cast<std::uint64_t>(index.asInt());
    return position < items.size() ? &items[position] : nullptr;
}

// REQUIRES: the value is a native.
[[gnu::always_inline]] inline const NativeObj& nativeOf(const Value& value) noexcept {
    return static_cast<const NativeObj&>(*static_cast<CallableObj*>(value.object()));
}

// Moves an element out of a container that ends with it.
inline void takeElement(Value& to, Value& container, const Value& element) noexcept {
    Value taken = element;
    container = Value();
    to = std::move(taken);
}

// Stores a value, which may end with that, into an element of a container, which may end as well.
[[gnu::always_inline]] inline void storeElement(Value& element, Value& container, Value& value,
                                                std::uint32_t ends) noexcept {
    if (ends & endsValue) {
        element = std::move(value);
    } else {
        element = value;
    }
    if (ends & endsLeft) [[unlikely]]
        container = Value();
}

}  // namespace

#define R(offset) (*reinterpret_cast<Value*>(reinterpret_cast<char*>(base) + (offset)))
#define P (*const_cast<Value*>(pc->pointer))
#define ENDS static_cast<std::uint32_t>(pc->extra)
#define PLACE static_cast<std::uint32_t>(pc->extra)
#define SAVE() (frame->pc = pc)

#if defined(PELLUM_LABELS_AS_VALUES)
#define ARM(name) arm_##name:
#define DISPATCH() goto * pc->arm
#else
#define ARM(name) case RegisterOp::name:
#define DISPATCH() continue
#endif
// The empty assembly makes the compiler compute the next place once, not again for each use.
#define NEXT()          \
    ++pc;               \
    asm("" : "+r"(pc)); \
    DISPATCH()
#define JUMP_TO(distance) \
    pc += (distance);     \
    DISPATCH()

// The forms of a binary instruction, with `left` and `right` bound to its operands.
#define FORM(name, leftPlace, rightPlace, ...) \
    ARM(name) {                                \
        Value& left = leftPlace;               \
        Value& right = rightPlace;             \
        __VA_ARGS__                            \
    }
#define FORMS(name, ...)                             \
    FORM(name##_RR, R(pc->b), R(pc->c), __VA_ARGS__) \
    FORM(name##_RP, R(pc->b), P, __VA_ARGS__)        \
    FORM(name##_PR, P, R(pc->c), __VA_ARGS__)

// The forms of one on numbers: what to do with integers or doubles `a` and `b`, and with the rest.
#define NUMERIC_FORMS(name, integers, floats, rest)                                   \
    FORMS(name, BY_KIND(integers, floats) rest)                                       \
    ARM(name##_RI) {                                                                  \
        Value& left = R(pc->b);                                                       \
        Value& right = P;                                                             \
        if (left.isInt()) [[likely]] {                                                \
            [[maybe_unused]] const std::int64_t a = left.asInt();                     \
            [[maybe_unused]] const std::int64_t b = static_cast<std::int32_t>(pc->c); \
            integers                                                                  \
        } else if (left.isFloat()) {                                                  \
            [[maybe_unused]] const double a = left.asFloat();                         \
            [[maybe_unused]] const double b = static_cast<std::int32_t>(pc->c);       \
            floats                                                                    \
        }                                                                             \
        rest                                                                          \
    }

// Integers first, then floats and mixtures.
#define BY_KIND(integers, floats)                                  \
    if (left.isInt()) [[likely]] {                                 \
        if (right.isInt()) [[likely]] {                            \
            [[maybe_unused]] const std::int64_t a = left.asInt();  \
            [[maybe_unused]] const std::int64_t b = right.asInt(); \
            integers                                               \
        }                                                          \
    }                                                              \
    if (double a = 0, b = 0; areNumbers(left, right, a, b)) {      \
        floats                                                     \
    }

// What may fail, or call: either leads to another place.
#define ATTEMPT(call)           \
    if (!(call)) [[unlikely]] { \
        goto resume;            \
    }                           \
    NEXT();

#define YIELD(value)    \
    R(pc->a) = (value); \
    NEXT();
#define YIELD_NUMBER(number) \
    R(pc->a).become(number); \
    NEXT();

#define ARITHMETIC(name, op, integers, floats)    \
    NUMERIC_FORMS(name, integers, floats, SAVE(); \
                  ATTEMPT(vm->binarySlowly(ArithmeticOp::op, R(pc->a), left, right, ENDS)))

// A test of two numbers, as in `test(a, b)`, and what to do with other operands.
#define COMPARISON(name, test, slow) \
    NUMERIC_FORMS(name, YIELD_NUMBER(test), YIELD_NUMBER(test), SAVE(); slow(ENDS, YIELD_NUMBER))

#define JUMP_IF(holds)      \
    if (holds) {            \
        JUMP_TO(pc->extra); \
    }                       \
    NEXT();
#define JUMP_UNLESS(holds) JUMP_IF(!(holds))

#define BRANCHES(name, test, slow)                                                       \
    NUMERIC_FORMS(IF_##name, JUMP_IF(test), JUMP_IF(test), SAVE(); slow(pc->a, JUMP_IF)) \
    NUMERIC_FORMS(UNLESS_##name, JUMP_UNLESS(test), JUMP_UNLESS(test), SAVE();           \
                  slow(pc->a, JUMP_UNLESS))

#define SLOW_EQUAL(ends, then)                             \
    const bool holds = vm->equalSlowly(left, right, ends); \
    then(holds)
#define SLOW_NOT_EQUAL(ends, then)                          \
    const bool holds = !vm->equalSlowly(left, right, ends); \
    then(holds)
#define SLOW_LESS(ends, then) SLOW_COMPARISON(Less, ends, then)
#define SLOW_LESS_EQUAL(ends, then) SLOW_COMPARISON(LessEqual, ends, then)
#define SLOW_GREATER(ends, then) SLOW_COMPARISON(Greater, ends, then)
#define SLOW_GREATER_EQUAL(ends, then) SLOW_COMPARISON(GreaterEqual, ends, then)
#define SLOW_COMPARISON(comparison, ends, then)                                           \
    const Outcome outcome = vm->compareSlowly(Comparison::comparison, left, right, ends); \
    if (outcome == Outcome::Failed) [[unlikely]] {                                        \
        goto resume;                                                                      \
    }                                                                                     \
    then(outcome == Outcome::Yes)

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

    ARITHMETIC(ADD, Add, YIELD_NUMBER(wrapAdd(a, b)), YIELD_NUMBER(a + b))
    ARITHMETIC(SUB, Subtract, YIELD_NUMBER(wrapSubtract(a, b)), YIELD_NUMBER(a - b))
    ARITHMETIC(MUL, Multiply, YIELD_NUMBER(wrapMultiply(a, b)), YIELD_NUMBER(a * b))
    ARITHMETIC(DIV, Divide,
               if (b != 0){YIELD_NUMBER(static_cast<double>(a) / static_cast<double>(b))},
               if (b != 0){YIELD_NUMBER(a / b)})
    ARITHMETIC(FLOOR_DIV, FloorDivide, if (b != 0){YIELD_NUMBER(floorDivide(a, b))},
               if (b != 0){YIELD_NUMBER(floorDivide(a, b))})
    ARITHMETIC(MOD, Modulo, if (b != 0){YIELD_NUMBER(truncatedRemainder(a, b))},
               if (b != 0){YIELD_NUMBER(truncatedRemainder(a, b))})
    ARITHMETIC(POW, Power, , )
    ARM(NEGATE) {
        SAVE();
        vm->negateSlowly(R(pc->a), R(pc->b), ENDS);
        NEXT();
    }
    ARM(NOT) {
        const bool truth = isTruthy(R(pc->b));
        if (pc->extra) R(pc->b) = Value();
        YIELD_NUMBER(!truth)
    }

    COMPARISON(EQUAL, isEqual(a, b), SLOW_EQUAL)
    COMPARISON(NOT_EQUAL, !isEqual(a, b), SLOW_NOT_EQUAL)
    COMPARISON(LESS, isLess(a, b), SLOW_LESS)
    COMPARISON(LESS_EQUAL, isLessEqual(a, b), SLOW_LESS_EQUAL)
    COMPARISON(GREATER, isLess(b, a), SLOW_GREATER)
    COMPARISON(GREATER_EQUAL, isLessEqual(b, a), SLOW_GREATER_EQUAL)

    BRANCHES(EQUAL, isEqual(a, b), SLOW_EQUAL)
    BRANCHES(LESS, isLess(a, b), SLOW_LESS)
    BRANCHES(LESS_EQUAL, isLessEqual(a, b), SLOW_LESS_EQUAL)
    BRANCHES(GREATER, isLess(b, a), SLOW_GREATER)
    BRANCHES(GREATER_EQUAL, isLessEqual(b, a), SLOW_GREATER_EQUAL)

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
    ARM(FOR_LOOP_UP) {
        Value& counter = R(pc->a);
        const Value& limit = R(pc->b);
        if (counter.isInt() && limit.isInt()) [[likely]] {
            const std::int64_t next = wrapAdd(counter.asInt(), std::int64_t{pc->c});
            counter.become(next);
            JUMP_IF(isLessEqual(next, limit.asInt()))
        }
        goto advance;
    }
    ARM(FOR_LOOP)
advance : {
    Value& counter = R(pc->a);
    const Value& limit = R(pc->b);
    const Value& step = *(&limit + 1);
    bool on;
    if (counter.isInt() && limit.isInt() && step.isInt()) {
        const std::int64_t next = wrapAdd(counter.asInt(), step.asInt());
        counter.become(next);
        on = goesOn(next, limit.asInt(), step.asInt());
    } else if (counter.isFloat() && limit.isFloat() && step.isFloat()) {
        const double next = counter.asFloat() + step.asFloat();
        counter.become(next);
        on = goesOn(next, limit.asFloat(), step.asFloat());
    } else if (counter.isInt() && limit.isFloat() && step.isInt()) {
        const std::int64_t next = wrapAdd(counter.asInt(), step.asInt());
        counter.become(next);
        on = goesOn(static_cast<double>(next), limit.asFloat(), static_cast<double>(step.asInt()));
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
        const Values& items = R(pc->c).asList().items;
        const auto position = static_cast<std::uint64_t>(R(pc->b).asInt());
        if (position >= items.size()) {
            JUMP_TO(pc->extra);
        }
        R(pc->a) = items[position];
        NEXT();
    }
    ARM(FOR_IN_LOOP) {
        const Values& items = R(pc->c).asList().items;
        const auto position = static_cast<std::uint64_t>(R(pc->b).asInt()) + 1;
        R(pc->b).become(static_cast<std::int64_t>(position));
        if (position < items.size()) {
            R(pc->a) = items[position];
            JUMP_TO(pc->extra);
        }
        NEXT();
    }

    // The inner container is borrowed. Where this is not the usual case, two instructions they are.
    ARM(INDEX_THEN_INDEX) {
        if (const Value* inner = elementAt(R(pc->b), R(pc->c))) [[likely]] {
            if (const Value* element = elementAt(*inner, R(pc[1].c))) [[likely]] {
                ++pc;
                YIELD(*element)
            }
        }
        goto index_plainly;
    }
    ARM(INDEX_THEN_FIELD) {
        if (const Value* inner = elementAt(R(pc->b), R(pc->c)); inner && inner->isMap())
            [[likely]] {
            const auto place = static_cast<std::uint32_t>(pc[1].extra);
            if (const Value* found = inner->asMap().valueAt(place, pc[1].key)) [[likely]] {
                ++pc;
                YIELD(*found)
            }
        }
        goto index_plainly;
    }
index_plainly:
    FORMS(
        INDEX,
        if (const Value* element = elementAt(left, right)) [[likely]] {
            if (ENDS & endsLeft) [[unlikely]] {
                takeElement(R(pc->a), left, *element);
                NEXT();
            }
            YIELD(*element)
        } if (left.isString() && right.isInt() && ENDS == 0) {
            const std::string_view text = left.asText();
            const auto position = static_cast<std::uint64_t>(right.asInt());
            if (position < text.size()) [[likely]] {
                YIELD(Value(StringObj::oneByte(static_cast<unsigned char>(text[position]))))
            }
        } SAVE();
        ATTEMPT(vm->indexSlowly(R(pc->a), left, right, ENDS)))
    ARM(FIELD_R) {
        if (Value& object = R(pc->b); object.isMap()) [[likely]] {
            if (const Value* found = object.asMap().valueAt(PLACE, pc->key)) [[likely]] {
                if (pc->c & endsLeft) [[unlikely]] {
                    takeElement(R(pc->a), object, *found);
                    NEXT();
                }
                YIELD(*found)
            }
        }
        SAVE();
        ATTEMPT(vm->field(const_cast<Instruction&>(*pc), R(pc->a), R(pc->b)))
    }
    ARM(FIELD_P) {
        SAVE();
        Value& object = const_cast<Value&>(*frame->closure->code->pointers[pc->b]);
        ATTEMPT(vm->field(const_cast<Instruction&>(*pc), R(pc->a), object))
    }
    FORMS(
        SET_INDEX,
        if (Value* element = elementAt(left, right)) [[likely]] {
            storeElement(*element, left, R(pc->a), ENDS);
            NEXT();
        } SAVE();
        vm->setIndexSlowly(left, right, R(pc->a), ENDS); NEXT();)
    ARM(SET_INDEX_RR_P) {  // the value is a constant
        Value& left = R(pc->b);
        Value& right = R(pc->c);
        if (Value* element = elementAt(left, right)) [[likely]] {
            *element = *pc->pointer;
            if (ENDS & endsLeft) [[unlikely]] {
                left = Value();
            }
            NEXT();
        }
        SAVE();
        vm->setIndexSlowly(left, right, P, ENDS);
        NEXT();
    }
    ARM(SET_FIELD_R) {
        if (Value& object = R(pc->b); object.isMap()) [[likely]] {
            if (Value* found = object.asMap().valueAt(PLACE, pc->key)) [[likely]] {
                storeElement(*found, object, R(pc->a), pc->c);
                NEXT();
            }
        }
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
        const Value& function = *pc->pointer;
        if (function.kind() == ValueKind::Native) {
            SAVE();
            ATTEMPT(vm->callNativeAt(&R(pc->a), nativeOf(function), pc->b))
        }
        new (&R(pc->a)) Value(function);  // a temporary, which holds nothing yet
        goto call;
    }
    ARM(CALL)
call : {
    Value* const callee = &R(pc->a);
    if (callee->kind() == ValueKind::Closure) [[likely]] {
        auto& closure = static_cast<VMClosure&>(*static_cast<CallableObj*>(callee->object()));
        const RegisterCode& code = *closure.code;
        if (pc->b == code.arity && frame != vm->lastFrame_ &&
            reinterpret_cast<char*>(vm->stack_.end()) - reinterpret_cast<char*>(callee) >
                static_cast<std::ptrdiff_t>(code.maxDepth * sizeof(Value))) {
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
    ATTEMPT(vm->callSlowly(callee, pc->b))
}
resume : {
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
        for (Value *slot = base, *end = &R(pc->b); slot != end; ++slot) slot->releaseObject();
        base[-1] = *pc->pointer;
        goto leave;
    }
    ARM(RETURN_LOCAL) {
        if (pc->extra) vm->leaveScopes(base, pc->extra);
        base[-1].swap(R(pc->a));
        for (Value *slot = base, *end = &R(pc->b); slot != end; ++slot) slot->releaseObject();
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
    ARM(STEP) {
        SAVE();
        vm->steps_.take();
        NEXT();
    }
    ARM(EXIT) { return nullptr; }

#if !defined(PELLUM_LABELS_AS_VALUES)
}
#endif
}

}  // namespace pellum
