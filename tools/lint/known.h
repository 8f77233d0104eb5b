// What the text of an expression alone says about its value, whatever the program does.
#pragma once

#include "value/value.h"

#include <cstdint>
#include <string_view>

namespace pellum::lint {

// Those that the builtin `type` can give, and none.
enum class Type : std::uint8_t { Unknown, Nil, Bool, Number, String, List, Map, Function };

Type typeOf(const Value& value) noexcept;

// "a number", "nil".
std::string_view withArticle(Type type) noexcept;

// Whether `name` is one of those that the builtin `type` can give.
bool isTypeName(std::string_view name) noexcept;

enum class Truth : std::uint8_t { Unknown, Never, Always };

struct Known {
    Type type = Type::Unknown;
    Truth truth = Truth::Unknown;
    const Value* literal = nullptr;  // the value itself
    bool isNew = false;              // a list, map or function that nothing else can be equal to
    bool isTypeName = false;         // a call of the builtin `type`
    bool hasCall = false;            // evaluating it may do more than to give a value

    // Of that type, and of no truth but what follows from it.
    static Known of(Type type) noexcept;
};

// "x and y", "x or y".
Known both(const Known& left, const Known& right) noexcept;
Known either(const Known& left, const Known& right) noexcept;

}  // namespace pellum::lint
