#include "unit/running.h"

#include <gtest/gtest.h>

#include <limits>

namespace pellum {
namespace {

using test::callWith;
using test::compileText;
using test::ending;
using test::errorOf;
using test::MemoryConsole;
using test::parseText;

// Code that the compiler would not make, byte by byte. Each instruction stands on a line of its
// own, from 1; operand bytes are given a line that no error may show.
class Code {
public:
    Code() : proto_(makeRef<FunctionProto>()) {}

    Code& op(OpCode op) { return byte(static_cast<std::uint8_t>(op)); }
    Code& u8(OpCode op, int operand) {
        this->op(op);
        operandByte(operand);
        return *this;
    }
    Code& u16(OpCode op, int operand) {
        this->op(op);
        operandByte(operand >> 8);
        operandByte(operand & 0xFF);
        return *this;
    }
    Code& constant(Value value, OpCode op = OpCode::CONSTANT) {
        proto_->constants.push_back(std::move(value));
        return u16(op, static_cast<int>(proto_->constants.size()) - 1);
    }
    Code& name(OpCode op, const char* text) { return constant(Value(Symbol(text).string()), op); }
    Code& byte(int value) {
        proto_->code.push_back(static_cast<std::uint8_t>(value));
        proto_->lines.push_back(++line_);
        return *this;
    }
    const Ref<FunctionProto>& proto() const { return proto_; }

private:
    void operandByte(int value) {
        proto_->code.push_back(static_cast<std::uint8_t>(value));
        proto_->lines.push_back(999);
    }

    Ref<FunctionProto> proto_;
    std::uint32_t line_ = 0;
};

std::string running(const Code& code) {
    MemoryConsole memory;
    VM vm(memory.console);
    return ending([&] { return vm.run(code.proto()); });
}

TEST(Vm, ReturnsTheValueOfTheLastReturn) {
    EXPECT_EQ(running(Code().constant(Value("text")).op(OpCode::RETURN)), "\"text\"");
    EXPECT_EQ(running(Code().op(OpCode::NIL).op(OpCode::RETURN)), "nil");
    MemoryConsole memory;
    EXPECT_EQ(ending([&] { return VM(memory.console).run(compileText("1 + 1")); }), "nil");
    EXPECT_EQ(ending([&] { return VM(memory.console).run(compileText("return 1 + 1")); }), "2");
}

TEST(Vm, HaltEndsTheRunWithNil) {
    EXPECT_EQ(running(Code().constant(Value(5)).op(OpCode::HALT)), "nil");
    EXPECT_EQ(running(Code().op(OpCode::HALT).constant(Value(5)).op(OpCode::RETURN)), "nil");
}

TEST(Vm, HaltEndsTheRunWithNilInTheMiddleOfCalls) {
    const auto inner = Code().op(OpCode::HALT).proto();
    Code outer;
    outer.proto()->functions.push_back(inner);
    outer.u16(OpCode::CLOSURE, 0).u8(OpCode::CALL, 0).constant(Value(5)).op(OpCode::RETURN);
    EXPECT_EQ(running(outer), "nil");
}

TEST(Vm, IgnoresBytesThatAreNoInstructions) {
    Code code;
    code.byte(46).byte(255).constant(Value(5)).byte(128).byte(47);
    code.op(OpCode::NEGATE).byte(200).op(OpCode::RETURN);
    EXPECT_EQ(running(code), "-5");
}

TEST(Vm, ReportsTheLineOfTheOpcodeByte) {
    Code code;
    code.op(OpCode::NIL).op(OpCode::POP).name(OpCode::GET_GLOBAL, "unknown").op(OpCode::RETURN);
    EXPECT_EQ(running(code), "runtime error 3:0: undefined variable 'unknown'");
    Code store;
    store.op(OpCode::NIL).name(OpCode::SET_GLOBAL, "unknown").op(OpCode::RETURN);
    EXPECT_EQ(running(store),
              "runtime error 2:0: cannot assign to undefined variable 'unknown' (use 'let' to "
              "declare it)");
    EXPECT_EQ(running(Code().op(OpCode::NIL).u8(OpCode::CALL, 0).op(OpCode::RETURN)),
              "runtime error 2:0: nil is not callable");
}

TEST(Vm, StoresLeaveTheValueOnTheStack) {
    Code code;
    code.constant(Value(1)).name(OpCode::DEFINE_GLOBAL, "x");
    code.constant(Value(2)).name(OpCode::SET_GLOBAL, "x").name(OpCode::GET_GLOBAL, "x");
    code.op(OpCode::ADD).op(OpCode::RETURN);
    EXPECT_EQ(running(code), "4");
    Code local;
    local.op(OpCode::NIL).constant(Value(3)).u16(OpCode::SET_LOCAL, 0);
    local.u16(OpCode::GET_LOCAL, 0).op(OpCode::MUL).op(OpCode::RETURN);
    EXPECT_EQ(running(local), "9");
}

std::string forTest(Value counter, Value limit, Value step) {
    Code code;
    code.constant(std::move(counter)).constant(std::move(limit)).constant(std::move(step));
    return running(code.op(OpCode::FOR_TEST).op(OpCode::RETURN));
}

TEST(Vm, TestsWhetherALoopGoesOn) {
    EXPECT_EQ(forTest(Value(1), Value(2), Value(1)), "true");
    EXPECT_EQ(forTest(Value(2), Value(2.0), Value(1)), "true");
    EXPECT_EQ(forTest(Value(3), Value(2), Value(1)), "false");
    EXPECT_EQ(forTest(Value(2.5), Value(2), Value(0.5)), "false");
    EXPECT_EQ(forTest(Value(3), Value(2), Value(-1)), "true");
    EXPECT_EQ(forTest(Value(2), Value(2), Value(-0.5)), "true");
    EXPECT_EQ(forTest(Value(1), Value(2), Value(-1)), "false");
}

TEST(Vm, TakesAStepOfZeroOrNanForOneUpward) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const Value& step : {Value(0), Value(0.0), Value(-0.0), Value(nan), Value(-nan)}) {
        EXPECT_EQ(forTest(Value(1), Value(2), step), "true");
        EXPECT_EQ(forTest(Value(2), Value(2), step), "true");
        EXPECT_EQ(forTest(Value(3), Value(2), step), "false");
    }
    for (const int step : {1, 0, -1}) {
        EXPECT_EQ(forTest(Value(nan), Value(2), Value(step)), "false");
        EXPECT_EQ(forTest(Value(1), Value(nan), Value(step)), "false");
    }
}

