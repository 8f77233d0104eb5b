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

// REQUIRES, as the next: no division by zero.
Value intArithmetic(ArithmeticOp op, std::int64_t a, std::int64_t b) {
    switch (op) {
        case ArithmeticOp::Add: return Value(wrapAdd(a, b));
        case ArithmeticOp::Subtract: return Value(wrapSubtract(a, b));
        case ArithmeticOp::Multiply: return Value(wrapMultiply(a, b));
        case ArithmeticOp::Divide: return Value(static_cast<double>(a) / static_cast<double>(b));
        case ArithmeticOp::FloorDivide: return Value(floorDivide(a, b));
        case ArithmeticOp::Modulo: return Value(truncatedRemainder(a, b));
        case ArithmeticOp::Power: break;
    }
    if (b < 0) return Value(std::pow(static_cast<double>(a), static_cast<double>(b)));
    return Value(intPower(a, b));
}

Value floatArithmetic(ArithmeticOp op, double a, double b) {
    switch (op) {
        case ArithmeticOp::Add: return Value(a + b);
        case ArithmeticOp::Subtract: return Value(a - b);
        case ArithmeticOp::Multiply: return Value(a * b);
        case ArithmeticOp::Divide: return Value(a / b);
        case ArithmeticOp::FloorDivide: return Value(floorDivide(a, b));
        case ArithmeticOp::Modulo: return Value(truncatedRemainder(a, b));
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
    const Values& tail = right.asList().items;
    Values& head = left.asList().items;
    if (head.size() + tail.size() > maxListLength) throw std::length_error("list");
    if (left.object()->isUnshared() && &head != &tail) {
        head.insert(head.end(), tail.begin(), tail.end());
        return;
    }
    Values elements;
    elements.reserve(head.size() + tail.size());
    elements.insert(elements.end(), head.begin(), head.end());
    elements.insert(elements.end(), tail.begin(), tail.end());
    left = makeList(std::move(elements));
}

template <typename T>
bool isOrdered(Comparison comparison, T a, T b) noexcept {
    switch (comparison) {
        case Comparison::Less: return a < b;
        case Comparison::LessEqual: return a <= b;
        case Comparison::Greater: return a > b;
        case Comparison::GreaterEqual: break;
    }
    return a >= b;
}

// The position that an index means, negative ones counting from the end; `length` or more where it
// means none.
std::size_t positionFor(const Value& index, std::size_t length) noexcept {
    if (!index.isInt()) return length;
    const std::int64_t given = index.asInt();
    return static_cast<std::size_t>(given < 0 ? given + static_cast<std::int64_t>(length) : given);
}

std::string listIndexMessage(const Value& index, std::size_t length) {
    if (!index.isInt()) {
        return std::string("list index must be an integer, got ") + typeName(index);
    }
    return "list index " + formatInt(index.asInt()) + " out of range (len " +
           formatInt(static_cast<std::int64_t>(length)) + ")";
}

Values bytesOf(std::string_view text) {
    Values elements;
    elements.reserve(text.size());
    for (const char byte : text) {
        elements.emplace_back(StringObj::oneByte(static_cast<unsigned char>(byte)));
    }
    return elements;
}

Values keysOf(MapData& map) {
    Values elements;
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
    if (dividesByZero(op, right)) throw RuntimeError(zeroDivisionMessage(op), at);
    if (left.isInt() && right.isInt()) return intArithmetic(op, left.asInt(), right.asInt());
    return floatArithmetic(op, left.asNumber(), right.asNumber());
}

bool dividesByZero(ArithmeticOp op, const Value& right) noexcept {
    const bool divides = op >= ArithmeticOp::Divide && op <= ArithmeticOp::Modulo;
    return divides && right.asNumber() == 0;
}

const char* zeroDivisionMessage(ArithmeticOp op) noexcept {
    return op == ArithmeticOp::Divide        ? "division by zero"
           : op == ArithmeticOp::FloorDivide ? "floor division by zero"
                                             : "modulo by zero";
}

Value negate(const Value& operand, Position at) {
    if (operand.isInt()) return Value(wrapNegate(operand.asInt()));
    if (operand.isFloat()) return Value(-operand.asFloat());
    throw RuntimeError(std::string("unary '-': expected a number, got ") + typeName(operand), at);
}

bool tryCompare(Comparison comparison, const Value& left, const Value& right,
                bool& holds) noexcept {
    if (left.isString() && right.isString()) {
        holds = isOrdered(comparison, compareTexts(left.asString(), right.asString()), 0);
        return true;
    }
    if (left.isNumber() && right.isNumber()) {
        holds = isOrdered(comparison, left.asNumber(), right.asNumber());
        return true;
    }
    return false;
}

bool compare(Comparison comparison, const Value& left, const Value& right, Position at) {
    bool holds = false;
    if (!tryCompare(comparison, left, right, holds)) {
        throw RuntimeError(comparisonMessage(left, right), at);
    }
    return holds;
}

std::string comparisonMessage(const Value& left, const Value& right) {
    return "cannot compare " + typeNames(left, right);
}

bool tryReadIndex(const Value& object, const Value& index, Value& element) {
    switch (object.kind()) {
        case ValueKind::List: {
            const Values& items = object.asList().items;
            const std::size_t position = positionFor(index, items.size());
            if (position >= items.size()) return false;
            element = items[position];
            return true;
        }
        case ValueKind::Map: {
            const Value* found = object.asMap().find(index);
            element = found ? *found : Value();
            return true;
        }
        case ValueKind::String: {
            const std::string_view text = object.asText();
            const std::size_t position = positionFor(index, text.size());
            if (position >= text.size()) return false;
            element = Value(StringObj::oneByte(static_cast<unsigned char>(text[position])));
            return true;
        }
        default: return false;
    }
}

std::string readIndexMessage(const Value& object, const Value& index) {
    if (object.isList()) return listIndexMessage(index, listLength(object.asList()));
    if (!object.isString()) return std::string("cannot index ") + typeName(object);
    return index.isInt() ? "string index out of range"
                         : std::string("string index must be an integer, got ") + typeName(index);
}

Value readIndex(const Value& object, const Value& index, Position at) {
    Value element;
    if (!tryReadIndex(object, index, element)) {
        throw RuntimeError(readIndexMessage(object, index), at);
    }
    return element;
}

void writeIndex(const Value& object, const Value& index, Value value, Position at) {
    switch (object.kind()) {
        case ValueKind::List: {
            Values& items = object.asList().items;
            const std::size_t position = positionFor(index, items.size());
            if (position >= items.size()) {
                throw RuntimeError(listIndexMessage(index, items.size()), at);
            }
            items[position] = std::move(value);
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

Values elementsToVisit(const Value& iterable, Position at) {
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
