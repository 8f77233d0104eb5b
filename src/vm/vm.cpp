#include "vm/vm.h"

#include "builtins/builtins.h"
#include "value/host_stack.h"
#include "vm/translator.h"

#include <algorithm>

namespace pellum {

namespace {

const Instruction* exitInstruction(const void* const* arms) {
    static const Instruction exit = [&] {
        Instruction instruction;
        instruction.op = RegisterOp::EXIT;
        if (arms) instruction.arm = arms[static_cast<std::size_t>(RegisterOp::EXIT)];
        return instruction;
    }();
    return &exit;
}

}  // namespace

VM::VM(Console& console, Code preferred)
    : Caller(console),
      frames_(std::make_unique_for_overwrite<Frame[]>(maxFrames + 1)),
      frame_(frames_.get()),
      lastFrame_(frames_.get() + maxFrames),
      exit_(exitInstruction(runRegisterCode(nullptr))),
      preferred_(preferred) {
    *frame_ = Frame{nullptr, nullptr, nullptr, stack_.begin(), true, false};
    registerBuiltins(globals_);
}

VM::~VM() {
    coverTopFrame();
    while (frameCount() > 0) popFrame();
}

Value VM::run(const Ref<FunctionProto>& script) {
    push(closureOf(script), Position{});
    callValue(0, Position{});
    return runToBase();
}

Value VM::closureOf(const Ref<FunctionProto>& script) {
    auto closure = makeRef<VMClosure>(script);
    closure->code = &codeOf(script);
    return Value(Ref<CallableObj>(std::move(closure)));
}

Value VM::call(const Value& callee, Arguments args) {
    if (hostStackIsLow()) throw RuntimeError("call stack overflow (too much recursion)");
    const std::size_t outerDepth = std::exchange(baseDepth_, frameCount());
    try {
        Value result = callOnTop(callee, args);
        baseDepth_ = outerDepth;
        return result;
    } catch (...) {
        // A lack of memory passes by the handlers of the function called, and whoever asked for the
        // call makes an error of it that a handler further out may catch.
        dropHandlersAbove(baseDepth_);
        baseDepth_ = outerDepth;
        throw;
    }
}

void VM::recover(Mark mark) noexcept {
    coverTopFrame();
    while (frameCount() > mark.frameCount) popFrame();
    closeUpvalues(stack_.slot(mark.stackSize));
    stack_.resize(mark.stackSize);
}

Value VM::callOnTop(const Value& callee, Arguments args) {
    if (static_cast<std::size_t>(stack_.end() - stack_.top()) <= args.size()) {
        throw RuntimeError("stack overflow");
    }
    Value* slot = stack_.top();
    *slot++ = callee;
    for (Value& arg : args) *slot++ = std::move(arg);
    stack_.setTop(slot);
    if (!enterClosure(slot - args.size() - 1, args.size())) callValue(args.size(), Position{});
    if (frameCount() == baseDepth_) {  // a native, which has run already
        if (steps_.areCounted()) steps_.take();
        return stack_.pop();
    }
    return runToBase();
}

Value VM::runToBase() {
    frames_[baseDepth_].pc = exit_;
    for (;;) {
        Value caught;
        try {
            while (frameCount() > baseDepth_) {
                if (frame_->isPlain) {
                    runStackCode();
                } else {
                    runRegisterCode(this);
                }
            }
            return stack_.pop();
        } catch (const ThrownValue& thrown) {
            caught = thrown.value;
            if (!enterHandler(std::move(caught))) throw;
        } catch (const RuntimeError& error) {
            caught = Value(error.message);
            if (!enterHandler(std::move(caught))) throw;
        }
    }
}

bool VM::raise(std::string_view message) {
    if (!isHandled()) throw RuntimeError(std::string(message), position());
    return raiseCaught(Value(message));
}

bool VM::raiseFailure() {
    if (!isHandled()) throwFailure();
    return raiseCaught(takeFailure());
}

bool VM::raiseCaught(Value caught) {
    enterHandler(std::move(caught));
    return false;
}

void VM::enterTry(const Value* top, const void* target) {
    const auto frames = static_cast<std::uint32_t>(frameCount());
    const auto size = static_cast<std::uint32_t>(top - stack_.begin());
    if (!handlers_.empty()) {
        Handler& last = handlers_.back();
        if (last.frameCount == frames && last.stackSize == size && last.target == target) {
            ++last.times;
            return;
        }
    }
    handlers_.push_back({frames, size, target, 1});
}

// A handler outlives its `try` when that is left by `break`, `continue` or `return`; it may then
// fire where the stack is shorter than it was, and the catch code finds nil in the missing slots.
bool VM::enterHandler(Value caught) {
    if (handlers_.empty() || handlers_.back().frameCount <= baseDepth_) return false;
    const Handler handler = handlers_.back();
    leaveTry();
    coverTopFrame();
    while (frameCount() > handler.frameCount) popFrame();
    closeUpvalues(stack_.slot(handler.stackSize));
    stack_.resize(handler.stackSize);
    push(std::move(caught));
    if (frame_->isPlain) {
        frame_->ip = static_cast<const std::uint8_t*>(handler.target);
    } else {
        frame_->pc = static_cast<const Instruction*>(handler.target);
    }
    return true;
}

// Register code does not keep the stack's top up to date; what it uses ends with its frame.
void VM::coverTopFrame() noexcept {
    if (frame_->isPlain) return;
    stack_.setTop(std::max(stack_.top(), frame_->base + frame_->closure->code->maxDepth));
}

// The usual call: of a closure whose register code fits on the stack. False, and nothing done,
// where it is not usual.
bool VM::enterClosure(Value* callee, std::size_t argCount) noexcept {
    if (callee->kind() != ValueKind::Closure) return false;
    auto& closure = static_cast<VMClosure&>(*static_cast<CallableObj*>(callee->object()));
    const RegisterCode& code = *closure.code;
    if (argCount != code.arity || frame_ == lastFrame_ || frame_->isPlain ||
        stack_.end() - callee <= static_cast<std::ptrdiff_t>(code.maxDepth)) {
        return false;
    }
    *++frame_ = Frame{&closure, code.instructions.data(), nullptr, callee + 1, false, false};
    return true;
}

void VM::callValue(std::size_t argCount, Position at) {
    const Value& callee = stack_.peek(argCount);
    switch (callee.kind()) {
        case ValueKind::Closure:
            return pushFrame(static_cast<VMClosure&>(callee.asFunction()), argCount, at);
        case ValueKind::Native:
            return callNativeOnTop(static_cast<const NativeObj&>(callee.asFunction()), argCount,
                                   at);
        default: throw RuntimeError(std::string(typeName(callee)) + " is not callable", at);
    }
}

void VM::callNativeOnTop(const NativeObj& native, std::size_t argCount, Position at) {
    // The arguments stay on the stack while the native runs, even those that it moves from.
    Values args(stack_.top() - argCount, stack_.top());
    Value result = callNative(native, *this, args, at);
    stack_.resize(stack_.size() - argCount);
    stack_.peek() = std::move(result);
}

void VM::pushFrame(VMClosure& closure, std::size_t argCount, Position at) {
    const FunctionProto& proto = *closure.proto;
    if (argCount != proto.arity) {
        throw arityError(proto.name, std::to_string(proto.arity), argCount, at);
    }
    if (frameCount() == maxFrames) {
        throw RuntimeError("call stack overflow (too much recursion)", at);
    }
    Value* const base = stack_.top() - argCount;
    const RegisterCode& code = translatedCode(closure);
    const bool isExact = needsExactCallee(base - 1);
    const bool isPlain = isExact || preferred_ == Code::Stack || !code.isUsable() ||
                         stack_.end() - base < static_cast<std::ptrdiff_t>(code.maxDepth);
    if (isPlain && steps_.areCounted()) steps_.take();
    *++frame_ = Frame{&closure,          isPlain ? exit_ : code.instructions.data(),
                      proto.code.data(), base,
                      isPlain,           isExact};
    if (isPlain) closure.retain();
}

// Whether what is called now must leave its slots exactly as the stack code would: a handler of the
// calling frame that has outlived its `try` may find them among its own.
bool VM::needsExactCallee(const Value* calleeSlot) const noexcept {
    if (frame_->isExact) return true;
    if (!frame_->isPlain) return false;
    const auto position =
        static_cast<std::size_t>(calleeSlot - const_cast<VM*>(this)->stack_.begin());
    const std::size_t count = frameCount();
    for (auto handler = handlers_.rbegin();
         handler != handlers_.rend() && handler->frameCount == count; ++handler) {
        if (handler->stackSize > position) return true;
    }
    return false;
}

RegisterCode& VM::codeOf(const Ref<FunctionProto>& proto) {
    std::unique_ptr<RegisterCode>& code = codes_[proto.get()];
    if (!code) {
        auto made = std::make_unique<RegisterCode>();
        made->proto = proto;
        made->functions.resize(proto->functions.size());
        code = std::move(made);
    }
    return *code;
}

const RegisterCode& VM::translatedCode(VMClosure& closure) {
    RegisterCode& code = *closure.code;
    if (!code.isTranslated && preferred_ == Code::Register) {
        translate(code, globals_, runRegisterCode(nullptr),
                  steps_.areCounted() ? Steps::Counted : Steps::Free);
    }
    return code;
}

std::vector<Ref<FunctionProto>> VM::functionsRun() const {
    std::vector<Ref<FunctionProto>> functions;
    functions.reserve(codes_.size());
    for (const auto& [proto, code] : codes_) {
        if (code) functions.push_back(code->proto);  // else memory was short
    }
    return functions;
}

// What code a closure runs is kept by the prototype that both hold.
void VM::forgetUnusedCode() noexcept {
    const auto isUnused = [](const auto& entry) {
        return !entry.second || entry.second->proto->isUnshared();
    };
    while (std::erase_if(codes_, isUnused) > 0) {
    }
}

void VM::popFrame() noexcept {
    if (frame_->isPlain) frame_->closure->release();
    --frame_;
}

void VM::dropHandlersAbove(std::size_t count) noexcept {
    while (!handlers_.empty() && handlers_.back().frameCount > count) handlers_.pop_back();
}

// Removes the top frame and its part of the stack, and leaves its result there instead.
void VM::leavePlainFrame() {
    Value result = stack_.pop();
    Value* const base = frame_->base;
    closeUpvalues(base);
    popFrame();
    dropHandlersAbove(frameCount());
    stack_.resize(static_cast<std::size_t>(base - stack_.begin()));
    stack_.peek() = std::move(result);  // in place of the callee
}

Value VM::makeClosure(std::size_t functionIndex) {
    const VMClosure& outer = *frame_->closure;
    RegisterCode*& code = outer.code->functions[functionIndex];
    if (!code) code = &codeOf(outer.proto->functions[functionIndex]);
    auto closure = makeRef<VMClosure>(code->proto);
    closure->code = code;
    for (const UpvalueDescriptor& descriptor : closure->proto->upvalues) {
        const auto index = static_cast<std::size_t>(descriptor.index);
        closure->upvalues.push_back(descriptor.isLocal ? captureSlot(frame_->base + index)
                                                       : outer.upvalues[index]);
    }
    return Value(Ref<CallableObj>(std::move(closure)));
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
    const FunctionProto& proto = *frame_->closure->proto;
    if (frame_->isPlain) {
        return {proto.lines[static_cast<std::size_t>(frame_->ip - proto.code.data())], 0};
    }
    const RegisterCode& code = *frame_->closure->code;
    const auto index = static_cast<std::size_t>(frame_->pc - code.instructions.data());
    return {proto.lines[code.codeOffsets[index]], 0};
}

void VM::fail(std::string message) const { throw RuntimeError(std::move(message), position()); }

void VM::failUndefined(const GlobalCell& cell) {
    fail("undefined variable '" + std::string(cell.name->view()) + "'");
}

void VM::failAssignUndefined(const GlobalCell& cell) {
    fail("cannot assign to undefined variable '" + std::string(cell.name->view()) +
         "' (use 'let' to declare it)");
}

}  // namespace pellum