TEST(Vm, ComparesTheLoopsNumbersAsDoubles) {
    const std::int64_t limit = (std::int64_t{1} << 53);
    EXPECT_EQ(forTest(Value(limit + 1), Value(limit), Value(1)), "true");
    EXPECT_EQ(forTest(Value(limit + 2), Value(limit), Value(1)), "false");
}

TEST(Vm, WantsNumbersForALoop) {
    const std::string wanted = "runtime error 4:0: numeric for-loop needs numbers";
    EXPECT_EQ(forTest(Value("1"), Value(2), Value(1)), wanted);
    EXPECT_EQ(forTest(Value(1), Value(), Value(1)), wanted);
    EXPECT_EQ(forTest(Value(1), Value(2), Value(true)), wanted);
}

TEST(Vm, KnowsLengths) {
    const auto length = [](Value value) {
        return running(Code().constant(std::move(value)).op(OpCode::LEN).op(OpCode::RETURN));
    };
    EXPECT_EQ(length(Value("")), "0");
    EXPECT_EQ(length(Value("a\0b" + std::string(1, '\0'))), "2");
    EXPECT_EQ(length(makeList({Value(), Value(1)})), "2");
    EXPECT_EQ(length(Value()), "runtime error 2:0: cannot take length of nil");
    EXPECT_EQ(length(Value(5)), "runtime error 2:0: cannot take length of number");
    EXPECT_EQ(length(Value(true)), "runtime error 2:0: cannot take length of bool");
    Code map;
    map.constant(Value("k")).op(OpCode::NIL).u16(OpCode::BUILD_MAP, 1);
    EXPECT_EQ(running(map.op(OpCode::LEN).op(OpCode::RETURN)), "1");
}

