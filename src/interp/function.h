// A user function of the tree-walker: a place in the syntax tree together with the scope it was
// made in. The tree belongs to whoever parsed it and outlives every function made from it.
#pragma once

#include "interp/environment.h"
#include "parser/ast.h"

namespace pellum {

struct FunctionObj final : CallableObj {
    FunctionObj(const FunctionLiteral& source, Ref<Environment> scope) noexcept
        : CallableObj(ValueKind::Function),
          name(source.name),
          params(source.params),
          body(source.body),
          closure(std::move(scope)) {}

    std::string_view functionName() const noexcept override { return name.text(); }

    Symbol name;
    const std::vector<Symbol>& params;
    const Block& body;
    Ref<Environment> closure;
};

}  // namespace pellum
