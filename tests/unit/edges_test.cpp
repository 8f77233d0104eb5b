// Every kind of code, brought step by step across the end of the value stack and past the last
// frame. Near the end a machine changes from register code to stack code, so the one must stop with
// the very value, message and line with which the other does. In a build with small limits these
// are thousands of programs; the ordinary one takes a few.
#include "unit/running.h"

#include <gtest/gtest.h>

namespace pellum {
namespace {

using test::compileText;
using test::errorOf;
using test::MemoryConsole;
using test::onTree;

constexpr std::size_t stackSize = limit(65'536, 4'000);
constexpr std::size_t maxCalls = limit(4'096, 400);

struct Shape {
    const char* name;
    const char* body;                // of a function `probe(x)`, which is called with 7
    bool firesLeftHandlers = false;  // which the tree-walker does not have
};

constexpr Shape shapes[] = {
    {"Plain", "return x"},
    {"Arithmetic", "let a = x + 1\nlet b = a * (a - x)\nreturn a + b * (x + a)"},
    {"Literals", "return [x, [x, x], {a: x, b: [x]}, \"a ${x} b\"]"},
    {"Locals",
     "let a = 1\nlet b = 2\nlet c = 3\nif x > 1 then let d = a + b\nc = c + d end\n"
     "return a + b + c"},
    {"Calls", "return str(add(x, add(x, x)))"},
    {"CallsOfNatives", "return [len([x, x]), max(x, 2, 3), str(x)]"},
    {"Loops",
     "let s = 0\nfor i = 1, 3 do s += i * x end\nfor c in \"ab\" do s += ord(c) end\n"
     "while s > 100 do s -= 50 end\nreturn s"},
    {"ShortCircuits", "return (x and x > 2) or (not x and [x, x])"},
    {"Comparisons", "if x < 9 and x >= 7 or x == \"no\" then return x != 8 end\nreturn nil"},
    {"Closures",
     "let n = x\nlet up = function() n += 1\nreturn n end\nup()\n"
     "return [up(), n, (function(y) return y + n end)(1)]"},
    {"Callbacks", "return map(function(e) return e * x end, [1, 2])"},
    {"CallbacksOfNatives", "return map(str, [x, [x]])"},
    {"NestedCallbacks",
     "return map(function(e) return reduce(function(a, b) return a + b * x end, "
     "[e, e, e]) end, [1, 2])"},
    {"Sorting", "return sort([x, 3, 9, 1], function(a, b) return add(a, 0) > b end)"},
    {"Errors", "return x.field"},
    {"ErrorsOfNatives", "return num(\"x\" + str(x))"},
    {"ErrorsInCallbacks", "return filter(function(e) return e[x] end, [1])"},
    {"Handlers", "try\nlet a = [x]\nreturn a[x]\ncatch e\nlet b = e\nreturn [b, x]\nend"},
    {"HandlersOfThrows",
     "let log = []\ntry\ntry error({at: x}) catch e\npush(log, e)\n"
     "error(\"again\") end\ncatch e\npush(log, e)\nend\nreturn log"},
    {"HandlersOfOverflow",
     "try\nreturn [x, [x, [x, [x, [x, [x, add(x, x)]]]]]]\ncatch e\n"
     "return e\nend"},
    {"HandlersInCallbacks",
     "return map(function(e) try return add(e, x) catch f return f end end, "
     "[1, nil])"},
    {"HandlersAroundCallbacks",
     "try\nreturn map(function(e) return [e, [e, add(e, x)]] end, [1])\n"
     "catch e\nreturn \"caught \" + e\nend"},
    {"LeftHandlers",
     "let log = []\nfor i = 1, 3 do\ntry\nif i == 2 then break end\npush(log, i)\n"
     "catch e\npush(log, [e])\nreturn log\nend\nend\npush(log, add(x, x))\n"
     "push(log, [x, x, x, x, x, x])\nreturn log"},
    {"LeftHandlersThatFire",
     "for i = 1, 2 do\ntry\ncontinue\ncatch e\nreturn [e, i]\nend\nend\n"
     "let a = 1\nlet b = 2\nreturn [a, b, x.field]",
     true},
    {"LeftHandlersAndCallbacks",
     "while true do\ntry\nbreak\ncatch e\nreturn [e]\nend\nend\n"
     "return map(function(e) return add(e, [x, x, e.f]) end, [1])",
     true},
    {"Fields", "let m = {a: {b: x}}\nm.a.b += 1\nm.c = m.a.b\nm[\"d\"] = [m.c]\nreturn m"},
    {"Globals", "shared += x\nlet a = shared\nshared -= x\nreturn [a, shared]"},
    {"Recursion",
     "function down(n)\nif n == 0 then return [x] end\nreturn [down(n - 1)]\nend\n"
     "return down(5)"},
    {"RecursionWithHandlers",
     "function down(n)\ntry\nif n == 0 then return x.y end\n"
     "return [down(n - 1), n]\ncatch e\nreturn [e, n]\nend\nend\n"
     "return down(5)"},
};

constexpr const char* prelude =
    "let shared = 1\n"
    "function add(a, b)\n    let sum = a + b\n    return sum\nend\n";

std::string program(const Shape& shape, const std::string& rest) {
    return std::string(prelude) + "function probe(x)\n" + shape.body + "\nend\n" + rest;
}

std::string onMachine(std::string_view source, VM::Code code) {
    MemoryConsole memory;
    const std::string error = errorOf([&] { VM(memory.console, code).run(compileText(source)); });
    return memory.out.str() + error;
}

// Both machines must say the same, and where neither speaks of a limit, the tree-walker as well.
// The place of an error is left out there, since that knows columns.
void expectAgreement(const Shape& shape, const std::string& source, const std::string& what) {
    const std::string fromRegisters = onMachine(source, VM::Code::Register);
    ASSERT_EQ(fromRegisters, onMachine(source, VM::Code::Stack)) << what << "\n" << source;
    if (shape.firesLeftHandlers || fromRegisters.find("overflow") != std::string::npos) return;
    const auto withoutPlace = [](std::string text) {
        const std::size_t place = text.find("runtime error ");
        if (place != text.npos) text.erase(place, text.find(": ", place) - place);
        return text;
    };
    ASSERT_EQ(withoutPlace(fromRegisters), withoutPlace(onTree(source))) << what << "\n" << source;
}

class Edges : public testing::TestWithParam<Shape> {};

// `below` values, then the call.
std::string stackProgram(const Shape& shape, std::size_t below) {
    std::string list = "return [";
    for (std::size_t i = 0; i < below; ++i) list += "nil, ";
    return program(shape, "function full()\n" + list +
                              "probe(7)][-1]\nend\n"
                              "try\nprint(full())\ncatch e\nprint(\"outside:\", e)\nend\n"
                              "print(add(1, 2))\nprint(full())");
}

TEST_P(Edges, OfTheStack) {
    constexpr std::size_t widest = 40;
    constexpr std::size_t stride = limit(13, 1);
    for (std::size_t room = 1; room <= widest; room += stride) {
        expectAgreement(GetParam(), stackProgram(GetParam(), stackSize - room),
                        std::to_string(room) + " slots are left");
    }
}

// `depth` calls around it. The calls go straight, and through a builtin now and then.
std::string framesProgram(const Shape& shape, std::size_t depth, bool throughBuiltins) {
    const std::string call =
        throughBuiltins ? "if n % 7 == 0 then return map(nest, [n - 1])[0] end\n" : "";
    return program(shape, "function nest(n)\nif n == 0 then return probe(7) end\n" + call +
                              "let result = nest(n - 1)\nreturn result\nend\n"
                              "function deep() return nest(" +
                              std::to_string(depth) +
                              ") end\n"
                              "try\nprint(deep())\ncatch e\nprint(\"outside:\", e)\nend\n"
                              "print(add(1, 2))\nprint(deep())");
}

TEST_P(Edges, OfTheFrames) {
    constexpr std::size_t most = 12;
    constexpr std::size_t stride = limit(5, 1);
    for (std::size_t left = 0; left <= most; left += stride) {
        for (const bool throughBuiltins : {false, true}) {
            expectAgreement(GetParam(),
                            framesProgram(GetParam(), maxCalls - 2 - left, throughBuiltins),
                            std::to_string(left) + " frames are left");
        }
    }
}

// Where handlers have been left behind, callees run as stack code too.
TEST_P(Edges, BehindAHandlerThatWasLeft) {
    constexpr std::size_t widest = 40;
    constexpr std::size_t stride = limit(13, 1);
    for (std::size_t room = 1; room <= widest; room += stride) {
        std::string list = "return [";
        for (std::size_t i = 0; i < stackSize - room; ++i) list += "nil, ";
        const std::string source =
            program(GetParam(),
                    "function full()\nfor i = 1, 2 do\ntry\ncontinue\ncatch e\n"
                    "return [\"left\", i, e]\nend\nend\n" +
                        list +
                        "probe(7)][-1]\nend\n"
                        "print(full())\nprint(add(1, 2))\nprint(full())");
        // What a handler that was left finds differs between the engines on purpose.
        ASSERT_EQ(onMachine(source, VM::Code::Register), onMachine(source, VM::Code::Stack))
            << room << " slots are left";
    }
}

INSTANTIATE_TEST_SUITE_P(Limits, Edges, testing::ValuesIn(shapes),
                         [](const auto& shape) { return std::string(shape.param.name); });

}  // namespace
}  // namespace pellum
