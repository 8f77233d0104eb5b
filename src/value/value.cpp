#include "value/value.h"

#include "value/number.h"
#include "value/string.h"

#include <variant>

namespace pellum {

namespace {

// What the two equalities share: nil, bools, numbers and strings. For other kinds, `otherwise`.
template <typename Otherwise>
bool plainEqual(const Value& a, const Value& b, Otherwise otherwise) noexcept {
    if (a.isNumber() && b.isNumber()) {
        if (a.isInt() && b.isInt()) return equalAsDoubles(a.asInt(), b.asInt());
        return a.asNumber() == b.asNumber();
    }
    if (a.kind() != b.kind()) return false;
    switch (a.kind()) {
        case ValueKind::Nil: return true;
        case ValueKind::Bool: return a.asBool() == b.asBool();
        case ValueKind::String: return areSameText(a.asString(), b.asString());
        default: return otherwise();
    }
}

}  // namespace

Value::Value(std::string_view text) : Value(StringObj::make(text)) {}

void Value::throwBadAccess() { throw std::bad_variant_access(); }

bool valuesEqual(const Value& a, const Value& b) noexcept {
    return plainEqual(a, b, [&] { return a.object() == b.object(); });
}

bool keysEqual(const Value& a, const Value& b) noexcept {
    return plainEqual(a, b, [] { return false; });
}

const char* typeName(const Value& value) noexcept {
    switch (value.kind()) {
        case ValueKind::Nil: return "nil";
        case ValueKind::Bool: return "bool";
        case ValueKind::Int:
        case ValueKind::Float: return "number";
        case ValueKind::String: return "string";
        case ValueKind::List: return "list";
        case ValueKind::Map: return "map";
        case ValueKind::Function:
        case ValueKind::Native:
        case ValueKind::Closure: break;
    }
    return "function";
}

Value makeList(Values elements) { return Value(makeRef<ListObj>(std::move(elements))); }

}  // namespace pellum
