// What the arms of the register machine leave to others: errors, mixed and rare kinds of operand,
// everything that allocates. Kept out of the engine room so that its arms stay small.

#include "vm/vm.h"

#include "value/map.h"

#include <iterator>

namespace pellum {

namespace {

// Releases the operands that end with an instruction.
void endOperands(Value& left, Value& right, std::uint32_t ends) noexcept {
    if (ends & endsLeft) left = Value();
    if (ends & endsRight) right = Value();
}

}  // namespace

bool VM::callSlowly(Value* callee, std::size_t argCount) {
    stack_.setTop(callee + 1 + argCount);
    if (callee->kind() != ValueKind::Native) {
        callValue(argCount, position());
        return true;
    }
    std::vector<Value> args;
    if (!argumentPool_.empty()) {
        args = std::move(argumentPool_.back());
        argumentPool_.pop_back();
    }
    args.assign(std::make_move_iterator(callee + 1), std::make_move_iterator(stack_.top()));
    const auto& native = static_cast<const NativeObj&>(callee->asFunction());
    *callee = callNative(native, *this, args, position());
    if (argumentPool_.size() < argumentPool_.capacity()) {
        args.clear();
        argumentPool_.push_back(std::move(args));
    }
    return false;
}

void VM::binarySlowly(ArithmeticOp op, Value& to, Value& left, Value& right, std::uint32_t ends) {
    if (left.isNumber() && right.isNumber()) {
        to = numberArithmetic(op, left, right, position());
        return;
    }
    if (op != ArithmeticOp::Add) {
        fail(std::string("arithmetic needs numbers, got ") + typeName(left) + " and " +
             typeName(right));
    }
    if (&to == &left && &left != &right) {
        addInPlace(to, right, position());  // as in `s = s + x`
        if (ends & endsRight) right = Value();
        return;
    }
    Value sum = (ends & endsLeft) ? std::move(left) : left;
    addInPlace(sum, right, position());
    endOperands(left, right, ends);
    to = std::move(sum);
}

void VM::negateSlowly(Value& to, Value& operand, std::uint32_t ends) {
    Value result = negate(operand, position());
    if (ends) operand = Value();
    to = std::move(result);
}

bool VM::compareSlowly(Comparison comparison, Value& left, Value& right, std::uint32_t ends) {
    const bool holds = compare(comparison, left, right, position());
    endOperands(left, right, ends);
    return holds;
}

bool VM::equalSlowly(Value& left, Value& right, std::uint32_t ends) {
    const bool holds = valuesEqual(left, right);
    endOperands(left, right, ends);
    return holds;
}

void VM::indexSlowly(Value& to, Value& object, Value& index, std::uint32_t ends) {
    Value element = readIndex(object, index, position());
    endOperands(object, index, ends);
    to = std::move(element);
}

void VM::setIndexSlowly(Value& object, Value& index, Value& value, std::uint32_t ends) {
    writeIndex(object, index, (ends & endsValue) ? std::move(value) : value, position());
    endOperands(object, index, ends);
}

void VM::field(Instruction& at, Value& to, Value& object) {
    Value element;
    if (object.isMap()) {
        const auto position = static_cast<std::size_t>(at.extra);
        MapData& map = object.asMap();
        const Value* found = map.valueAt(position, at.pointer->object());
        if (!found) {
            found = map.find(*at.pointer);
            if (found) at.extra = static_cast<std::int32_t>(map.positionOf(found));
        }
        if (found) element = *found;
    } else {
        element = readIndex(object, *at.pointer, position());
    }
    if (at.c & endsLeft) object = Value();
    to = std::move(element);
}

void VM::setField(Instruction& at, Value& object, Value& value) {
    Value stored = (at.c & endsValue) ? std::move(value) : value;
    if (object.isMap()) {
        MapData& map = object.asMap();
        Value* found = map.valueAt(static_cast<std::size_t>(at.extra), at.pointer->object());
        if (!found) {
            found = map.find(*at.pointer);
            if (found) at.extra = static_cast<std::int32_t>(map.positionOf(found));
        }
        if (found) {
            *found = std::move(stored);
        } else {
            writeIndex(object, *at.pointer, std::move(stored), position());
        }
    } else {
        writeIndex(object, *at.pointer, std::move(stored), position());
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
