#include "compiler/disassembler.h"

#include "value/format.h"

#include <algorithm>

namespace pellum {

namespace {

std::string padLeft(const std::string& text, std::size_t width) {
    return text.size() < width ? std::string(width - text.size(), ' ') + text : text;
}
std::string padRight(std::string text, std::size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

// "2 params" and the like; nothing for none.
std::string counted(std::size_t count, const char* what) {
    if (count == 0) return "";
    return ", " + std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string operandText(const FunctionProto& proto, Operand kind, const std::uint8_t* operand,
                        std::size_t next) {
    switch (kind) {
        case Operand::None: break;
        case Operand::U8: return std::to_string(*operand);
        case Operand::U16: return std::to_string(readU16(operand));
        case Operand::Constant: {
            const std::size_t index = readU16(operand);
            return std::to_string(index) + " (" + toReprString(proto.constants[index]) + ")";
        }
        case Operand::Jump: return "-> " + std::to_string(next + readU16(operand));
        case Operand::Loop: return "-> " + std::to_string(next - readU16(operand));
    }
    return "";
}

void appendProto(std::string& out, const FunctionProto& proto) {
    out += "== " + (proto.name.empty() ? "script" : proto.name);
    out += counted(proto.arity, "param") + counted(proto.upvalues.size(), "upvalue") + " ==\n";
    for (const UpvalueDescriptor& upvalue : proto.upvalues) {
        out += std::string("   captures ") + (upvalue.isLocal ? "local " : "upvalue ") +
               std::to_string(upvalue.index) + "\n";
    }
    for (std::size_t offset = 0; offset < proto.code.size();) {
        const bool isSameLine = offset > 0 && proto.lines[offset] == proto.lines[offset - 1];
        out += padLeft(isSameLine ? "|" : std::to_string(proto.lines[offset]), 4) + " ";
        out += disassembleInstruction(proto, offset) + "\n";
        const std::uint8_t byte = proto.code[offset];
        offset += 1 + (byte < opInfo.size() ? operandSize(opInfo[byte].operand) : 0);
    }
}

}  // namespace

std::string disassembleInstruction(const FunctionProto& proto, std::size_t offset) {
    const std::uint8_t byte = proto.code[offset];
    std::string out = padLeft(std::to_string(offset), 5) + " ";
    if (byte >= opInfo.size()) return out + "byte " + std::to_string(byte);
    const OpInfo& info = opInfo[byte];
    const std::size_t next = offset + 1 + operandSize(info.operand);
    const std::string operand = operandText(proto, info.operand, &proto.code[offset] + 1, next);
    return out + (operand.empty() ? info.name : padRight(info.name, 15) + operand);
}

std::string disassemble(const FunctionProto& proto) {
    std::string out;
    std::vector<const FunctionProto*> pending{&proto};
    while (!pending.empty()) {
        const FunctionProto* next = pending.back();
        pending.pop_back();
        appendProto(out, *next);
        for (auto inner = next->functions.rbegin(); inner != next->functions.rend(); ++inner) {
            pending.push_back(inner->get());
        }
    }
    return out;
}

}  // namespace pellum
