// The virtual machine: runs compiled functions on one value stack that all calls share. It is the
// default engine, and must agree with the tree-walker in everything but a few listed differences.
//
// A prototype is translated to register code when it is first run. What the translation does not
// cover (see `StackMachine` in the list below) runs on the plain stack machine, on the same stack,
// frames and handlers; a machine can also be told to run everything there.
#pragma once

#include "builtins/native.h"
#include "operations/operations.h"
#include "value/limits.h"
#include "vm/closure.h"
#include "vm/globals.h"
#include "vm/register_code.h"
#include "vm/step_counter.h"
#include "vm/value_stack.h"

#include <memory>
#include <unordered_map>

namespace pellum {

class VM final : public Caller {
public:
    // Calls nested deeper than this, the script's own included, are an error of the program.
    static constexpr std::size_t maxFrames = limit(4'096, 400);

    enum class Code { Register, Stack };

    // Reserves the stacks and installs the builtins. REQUIRES: the console outlives this.
    explicit VM(Console& console, Code preferred = Code::Register);
    ~VM() override;

    // Runs a script's prototype to its end and returns the value of its final return. Throws
    // RuntimeError and ThrownValue; after that, the machine is of no more use.
    Value run(const Ref<FunctionProto>& script);

    Value call(const Value& callee, Arguments args) override;

    // Binds a global, for what is installed beside the builtins.
    void define(const Symbol& name, Value value) { globals_.define(name, std::move(value)); }

    // For hosts that keep a machine: the value of a global or null, and the function whose body is
    // a script's prototype.
    const Value* global(const Symbol& name) const { return globals_.find(name); }
    Value closureOf(const Ref<FunctionProto>& script);

    // How deep the machine is while nothing runs, or in a native; and the way back there after
    // something that `call` has thrown, behind which the machine is of use again.
    struct Mark {
        std::size_t frameCount;
        std::size_t stackSize;
    };
    Mark mark() const noexcept { return {frameCount(), stack_.size()}; }
    void recover(Mark mark) noexcept;

    // Counts the steps that are taken: functions that are called, rounds of loops after the first,
    // and builtins that builtins call. REQUIRES: nothing has run so far.
    StepCounter& countSteps() noexcept {
        steps_.count();
        return steps_;
    }

    // Where the program is, or was when something was thrown that has not been recovered from: the
    // function, or null, and the line, or 0 where a native that has called back hides it.
    const FunctionProto* runningFunction() const noexcept {
        return frame_->closure ? frame_->closure->proto.get() : nullptr;
    }
    std::uint32_t runningLine() const noexcept {
        const bool isKnown = frame_->closure && (frame_->isPlain || frame_->pc != exit_);
        return isKnown ? position().line : 0;
    }

    // The functions that have been called, and those that are no longer called may be dropped.
    // REQUIRES: nothing runs.
    std::vector<Ref<FunctionProto>> functionsRun() const;
    void forgetUnusedCode() noexcept;

private:
    struct Frame {
        VMClosure* closure;  // kept alive by the callee's slot, or by the frame where it is plain
        const Instruction* pc;   // register code: the instruction being executed, or to return to
        const std::uint8_t* ip;  // stack code: likewise
        Value* base;             // slot 0; the callee is just below
        bool isPlain;            // runs stack code
        bool isExact;            // and so does whatever it calls
    };

    // A `try` that has been entered: what to return to when something is thrown. A loop that leaves
    // its `try` by `break` may enter the same one millions of times, so equal neighbours are one.
    struct Handler {
        std::uint32_t frameCount;
        std::uint32_t stackSize;
        const void* target;   // an instruction of register code or a byte of stack code
        std::uint64_t times;  // how often it has been entered and not left
    };

    std::size_t frameCount() const noexcept {
        return static_cast<std::size_t>(frame_ - frames_.get());
    }

    // Runs the frames above `baseDepth_` until the last of them returns; what is thrown meanwhile
    // goes to the script's handlers above that depth first.
    Value runToBase();
    Value callOnTop(const Value& callee, Arguments args);

    // What goes wrong in register code need not be thrown where a handler of this run waits. All
    // three answer false once that has been entered, so that the engine goes on there.
    bool raise(std::string_view message);
    bool raiseFailure();
    bool raiseCaught(Value caught);
    bool isHandled() const noexcept {
        return !handlers_.empty() && handlers_.back().frameCount > baseDepth_ &&
               handlers_.back().stackSize < ValueStack::capacity;
    }
    bool enterHandler(Value caught);
    void enterTry(const Value* top, const void* target);
    void leaveTry() noexcept {
        if (--handlers_.back().times == 0) handlers_.pop_back();
    }
    void coverTopFrame() noexcept;

    // Both run the top frame until a frame of the other kind is on top, or `baseDepth_` is reached.
    // Called without a machine, `runRegisterCode` yields the addresses of its arms.
    static const void* const* runRegisterCode(VM* vm);
    void runStackCode();

    // Calls what lies `argCount` below the top of the stack: pushes a frame, or runs a native.
    void callValue(std::size_t argCount, Position at);
    bool enterClosure(Value* callee, std::size_t argCount) noexcept;
    void pushFrame(VMClosure& closure, std::size_t argCount, Position at);
    void callNativeOnTop(const NativeObj& native, std::size_t argCount, Position at);
    bool needsExactCallee(const Value* calleeSlot) const noexcept;
    RegisterCode& codeOf(const Ref<FunctionProto>& proto);
    const RegisterCode& translatedCode(VMClosure& closure);
    void leavePlainFrame();
    void popFrame() noexcept;
    void dropHandlersAbove(std::size_t count) noexcept;

    // Register code: what its arms leave to others. False where the top frame, or the place in it,
    // has changed: by a call, or because a handler has been entered.
    bool callSlowly(Value* callee, std::size_t argCount);
    bool callNativeAt(Value* to, const NativeObj& native, std::size_t argCount);
    bool binarySlowly(ArithmeticOp op, Value& to, Value& left, Value& right, std::uint32_t ends);
    bool indexSlowly(Value& to, Value& object, Value& index, std::uint32_t ends);
    bool field(Instruction& at, Value& to, Value& object);

    // Whether the comparison holds, or Failed where a handler has been entered.
    enum class Outcome : std::uint8_t { No, Yes, Failed };
    Outcome compareSlowly(Comparison comparison, Value& left, Value& right, std::uint32_t ends);

    // Those that do not end in a handler, or throw to reach one.
    bool equalSlowly(Value& left, Value& right, std::uint32_t ends);
    void setIndexSlowly(Value& object, Value& index, Value& value, std::uint32_t ends);
    void setField(Instruction& at, Value& object, Value& value);
    void negateSlowly(Value& to, Value& operand, std::uint32_t ends);
    void buildList(Value& to, Value* first, std::size_t count);
    void buildMap(Value& to, Value* first, std::size_t valueCount);
    void iterList(Value& to, Value& iterable, std::uint32_t ends);
    void lengthSlowly(Value& to, Value& value, std::uint32_t ends);
    void advanceSlowly(Value& counter, const Value& step);
    void leaveScopes(const Value* base, std::int32_t what) noexcept;
    bool forTestSlowly(const Value& counter, const Value& limit, const Value& step);
    Value lengthOf(const Value& value);

    Value makeClosure(std::size_t functionIndex);
    Ref<Upvalue> captureSlot(Value* slot);
    void closeUpvalues(const Value* from) noexcept;

    void push(Value value) {
        if (!stack_.push(std::move(value))) fail("stack overflow");
    }
    void push(Value value, Position at);

    // Instructions of the stack code that are more than a line or two.
    GlobalCell& cellOf(const Value& name) { return globals_.cell(name.asString()); }
    [[noreturn]] void failUndefined(const GlobalCell& cell);
    [[noreturn]] void failAssignUndefined(const GlobalCell& cell);
    Value mapOf(const Value* first, std::size_t valueCount);
    void arithmetic(ArithmeticOp op);
    void comparison(Comparison comparison);

    // The place of the current instruction: its line, without a column.
    Position position() const noexcept;
    [[noreturn]] void fail(std::string message) const;

    ValueStack stack_;
    std::unique_ptr<Frame[]>
        frames_;                 // the first is nobody's, so that even the script has a caller
    Frame* frame_;               // the top one
    Frame* lastFrame_;           // the last that there is room for
    std::size_t baseDepth_ = 0;  // of the innermost run: that of the script, or of a callback
    const Instruction* exit_;    // what a frame returns to that does not return to register code
    std::vector<Ref<Upvalue>> openUpvalues_;  // by ascending slot
    std::vector<Handler> handlers_;           // innermost last
    Globals globals_;
    StepCounter steps_;
    Code preferred_;
    std::unordered_map<const FunctionProto*, std::unique_ptr<RegisterCode>> codes_;
};

}  // namespace pellum
