#include "embed/home.h"

#include "value/format.h"
#include "value/map.h"

#include <array>
#include <stdexcept>
#include <string>

namespace pellum::embed {

namespace {

std::string kindName(Kind kind) {
    constexpr std::array names = {"nil",      "a bool", "an integer", "a float",
                                  "a string", "a list", "a map",      "a function"};
    return names[static_cast<std::size_t>(kind)];
}

[[noreturn]] void throwIsNo(const Value& value, const char* wanted) {
    throwMisuse("the value is no " + std::string(wanted) + " but " + kindName(value.kind()));
}

// REQUIRES: the value is a list.
pellum::Value& elementAt(const pellum::Value& list, const Value& index) {
    pellum::Values& items = list.asList().items;
    if (index.kind() != Kind::Int) throwIsNo(index, "index of a list");
    const std::int64_t place = index.asInt();
    if (place < 0 || static_cast<std::uint64_t>(place) >= items.size()) {
        throwMisuse("the list has no element " + std::to_string(place));
    }
    return items[static_cast<std::size_t>(place)];
}

void requireKey(const Value& key) {
    const Kind kind = key.kind();
    if (kind != Kind::String && kind != Kind::Int && kind != Kind::Float) {
        throwIsNo(key, "key of a map");
    }
}

}  // namespace

Kind Value::kind() const noexcept {
    const Reference* const reference = Inside::referenceOf(*this);
    if (!reference) return static_cast<Kind>(data_.index());
    return reference->value.isList()  ? Kind::List
           : reference->value.isMap() ? Kind::Map
                                      : Kind::Function;
}

bool Value::isTruthy() const noexcept {
    const bool* const truth = std::get_if<bool>(&data_);
    return truth ? *truth : !isNil();
}

bool Value::asBool() const {
    if (const bool* const truth = std::get_if<bool>(&data_)) return *truth;
    throwIsNo(*this, "bool");
}

std::int64_t Value::asInt() const {
    if (const auto* const number = std::get_if<std::int64_t>(&data_)) return *number;
    throwIsNo(*this, "integer");
}

double Value::asFloat() const {
    if (const auto* const number = std::get_if<std::int64_t>(&data_)) {
        return static_cast<double>(*number);
    }
    if (const auto* const number = std::get_if<double>(&data_)) return *number;
    throwIsNo(*this, "number");
}

const std::string& Value::asString() const {
    if (const auto* const text = std::get_if<std::shared_ptr<const std::string>>(&data_)) {
        return **text;
    }
    throwIsNo(*this, "string");
}

std::string Value::text() const {
    switch (kind()) {
        case Kind::Nil: return "nil";
        case Kind::Bool: return asBool() ? "true" : "false";
        case Kind::Int: return formatInt(asInt());
        case Kind::Float: return formatFloat(asFloat());
        case Kind::String: return asString();
        default: break;
    }
    const Reference& reference = *Inside::referenceOf(*this);
    const Inside inside(reference.home);
    return inside.attempt([&] { return toDisplayString(reference.value); });
}

std::size_t Value::size() const {
    const Reference* const reference = Inside::referenceOf(*this);
    if (kind() == Kind::List) return reference->value.asList().items.size();
    if (kind() == Kind::Map) return reference->value.asMap().size();
    throwIsNo(*this, "list or map");
}

Value Value::get(const Value& indexOrKey) const {
    if (kind() != Kind::List && kind() != Kind::Map) throwIsNo(*this, "list or map");
    const Reference& reference = *Inside::referenceOf(*this);
    const Inside inside(reference.home);
    return inside.attempt([&] {
        if (kind() == Kind::List) return inside.outer(elementAt(reference.value, indexOrKey));
        requireKey(indexOrKey);
        const pellum::Value* found = reference.value.asMap().find(inside.inner(indexOrKey));
        return found ? inside.outer(*found) : Value();
    });
}

void Value::set(const Value& indexOrKey, const Value& value) const {
    if (kind() != Kind::List && kind() != Kind::Map) throwIsNo(*this, "list or map");
    const Reference& reference = *Inside::referenceOf(*this);
    const Inside inside(reference.home);
    inside.attempt([&] {
        pellum::Value stored = inside.inner(value);
        if (kind() == Kind::List) {
            elementAt(reference.value, indexOrKey) = std::move(stored);
        } else {
            requireKey(indexOrKey);
            reference.value.asMap().set(inside.inner(indexOrKey), std::move(stored));
        }
    });
}

void Value::push(const Value& value) const {
    if (kind() != Kind::List) throwIsNo(*this, "list");
    const Reference& reference = *Inside::referenceOf(*this);
    const Inside inside(reference.home);
    inside.attempt([&] {
        pellum::Values& items = reference.value.asList().items;
        if (items.size() == maxListLength) throw std::length_error("list");
        items.push_back(inside.inner(value));
    });
}

Values Value::keys() const {
    if (kind() != Kind::Map) throwIsNo(*this, "map");
    const Reference& reference = *Inside::referenceOf(*this);
    const Inside inside(reference.home);
    return inside.attempt([&] {
        Values keys;
        for (const MapData::Entry& entry : reference.value.asMap().entries()) {
            keys.push_back(inside.outer(entry.key));
        }
        return keys;
    });
}

Value Value::keyAt(std::size_t place) const {
    if (kind() != Kind::Map) throwIsNo(*this, "map");
    const Reference& reference = *Inside::referenceOf(*this);
    const Inside inside(reference.home);
    return inside.attempt([&] {
        const auto& entries = reference.value.asMap().entries();
        if (place >= entries.size()) throwMisuse("the map has no key " + std::to_string(place));
        return inside.outer(entries[place].key);
    });
}

}  // namespace pellum::embed
