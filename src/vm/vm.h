// The virtual machine: runs compiled functions on one value stack that all calls share. It is the
// default engine, and must agree with the tree-walker in everything but a few listed differences.
#pragma once

#include "builtins/native.h"
#include "operations/operations.h"
#include "vm/closure.h"
#include "vm/value_stack.h"

#include <unordered_map>

namespace pellum {

class VM final : public Caller {
public:
    // Calls nested deeper than this, the script's own included, are an error of the program.
    static constexpr std::size_t maxFrames = 4'096;

    // Reserves the stacks and installs the builtins. REQUIRES: the console outlives this.
    explicit VM(Console& console);

    // Runs a script's prototype to its end and returns the value of its final return. Throws
    // RuntimeError and ThrownValue; after that, the machine is of no more use.
    Value run(const Ref<FunctionProto>& script);

    Value call(const Value& callee, std::vector<Value> args) override;

    // Binds a global, for the registration of builtins.
    void define(const Symbol& name, Value value);

private:
    struct Frame {
        Ref<VMClosure> closure;
        const std::uint8_t* ip;  // the instruction being executed, for the lines of errors
        std::size_t base;        // the stack position of slot 0; the callee is just below
    };

    // A `try` that has been entered: what to return to when something is thrown.
    struct Handler {
        std::size_t frameCount;
        std::size_t stackSize;
        const std::uint8_t* catchIp;
    };

    // The dispatch loop, until a return brings the number of frames down to `baseDepth`; what is
    // thrown meanwhile goes to the script's handlers above that depth first.
    Value runToDepth(std::size_t baseDepth);
    Value dispatch(std::size_t baseDepth);
    // Returns control to the innermost handler above `baseDepth`; false when there is none.
    bool enterHandler(std::size_t baseDepth, Value caught);

    // Calls what lies `argCount` below the top: pushes a frame, or runs a native to its end.
    void callValue(std::size_t argCount, Position at);
    void callClosure(const VMClosure& closure, std::size_t argCount, Position at);
    void leaveFrame();

    void makeClosure(std::size_t functionIndex);
    Ref<Upvalue> captureSlot(Value* slot);
    void closeUpvalues(const Value* from) noexcept;

    void push(Value value) { push(std::move(value), position()); }
    void push(Value value, Position at);

    // Instructions that are more than a line or two.
    void defineGlobal(const Value& name);
    void getGlobal(const Value& name);
    void setGlobal(const Value& name);
    void buildList(std::size_t count);
    void buildMap(std::size_t pairCount);
    void arithmetic(ArithmeticOp op);
    void comparison(Comparison comparison);
    void length();
    bool forTest();

    // The place of the current instruction: its line, without a column.
    Position position() const noexcept;
    [[noreturn]] void fail(std::string message) const;

    ValueStack stack_;
    std::vector<Frame> frames_;
    std::vector<Ref<Upvalue>> openUpvalues_;               // by ascending slot
    std::vector<Handler> handlers_;                        // innermost last
    std::unordered_map<const StringObj*, Value> globals_;  // by interned name
};

}  // namespace pellum
