// Stack code as the translator reads it: opcodes with their operands, and where jumps end up.
#pragma once

#include "compiler/function_proto.h"
#include "compiler/opcodes.h"

#include <cstddef>
#include <optional>

namespace pellum {

class StackCode {
public:
    // REQUIRES: the prototype outlives this.
    explicit StackCode(const FunctionProto& proto) noexcept : proto_(proto) {}

    std::size_t size() const noexcept { return proto_.code.size(); }

    // The opcode at an offset; HALT behind the end.
    OpCode opAt(std::size_t offset) const noexcept {
        return offset < size() ? static_cast<OpCode>(proto_.code[offset]) : OpCode::HALT;
    }

    // What follows the opcode. REQUIRES: that has such an operand.
    std::size_t u8At(std::size_t offset) const noexcept { return proto_.code[offset + 1]; }
    std::size_t u16At(std::size_t offset) const noexcept {
        return readU16(&proto_.code[offset] + 1);
    }
    const Value& constantAt(std::size_t offset) const { return proto_.constants[u16At(offset)]; }

    std::size_t jumpTarget(std::size_t offset) const noexcept { return offset + 3 + u16At(offset); }
    std::size_t after(std::size_t offset) const noexcept {
        return offset + 1 + operandSize(opInfo[proto_.code[offset]].operand);
    }

    // Where a jump to `target` ends up that leaves a value of known truth on the stack, if that
    // value is popped there and nothing else is done with it.
    std::optional<std::size_t> threaded(std::size_t target, bool truth) const noexcept {
        for (;;) {
            switch (opAt(target)) {
                case OpCode::POP: return target + 1;
                case OpCode::JUMP: target = jumpTarget(target); break;
                case OpCode::NOT:
                    truth = !truth;
                    ++target;
                    break;
                case OpCode::JUMP_IF_FALSE: target = truth ? target + 3 : jumpTarget(target); break;
                case OpCode::JUMP_IF_TRUE: target = truth ? jumpTarget(target) : target + 3; break;
                default: return std::nullopt;
            }
        }
    }

private:
    const FunctionProto& proto_;
};

}  // namespace pellum
