#include "support/files.h"
#include "unit/running.h"

#include "compiler/disassembler.h"

#include <gtest/gtest.h>

#include <vector>

namespace pellum {
namespace {

using test::compileText;
using test::compiling;
using test::errorOf;

using Bytes = std::vector<std::uint8_t>;

// Trees that no source text spells.

ExprPtr number(int value) {
    auto* literal = new LiteralExpr(1, 1);
    literal->value = Value(value);
    return ExprPtr(literal);
}

Block binaryProgram(std::string_view op) {
    auto* binary = new BinaryExpr(3, 7);
    binary->setOperator(op);
    binary->left = number(1);
    binary->right = number(2);
    auto* stmt = new ExprStmt(3, 7);
    stmt->expr = ExprPtr(binary);
    Block program;
    program.emplace_back(stmt);
    return program;
}

Block compoundProgram(std::string_view op, ExprPtr target) {
    auto* assign = new AssignStmt(4, 9);
    assign->setOperator(op);
    assign->target = std::move(target);
    assign->value = number(1);
    Block program;
    program.emplace_back(assign);
    return program;
}

ExprPtr nameTarget() {
    auto* name = new NameExpr(1, 1);
    name->name = Symbol("x");
    return ExprPtr(name);
}

ExprPtr elementTarget() {
    auto* index = new IndexExpr(1, 1);
    index->object = nameTarget();
    index->index = number(0);
    return ExprPtr(index);
}

std::string compilingTree(const Block& program) {
    return errorOf([&] { compile(program); });
}

TEST(Compiler, KnowsNoOtherBinaryOperator) {
    EXPECT_EQ(compilingTree(binaryProgram("+")), "");
    EXPECT_EQ(compilingTree(binaryProgram("**")), "compile error 3:7: unknown operator **");
    EXPECT_EQ(compilingTree(binaryProgram("<>")), "compile error 3:7: unknown operator <>");
    EXPECT_EQ(compilingTree(binaryProgram("")), "compile error 3:7: unknown operator ");
    EXPECT_EQ(compilingTree(binaryProgram("not")), "compile error 3:7: unknown operator not");
}

TEST(Compiler, KnowsNoOtherCompoundOperator) {
    for (const char* op : {"+", "-", "*", "/", "//", "%", "^"}) {
        EXPECT_EQ(compilingTree(compoundProgram(op, nameTarget())), "");
        EXPECT_EQ(compilingTree(compoundProgram(op, elementTarget())), "");
    }
    for (const char* op : {"==", "<", "and", "or", "**", "=>"}) {
        const std::string wanted = "compile error 4:9: bad operator " + std::string(op);
        EXPECT_EQ(compilingTree(compoundProgram(op, nameTarget())), wanted);
        EXPECT_EQ(compilingTree(compoundProgram(op, elementTarget())), wanted);
    }
}

TEST(Compiler, TakesEveryUnaryOperatorButNotForMinus) {
    for (const auto& [op, wanted] : {std::pair{"not", OpCode::NOT}, {"-", OpCode::NEGATE}}) {
        auto* unary = new UnaryExpr(1, 1);
        unary->op = op;
        unary->operand = number(1);
        auto* stmt = new ExprStmt(1, 1);
        stmt->expr = ExprPtr(unary);
        Block program;
        program.emplace_back(stmt);
        EXPECT_EQ(compile(program)->code[3], static_cast<std::uint8_t>(wanted));
    }
}

TEST(Compiler, CountsArgumentsBehindCompilingThem) {
    std::string call = "f(function() break end";
    for (int i = 0; i < 255; ++i) call += ", 1";
    call += ")";
    EXPECT_EQ(compiling(call), "compile error 1:14: 'break' outside a loop");
    std::string twice = "f(1, g(1";
    for (int i = 0; i < 255; ++i) twice += ", 1";
    twice += ")";
    for (int i = 0; i < 255; ++i) twice += ", 1";
    EXPECT_EQ(compiling(twice + ")"), "compile error 1:7: too many arguments");
}

// The bytes, which a listing does not show.

TEST(Compiler, GivesEachInstructionItsByte) {
    const std::vector<std::string> names{"CONSTANT",
                                         "NIL",
                                         "TRUE",
                                         "FALSE",
                                         "POP",
                                         "DEFINE_GLOBAL",
                                         "GET_GLOBAL",
                                         "SET_GLOBAL",
                                         "GET_LOCAL",
                                         "SET_LOCAL",
                                         "GET_UPVALUE",
                                         "SET_UPVALUE",
                                         "CLOSE_UPVALUE",
                                         "BUILD_LIST",
                                         "BUILD_MAP",
                                         "INDEX_GET",
                                         "INDEX_GET_KEEP",
                                         "INDEX_SET",
                                         "ADD",
                                         "SUB",
                                         "MUL",
                                         "DIV",
                                         "FLOOR_DIV",
                                         "MOD",
                                         "POW",
                                         "NEGATE",
                                         "NOT",
                                         "EQUAL",
                                         "NOT_EQUAL",
                                         "LESS",
                                         "LESS_EQUAL",
                                         "GREATER",
                                         "GREATER_EQUAL",
                                         "JUMP",
                                         "JUMP_IF_FALSE",
                                         "JUMP_IF_TRUE",
                                         "LOOP",
                                         "CALL",
                                         "CLOSURE",
                                         "RETURN",
                                         "ITER_LIST",
                                         "LEN",
                                         "FOR_TEST",
                                         "TRY_BEGIN",
                                         "TRY_END",
                                         "HALT"};
    ASSERT_EQ(opInfo.size(), names.size());
    for (std::size_t byte = 0; byte < names.size(); ++byte) {
        EXPECT_EQ(opInfo[byte].name, names[byte]) << byte;
    }
}

TEST(Compiler, PutsTheHighByteOfAnOperandFirst) {
    std::string source = "if true then\n";
    for (int i = 0; i <= 300; ++i) source += "let v" + std::to_string(i) + " = nil\n";
    source += "v300 = v258\nend\n";
    const auto proto = compileText(source);
    // TRUE, a jump and a POP, then a NIL for each local.
    const std::size_t at = 1 + 3 + 1 + 301;
    const Bytes given(proto->code.begin() + at, proto->code.begin() + at + 7);
    EXPECT_EQ(given, (Bytes{8, 1, 2, 9, 1, 44, 4}));  // GET_LOCAL 258, SET_LOCAL 300, POP
    // Over those, the POPs of the locals and a jump, to the POP of the condition.
    EXPECT_EQ(Bytes(proto->code.begin() + 1, proto->code.begin() + 4), (Bytes{34, 2, 101}));
}

TEST(Compiler, CountsJumpsFromBehindTheirOperand) {
    EXPECT_EQ(compileText("while true do end")->code, (Bytes{2, 34, 0, 4, 4, 36, 0, 8, 4, 1, 39}));
    EXPECT_EQ(compileText("nil or true")->code, (Bytes{1, 35, 0, 2, 4, 2, 4, 1, 39}));
    EXPECT_EQ(compileText("try catch e end")->code, (Bytes{43, 0, 4, 44, 33, 0, 1, 4, 1, 39}));
}

TEST(Compiler, NamesFunctionsAndCountsTheirParameters) {
    const auto script = compileText("function two(a, b) end\nlet f = function(x) end");
    EXPECT_EQ(script->name, "");
    EXPECT_EQ(script->arity, 0U);
    ASSERT_EQ(script->functions.size(), 2U);
    EXPECT_EQ(script->functions[0]->name, "two");
    EXPECT_EQ(script->functions[0]->arity, 2U);
    EXPECT_EQ(script->functions[1]->name, "<anonymous>");
    EXPECT_EQ(script->functions[1]->arity, 1U);
}

TEST(Compiler, ListsUpvaluesInCaptureOrderWithoutRepetition) {
    const auto script = compileText(
        "function f(a, b)\n"
        "    return function() return [b, a, b, function() return [a, b, a] end] end\n"
        "end");
    const FunctionProto& middle = *script->functions[0]->functions[0];
    EXPECT_EQ(middle.upvalues, (std::vector<UpvalueDescriptor>{{true, 1}, {true, 0}}));
    EXPECT_EQ(middle.functions[0]->upvalues,
              (std::vector<UpvalueDescriptor>{{false, 1}, {false, 0}}));
}

// The lines always have the same length as the code.
void checkLines(const FunctionProto& proto) {
    EXPECT_EQ(proto.lines.size(), proto.code.size());
    for (const auto& inner : proto.functions) checkLines(*inner);
}

TEST(Compiler, GivesEachByteALine) {
    int count = 0;
    for (const auto& file : test::filesUnder("tests/lang", ".pellum")) {
        Ref<FunctionProto> proto;
        try {
            proto = compileText(test::readFile(file));
        } catch (const PellumError&) {
            continue;
        }
        ++count;
        SCOPED_TRACE(file);
        checkLines(*proto);
    }
    EXPECT_GT(count, 100);
}

TEST(Compiler, GivesOperandBytesTheLineOfTheirInstruction) {
    const auto proto = compileText("nil\nlet x = [\n5\n]");
    EXPECT_EQ(proto->lines, (std::vector<std::uint32_t>{1, 1, 3, 3, 3, 2, 2, 2, 2, 2, 2, 2, 2}));
}

TEST(Compiler, StartsAfreshWithEachProgram) {
    const auto first = compileText("let x = 1\nfunction f() return x end");
    const auto second = compileText("let x = 1\nfunction f() return x end");
    EXPECT_NE(first, second);
    EXPECT_EQ(first->code, second->code);
    EXPECT_EQ(disassemble(*first), disassemble(*second));
}

TEST(Disassembler, ShowsWhatTheCompilerNeverEmits) {
    const auto proto = makeRef<FunctionProto>();
    proto->code = {45, 46, 255, 1};
    proto->lines = {7, 7, 8, 8};
    EXPECT_EQ(disassemble(*proto),
              "== script ==\n"
              "   7     0 HALT\n"
              "   |     1 byte 46\n"
              "   8     2 byte 255\n"
              "   |     3 NIL\n");
}

TEST(Disassembler, WideNumbersMoveTheRestAside) {
    const auto proto = makeRef<FunctionProto>();
    proto->code.assign(100'001, 1);
    proto->lines.assign(100'000, 1);
    proto->lines.push_back(12'345);
    const std::string listing = disassemble(*proto);
    EXPECT_TRUE(listing.ends_with("   | 99999 NIL\n12345 100000 NIL\n"));
}

}  // namespace
}  // namespace pellum
