// The one dynamically typed datum of the language, used by both engines, the library and the
// errors. Nil, bools, integers and floats are held directly; strings, lists, maps and functions
// are counted heap objects, so copying a Value never copies contents. Strings are immutable to
// programs; lists and maps are shared, and a change made through one holder is seen by all.
//
// Integer and float are two representations of one language type, "number". Nothing here raises
// an error of the language: callers test the kind first and complain in their own words.
#pragma once

#include "value/limits.h"
#include "value/object.h"

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>

namespace pellum {

class StringObj;
class MapData;
struct ListObj;
class CallableObj;

// The numbering is fixed: engines, builtins and printing switch on it, nil is zero so that zeroed
// memory is a stack of nils, and every kind from String on is a counted heap object.
enum class ValueKind : std::uint64_t {
    Nil = 0,
    Bool = 1,
    Int = 2,
    Float = 3,
    String = 4,
    List = 5,
    Map = 6,
    Function = 7,  // FunctionObj of the tree-walker
    Native = 8,    // NativeObj, a builtin
    Closure = 9,   // VMClosure of the virtual machine
};

class Value {
public:
    Value() noexcept : kind_(ValueKind::Nil), payload_{.integer = 0} {}
    explicit Value(std::same_as<bool> auto b) noexcept
        : kind_(ValueKind::Bool), payload_{.integer = b} {}
    template <std::integral Integer>
    requires(!std::same_as<Integer, bool>) explicit Value(Integer n) noexcept
        : kind_(ValueKind::Int), payload_{.integer = static_cast<std::int64_t>(n)} {}
    explicit Value(double x) noexcept : kind_(ValueKind::Float), payload_{.floating = x} {}
    explicit Value(std::string_view text);
    explicit Value(const char* text) : Value(std::string_view(text)) {}
    explicit Value(const std::string& text) : Value(std::string_view(text)) {}
    explicit Value(Ref<StringObj> string) noexcept;  // none of the four takes a null
    explicit Value(Ref<ListObj> list) noexcept;
    explicit Value(Ref<MapData> map) noexcept;
    explicit Value(Ref<CallableObj> function) noexcept;

    Value(const Value& other) noexcept : kind_(other.kind_), payload_(other.payload_) {
        if (isObject()) payload_.object->retain();
    }
    Value(Value&& other) noexcept : kind_(other.kind_), payload_(other.payload_) {
        other.kind_ = ValueKind::Nil;
    }
    // Assignment releases the old contents last: that may destroy the very container that holds
    // this Value or the one assigned from.
    Value& operator=(const Value& other) noexcept { return *this = Value(other); }
    Value& operator=(Value&& other) noexcept {
        Value taken(std::move(other));
        std::swap(kind_, taken.kind_);
        std::swap(payload_, taken.payload_);
        return *this;
    }
    ~Value() {
        if (isObject()) payload_.object->release();
    }
    void swap(Value& other) noexcept {
        std::swap(kind_, other.kind_);
        std::swap(payload_, other.payload_);
    }

    // As assignment, for places that seldom hold an object, which is released first.
    // REQUIRES: no such object holds this Value.
    void become(std::int64_t n) noexcept { become(ValueKind::Int, {.integer = n}); }
    void become(double x) noexcept { become(ValueKind::Float, {.floating = x}); }
    void become(std::same_as<bool> auto b) noexcept { become(ValueKind::Bool, {.integer = b}); }

    // As assigning nil; what is not an object may stay what it is.
    void releaseObject() noexcept {
        if (isObject()) *this = Value();
    }

    ValueKind kind() const noexcept { return kind_; }
    bool isNil() const noexcept { return kind_ == ValueKind::Nil; }
    bool isBool() const noexcept { return kind_ == ValueKind::Bool; }
    bool isInt() const noexcept { return kind_ == ValueKind::Int; }
    bool isFloat() const noexcept { return kind_ == ValueKind::Float; }
    bool isNumber() const noexcept { return isInt() || isFloat(); }
    bool isString() const noexcept { return kind_ == ValueKind::String; }
    bool isList() const noexcept { return kind_ == ValueKind::List; }
    bool isMap() const noexcept { return kind_ == ValueKind::Map; }
    bool isFunction() const noexcept { return kind_ >= ValueKind::Function; }
    bool isObject() const noexcept { return kind_ >= ValueKind::String; }

