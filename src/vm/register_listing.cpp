#include "vm/register_listing.h"

#include "value/format.h"
#include "value/string.h"
#include "vm/globals.h"
#include "vm/translator.h"

#include <functional>
#include <string_view>

namespace pellum {

namespace {

constexpr std::string_view names[] = {
#define PELLUM_REGISTER_NAME(name) #name,
    PELLUM_REGISTER_OPS(PELLUM_REGISTER_NAME)
#undef PELLUM_REGISTER_NAME
};

std::string slot(std::uint32_t offset) { return "s" + std::to_string(offset / sizeof(Value)); }

std::string slots(std::uint32_t first, std::uint32_t end) {
    return slot(first) + " to " + slot(end - static_cast<std::uint32_t>(sizeof(Value)));
}

class Line {
public:
    Line(const RegisterCode& code, std::size_t index)
        : code_(code),
          index_(index),
          at_(code.instructions[index]),
          name_(names[static_cast<std::size_t>(at_.op)]) {}

    std::string text() const {
        std::string line = std::to_string(index_);
        line.insert(0, line.size() < 5 ? 5 - line.size() : 0, ' ');
        line += ' ';
        line += name_;
        const std::string what = operands();
        if (what.empty()) return line;
        line.resize(line.size() + (name_.size() < 20 ? 20 - name_.size() : 1), ' ');
        return line + what;
    }

private:
    bool is(RegisterOp first, RegisterOp last) const noexcept {
        return at_.op >= first && at_.op <= last;
    }

    // A constant, or a global.
    static std::string pointed(const RegisterCode& code, const Value* pointer) {
        const Values& constants = code.proto->constants;
        const bool isConstant = !std::less<>()(pointer, constants.data()) &&
                                std::less<>()(pointer, constants.data() + constants.size());
        return isConstant || isLiteral(pointer) ? toReprString(*pointer) : globalName(pointer);
    }
    std::string pointed() const { return pointed(code_, at_.pointer); }
    static std::string globalName(const Value* value) {
        return std::string(reinterpret_cast<const GlobalCell*>(value)->name->view());
    }
    std::string globalName() const { return globalName(at_.pointer); }
    std::string namedContainer() const { return pointed(code_, code_.pointers[at_.b]); }
    std::string field() const { return "." + std::string(at_.key->view()); }
    std::string target() const {
        return " -> " + std::to_string(static_cast<std::ptrdiff_t>(index_) + at_.extra);
    }

    std::string left() const { return name_.ends_with("_PR") ? pointed() : slot(at_.b); }
    std::string right() const {
        const bool isPointer = name_.ends_with("_RP") || name_.ends_with("_RI");
        return isPointer ? pointed() : slot(at_.c);
    }
    std::string both() const { return left() + ", " + right(); }

    std::string operands() const {
        const std::string to = slot(at_.a) + " = ";
        if (is(RegisterOp::ADD_RR, RegisterOp::POW_RI)) return to + both();
        if (is(RegisterOp::EQUAL_RR, RegisterOp::GREATER_EQUAL_RI)) return to + both();
        if (is(RegisterOp::IF_EQUAL_RR, RegisterOp::UNLESS_GREATER_EQUAL_RI)) {
            return both() + target();
        }
        if (is(RegisterOp::IF, RegisterOp::UNLESS_TEMP)) return slot(at_.a) + target();
        if (is(RegisterOp::INDEX_RR, RegisterOp::INDEX_THEN_FIELD)) return to + both();
        if (is(RegisterOp::SET_INDEX_RR, RegisterOp::SET_INDEX_PR)) {
            return both() + " = " + slot(at_.a);
        }
        switch (at_.op) {
            case RegisterOp::MOVE:
            case RegisterOp::TAKE:
            case RegisterOp::NEGATE:
            case RegisterOp::NOT:
            case RegisterOp::ITER_LIST:
            case RegisterOp::LEN: return to + slot(at_.b);
            case RegisterOp::LOAD: return to + pointed();
            case RegisterOp::CLEAR:
            case RegisterOp::CLOSE_UPVALUE:
            case RegisterOp::RETURN_LOCAL: return slot(at_.a);
            case RegisterOp::CLEAR_RANGE: return slots(at_.a, at_.b);
            case RegisterOp::GET_GLOBAL: return to + globalName();
            case RegisterOp::SET_GLOBAL:
            case RegisterOp::DEFINE_GLOBAL: return globalName() + " = " + slot(at_.b);
            case RegisterOp::GET_UPVALUE: return to + "upvalue " + std::to_string(at_.b);
            case RegisterOp::SET_UPVALUE:
                return "upvalue " + std::to_string(at_.a) + " = " +
                       (at_.extra == 2 ? pointed() : slot(at_.b));
            case RegisterOp::JUMP: return target().substr(1);
            case RegisterOp::TRY_BEGIN: return "catch" + target();
            case RegisterOp::FOR_TEST:
                return slot(at_.a) + " to " + slot(at_.b) + " by " + slot(at_.c) + target();
            case RegisterOp::FOR_LOOP: return slot(at_.a) + " to " + slot(at_.b) + target();
            case RegisterOp::FOR_LOOP_UP:
                return slot(at_.a) + " to " + slot(at_.b) + " by " + std::to_string(at_.c) +
                       target();
            case RegisterOp::FOR_IN_TEST:
            case RegisterOp::FOR_IN_LOOP:
                return slot(at_.a) + " = " + slot(at_.c) + ", " + slot(at_.b) + target();
            case RegisterOp::FIELD_R: return to + slot(at_.b) + field();
            case RegisterOp::FIELD_P: return to + namedContainer() + field();
            case RegisterOp::SET_INDEX_RR_P: return both() + " = " + pointed();
            case RegisterOp::SET_FIELD_R: return slot(at_.b) + field() + " = " + slot(at_.a);
            case RegisterOp::SET_FIELD_P: return namedContainer() + field() + " = " + slot(at_.a);
            case RegisterOp::BUILD_LIST:
            case RegisterOp::BUILD_MAP:
                return slot(at_.a) + " = " + std::to_string(at_.c) + " from " + slot(at_.b);
            case RegisterOp::CALL: return slot(at_.a) + ", " + std::to_string(at_.b);
            case RegisterOp::CALL_P: return to + pointed() + ", " + std::to_string(at_.b);
            case RegisterOp::CLOSURE: return to + "function " + std::to_string(at_.b);
            case RegisterOp::RETURN_P: return pointed();
            default: return "";
        }
    }

    const RegisterCode& code_;
    std::size_t index_;
    const Instruction& at_;
    std::string_view name_;
};

}  // namespace

std::string listRegisterCode(const RegisterCode& code) {
    std::string text;
    for (std::size_t index = 0; index < code.instructions.size(); ++index) {
        text += Line(code, index).text() + "\n";
    }
    return text;
}

}  // namespace pellum
