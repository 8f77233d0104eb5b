// The scopes of the tree-walker: a chain of environments, each binding names to values. A closure
// keeps the environment it was made in alive, and through it all enclosing ones.
#pragma once

#include "value/string.h"
#include "value/value.h"

#include <unordered_map>

namespace pellum {

class Environment final : public Object {
public:
    // The global scope has no parent.
    explicit Environment(Ref<Environment> parent = {}) noexcept : parent_(std::move(parent)) {}

    // Binds `name` in this very scope, replacing an earlier binding in it. Does nothing when memory
    // is refused.
    void define(const Symbol& name, Value value);

    // The value bound to `name` in this scope or the nearest enclosing one that has it, or null.
    // The pointer is valid until that scope next defines a name.
    Value* lookup(const Symbol& name) noexcept;

    // Calls `visit` with the name and the value of each binding of this very scope.
    template <typename Visit>
    void forEach(Visit visit) const {
        for (const Binding& binding : bindings_) visit(binding.name->view(), binding.value);
    }

    // Forgets all bindings of this scope, so that an iteration can reuse what nobody has captured.
    void clear() noexcept;

private:
    // Interned strings are never freed, so a plain pointer identifies a name.
    struct Binding {
        const StringObj* name;
        Value value;
    };

    Value* findHere(const StringObj* name) noexcept;
    // Adds the last binding to the index, and with it all others if there is no index yet.
    void indexLast();

    std::vector<Binding> bindings_;
    std::unordered_map<const StringObj*, std::size_t> index_;  // positions, once there are many
    Ref<Environment> parent_;
};

}  // namespace pellum
