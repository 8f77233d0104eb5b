// The instructions of the stack machine. One row each; its place in the list is its byte. From
// these rows come the OpCode enum, instruction lengths, the disassembler and the page of the
// documents.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace pellum {

// What follows the opcode byte. 16-bit operands stand high byte first. A Jump counts bytes forward
// from behind the operand, a Loop backward.
enum class Operand : std::uint8_t { None, U8, U16, Constant, Jump, Loop };

// name, operand, and what the instruction does to the stack (top at the right)
#define PELLUM_OPCODES(OP)                                     \
    OP(CONSTANT, Constant, "-> value")                         \
    OP(NIL, None, "-> nil")                                    \
    OP(TRUE, None, "-> true")                                  \
    OP(FALSE, None, "-> false")                                \
    OP(POP, None, "v ->")                                      \
    OP(DEFINE_GLOBAL, Constant, "v ->")                        \
    OP(GET_GLOBAL, Constant, "-> v")                           \
    OP(SET_GLOBAL, Constant, "v -> v")                         \
    OP(GET_LOCAL, U16, "-> v")                                 \
    OP(SET_LOCAL, U16, "v -> v")                               \
    OP(GET_UPVALUE, U8, "-> v")                                \
    OP(SET_UPVALUE, U8, "v -> v")                              \
    OP(CLOSE_UPVALUE, None, "v ->")                            \
    OP(BUILD_LIST, U16, "x1 .. xn -> list")                    \
    OP(BUILD_MAP, U16, "key1 value1 .. keyn valuen -> map")    \
    OP(INDEX_GET, None, "object index -> v")                   \
    OP(INDEX_GET_KEEP, None, "object index -> object index v") \
    OP(INDEX_SET, None, "object index v -> v")                 \
    OP(ADD, None, "a b -> r")                                  \
    OP(SUB, None, "a b -> r")                                  \
    OP(MUL, None, "a b -> r")                                  \
    OP(DIV, None, "a b -> r")                                  \
    OP(FLOOR_DIV, None, "a b -> r")                            \
    OP(MOD, None, "a b -> r")                                  \
    OP(POW, None, "a b -> r")                                  \
    OP(NEGATE, None, "a -> r")                                 \
    OP(NOT, None, "a -> bool")                                 \
    OP(EQUAL, None, "a b -> bool")                             \
    OP(NOT_EQUAL, None, "a b -> bool")                         \
    OP(LESS, None, "a b -> bool")                              \
    OP(LESS_EQUAL, None, "a b -> bool")                        \
    OP(GREATER, None, "a b -> bool")                           \
    OP(GREATER_EQUAL, None, "a b -> bool")                     \
    OP(JUMP, Jump, "->")                                       \
    OP(JUMP_IF_FALSE, Jump, "cond -> cond")                    \
    OP(JUMP_IF_TRUE, Jump, "cond -> cond")                     \
    OP(LOOP, Loop, "->")                                       \
    OP(CALL, U8, "f a1 .. an -> r")                            \
    OP(CLOSURE, U16, "-> closure")                             \
    OP(RETURN, None, "r ->")                                   \
    OP(ITER_LIST, None, "v -> list")                           \
    OP(LEN, None, "v -> integer")                              \
    OP(FOR_TEST, None, "i limit step -> bool")                 \
    OP(TRY_BEGIN, Jump, "->")                                  \
    OP(TRY_END, None, "->")                                    \
    OP(HALT, None, "->")

enum class OpCode : std::uint8_t {
#define PELLUM_OPCODE_ENUMERATOR(name, operand, stack) name,
    PELLUM_OPCODES(PELLUM_OPCODE_ENUMERATOR)
#undef PELLUM_OPCODE_ENUMERATOR
};

struct OpInfo {
    const char* name;
    Operand operand;
    const char* stack;
};

inline constexpr std::array opInfo = {
#define PELLUM_OPCODE_INFO(name, operand, stack) OpInfo{#name, Operand::operand, stack},
    PELLUM_OPCODES(PELLUM_OPCODE_INFO)
#undef PELLUM_OPCODE_INFO
};

static_assert(opInfo.size() == 46);
static_assert(static_cast<int>(OpCode::ADD) == 18 && static_cast<int>(OpCode::POW) == 24);
static_assert(static_cast<int>(OpCode::EQUAL) == 27 && static_cast<int>(OpCode::JUMP) == 33);
static_assert(static_cast<int>(OpCode::HALT) == 45);

constexpr std::size_t operandSize(Operand operand) noexcept {
    switch (operand) {
        case Operand::None: return 0;
        case Operand::U8: return 1;
        default: return 2;
    }
}

}  // namespace pellum
