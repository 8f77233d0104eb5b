#include "vm/vm.h"

#include "builtins/builtins.h"
#include "value/host_stack.h"

namespace pellum {

VM::VM(Console& console) : Caller(console) {
    frames_.reserve(maxFrames);
    registerBuiltins(*this);
}

void VM::define(const Symbol& name, Value value) {
    globals_[name.string().get()] = std::move(value);
}

Value VM::run(const Ref<FunctionProto>& script) {
    push(Value(Ref<CallableObj>(makeRef<VMClosure>(script))), Position{});
    callValue(0, Position{});
    return runToDepth(0);
}

Value VM::call(const Value& callee, std::vector<Value> args) {
    if (hostStackIsLow()) throw RuntimeError("call stack overflow (too much recursion)");
    const std::size_t baseDepth = frames_.size();
    push(callee, Position{});
    for (Value& arg : args) push(std::move(arg), Position{});
    callValue(args.size(), Position{});
    if (frames_.size() == baseDepth) return stack_.pop();  // a native, which has run already
    return runToDepth(baseDepth);
}

Value VM::runToDepth(std::size_t baseDepth) {
    for (;;) {
        Value caught;
        try {
            return dispatch(baseDepth);
        } catch (const ThrownValue& thrown) {
            caught = thrown.value;
            if (!enterHandler(baseDepth, std::move(caught))) throw;
        } catch (const RuntimeError& error) {
            caught = Value(error.message);
            if (!enterHandler(baseDepth, std::move(caught))) throw;
        }
    }
}

// A handler outlives its `try` when that is left by `break`, `continue` or `return`; it may then
// fire where the stack is shorter than it was, and the catch code finds nil in the missing slots.
bool VM::enterHandler(std::size_t baseDepth, Value caught) {
    if (handlers_.empty() || handlers_.back().frameCount <= baseDepth) return false;
    const Handler handler = handlers_.back();
    handlers_.pop_back();
    frames_.resize(handler.frameCount);
    closeUpvalues(stack_.slot(handler.stackSize));
    stack_.resize(handler.stackSize);
    push(std::move(caught));
    frames_.back().ip = handler.catchIp;
    return true;
}

void VM::callValue(std::size_t argCount, Position at) {
    const Value& callee = stack_.peek(argCount);
    switch (callee.kind()) {
        case ValueKind::Closure:
            return callClosure(static_cast<const VMClosure&>(callee.asFunction()), argCount, at);
        case ValueKind::Native: {
            const auto& native = static_cast<const NativeObj&>(callee.asFunction());
            // The arguments stay on the stack while the native runs.
            std::vector<Value> args(stack_.top() - argCount, stack_.top());
            Value result = callNative(native, *this, args, at);
            stack_.resize(stack_.size() - argCount);
            stack_.peek() = std::move(result);
            return;
        }
        default: throw RuntimeError(std::string(typeName(callee)) + " is not callable", at);
    }
}

void VM::callClosure(const VMClosure& closure, std::size_t argCount, Position at) {
    const FunctionProto& proto = *closure.proto;
    if (argCount != proto.arity) {
        throw arityError(proto.name, std::to_string(proto.arity), argCount, at);
    }
    if (frames_.size() == maxFrames) {
        throw RuntimeError("call stack overflow (too much recursion)", at);
    }
    frames_.push_back({Ref<VMClosure>(const_cast<VMClosure*>(&closure)), proto.code.data(),
                       stack_.size() - argCount});
}

// Removes the top frame and its part of the stack, and leaves its result there instead.
void VM::leaveFrame() {
    Value result = stack_.pop();
    const std::size_t base = frames_.back().base;
    closeUpvalues(stack_.slot(base));
    frames_.pop_back();
    while (!handlers_.empty() && handlers_.back().frameCount > frames_.size()) handlers_.pop_back();
    stack_.resize(base);
    stack_.peek() = std::move(result);  // in place of the callee
}

void VM::makeClosure(std::size_t functionIndex) {
    const Frame& frame = frames_.back();
    const auto closure = makeRef<VMClosure>(frame.closure->proto->functions[functionIndex]);
    for (const UpvalueDescriptor& descriptor : closure->proto->upvalues) {
        const auto index = static_cast<std::size_t>(descriptor.index);
        closure->upvalues.push_back(descriptor.isLocal
                                        ? captureSlot(stack_.slot(frame.base + index))
                                        : frame.closure->upvalues[index]);
    }
    push(Value(Ref<CallableObj>(closure)));
}

Ref<Upvalue> VM::captureSlot(Value* slot) {
    auto at = openUpvalues_.end();
    while (at != openUpvalues_.begin() && (*(at - 1))->location >= slot) --at;
    if (at != openUpvalues_.end() && (*at)->location == slot) return *at;
    return *openUpvalues_.insert(at, makeRef<Upvalue>(slot));
}

void VM::closeUpvalues(const Value* from) noexcept {
    while (!openUpvalues_.empty() && openUpvalues_.back()->location >= from) {
        openUpvalues_.back()->close();
        openUpvalues_.pop_back();
    }
}

void VM::push(Value value, Position at) {
    if (!stack_.push(std::move(value))) throw RuntimeError("stack overflow", at);
}

Position VM::position() const noexcept {
    const FunctionProto& proto = *frames_.back().closure->proto;
    return {proto.lines[static_cast<std::size_t>(frames_.back().ip - proto.code.data())], 0};
}

void VM::fail(std::string message) const { throw RuntimeError(std::move(message), position()); }

}  // namespace pellum
