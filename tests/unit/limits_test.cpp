// Limits that only large programs reach: each at the last size that works and the first that does
// not. The sources are made here, since they are up to a megabyte long.
#include "support/small_stack.h"
#include "unit/running.h"

#include <gtest/gtest.h>

namespace pellum {
namespace {

using test::callWith;
using test::compileText;
using test::compiling;
using test::ending;
using test::errorOf;
using test::MemoryConsole;
using test::onSmallStack;
using test::onTree;
using test::onVm;

std::string repeated(std::string_view text, std::size_t count) {
    std::string all;
    all.reserve(text.size() * count);
    while (count-- > 0) all += text;
    return all;
}

// Statements that compile to exactly that many bytes: NIL, POP each, and NIL, NOT, POP where the
// number is odd. REQUIRES: bytes > 1.
std::string statements(std::size_t bytes) {
    return (bytes % 2 ? "not nil\n" : "nil\n") + repeated("nil\n", bytes / 2 - 1);
}

// "[nil, nil, ...]", which takes a byte for each element and three more.
std::string list(std::size_t elements, const std::string& last = "nil") {
    return "[" + repeated("nil, ", elements - 1) + last + "]";
}

std::string text(std::size_t number) { return std::to_string(number); }

// How many constants a function may have and how many values the stack may hold; the farthest jump
// is a byte shorter.
constexpr std::size_t edge = limit(65'536, 4'000);

constexpr std::size_t maxCalls = limit(4'096, 400);

constexpr const char* branchTooLarge = "branch too large";
constexpr const char* loopTooLarge = "loop body too large";

std::string compileErrorAt(std::string_view place, std::string_view message) {
    return "compile error " + std::string(place) + ": " + std::string(message);
}

TEST(Limits, ConstantsOfAFunction) {
    // The last one has the index 65,535.
    const std::string full = repeated("1\n", edge - 1) + "return 7\n";
    MemoryConsole memory;
    EXPECT_EQ(ending([&] { return VM(memory.console).run(compileText(full)); }), "7");
    EXPECT_EQ(compiling(full + "1\n"), compileErrorAt("0:0", "too many constants"));
    // Names are constants as well, and are added before what they are bound to.
    EXPECT_EQ(compiling(repeated("1\n", edge - 1) + "let x = nil\n"), "");
    EXPECT_EQ(compiling(repeated("1\n", edge) + "let x = nil\n"),
              compileErrorAt("0:0", "too many constants"));
    EXPECT_EQ(compiling(repeated("1\n", edge - 1) + "let x = 1\n"),
              compileErrorAt("0:0", "too many constants"));
}

TEST(Limits, ConstantsAreCountedForEachFunction) {
    const std::string many = repeated("1\n", edge / 8 * 5);
    EXPECT_EQ(onVm(many + "let f = function()\n" + many + "return 2\nend\nprint(f())"), "2\n");
    const std::string full = repeated("1\n", edge);
    EXPECT_EQ(compiling(full + "(function()\n" + full + "end)"), "");
    EXPECT_EQ(compiling("nil\n(function()\n" + full + "2\nend)"),
              compileErrorAt("0:0", "too many constants"));
}

// A jump whose distance is `edge` - 1 is accepted, one of `edge` is not. Each branch jumps over a
// POP, the statements, and the JUMP of the branch to the end.
TEST(Limits, BranchOfAnIf) {
    const auto source = [](std::size_t size, const char* condition) {
        return "let c = " + std::string(condition) + "\n  if c then\n" + statements(size) +
               "end\nprint(\"end\")";
    };
    EXPECT_EQ(onVm(source(edge - 5, "true")), "end\n");
    EXPECT_EQ(onVm(source(edge - 5, "false")), "end\n");
    EXPECT_EQ(compiling(source(edge - 4, "true")), compileErrorAt("2:3", branchTooLarge));
}

TEST(Limits, BranchOfAnElse) {
    const auto source = [](std::size_t size, const char* condition) {
        return "let c = " + std::string(condition) + "\nif c then\nprint(\"then\")\nelse\n" +
               statements(size) + "print(\"else\")\nend\nprint(\"end\")";
    };
    const std::size_t print = 3 + 3 + 2 + 1;
    EXPECT_EQ(onVm(source(edge - 2 - print, "true")), "then\nend\n");
    EXPECT_EQ(onVm(source(edge - 2 - print, "nil")), "else\nend\n");
    EXPECT_EQ(compiling(source(edge - 1 - print, "true")), compileErrorAt("2:1", branchTooLarge));
}

TEST(Limits, BranchOfAnElif) {
    // From the first branch to the end: POP, condition and jump of the second, POP, the statements,
    // the second JUMP, POP.
    const auto source = [](std::size_t size, const char* condition) {
        return "let c = " + std::string(condition) + "\nif c then\nelif not c then\n" +
               statements(size) + "end\nprint(\"end\")";
    };
    EXPECT_EQ(onVm(source(edge - 14, "true")), "end\n");
    EXPECT_EQ(onVm(source(edge - 14, "false")), "end\n");
    EXPECT_EQ(compiling(source(edge - 13, "true")), compileErrorAt("2:1", branchTooLarge));
}

TEST(Limits, RightSideOfAndAndOr) {
    const auto source = [](std::size_t elements, const char* left, const char* op) {
        return "let c = " + std::string(left) + "\nlet x = c " + op + " " + list(elements) +
               "\nprint(type(x))";
    };
    EXPECT_EQ(onVm(source(edge - 5, "true", "and")), "list\n");
    EXPECT_EQ(onVm(source(edge - 5, "false", "and")), "bool\n");
    EXPECT_EQ(compiling(source(edge - 4, "true", "and")), compileErrorAt("2:11", branchTooLarge));
    EXPECT_EQ(onVm(source(edge - 5, "false", "or")), "list\n");
    EXPECT_EQ(onVm(source(edge - 5, "true", "or")), "bool\n");
    EXPECT_EQ(compiling(source(edge - 4, "true", "or")), compileErrorAt("2:11", branchTooLarge));
}

// LOOP goes back over the condition, JUMP_IF_FALSE, POP, the body, and itself. That is always
// farther than the jump out of the loop and that of a break.
TEST(Limits, BodyOfAWhile) {
    const auto source = [](std::size_t size) {
        const std::size_t assignment = 1 + 3 + 1;
        return "let c = true\nif c then while c do\nc = false\n" + statements(size - assignment) +
               "end end\nprint(\"end\")";
    };
    // The branch around the loop is nearly full as well.
    EXPECT_EQ(onVm(source(edge - 16)), "end\n");
    EXPECT_EQ(compiling(source(edge - 15)), compileErrorAt("2:1", branchTooLarge));
    EXPECT_EQ(compiling(source(edge - 11)), compileErrorAt("2:1", branchTooLarge));
    EXPECT_EQ(compiling(source(edge - 10)), compileErrorAt("2:11", loopTooLarge));
    const auto alone = [](std::size_t size) {
        return "while true do\nbreak\n" + statements(size - 3) + "end\nprint(\"end\")";
    };
    EXPECT_EQ(onVm(alone(edge - 9)), "end\n");
    EXPECT_EQ(compiling(alone(edge - 8)), compileErrorAt("1:1", loopTooLarge));
    EXPECT_EQ(compiling(alone(2 * edge)), compileErrorAt("1:1", loopTooLarge));
}

TEST(Limits, ContinueInALoop) {
    const auto source = [](std::size_t size) {
        return "  while true do\ncontinue\n" + statements(size) + "end";
    };
    EXPECT_EQ(compiling(source(edge - 12)), "");
    EXPECT_EQ(compiling(source(edge - 11)), compileErrorAt("1:3", loopTooLarge));
    // The jump of the continue is the first to be completed.
    EXPECT_EQ(compiling(source(edge - 1)), compileErrorAt("1:3", loopTooLarge));
    EXPECT_EQ(compiling(source(edge)), compileErrorAt("1:3", branchTooLarge));
}

TEST(Limits, BodyOfANumericFor) {
    // The loop has 14 bytes before its body and 14 behind it, LOOP included.
    const auto source = [](std::size_t size) {
        return "for i = 1, 2 do\n" + statements(size) + "end\nprint(\"end\")";
    };
    EXPECT_EQ(onVm(source(edge - 29)), "end\n");
    EXPECT_EQ(compiling(source(edge - 28)), compileErrorAt("1:1", loopTooLarge));
}

TEST(Limits, BodyOfAForIn) {
    // 12 bytes for the test, 11 for the element, 11 for the step, LOOP.
    const auto source = [](std::size_t size) {
        return "for x in \"ab\" do\n" + statements(size) + "end\nprint(\"end\")";
    };
    EXPECT_EQ(onVm(source(edge - 38)), "end\n");
    EXPECT_EQ(compiling(source(edge - 37)), compileErrorAt("1:1", loopTooLarge));
}

TEST(Limits, BodyOfATry) {
    // The handler begins behind the body, TRY_END and a JUMP.
    const auto source = [](std::size_t size) {
        const std::size_t failing = 3 + 3 + 2 + 1;
        return "  try\n" + statements(size - failing) + "error(\"thrown\")\ncatch e\nprint(e)\nend";
    };
    EXPECT_EQ(onVm(source(edge - 5)), "thrown\n");
    EXPECT_EQ(compiling(source(edge - 4)), compileErrorAt("1:3", branchTooLarge));
}

TEST(Limits, HandlerOfATry) {
    // The jump over the handler passes the POP of the caught value, too.
    const auto source = [](std::size_t size, const char* body) {
        return "try\n" + std::string(body) + "\ncatch e\n" + statements(size) +
               "end\nprint(\"end\")";
    };
    EXPECT_EQ(onVm(source(edge - 2, "nil")), "end\n");
    EXPECT_EQ(onVm(source(edge - 2, "error()")), "end\n");
    EXPECT_EQ(compiling(source(edge - 1, "nil")), compileErrorAt("1:1", branchTooLarge));
}

TEST(Limits, CodeItselfMayBeLonger) {
    const std::string source = statements(200'001) +
                               "let sum = 0\n"
                               "for i = 1, 10 do\n"
                               "if i == 5 then continue end\n"
                               "if i == 9 then break end\ntry\nsum += i\nerror(1)\n"
                               "catch e\nsum += 100\nend\n"
                               "end\n" +
                               "print(sum)\n" + statements(100) + "return 1 / 0";
    EXPECT_EQ(onVm(source), "731\nruntime error 100063:0: division by zero");
}

TEST(Limits, SlotsTakeTwoBytes) {
    std::string source = "function f(first)\n";
    for (int i = 0; i < 1'000; ++i) {
        source += "let v" + std::to_string(i) + " = first + " + std::to_string(i) + "\n";
    }
    source += "v999 += v255 + v256\nreturn [first, v0, v254, v255, v256, v511, v512, v999]\nend\n";
    const std::string wanted = "[10000, 10000, 10254, 10255, 10256, 10511, 10512, 31510]\n";
    EXPECT_EQ(onVm(source + "print(f(10000))"), wanted);
    EXPECT_EQ(onTree(source + "print(f(10000))"), wanted);
}

// The operands below are cut to their low bytes.

TEST(Limits, LocalsBeyondTheOperand) {
    std::string source = "function f(p0";
    for (int i = 1; i <= 65'537; ++i) source += ", p" + std::to_string(i);
    const auto script = compileText(source + ")\nreturn p65537\nend");
    const FunctionProto& f = *script->functions[0];
    EXPECT_EQ(f.arity, 65'538U);
    EXPECT_EQ(std::vector<std::uint8_t>(f.code.begin(), f.code.begin() + 3),
              (std::vector<std::uint8_t>{8, 0, 1}));
}

TEST(Limits, UpvaluesBeyondTheOperand) {
    std::string source = "function outer()\n";
    for (int i = 0; i <= 257; ++i) {
        source += "let v" + std::to_string(i) + " = " + std::to_string(i) + "\n";
    }
    source += "return function()\nlet all = [v0";
    for (int i = 1; i <= 255; ++i) source += ", v" + std::to_string(i);
    source +=
        "]\n"
        "let answer = [v255, v256, v257]\n"
        "v256 = \"new\"\n"
        "return answer + [v0, v1]\n"
        "end\nend\nprint(outer()())";
    EXPECT_EQ(onVm(source), "[255, 0, 1, \"new\", 1]\n");
    EXPECT_EQ(onTree(source), "[255, 256, 257, 0, 1]\n");
    const auto script = compileText(source);
    EXPECT_EQ(script->functions[0]->functions[0]->upvalues.size(), 258U);
}

TEST(Limits, FunctionsBeyondTheOperand) {
    const std::string source = "let first = function() return \"first\" end\n" +
                               repeated("function() end\n", 65'534) +
                               "let last = function() return \"last\" end\n"
                               "let beyond = function() return \"beyond\" end\n"
                               "print(first(), last(), beyond())";
    EXPECT_EQ(onVm(source), "first last first\n");
    EXPECT_EQ(onTree(source), "first last beyond\n");
}

TEST(Limits, ListAndMapCountsBeyondTheOperand) {
    using Bytes = std::vector<std::uint8_t>;
    const auto operandBehind = [](const FunctionProto& proto, std::size_t at) {
        return Bytes(proto.code.begin() + static_cast<std::ptrdiff_t>(at),
                     proto.code.begin() + static_cast<std::ptrdiff_t>(at) + 3);
    };
    EXPECT_EQ(operandBehind(*compileText(list(65'535)), 65'535), (Bytes{13, 255, 255}));
    EXPECT_EQ(operandBehind(*compileText(list(65'536)), 65'536), (Bytes{13, 0, 0}));
    EXPECT_EQ(operandBehind(*compileText(list(65'538)), 65'538), (Bytes{13, 0, 2}));
    const auto map = [](std::size_t entries) {
        return "let m = {" + repeated("[nil]: nil, ", entries - 1) + "[nil]: nil}";
    };
    EXPECT_EQ(operandBehind(*compileText(map(65'535)), 131'070), (Bytes{14, 255, 255}));
    EXPECT_EQ(operandBehind(*compileText(map(65'537)), 131'074), (Bytes{14, 0, 1}));
}

// So many values on the stack, the function of each frame among them: the next push fails.

TEST(Limits, ValuesOnTheStack) {
    // The script itself takes a slot.
    const auto source = [](std::size_t count) {
        return "\nlet xs = " + list(count) + "\nprint(len(xs))";
    };
    EXPECT_EQ(onVm(source(edge - 1)), text(edge - 1) + "\n");
    EXPECT_EQ(onVm(source(edge)), "runtime error 2:0: stack overflow");
    // The count would be cut to 1, but the code does not come so far.
    EXPECT_EQ(onVm(source(edge + 1)), "runtime error 2:0: stack overflow");
    EXPECT_EQ(onTree(source(edge + 1)), text(edge + 1) + "\n");
}

TEST(Limits, ValuesOnTheStackInAFunction) {
    const auto source = [](std::size_t count) {
        return "function f(x)\nlet y = x\nlet xs = " + list(count, "y") +
               "\nreturn len(xs)\nend\nprint(f(1))";
    };
    // Below the elements: the script, print, f, x and y.
    EXPECT_EQ(onVm(source(edge - 5)), text(edge - 5) + "\n");
    EXPECT_EQ(onVm(source(edge - 4)), "runtime error 3:0: stack overflow");
}

TEST(Limits, ArgumentsOnTheStack) {
    // Below the elements: the script, print, len.
    const auto source = [](std::size_t count) { return "print(len(" + list(count) + "))"; };
    EXPECT_EQ(onVm(source(edge - 3)), text(edge - 3) + "\n");
    EXPECT_EQ(onVm(source(edge - 2)), "runtime error 1:0: stack overflow");
    // The last value is an argument of the innermost call.
    const auto nested = [](std::size_t count) {
        return "let x = 5\nlet xs = " + list(count, "str(x)") + "\nprint(len(xs))";
    };
    EXPECT_EQ(onVm(nested(edge - 2)), text(edge - 2) + "\n");
    EXPECT_EQ(onVm(nested(edge - 1)), "runtime error 2:0: stack overflow");
    EXPECT_EQ(onTree(nested(edge - 1)), text(edge - 1) + "\n");
}

TEST(Limits, OperandsOnTheStack) {
    const auto source = [](std::size_t count) {
        return "let a = 1\nlet xs = " + list(count, "a + 1") + "\nprint(xs[-1])";
    };
    EXPECT_EQ(onVm(source(edge - 2)), "2\n");
    EXPECT_EQ(onVm(source(edge - 1)), "runtime error 2:0: stack overflow");
    const auto comparison = [](std::size_t count) {
        return "let a = 1\nlet xs = " + list(count, "a < 2") + "\nprint(xs[-1])";
    };
    EXPECT_EQ(onVm(comparison(edge - 2)), "true\n");
    EXPECT_EQ(onVm(comparison(edge - 1)), "runtime error 2:0: stack overflow");
}

TEST(Limits, CallbacksOnTheStack) {
    // Below what map pushes: the script, the elements before, map, the function and the list.
    const auto source = [](std::size_t before, const char* function) {
        return "function f(x)\nend\nlet xs = " +
               list(before + 1, "map(" + std::string(function) + ", [1])") +
               "\nprint(len(xs), xs[-1])";
    };
    // A native is pushed with its argument; a function of the program pushes its nil besides.
    EXPECT_EQ(onVm(source(edge - 6, "str")), text(edge - 5) + " [\"1\"]\n");
    EXPECT_EQ(onVm(source(edge - 5, "str")), "runtime error 0:0: stack overflow");
    EXPECT_EQ(onVm(source(edge - 7, "f")), text(edge - 6) + " [nil]\n");
    EXPECT_EQ(onVm(source(edge - 6, "f")), "runtime error 1:0: stack overflow");
    EXPECT_EQ(onVm(source(edge - 5, "f")), "runtime error 0:0: stack overflow");
    EXPECT_EQ(onTree(source(edge - 5, "str")), text(edge - 4) + " [\"1\"]\n");
}

TEST(Limits, AStackOverflowIsCaughtAndTheProgramGoesOn) {
    // Below the elements: the script and the function.
    const std::string source = "function tooLarge() return " + list(edge - 1) +
                               " end\n"
                               "function large() return " +
                               list(edge - 2) +
                               " end\n"
                               "for i = 1, 3 do\n"
                               "try\n"
                               "let xs = tooLarge()\n"
                               "print(\"no\")\n"
                               "catch e\n"
                               "print(e, i, len(str(i)))\n"
                               "end\n"
                               "end\n"
                               "let xs = large()\n"
                               "print(len(xs))";
    EXPECT_EQ(onVm(source), "stack overflow 1 1\nstack overflow 2 1\nstack overflow 3 1\n" +
                                text(edge - 2) + "\n");
}

TEST(Limits, ACaughtValueTakesASlot) {
    // Below what is thrown: the script, a function, all elements but one, the failing function. A
    // handler that has no room to go on leaves its error to the one around it.
    const auto source = [](std::size_t count) {
        return "function fails()\ntry\nerror(\"inner\")\ncatch e\nreturn e\nend\nend\n"
               "function full() return " +
               list(count, "fails()") +
               " end\n"
               "try\nlet xs = full()\nprint(xs[-1])\ncatch e\nprint(\"outer\", e)\nend";
    };
    EXPECT_EQ(onVm(source(edge - 4)), "inner\n");
    EXPECT_EQ(onVm(source(edge - 3)), "outer stack overflow\n");
}

// At most so many frames, the script's among them.

constexpr const char* descending =
    "return function(n)\n"
    "    function f(k)\n"
    "        if k == 1 then return 1 end\n"
    "        return f(k - 1) + 1\n"
    "    end\n"
    "    return f(n)\n"
    "end";

TEST(Limits, FramesOfACallFromOutside) {
    const auto call = [](std::size_t depth) {
        MemoryConsole memory;
        VM vm(memory.console);
        const Value f = vm.run(compileText(descending));
        return ending([&] { return callWith(vm, f, {Value(depth)}); });
    };
    // No script is running, and the outer function takes a frame.
    EXPECT_EQ(call(maxCalls - 1), text(maxCalls - 1));
    EXPECT_EQ(call(maxCalls), "runtime error 4:0: call stack overflow (too much recursion)");
}

TEST(Limits, FramesOfANestedCallFromANative) {
    // Every so many calls, one takes two frames, that of the callback included.
    constexpr std::size_t period = limit(100, 10);
    constexpr std::size_t deepest = limit(4'055, 363);
    static_assert(1 + deepest + deepest / period == maxCalls);
    const auto source = [](std::size_t depth) {
        return "function f(k)\n"
               "    if k == 1 then return [1] end\n"
               "    if k % " +
               text(period) +
               " == 0 then return map(function(x) return f(x)[0] + 1 end, [k - 1]) end\n"
               "    return [f(k - 1)[0] + 1]\n"
               "end\n"
               "print(f(" +
               text(depth) + "))";
    };
    EXPECT_EQ(onVm(source(deepest)), "[" + text(deepest) + "]\n");
    EXPECT_EQ(onVm(source(deepest + 1)),
              "runtime error 4:0: call stack overflow (too much recursion)");
}

// The frames of the host's stack are larger in a build with the address sanitizer.
#if defined(__SANITIZE_ADDRESS__)
#define PELLUM_LARGE_FRAMES 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define PELLUM_LARGE_FRAMES 1
#endif
#endif
#if defined(PELLUM_LARGE_FRAMES)
constexpr int deepCalls = limit(5'000, 300);
#else
constexpr int deepCalls = limit(20'000, 300);
#endif

TEST(Limits, SumsTooLongForTheHostStack) {
    const auto sum = [](std::size_t terms) { return "nil" + repeated("+nil", terms - 1); };
    std::string vm, tree;
    onSmallStack([&] { vm = onVm(sum(30'000)), tree = onTree(sum(30'000)); });
    EXPECT_TRUE(vm.starts_with("compile error 1:")) << vm;
    EXPECT_TRUE(vm.ends_with(": nesting too deep")) << vm;
    EXPECT_TRUE(tree.ends_with(": call stack overflow (too much recursion)")) << tree;
    onSmallStack([&] { vm = onVm(sum(100)), tree = onTree(sum(100)); });
    EXPECT_EQ(vm, "runtime error 1:0: cannot add nil and nil");
    EXPECT_EQ(tree, "runtime error 1:4: cannot add nil and nil");
}

TEST(Limits, DeepCallsOfTheTreeWalker) {
    // Each call stands inside statements and expressions, which take host stack as well.
    const std::string source =
        "function f(n)\n"
        "    if n == 0 then\n"
        "        return 0\n"
        "    else\n"
        "        for x in [n] do\n"
        "            return (1 + [f(x - 1)][0])\n"
        "        end\n"
        "    end\n"
        "end\n"
        "print(f(" +
        std::to_string(deepCalls) + "))";
    EXPECT_EQ(onTree(source), std::to_string(deepCalls) + "\n");
}

}  // namespace
}  // namespace pellum
