// The verbs of code generation: appends instructions to one prototype, checks the limits of the
// encoding and patches jumps.
#pragma once

#include "compiler/function_proto.h"
#include "parser/ast.h"

namespace pellum {

// Thrown limits stand at the node that is being compiled.
[[noreturn]] void failCompile(const Node& node, std::string message);

class Emitter {
public:
    explicit Emitter(FunctionProto& proto) noexcept : proto_(proto) {}

    // The offset of the next instruction.
    std::size_t here() const noexcept { return proto_.code.size(); }

    void emit(OpCode op, const Node& node) { emitByte(static_cast<std::uint8_t>(op), node); }
    // Operands keep their low 8 or 16 bits; whoever needs a limit checks it first.
    void emitU8(OpCode op, std::size_t operand, const Node& node);
    void emitU16(OpCode op, std::size_t operand, const Node& node);

    // Appends to the pool and returns the index. Throws CompileError when the pool is full.
    std::size_t addConstant(Value value);
    void emitConstant(Value value, const Node& node);

    // Emits a forward jump whose target is not yet known, and returns the place of its operand.
    std::size_t emitJump(OpCode op, const Node& node);
    // Makes the jump lead to here.
    void patchJump(std::size_t operandOffset, const Node& node);
    // Emits a jump back to `start`.
    void emitLoop(std::size_t start, const Node& node);

private:
    void emitByte(std::uint8_t byte, const Node& node);

    FunctionProto& proto_;
};

}  // namespace pellum
