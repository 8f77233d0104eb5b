// The functions of the virtual machine and the variables they capture.
#pragma once

#include "compiler/function_proto.h"

namespace pellum {

// A captured variable: a slot of the value stack while that slot lives, then a value of its own.
// Closures that captured the same variable share one.
struct Upvalue final : Object {
    explicit Upvalue(Value* slot) noexcept : location(slot) {}

    // Takes the variable over from its slot.
    void close() noexcept {
        closed = *location;
        location = &closed;
    }

    Value* location;  // never null
    Value closed;
};

struct RegisterCode;

struct VMClosure final : CallableObj {
    explicit VMClosure(Ref<FunctionProto> function)
        : CallableObj(ValueKind::Closure), proto(std::move(function)) {
        upvalues.reserve(proto->upvalues.size());
    }

    std::string_view functionName() const noexcept override { return proto->name; }

    Ref<FunctionProto> proto;
    CellVector<Ref<Upvalue>> upvalues;  // one for each descriptor of the prototype
    RegisterCode* code = nullptr;       // the machine's, once it has run the prototype
};

}  // namespace pellum
