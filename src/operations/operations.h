// What operators, indexing and for-in mean: the rules that both engines share, each written once.
// Every error is a RuntimeError at the position that the engine passes in; the few messages that
// differ between the engines stay with them. The machine, which need not throw to reach a `try`,
// uses the forms that only try, and asks what was wrong afterwards.
#pragma once

#include "driver/errors/errors.h"
#include "value/value.h"

namespace pellum {

// In the order of the operators "+", "-", "*", "/", "//", "%", "^".
enum class ArithmeticOp : std::uint8_t {
    Add,
    Subtract,
    Multiply,
    Divide,
    FloorDivide,
    Modulo,
    Power,
};

// In the order of "<", "<=", ">", ">=".
enum class Comparison : std::uint8_t { Less, LessEqual, Greater, GreaterEqual };

// `left + right`: concatenates strings and lists, adds numbers. Takes the left part by value: a
// string or list that nobody else holds is extended rather than copied.
Value add(Value left, const Value& right, Position at);

// Makes `left` the sum of itself and `right`, in the same way; after an error it is what it was.
void addInPlace(Value& left, const Value& right, Position at);

// Any operation on two numbers. REQUIRES: both are numbers.
Value numberArithmetic(ArithmeticOp op, const Value& left, const Value& right, Position at);

// Whether that divides by zero, and what the error says then.
bool dividesByZero(ArithmeticOp op, const Value& right) noexcept;
const char* zeroDivisionMessage(ArithmeticOp op) noexcept;

Value negate(const Value& operand, Position at);
bool compare(Comparison comparison, const Value& left, const Value& right, Position at);
bool tryCompare(Comparison comparison, const Value& left, const Value& right, bool& holds) noexcept;
std::string comparisonMessage(const Value& left, const Value& right);

// `object[index]`; a missing key of a map gives nil.
Value readIndex(const Value& object, const Value& index, Position at);

// False, and nothing done, where reading is an error.
bool tryReadIndex(const Value& object, const Value& index, Value& element);
std::string readIndexMessage(const Value& object, const Value& index);

// `object[index] = value` for lists and maps.
void writeIndex(const Value& object, const Value& index, Value value, Position at);

// What a for-in visits, as of now: elements of a list, bytes of a string, keys of a map.
Values elementsToVisit(const Value& iterable, Position at);

}  // namespace pellum
