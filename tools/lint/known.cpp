#include "lint/known.h"

#include <algorithm>
#include <array>

namespace pellum::lint {

namespace {

// By the number of the type, with the article; that of none is empty.
constexpr std::array<std::string_view, 8> names = {
    "", "nil", "a bool", "a number", "a string", "a list", "a map", "a function",
};

Known oneOfBoth(const Known& left, const Known& right) noexcept {
    Known known;
    if (left.type == right.type) known.type = left.type;
    known.hasCall = left.hasCall || right.hasCall;
    return known;
}

}  // namespace

Type typeOf(const Value& value) noexcept {
    const std::string_view name = typeName(value);
    const auto found =
        std::ranges::find_if(names, [&](std::string_view known) { return known.ends_with(name); });
    return static_cast<Type>(found - names.begin());
}

std::string_view withArticle(Type type) noexcept { return names[static_cast<std::size_t>(type)]; }

bool isTypeName(std::string_view name) noexcept {
    return std::ranges::any_of(names, [&](std::string_view known) {
        return !known.empty() && known.substr(known.find(' ') + 1) == name;
    });
}

Known Known::of(Type type) noexcept {
    Known known;
    known.type = type;
    if (type == Type::Nil) {
        known.truth = Truth::Never;
    } else if (type != Type::Unknown && type != Type::Bool) {
        known.truth = Truth::Always;
    }
    return known;
}

Known both(const Known& left, const Known& right) noexcept {
    Known known = oneOfBoth(left, right);
    if (left.truth == Truth::Never || right.truth == Truth::Never) {
        known.truth = Truth::Never;
    } else if (left.truth == right.truth) {
        known.truth = left.truth;
    }
    return known;
}

Known either(const Known& left, const Known& right) noexcept {
    Known known = oneOfBoth(left, right);
    if (left.truth == Truth::Always || right.truth == Truth::Always) {
        known.truth = Truth::Always;
    } else if (left.truth == right.truth) {
        known.truth = left.truth;
    }
    return known;
}

}  // namespace pellum::lint
