// The library of the language: the catalogue of builtins and its registration. Both engines install
// the same natives, under the same names, when they are constructed.
#pragma once

#include "builtins/native.h"

#include <span>

namespace pellum {

// A row of the catalogue.
struct Builtin {
    const char* name;
    NativeFunction fn;
    std::int32_t minArity;
    std::int32_t maxArity;  // or `unlimited`
};

// All builtins in registration order.
std::span<const Builtin> builtinCatalogue() noexcept;

// Defines every builtin and the constants PI and E in `scope`, through its define(Symbol, Value).
template <typename Scope>
void registerBuiltins(Scope& scope) {
    for (const Builtin& row : builtinCatalogue()) {
        scope.define(Symbol(row.name), Value(Ref<CallableObj>(makeRef<NativeObj>(
                                           row.name, row.fn, row.minArity, row.maxArity))));
    }
    scope.define(Symbol("PI"), Value(3.141592653589793));
    scope.define(Symbol("E"), Value(2.718281828459045));
}

}  // namespace pellum