TEST(Vm, BuildsMapsFromPairs) {
    Code code;
    for (const int key : {1, 2, 1}) {
        code.constant(Value(key)).constant(Value(code.proto()->constants.size()));
    }
    EXPECT_EQ(running(code.u16(OpCode::BUILD_MAP, 3).op(OpCode::RETURN)), "{1: 5, 2: 3}");
    Code bad;
    bad.op(OpCode::TRUE).op(OpCode::NIL).u16(OpCode::BUILD_MAP, 1).op(OpCode::RETURN);
    EXPECT_EQ(running(bad), "runtime error 3:0: map keys must be string or number, got bool");
}

TEST(Vm, LeavesObjectAndIndexForACompound) {
    Code code;
    code.constant(makeList({Value(10), Value(20)})).constant(Value(-1));
    code.op(OpCode::INDEX_GET_KEEP).constant(Value(5)).op(OpCode::ADD);
    EXPECT_EQ(running(code.op(OpCode::INDEX_SET).op(OpCode::RETURN)), "25");
}

TEST(Vm, GoesOnInTheCatchCode) {
    Code code;
    code.constant(Value("below"));            // at byte 0
    code.u16(OpCode::TRY_BEGIN, 3);           // 3, to 9
    code.op(OpCode::NIL).op(OpCode::NEGATE);  // 6, 7
    code.op(OpCode::TRY_END);                 // 8
    code.op(OpCode::ADD).op(OpCode::RETURN);  // 9, 10
    EXPECT_EQ(running(code), "\"belowunary '-': expected a number, got nil\"");
}

// What cannot be translated is run as it stands, and bad code that is never reached does no harm.
TEST(Vm, RunsCodeWhoseStackCannotBeForeseen) {
    Code depths;  // comes to its end with one value or two
    depths.op(OpCode::TRUE).u16(OpCode::JUMP_IF_FALSE, 1).op(OpCode::NIL).op(OpCode::RETURN);
    EXPECT_EQ(running(depths), "nil");
    Code slot;  // reads above its top
    EXPECT_EQ(running(slot.u16(OpCode::GET_LOCAL, 5).op(OpCode::RETURN)), "nil");
    Code handler;  // takes off a handler that is not there
    EXPECT_EQ(running(handler.op(OpCode::TRUE).op(OpCode::TRY_END).op(OpCode::RETURN)), "true");
    const auto behindReturn = [] {
        Code code;
        code.op(OpCode::TRUE).u16(OpCode::JUMP_IF_FALSE, 1).op(OpCode::RETURN);
        return code;
    };
    Code shallow = behindReturn();
    shallow.op(OpCode::POP).op(OpCode::POP).op(OpCode::NIL).op(OpCode::RETURN);
    EXPECT_EQ(running(shallow), "true");
    EXPECT_EQ(running(behindReturn().op(OpCode::CONSTANT)), "true");  // without its operand
    Code away;
    away.op(OpCode::TRUE).u16(OpCode::JUMP_IF_FALSE, 999).op(OpCode::RETURN);
    EXPECT_EQ(running(away), "true");
}

TEST(Vm, MayRunSeveralScripts) {
    MemoryConsole memory;
    VM vm(memory.console);
    vm.run(compileText("let x = 1\nfunction next()\n    x += 1\n    return x\nend"));
    EXPECT_EQ(ending([&] { return vm.run(compileText("return next()")); }), "2");
    EXPECT_EQ(ending([&] { return vm.run(compileText("return [x, next(), x]")); }), "[2, 3, 3]");
    EXPECT_EQ(memory.out.str(), "");
}

constexpr const char* busyScript =
    "let s = \"constant\"\n"
    "s += \"!\"\n"
    "let total = 0\n"
    "for i = 1, 10 do\n"
    "    let piece = \"piece\"\n"
    "    piece += str(i)\n"
    "    total += len(piece)\n"
    "end\n"
    "function make(n)\n"
    "    return function()\n"
    "        n += 1\n"
    "        return n\n"
    "    end\n"
    "end\n"
    "let next = make(5)\n"
    "next()\n"
    "try\n"
    "    error(\"thrown\")\n"
    "catch e\n"
    "    s += e\n"
    "end\n"
    "print(s, total, next(), {a: 1}.a)";

