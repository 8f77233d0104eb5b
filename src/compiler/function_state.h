// What the compiler knows about one function while it compiles it: the locals in scope, what the
// function captures, and the loops around the current statement.
#pragma once

#include "compiler/emitter.h"
#include "value/string.h"

#include <optional>

namespace pellum {

// A local's slot is its position in the list of locals; the first parameter has slot 0.
struct Local {
    Symbol name;
    std::int32_t depth;       // the scope depth at its declaration
    bool isCaptured = false;  // by an inner function
};

struct Loop {
    std::int32_t depth;                   // the scope depth that a break or continue returns to
    std::vector<std::size_t> breakJumps;  // operands to patch
    std::vector<std::size_t> continueJumps;
};

class FunctionState {
public:
    // `enclosing` is null for the script. The script's top level has scope depth 0, a function
    // body 1.
    explicit FunctionState(FunctionState* enclosing)
        : code(*proto), enclosing_(enclosing), depth_(enclosing ? 1 : 0) {}

    void beginScope() noexcept { ++depth_; }
    // Emits the removal of the scope's locals from the stack.
    void endScope(const Node& node);
    bool isGlobalScope() const noexcept { return depth_ == 0; }
    std::int32_t depth() const noexcept { return depth_; }

    // Makes the value on top of the stack the local `name` of the current scope; yields its slot.
    std::size_t declareLocal(const Symbol& name);
    // Emits the removal of all locals deeper than `depth`, which stay declared.
    void emitLeaveScopes(std::int32_t depth, const Node& node);

    // The slot of the latest local of that name.
    std::optional<std::size_t> resolveLocal(const Symbol& name) const noexcept;
    // The upvalue for a variable of an enclosing function; captures it on the way.
    std::optional<std::size_t> resolveUpvalue(const Symbol& name);

    Ref<FunctionProto> proto = makeRef<FunctionProto>();
    Emitter code;
    std::vector<Loop> loops;  // innermost last

private:
    void emitRemoval(const Local& local, const Node& node);
    std::size_t addUpvalue(UpvalueDescriptor descriptor);

    FunctionState* enclosing_;
    std::int32_t depth_;
    std::vector<Local> locals_;
};

}  // namespace pellum
