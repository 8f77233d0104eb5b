#include "unit/running.h"

#include "value/interrupt.h"

#include <gtest/gtest.h>

#include <list>

namespace pellum {
namespace {

using test::compileText;
using test::ending;
using test::MemoryConsole;
using test::parseText;

// An interpreter that runs one text after the other, and keeps their trees.
class Prompt {
public:
    std::string run(std::string_view source) {
        return ending([&] { return value(source); });
    }
    Value value(std::string_view source) {
        return interpreter_.run(programs_.emplace_back(parseText(source)));
    }
    std::string runTree(Block program) {
        return ending([&] { return interpreter_.run(programs_.emplace_back(std::move(program))); });
    }
    std::string call(const Value& callee, Values args) {
        return ending([&] { return interpreter_.call(callee, args); });
    }
    std::string printed() const { return memory_.out.str(); }

private:
    std::list<Block> programs_;  // which the functions point into
    MemoryConsole memory_;
    Interpreter interpreter_{memory_.console};
};

TEST(Interpreter, YieldsTheValueOfALastExpression) {
    Prompt prompt;
    EXPECT_EQ(prompt.run("1 + 1"), "2");
    EXPECT_EQ(prompt.run("let x = 5\nx * 2"), "10");
    EXPECT_EQ(prompt.run("1\n\"last\"\n\n# remark\n"), "\"last\"");
    EXPECT_EQ(prompt.run("print(1)"), "nil");
    EXPECT_EQ(prompt.printed(), "1\n");
}

TEST(Interpreter, YieldsNilForAnyOtherLastStatement) {
    Prompt prompt;
    EXPECT_EQ(prompt.run(""), "nil");
    EXPECT_EQ(prompt.run("1\nlet x = 2"), "nil");
    EXPECT_EQ(prompt.run("1\nx = 3"), "nil");
    EXPECT_EQ(prompt.run("1\nif true then 2 end"), "nil");
    EXPECT_EQ(prompt.run("1\nfor i = 1, 2 do i end"), "nil");
    EXPECT_EQ(prompt.run("1\nfor i in [1] do i end"), "nil");
    EXPECT_EQ(prompt.run("1\nwhile false do end"), "nil");
    EXPECT_EQ(prompt.run("1\nfunction f() return 1 end"), "nil");
    EXPECT_EQ(prompt.run("1\ntry 2 catch e 3 end"), "nil");
}

TEST(Interpreter, EndsAProgramAtAReturn) {
    Prompt prompt;
    EXPECT_EQ(prompt.run("let x = 1\nreturn 5\nx = 2"), "nil");
    EXPECT_EQ(prompt.run("x"), "1");
    EXPECT_EQ(prompt.run("while true do return end\nx = 2"), "nil");
    EXPECT_EQ(prompt.run("x"), "1");
}

TEST(Interpreter, ASecondProgramSeesTheGlobalsOfTheFirst) {
    Prompt prompt;
    prompt.run("let n = 1\nfunction next()\n    n += 1\n    return n\nend");
    EXPECT_EQ(prompt.run("next()"), "2");
    EXPECT_EQ(prompt.run("[n, next(), n]"), "[2, 3, 3]");
    EXPECT_EQ(prompt.run("let next = 5\nnext"), "5");
    EXPECT_EQ(prompt.run("if true then let inner = 1 end\ninner"),
              "runtime error 2:1: undefined variable 'inner'");
}

TEST(Interpreter, KeepsWhatAFailedProgramHasDone) {
    Prompt prompt;
    EXPECT_EQ(prompt.run("let x = 1\nx = 2\n1 / 0\nx = 3"), "runtime error 3:3: division by zero");
    EXPECT_EQ(prompt.run("x"), "2");
    EXPECT_EQ(prompt.run("x = 4\nerror({k: x})"), "thrown: {\"k\": 4}");
    EXPECT_EQ(prompt.run("x = 5\n\n  break"), "runtime error 3:3: 'break' outside a loop");
    EXPECT_EQ(prompt.run("function f() continue end\nf()"),
              "runtime error 1:14: 'continue' outside a loop");
    EXPECT_EQ(prompt.run("x"), "5");
}

TEST(Interpreter, HasTheLibraryAndTheConstants) {
    Prompt prompt;
    EXPECT_EQ(prompt.run("[PI, E]"), "[3.141592653589793, 2.718281828459045]");
    EXPECT_EQ(prompt.run("len"), "<native function len>");
}

TEST(Interpreter, IsCalledFromOutside) {
    Prompt prompt;
    const Value f = prompt.value("let k = 10\nfunction f(a, b) return k * a / b end\nf");
    EXPECT_EQ(prompt.call(f, {Value(3), Value(4)}), "7.5");
    EXPECT_EQ(prompt.call(f, {Value(3), Value(0)}), "runtime error 2:31: division by zero");
    EXPECT_EQ(prompt.call(f, {}), "runtime error 0:0: f() expects 2 argument(s), got 0");
    EXPECT_EQ(prompt.call(Value("text"), {}), "runtime error 0:0: string is not callable");
    EXPECT_EQ(prompt.call(Value(), {Value(1)}), "runtime error 0:0: nil is not callable");
}

TEST(Interpreter, CallsNativesFromOutside) {
    Prompt prompt;
    const Value length = prompt.value("len");
    EXPECT_EQ(prompt.call(length, {Value("abc")}), "3");
    EXPECT_EQ(prompt.call(prompt.value("map"), {length, makeList({Value("a"), Value("")})}),
              "[1, 0]");
    EXPECT_EQ(prompt.call(length, {}), "runtime error 0:0: len() expects 1 argument(s), got 0");
}

TEST(Interpreter, DoesNotCallFunctionsOfTheMachine) {
    MemoryConsole memory;
    VM vm(memory.console);
    const Value foreign = vm.run(compileText("return function() return 1 end"));
    Prompt prompt;
    EXPECT_EQ(prompt.call(foreign, {}), "runtime error 0:0: function is not callable");
}

// Trees that no source text spells.

template <typename T>
std::unique_ptr<T, NodeDeleter> node(std::uint32_t line, std::uint32_t column) {
    return std::unique_ptr<T, NodeDeleter>(new T(line, column));
}

ExprPtr literal(const Value& value) {
    auto expr = node<LiteralExpr>(1, 1);
    expr->value = value;
    return expr;
}

Block expressionProgram(ExprPtr expr) {
    auto stmt = node<ExprStmt>(expr->line, expr->column);
    stmt->expr = std::move(expr);
    Block program;
    program.push_back(std::move(stmt));
    return program;
}

Block binaryProgram(std::string_view op, const Value& left, const Value& right) {
    auto binary = node<BinaryExpr>(3, 7);
    binary->setOperator(op);
    binary->left = literal(left);
    binary->right = literal(right);
    return expressionProgram(std::move(binary));
}

TEST(Interpreter, KnowsNoOtherExpressions) {
    struct OddExpr final : Expr {
        OddExpr() : Expr(10, 2, 5) {}
    };
    Prompt prompt;
    EXPECT_EQ(prompt.runTree(expressionProgram(ExprPtr(new OddExpr))),
              "runtime error 2:5: cannot evaluate expression");
}

TEST(Interpreter, KnowsNoOtherOperators) {
    Prompt prompt;
    EXPECT_EQ(prompt.runTree(binaryProgram("*", Value(2), Value(3))), "6");
    EXPECT_EQ(prompt.runTree(binaryProgram("<=>", Value(2), Value(3))),
              "runtime error 3:7: unknown operator <=>");
    EXPECT_EQ(prompt.runTree(binaryProgram("<=>", Value(2.5), Value(3))),
              "runtime error 3:7: unknown operator <=>");
    EXPECT_EQ(prompt.runTree(binaryProgram("<=>", Value("a"), Value(3))),
              "runtime error 3:7: operator '<=>' needs numbers, got string and number");
}

TEST(Interpreter, KnowsNoOtherCompoundOperators) {
    Prompt prompt;
    prompt.run("let x = 1");
    auto assign = node<AssignStmt>(4, 9);
    assign->setOperator("**");
    auto target = node<NameExpr>(4, 1);
    target->name = Symbol("x");
    assign->target = std::move(target);
    assign->value = literal(Value(2));
    Block program;
    program.push_back(std::move(assign));
    EXPECT_EQ(prompt.runTree(std::move(program)), "runtime error 4:9: unknown operator **");
    EXPECT_EQ(prompt.run("x"), "1");
}

TEST(Interpreter, StopsWhereThatIsAskedFor) {
    Prompt prompt;
    EXPECT_EQ(prompt.run("let n = 0\nfunction f() n += 1 end\nlet ask = 0"), "nil");
    for (const char* source :
         {"while true do end", "for i = 1, 1e300 do end", "for x in [1] do n += 1 end", "f()",
          "map(f, [1])", "len(\"\")", "try f() catch e n += 1 end",
          "sort([2, 1], function(a, b) return f() end)", "print(1)"}) {
        interruptIsWanted = true;
        EXPECT_THROW(prompt.value(source), Interrupted) << source;
        EXPECT_FALSE(interruptIsWanted);
    }
    EXPECT_EQ(prompt.run("f()\nn"), "1");
    EXPECT_EQ(prompt.printed(), "");
}

}  // namespace
}  // namespace pellum
