// What the arms of the register machine leave to others: errors, mixed and rare kinds of operand,
// everything that allocates. Kept out of the engine room so that its arms stay small.

#include "vm/vm.h"

#include "value/map.h"

#include <iterator>

namespace pellum {

namespace {

// Releases the operands that end with an instruction.
inline void endOperands(Value& left, Value& right, std::uint32_t ends) noexcept {
    if (ends == 0) [[likely]]
        return;
    if (ends & endsLeft) left = Value();
    if (ends & endsRight) right = Value();
}

Value keyOf(const Instruction& at) { return Value(Ref<StringObj>(const_cast<StringObj*>(at.key))); }

// Looks where the field was the last time, then everywhere, and remembers where it is now.
Value* findField(Instruction& at, MapData& map) {
    Value* found = map.valueAt(static_cast<std::uint32_t>(at.extra), at.key);
    if (!found) {
        found = map.find(keyOf(at));
        if (found) at.extra = static_cast<std::int32_t>(map.placeOf(found));
    }
    return found;
}

}  // namespace

bool VM::callSlowly(Value* callee, std::size_t argCount) {
    stack_.setTop(callee + 1 + argCount);
    if (callee->kind() != ValueKind::Native) {
        Frame* const caller = frame_;
        callValue(argCount, position());
        ++caller->pc;  // where the callee returns to
        return false;
    }
    const Value native = std::move(*callee);
    return callNativeAt(callee, static_cast<const NativeObj&>(native.asFunction()), argCount);
}

// The result goes where the callee would be, just below the arguments.
bool VM::callNativeAt(Value* to, const NativeObj& native, std::size_t argCount) {
    stack_.setTop(to + 1 + argCount);
    Value result = native.accepts(argCount)
                       ? runNative(native, *this, {to + 1, argCount})
                       : runUnaccepted(native, *this, {to + 1, argCount}, position());
    if (hasFailed()) [[unlikely]]
        return raiseFailure();
    for (Value *slot = to + 1, *end = slot + argCount; slot != end; ++slot) slot->releaseObject();
    *to = std::move(result);
    return true;
}

bool VM::binarySlowly(ArithmeticOp op, Value& to, Value& left, Value& right, std::uint32_t ends) {
    if (left.isNumber() && right.isNumber()) {
        if (dividesByZero(op, right)) return raise(zeroDivisionMessage(op));
        to = numberArithmetic(op, left, right, Position{});
        return true;
    }
    if (op != ArithmeticOp::Add) {
        return raise(std::string("arithmetic needs numbers, got ") + typeName(left) + " and " +
                     typeName(right));
    }
    if (&to == &left && &left != &right) {
        addInPlace(to, right, position());  // as in `s = s + x`
        if (ends & endsRight) right = Value();
        return true;
    }
    Value sum = (ends & endsLeft) ? std::move(left) : left;
    addInPlace(sum, right, position());
    endOperands(left, right, ends);
    to = std::move(sum);
    return true;
}

void VM::negateSlowly(Value& to, Value& operand, std::uint32_t ends) {
    Value result = negate(operand, position());
    if (ends) operand = Value();
    to = std::move(result);
}

VM::Outcome VM::compareSlowly(Comparison comparison, Value& left, Value& right,
                              std::uint32_t ends) {
    bool holds = false;
    if (!tryCompare(comparison, left, right, holds)) {
        raise(comparisonMessage(left, right));
        return Outcome::Failed;
    }
    endOperands(left, right, ends);
    return holds ? Outcome::Yes : Outcome::No;
}

bool VM::equalSlowly(Value& left, Value& right, std::uint32_t ends) {
    const bool holds = left.isString() && right.isString()
                           ? areSameText(left.asString(), right.asString())
                           : valuesEqual(left, right);
    endOperands(left, right, ends);
    return holds;
}

bool VM::indexSlowly(Value& to, Value& object, Value& index, std::uint32_t ends) {
    Value element;
    if (!tryReadIndex(object, index, element)) return raise(readIndexMessage(object, index));
    endOperands(object, index, ends);
    to = std::move(element);
    return true;
}

void VM::setIndexSlowly(Value& object, Value& index, Value& value, std::uint32_t ends) {
    writeIndex(object, index, (ends & endsValue) ? std::move(value) : value, position());
    endOperands(object, index, ends);
}

bool VM::field(Instruction& at, Value& to, Value& object) {
    Value element;
    if (object.isMap()) [[likely]] {
        if (const Value* found = findField(at, object.asMap())) element = *found;
    } else if (!tryReadIndex(object, keyOf(at), element)) {
        return raise(readIndexMessage(object, keyOf(at)));
    }
    if (at.c & endsLeft) object = Value();
    to = std::move(element);
    return true;
}

void VM::setField(Instruction& at, Value& object, Value& value) {
    Value stored = (at.c & endsValue) ? std::move(value) : value;
    Value* const found = object.isMap() ? findField(at, object.asMap()) : nullptr;
    if (found) [[likely]] {
        *found = std::move(stored);
    } else {
        writeIndex(object, keyOf(at), std::move(stored), position());
    }
    if (at.c & endsLeft) object = Value();
}

void VM::buildList(Value& to, Value* first, std::size_t count) {
    to = makeList({std::make_move_iterator(first), std::make_move_iterator(first + count)});
}

void VM::buildMap(Value& to, Value* first, std::size_t valueCount) {
    Value map = mapOf(first, valueCount);
    for (std::size_t position = 0; position < valueCount; ++position) first[position] = Value();
    to = std::move(map);
}

Value VM::mapOf(const Value* first, std::size_t valueCount) {
    auto map = makeRef<MapData>();
    map->reserve(valueCount / 2);
    for (const Value* key = first; key != first + valueCount; key += 2) {
        if (!key->isString() && !key->isNumber()) {
            fail(std::string("map keys must be string or number, got ") + typeName(*key));
        }
        map->set(*key, Value(key[1]));
    }
    return Value(std::move(map));
}

void VM::iterList(Value& to, Value& iterable, std::uint32_t ends) {
    Value list = makeList(elementsToVisit(iterable, position()));
    if (ends) iterable = Value();
    to = std::move(list);
}

void VM::lengthSlowly(Value& to, Value& value, std::uint32_t ends) {
    Value length = lengthOf(value);
    if (ends) value = Value();
    to = std::move(length);
}

Value VM::lengthOf(const Value& value) {
    switch (value.kind()) {
        case ValueKind::String: return Value(value.asText().size());
        case ValueKind::List: return Value(listLength(value.asList()));
        case ValueKind::Map: return Value(mapSize(value.asMap()));
        default: fail(std::string("cannot take length of ") + typeName(value));
    }
}

void VM::advanceSlowly(Value& counter, const Value& step) {
    Value next = counter;
    addInPlace(next, step, position());
    counter = std::move(next);
}

// Whether a numeric loop goes on. A step of zero or NaN counts as upward.
bool VM::forTestSlowly(const Value& counter, const Value& limit, const Value& step) {
    if (!counter.isNumber() || !limit.isNumber() || !step.isNumber()) {
        fail("numeric for-loop needs numbers");
    }
    return step.asNumber() < 0 ? counter.asNumber() >= limit.asNumber()
                               : counter.asNumber() <= limit.asNumber();
}

// What a return has to see to in functions that capture their locals or have handlers.
void VM::leaveScopes(const Value* base, std::int32_t what) noexcept {
    if (what & 1) closeUpvalues(base);
    if (what & 2) dropHandlersAbove(frameCount() - 1);
}

}  // namespace pellum