    // Each accessor serves the kinds named; any other kind is a defect of the caller and throws
    // std::bad_variant_access.
    bool asBool() const { return require(isBool()), payload_.integer != 0; }
    std::int64_t asInt() const { return require(isInt()), payload_.integer; }
    double asFloat() const { return require(isFloat()), payload_.floating; }
    double asNumber() const {  // an integer is converted to double
        require(isNumber());
        return isInt() ? static_cast<double>(payload_.integer) : payload_.floating;
    }
    const StringObj& asString() const;
    std::string_view asText() const;  // the bytes of a string, valid while the string lives
    ListObj& asList() const;
    MapData& asMap() const;
    CallableObj& asFunction() const;

    // The shared heap object behind a string, list, map or function.
    Object* object() const { return require(isObject()), payload_.object; }

private:
    union Payload {
        std::int64_t integer;
        double floating;
        Object* object;
    };

    void become(ValueKind kind, Payload payload) noexcept {
        if (isObject()) [[unlikely]]
            payload_.object->release();
        kind_ = kind;
        payload_ = payload;
    }

    Value(ValueKind kind, Object* adopted) noexcept : kind_(kind), payload_{.object = adopted} {}
    static void require(bool holds) {
        if (!holds) throwBadAccess();
    }
    [[noreturn]] static void throwBadAccess();

    ValueKind kind_;  // a whole word, written and read with one width
    Payload payload_;
};

static_assert(sizeof(Value) == 16);

inline constexpr std::size_t maxListLength = limit(std::size_t{1} << 28, std::size_t{3'000});

using Values = CellVector<Value>;

// The elements of a list. A list is nothing but its shared vector. Its length stays within
// maxListLength: what would make a longer one throws std::length_error first.
struct ListObj final : Object {
    ListObj() = default;
    explicit ListObj(Values&& elements) noexcept : items(std::move(elements)) {}

    Values items;
};

// What the three kinds of function have in common for those that only print them.
class CallableObj : public Object {
public:
    // The name that the display form shows and that messages about wrong counts begin with.
    virtual std::string_view functionName() const noexcept = 0;

    ValueKind valueKind() const noexcept { return valueKind_; }

protected:
    // REQUIRES: kind is Function, Native or Closure.
    explicit CallableObj(ValueKind kind) noexcept : valueKind_(kind) {}

private:
    ValueKind valueKind_;
};

inline Value::Value(Ref<ListObj> list) noexcept : Value(ValueKind::List, list.leak()) {}
inline ListObj& Value::asList() const {
    require(isList());
    return static_cast<ListObj&>(*payload_.object);
}
inline Value::Value(Ref<CallableObj> function) noexcept
    : Value(function->valueKind(), static_cast<Object*>(nullptr)) {
    payload_.object = function.leak();
}
inline CallableObj& Value::asFunction() const {
    require(isFunction());
    return static_cast<CallableObj&>(*payload_.object);
}

// Only nil and false are false.
inline bool isTruthy(const Value& value) noexcept {
    return value.kind() > ValueKind::Bool || (value.isBool() && value.asBool());
}

// The language's `==`. Numbers compare through their double conversions, also two integers, so
// integers beyond 2^53 that round to one double are equal; strings by bytes; lists, maps and
// functions by identity.
bool valuesEqual(const Value& a, const Value& b) noexcept;

// Equality of map keys: as valuesEqual for nil, bools, numbers and strings; never true for lists,
// maps and functions, not even for one compared with itself.
bool keysEqual(const Value& a, const Value& b) noexcept;

// "nil", "bool", "number", "string", "list", "map" or "function".
const char* typeName(const Value& value) noexcept;

Value makeList(Values elements);

inline std::size_t listLength(const ListObj& list) noexcept { return list.items.size(); }

}  // namespace pellum
