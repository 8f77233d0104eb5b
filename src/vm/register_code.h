// Register code: what a machine makes of a prototype's stack code when it first runs it. The
// instructions work on the very slots that the stack code would use, so frames, captured variables
// and handlers look the same to both; what is gone is the traffic of pushing and popping.
#pragma once

#include "compiler/function_proto.h"

#include <memory>
#include <vector>

namespace pellum {

// Operands are named by where they are: R, a slot of the frame; P, a constant or a global, by
// pointer; I, a small integer in the instruction itself. The arms of the engine stand in the order
// of this list.
#define PELLUM_BINARY_FORMS(OP, name) OP(name##_RR) OP(name##_RP) OP(name##_PR)
#define PELLUM_NUMERIC_FORMS(OP, name) PELLUM_BINARY_FORMS(OP, name) OP(name##_RI)

#define PELLUM_REGISTER_OPS(OP)                    \
    /* moving */                                   \
    OP(MOVE)                                       \
    OP(TAKE)                                       \
    OP(LOAD)                                       \
    OP(CLEAR)                                      \
    OP(CLEAR_RANGE)                                \
    OP(GET_GLOBAL)                                 \
    OP(SET_GLOBAL)                                 \
    OP(DEFINE_GLOBAL)                              \
    OP(GET_UPVALUE)                                \
    OP(SET_UPVALUE)                                \
    OP(CLOSE_UPVALUE)                              \
    /* arithmetic */                               \
    PELLUM_NUMERIC_FORMS(OP, ADD)                  \
    PELLUM_NUMERIC_FORMS(OP, SUB)                  \
    PELLUM_NUMERIC_FORMS(OP, MUL)                  \
    PELLUM_NUMERIC_FORMS(OP, DIV)                  \
    PELLUM_NUMERIC_FORMS(OP, FLOOR_DIV)            \
    PELLUM_NUMERIC_FORMS(OP, MOD)                  \
    PELLUM_NUMERIC_FORMS(OP, POW)                  \
    OP(NEGATE)                                     \
    OP(NOT)                                        \
    /* comparisons that yield a bool */            \
    PELLUM_NUMERIC_FORMS(OP, EQUAL)                \
    PELLUM_NUMERIC_FORMS(OP, NOT_EQUAL)            \
    PELLUM_NUMERIC_FORMS(OP, LESS)                 \
    PELLUM_NUMERIC_FORMS(OP, LESS_EQUAL)           \
    PELLUM_NUMERIC_FORMS(OP, GREATER)              \
    PELLUM_NUMERIC_FORMS(OP, GREATER_EQUAL)        \
    /* comparisons that jump */                    \
    PELLUM_NUMERIC_FORMS(OP, IF_EQUAL)             \
    PELLUM_NUMERIC_FORMS(OP, UNLESS_EQUAL)         \
    PELLUM_NUMERIC_FORMS(OP, IF_LESS)              \
    PELLUM_NUMERIC_FORMS(OP, UNLESS_LESS)          \
    PELLUM_NUMERIC_FORMS(OP, IF_LESS_EQUAL)        \
    PELLUM_NUMERIC_FORMS(OP, UNLESS_LESS_EQUAL)    \
    PELLUM_NUMERIC_FORMS(OP, IF_GREATER)           \
    PELLUM_NUMERIC_FORMS(OP, UNLESS_GREATER)       \
    PELLUM_NUMERIC_FORMS(OP, IF_GREATER_EQUAL)     \
    PELLUM_NUMERIC_FORMS(OP, UNLESS_GREATER_EQUAL) \
    OP(IF)                                         \
    OP(UNLESS)                                     \
    OP(IF_TEMP)                                    \
    OP(UNLESS_TEMP)                                \
    OP(JUMP)                                       \
    /* loops */                                    \
    OP(FOR_TEST)                                   \
    OP(FOR_LOOP)                                   \
    OP(FOR_LOOP_UP)                                \
    OP(FOR_IN_TEST)                                \
    OP(FOR_IN_LOOP)                                \
    /* containers */                               \
    OP(INDEX_RR)                                   \
    OP(INDEX_RP)                                   \
    OP(INDEX_PR)                                   \
    OP(INDEX_THEN_INDEX)                           \
    OP(INDEX_THEN_FIELD)                           \
    OP(FIELD_R)                                    \
    OP(FIELD_P)                                    \
    OP(SET_INDEX_RR)                               \
    OP(SET_INDEX_RP)                               \
    OP(SET_INDEX_PR)                               \
    OP(SET_INDEX_RR_P)                             \
    OP(SET_FIELD_R)                                \
    OP(SET_FIELD_P)                                \
    OP(BUILD_LIST)                                 \
    OP(BUILD_MAP)                                  \
    OP(ITER_LIST)                                  \
    OP(LEN)                                        \
    /* functions */                                \
    OP(CALL)                                       \
    OP(CALL_P)                                     \
    OP(CLOSURE)                                    \
    OP(RETURN_LOCAL)                               \
    OP(RETURN_P)                                   \
    OP(TRY_BEGIN)                                  \
    OP(TRY_END)                                    \
    OP(STEP)                                       \
    OP(EXIT)

enum class RegisterOp : std::uint32_t {
#define PELLUM_REGISTER_ENUMERATOR(name) name,
    PELLUM_REGISTER_OPS(PELLUM_REGISTER_ENUMERATOR)
#undef PELLUM_REGISTER_ENUMERATOR
};

struct Instruction {
    union {
        const void* arm;  // of the engine room, where labels are values
        RegisterOp op;    // where they are not
    };
    std::uint32_t a = 0, b = 0, c = 0;  // mostly slots, as byte offsets from the frame's base
    std::int32_t extra = 0;  // a jump's distance in instructions, flags, or a place in a map
    union {
        const Value* pointer = nullptr;
        const StringObj* key;  // of a field
    };
};

static_assert(sizeof(Instruction) == 32);

// Which operands of an instruction are temporaries that end with it, so that it must release them.
inline constexpr std::uint32_t endsLeft = 1;
inline constexpr std::uint32_t endsRight = 2;
inline constexpr std::uint32_t endsValue = 4;

struct RegisterCode {
    std::vector<Instruction> instructions;
    std::vector<std::uint32_t>
        codeOffsets;  // for each instruction, that of the stack code it stands for
    std::vector<const Value*> pointers;  // for instructions that need two
    Ref<FunctionProto> proto;
    std::vector<RegisterCode*> functions;  // of the functions inside, once they have been run
    std::uint32_t maxDepth = 0;            // the most slots that a frame ever uses
    bool isTranslated = false;

    // How many arguments to call this with. While there is no code to run, or none that covers this
    // prototype, a number that no call has.
    static constexpr std::uint32_t unusable = 0xFFFF'FFFF;
    std::uint32_t arity = unusable;
    bool isUsable() const noexcept { return arity != unusable; }
};

}  // namespace pellum