TEST(Vm, SeveralMachinesMayRunOnePrototype) {
    const auto script = compileText(busyScript);
    const std::string wanted = "constant!thrown 61 7 1\n";
    MemoryConsole memory;
    VM first(memory.console);
    {
        MemoryConsole other;
        VM second(other.console);
        second.run(script);
        EXPECT_EQ(other.out.str(), wanted);
        second.run(script);
        EXPECT_EQ(other.out.str(), wanted + wanted);
    }
    first.run(script);
    EXPECT_EQ(memory.out.str(), wanted);
}

TEST(Vm, MachinesHaveGlobalsOfTheirOwn) {
    const auto count = compileText("n += 1\nreturn n");
    MemoryConsole memory;
    VM first(memory.console);
    VM second(memory.console);
    first.run(compileText("let n = 0"));
    second.run(compileText("let n = 100"));
    EXPECT_EQ(ending([&] { return first.run(count); }), "1");
    EXPECT_EQ(ending([&] { return second.run(count); }), "101");
    EXPECT_EQ(ending([&] { return first.run(count); }), "2");
    VM third(memory.console);
    EXPECT_EQ(ending([&] { return third.run(count); }),
              "runtime error 1:0: undefined variable 'n'");
}

TEST(Vm, IsCalledFromOutside) {
    MemoryConsole memory;
    VM vm(memory.console);
    const Value f =
        vm.run(compileText("let k = 10\n"
                           "return function(a, b)\n"
                           "    return k * a / b\n"
                           "end"));
    EXPECT_EQ(ending([&] { return callWith(vm, f, {Value(3), Value(4)}); }), "7.5");
    EXPECT_EQ(ending([&] { return callWith(vm, f, {Value(3)}); }),
              "runtime error 0:0: <anonymous>() expects 2 argument(s), got 1");
    EXPECT_EQ(ending([&] { return callWith(vm, Value("text"), {}); }),
              "runtime error 0:0: string is not callable");
}

TEST(Vm, CallsNativesFromOutside) {
    MemoryConsole memory;
    VM vm(memory.console);
    const Value length = vm.run(compileText("return len"));
    const Value map = vm.run(compileText("return map"));
    EXPECT_EQ(ending([&] { return callWith(vm, length, {Value("abc")}); }), "3");
    EXPECT_EQ(ending([&] {
                  return callWith(vm, map, {length, makeList({Value("a"), Value("")})});
              }),
              "[1, 0]");
    EXPECT_EQ(ending([&] { return callWith(vm, length, {}); }),
              "runtime error 0:0: len() expects 1 argument(s), got 0");
}

TEST(Vm, ErrorsReachTheCallerFromOutside) {
    MemoryConsole memory;
    const auto script = compileText("return function(x)\n    return 1 / x\nend");
    {
        VM vm(memory.console);
        const Value f = vm.run(script);
        EXPECT_EQ(ending([&] { return callWith(vm, f, {Value(0)}); }),
                  "runtime error 2:0: division by zero");
    }
    VM vm(memory.console);
    EXPECT_EQ(ending([&] { return vm.run(compileText("error([1, \"a\"])")); }),
              "thrown: [1, \"a\"]");
}

TEST(Vm, DoesNotCallFunctionsOfTheTreeWalker) {
    MemoryConsole memory;
    const Block program = parseText("(function() return 1 end)");
    Interpreter interpreter(memory.console);
    const Value foreign = interpreter.run(program);
    VM vm(memory.console);
    EXPECT_EQ(ending([&] { return callWith(vm, foreign, {}); }),
              "runtime error 0:0: function is not callable");
    vm.define(Symbol("foreign"), foreign);
    EXPECT_EQ(ending([&] { return vm.run(compileText("return type(foreign)")); }), "\"function\"");
    EXPECT_EQ(ending([&] { return vm.run(compileText("\nforeign()")); }),
              "runtime error 2:0: function is not callable");
}

}  // namespace
}  // namespace pellum
