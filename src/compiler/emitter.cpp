#include "compiler/emitter.h"

#include "driver/errors/errors.h"
#include "value/limits.h"

namespace pellum {

namespace {

constexpr std::size_t maxConstants = limit(0x10000, 4'000);
constexpr std::size_t maxJump = limit(0xFFFF, 3'999);

}  // namespace

void failCompile(const Node& node, std::string message) {
    throw CompileError(std::move(message), node.line, node.column);
}

void Emitter::emitByte(std::uint8_t byte, const Node& node) {
    proto_.code.push_back(byte);
    proto_.lines.push_back(node.line);
}

void Emitter::emitU8(OpCode op, std::size_t operand, const Node& node) {
    emit(op, node);
    emitByte(static_cast<std::uint8_t>(operand & 0xFF), node);
}

void Emitter::emitU16(OpCode op, std::size_t operand, const Node& node) {
    emit(op, node);
    emitByte(static_cast<std::uint8_t>(operand >> 8 & 0xFF), node);
    emitByte(static_cast<std::uint8_t>(operand & 0xFF), node);
}

std::size_t Emitter::addConstant(Value value) {
    proto_.constants.push_back(std::move(value));
    const std::size_t index = proto_.constants.size() - 1;
    if (index >= maxConstants) throw CompileError("too many constants", 0, 0);
    return index;
}

void Emitter::emitConstant(Value value, const Node& node) {
    emitU16(OpCode::CONSTANT, addConstant(std::move(value)), node);
}

std::size_t Emitter::emitJump(OpCode op, const Node& node) {
    emitU16(op, 0xFFFF, node);
    return here() - 2;
}

void Emitter::patchJump(std::size_t operandOffset, const Node& node) {
    const std::size_t distance = here() - operandOffset - 2;
    if (distance > maxJump) failCompile(node, "branch too large");
    proto_.code[operandOffset] = static_cast<std::uint8_t>(distance >> 8);
    proto_.code[operandOffset + 1] = static_cast<std::uint8_t>(distance & 0xFF);
}

void Emitter::emitLoop(std::size_t start, const Node& node) {
    // The distance covers the operand too, which is not yet emitted when it is checked.
    emit(OpCode::LOOP, node);
    const std::size_t distance = here() - start + 2;
    if (distance > maxJump) failCompile(node, "loop body too large");
    emitByte(static_cast<std::uint8_t>(distance >> 8), node);
    emitByte(static_cast<std::uint8_t>(distance & 0xFF), node);
}

}  // namespace pellum
