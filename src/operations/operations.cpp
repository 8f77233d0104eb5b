#include "operations/operations.h"

#include "value/format.h"
#include "value/map.h"
#include "value/number.h"
#include "value/string.h"

#include <new>
#include <stdexcept>

namespace pellum {

namespace {

std::string typeNames(const Value& left, const Value& right) {
    return std::string(typeName(left)) + " and " + typeName(right);
}

Value intArithmetic(ArithmeticOp op, std::int64_t a, std::int64_t b, Position at) {
    switch (op) {
        case ArithmeticOp::Add: return Value(wrapAdd(a, b));
        case ArithmeticOp::Subtract: return Value(wrapSubtract(a, b));
        case ArithmeticOp::Multiply: return Value(wrapMultiply(a, b));
        case ArithmeticOp::Divide:
            if (b == 0) throw RuntimeError("division by zero", at);
            return Value(static_cast<double>(a) / static_cast<double>(b));
        case ArithmeticOp::FloorDivide:
            if (b == 0) throw RuntimeError("floor division by zero", at);
            return Value(floorDivide(a, b));
        case ArithmeticOp::Modulo:
            if (b == 0) throw RuntimeError("modulo by zero", at);
            return Value(truncatedRemainder(a, b));
        case ArithmeticOp::Power: break;
    }
    if (b < 0) return Value(std::pow(static_cast<double>(a), static_cast<double>(b)));
    return Value(intPower(a, b));
}

Value floatArithmetic(ArithmeticOp op, double a, double b, Position at) {
    switch (op) {
        case ArithmeticOp::Add: return Value(a + b);
        case ArithmeticOp::Subtract: return Value(a - b);
        case ArithmeticOp::Multiply: return Value(a * b);
        case ArithmeticOp::Divide:
            if (b == 0) throw RuntimeError("division by zero", at);
            return Value(a / b);
        case ArithmeticOp::FloorDivide:
            if (b == 0) throw RuntimeError("floor division by zero", at);
            return Value(floorDivide(a, b));
        case ArithmeticOp::Modulo:
            if (b == 0) throw RuntimeError("modulo by zero", at);
            return Value(truncatedRemainder(a, b));
        case ArithmeticOp::Power: break;
    }
    return Value(std::pow(a, b));
}

void concatenateStrings(Value& left, const Value& right) {
    auto& head = const_cast<StringObj&>(left.asString());
    if (head.isUnshared() && head.extend(right.asText())) return;
    left = Value(StringObj::concatenate(Ref<StringObj>(&head), right.asText()));
}

void concatenateLists(Value& left, const Value& right) {
    const std::vector<Value>& tail = right.asList().items;
    std::vector<Value>& head = left.asList().items;
    if (head.size() + tail.size() > maxListLength) throw std::length_error("list");
    if (left.object()->isUnshared() && &head != &tail) {
        head.insert(head.end(), tail.begin(), tail.end());
        return;
    }
    std::vector<Value> elements;
    elements.reserve(head.size() + tail.size());
    elements.insert(elements.end(), head.begin(), head.end());
    elements.insert(elements.end(), tail.begin(), tail.end());
    left = makeList(std::move(elements));
}

template <typename T>
bool holds(Comparison comparison, const T& a, const T& b) noexcept {
    switch (comparison) {
        case Comparison::Less: return a < b;
        case Comparison::LessEqual: return a <= b;
        case Comparison::Greater: return a > b;
        case Comparison::GreaterEqual: break;
    }
    return a >= b;
}

Value characterAt(const Value& string, const Value& index, Position at) {
    if (!index.isInt()) {
        throw RuntimeError(std::string("string index must be an integer, got ") + typeName(index),
                           at);
    }
    const std::string_view text = string.asText();
    const auto length = static_cast<std::int64_t>(text.size());
    const std::int64_t position = index.asInt() < 0 ? index.asInt() + length : index.asInt();
    if (position < 0 || position >= length) throw RuntimeError("string index out of range", at);
    const char byte = text[static_cast<std::size_t>(position)];
    return Value(StringObj::oneByte(static_cast<unsigned char>(byte)));
}

std::vector<Value> bytesOf(std::string_view text) {
    std::vector<Value> elements;
    elements.reserve(text.size());
    for (const char byte : text) {
        elements.emplace_back(StringObj::oneByte(static_cast<unsigned char>(byte)));
    }
    return elements;
}

std::vector<Value> keysOf(MapData& map) {
    std::vector<Value> elements;
    elements.reserve(map.size());
    for (const MapData::Entry& entry : map.entries()) elements.push_back(entry.key);
    return elements;
}

}  // namespace

Value add(Value left, const Value& right, Position at) {
    addInPlace(left, right, at);
    return left;
}

void addInPlace(Value& left, const Value& right, Position at) {
    try {
        if (left.isString() && right.isString()) return concatenateStrings(left, right);
        if (left.isList() && right.isList()) return concatenateLists(left, right);
    } catch (const std::length_error&) {
        throw RuntimeError("operator '+': result too large", at);
    } catch (const std::bad_alloc&) {
        throw RuntimeError("operator '+': out of memory", at);
    }
    if (!left.isNumber() || !right.isNumber()) {
        throw RuntimeError("cannot add " + typeNames(left, right), at);
    }
    left = numberArithmetic(ArithmeticOp::Add, left, right, at);
}

Value numberArithmetic(ArithmeticOp op, const Value& left, const Value& right, Position at) {
    if (left.isInt() && right.isInt()) return intArithmetic(op, left.asInt(), right.asInt(), at);
    return floatArithmetic(op, left.asNumber(), right.asNumber(), at);
}

Value negate(const Value& operand, Position at) {
    if (operand.isInt()) return Value(wrapNegate(operand.asInt()));
    if (operand.isFloat()) return Value(-operand.asFloat());
    throw RuntimeError(std::string("unary '-': expected a number, got ") + typeName(operand), at);
}

bool compare(Comparison comparison, const Value& left, const Value& right, Position at) {
    if (left.isString() && right.isString()) {
        return holds(comparison, left.asText(), right.asText());
    }
    if (left.isNumber() && right.isNumber()) {
        return holds(comparison, left.asNumber(), right.asNumber());
    }
    throw RuntimeError("cannot compare " + typeNames(left, right), at);
}

std::size_t listPosition(const Value& index, std::size_t length, Position at) {
    if (!index.isInt()) {
        throw RuntimeError(std::string("list index must be an integer, got ") + typeName(index),
                           at);
    }
    const auto count = static_cast<std::int64_t>(length);
    const std::int64_t position = index.asInt() < 0 ? index.asInt() + count : index.asInt();
    if (position < 0 || position >= count) {
        throw RuntimeError("list index " + formatInt(index.asInt()) + " out of range (len " +
                               formatInt(count) + ")",
                           at);
    }
    return static_cast<std::size_t>(position);
}

Value readIndex(const Value& object, const Value& index, Position at) {
    switch (object.kind()) {
        case ValueKind::List: {
            const std::vector<Value>& items = object.asList().items;
            return items[listPosition(index, items.size(), at)];
        }
        case ValueKind::Map: {
            const Value* found = object.asMap().find(index);
            return found ? *found : Value();
        }
        case ValueKind::String: return characterAt(object, index, at);
        default: throw RuntimeError(std::string("cannot index ") + typeName(object), at);
    }
}

void writeIndex(const Value& object, const Value& index, Value value, Position at) {
    switch (object.kind()) {
        case ValueKind::List: {
            std::vector<Value>& items = object.asList().items;
            items[listPosition(index, items.size(), at)] = std::move(value);
            return;
        }
        case ValueKind::Map:
            if (!index.isString() && !index.isNumber()) {
                throw RuntimeError(
                    std::string("map key must be a string or number, got ") + typeName(index), at);
            }
            try {
                object.asMap().set(index, std::move(value));
            } catch (const std::bad_alloc&) {
                throw RuntimeError("cannot assign into map: out of memory", at);
            }
            return;
        default: throw RuntimeError(std::string("cannot assign into ") + typeName(object), at);
    }
}

std::vector<Value> elementsToVisit(const Value& iterable, Position at) {
    try {
        switch (iterable.kind()) {
            case ValueKind::List: return iterable.asList().items;
            case ValueKind::String:
                if (iterable.asText().size() <= maxListLength) return bytesOf(iterable.asText());
                throw RuntimeError("cannot iterate over string: too long", at);
            case ValueKind::Map: return keysOf(iterable.asMap());
            default: break;
        }
    } catch (const std::bad_alloc&) {
        throw RuntimeError(
            std::string("cannot iterate over ") + typeName(iterable) + ": out of memory", at);
    }
    throw RuntimeError(std::string("cannot iterate over ") + typeName(iterable), at);
}

}  // namespace pellum
