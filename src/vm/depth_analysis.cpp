#include "vm/depth_analysis.h"

#include <algorithm>

namespace pellum {

namespace {

// The `try`s around an instruction, as a number; 0 is none. The scan comes to each `try` once.
class Nestings {
public:
    std::int32_t enter(std::int32_t outer) {
        outers_.push_back(outer);
        return static_cast<std::int32_t>(outers_.size()) - 1;
    }
    std::int32_t leave(std::int32_t nesting) const {
        return outers_[static_cast<std::size_t>(nesting)];
    }

private:
    std::vector<std::int32_t> outers_ = {-1};
};

class Scan {
public:
    explicit Scan(const FunctionProto& proto) : proto_(proto), nestings_(proto.code.size(), -1) {
        result_.depths.assign(proto.code.size(), -1);
        result_.isLoopStart.assign(proto.code.size(), false);
    }

    DepthAnalysis run() {
        reach(0, static_cast<std::int32_t>(proto_.arity), 0);
        while (isRegular_ && !pending_.empty()) {
            const std::size_t offset = pending_.back();
            pending_.pop_back();
            step(offset);
        }
        result_.isRegular = isRegular_;
        return std::move(result_);
    }

private:
    void reach(std::size_t offset, std::int32_t depth, std::int32_t nesting) {
        if (offset >= proto_.code.size() || depth < 0) {
            isRegular_ = false;
            return;
        }
        result_.maxDepth = std::max(result_.maxDepth, static_cast<std::uint32_t>(depth));
        std::int32_t& known = result_.depths[offset];
        if (known < 0) {
            known = depth;
            nestings_[offset] = nesting;
            pending_.push_back(offset);
        } else if (known != depth || nestings_[offset] != nesting) {
            isRegular_ = false;
        }
    }

    void step(std::size_t offset) {
        const std::uint8_t byte = proto_.code[offset];
        if (byte >= opInfo.size()) {
            isRegular_ = false;
            return;
        }
        const auto op = static_cast<OpCode>(byte);
        const std::size_t size = 1 + operandSize(opInfo[byte].operand);
        if (offset + size > proto_.code.size()) {
            isRegular_ = false;
            return;
        }
        const std::uint8_t* operand = &proto_.code[offset] + 1;
        const std::size_t u8 = size > 1 ? operand[0] : 0;
        const std::size_t u16 = size > 2 ? readU16(operand) : 0;
        const std::size_t next = offset + size;
        const std::int32_t depth = result_.depths[offset];
        const std::int32_t nesting = nestings_[offset];
        const auto goOn = [&](std::int32_t effect) {
            const std::int32_t needed = effect < 0 ? -effect : 0;
            if (depth < needed) isRegular_ = false;
            reach(next, depth + effect, nesting);
        };

        switch (op) {
            case OpCode::CONSTANT:
            case OpCode::NIL:
            case OpCode::TRUE:
            case OpCode::FALSE:
            case OpCode::GET_GLOBAL:
            case OpCode::GET_UPVALUE:
            case OpCode::INDEX_GET_KEEP: return goOn(1);
            case OpCode::GET_LOCAL: return checkSlot(u16, depth), goOn(1);
            case OpCode::SET_LOCAL: return checkSlot(u16, depth), goOn(0);
            case OpCode::SET_GLOBAL:
            case OpCode::SET_UPVALUE:
            case OpCode::NEGATE:
            case OpCode::NOT:
            case OpCode::ITER_LIST:
            case OpCode::LEN: return goOn(0);
            case OpCode::POP:
            case OpCode::CLOSE_UPVALUE:
            case OpCode::DEFINE_GLOBAL:
            case OpCode::INDEX_GET:
            case OpCode::ADD:
            case OpCode::SUB:
            case OpCode::MUL:
            case OpCode::DIV:
            case OpCode::FLOOR_DIV:
            case OpCode::MOD:
            case OpCode::POW:
            case OpCode::EQUAL:
            case OpCode::NOT_EQUAL:
            case OpCode::LESS:
            case OpCode::LESS_EQUAL:
            case OpCode::GREATER:
            case OpCode::GREATER_EQUAL: return goOn(-1);
            case OpCode::BUILD_LIST: return goOn(1 - static_cast<std::int32_t>(u16));
            case OpCode::BUILD_MAP: return goOn(1 - 2 * static_cast<std::int32_t>(u16));
            case OpCode::INDEX_SET:
            case OpCode::FOR_TEST: return goOn(-2);
            case OpCode::CALL: return goOn(-static_cast<std::int32_t>(u8));
            case OpCode::CLOSURE:
                for (const UpvalueDescriptor& upvalue : proto_.functions[u16]->upvalues) {
                    if (upvalue.isLocal) capture(static_cast<std::size_t>(upvalue.index));
                }
                return goOn(1);
            case OpCode::JUMP: return reach(next + u16, depth, nesting);
            case OpCode::JUMP_IF_FALSE:
            case OpCode::JUMP_IF_TRUE: reach(next + u16, depth, nesting); return goOn(0);
            case OpCode::LOOP: {
                const std::size_t start = next - u16;
                result_.isLoopStart[start] = true;
                return reach(start, depth, nesting);
            }
            case OpCode::RETURN: return;
            case OpCode::TRY_BEGIN:
                result_.hasHandlers = true;
                reach(next + u16, depth + 1, nesting);
                return reach(next, depth, known_.enter(nesting));
            case OpCode::TRY_END:
                if (nesting == 0) {
                    isRegular_ = false;
                    return;
                }
                return reach(next, depth, known_.leave(nesting));
            case OpCode::HALT: isRegular_ = false; return;
        }
    }

    void checkSlot(std::size_t slot, std::int32_t depth) {
        if (slot >= static_cast<std::size_t>(depth)) isRegular_ = false;
    }

    void capture(std::size_t slot) {
        result_.capturesLocals = true;
        if (result_.isCaptured.size() <= slot) result_.isCaptured.resize(slot + 1, false);
        result_.isCaptured[slot] = true;
    }

    const FunctionProto& proto_;
    DepthAnalysis result_;
    std::vector<std::int32_t> nestings_;  // by offset
    Nestings known_;
    std::vector<std::size_t> pending_;
    bool isRegular_ = true;
};

}  // namespace

DepthAnalysis analyzeDepths(const FunctionProto& proto) { return Scan(proto).run(); }

}  // namespace pellum
