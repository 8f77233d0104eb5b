// Engines as a host sees them: runs, globals, functions of the host, output and input, errors.
#include "embed/embedding.h"

#include <sstream>
#include <stdexcept>
#include <vector>

namespace pellum::test {
namespace {

using embed::Engine;
using embed::Error;
using embed::Failure;
using embed::Options;
using embed::Value;
using embed::Values;

TEST(EmbedEngine, GlobalsStayFromRunToRun) {
    Engine engine;
    EXPECT_FALSE(engine.has("number"));
    EXPECT_TRUE(engine.get("number").isNil());
    engine.run("let number = 1\nfunction next()\n number += 1\n return number\nend");
    EXPECT_EQ(engine.run("return next()").asInt(), 2);
    EXPECT_EQ(engine.get("number").asInt(), 2);
    engine.set("number", 40);
    EXPECT_EQ(engine.call(engine.get("next")).asInt(), 41);
    EXPECT_TRUE(engine.has("print"));
    EXPECT_TRUE(engine.run("let x = 1").isNil());
    engine.set("no name at all", "x");
    EXPECT_EQ(engine.get("no name at all").asString(), "x");
}

// A name that code mentions before it is defined, and one that changes from a value to a function.
TEST(EmbedEngine, GlobalsMayComeLater) {
    Engine engine;
    engine.run("function f() return later end");
    EXPECT_EQ(outcomeOf(engine, "f()"), "runtime: undefined variable 'later'");
    engine.set("later", 1);
    EXPECT_EQ(engine.run("return f()").asInt(), 1);
    engine.define("later", [](Engine&, const Values&) { return 2; });
    EXPECT_EQ(engine.run("return f()()").asInt(), 2);
}

TEST(EmbedEngine, FunctionsOfTheHostAreCalledWithTheirArguments) {
    Engine engine;
    std::string seen;
    engine.define("show", [&](Engine&, const Values& args) {
        for (const Value& arg : args) seen += arg.text() + ";";
        return Value(args.size());
    });
    EXPECT_EQ(engine.run("return show(1, 'two', [3], nil)").asInt(), 4);
    EXPECT_EQ(engine.run("return show()").asInt(), 0);
    EXPECT_EQ(engine.run("return map(show, ['a', 'b'])").text(), "[1, 1]");
    EXPECT_EQ(seen, "1;two;[3];nil;a;b;");
    engine.define(
        "pair", [](Engine& self, const Values& args) { return self.list(args); }, 1, 2);
    EXPECT_EQ(textOf(engine, "return pair(1)"), "[1]");
    EXPECT_EQ(outcomeOf(engine, "pair()"), "runtime: pair() expects 1-2 argument(s), got 0");
    EXPECT_EQ(outcomeOf(engine, "pair(1, 2, 3)"), "runtime: pair() expects 1-2 argument(s), got 3");
    EXPECT_EQ(textOf(engine, "try\n pair()\ncatch e\n return e\nend"),
              "pair() expects 1-2 argument(s), got 0");
    EXPECT_EQ(textOf(engine, "return pair"), "<native function pair>");
    const Value anonymous = engine.function(
        "add", [](Engine&, const Values& args) { return args[0].asInt() + args[1].asInt(); }, 2, 2);
    EXPECT_EQ(engine.call(anonymous, {1, 2}).asInt(), 3);
    engine.set("plus", anonymous);
    EXPECT_EQ(textOf(engine, "return reduce(plus, [1, 2, 3])"), "6");
    EXPECT_EQ(outcomeOf([&] { engine.define("x", nullptr); }),
              "misuse: there is no function to call");
    const auto nothing = [](Engine&, const Values&) { return Value(); };
    EXPECT_EQ(outcomeOf([&] { engine.define("x", nothing, 2, 1); }),
              "misuse: no number of arguments would do");
    EXPECT_EQ(outcomeOf([&] { engine.define("x", nothing, -1); }),
              "misuse: no number of arguments would do");
}

// On the plain machine as well, which a `break` out of a `try` leads to.
TEST(EmbedEngine, FunctionsOfTheHostWorkWhereverTheyAreCalled) {
    Engine engine;
    engine.define(
        "twice", [](Engine&, const Values& args) { return 2 * args[0].asInt(); }, 1, 1);
    EXPECT_EQ(textOf(engine,
                     "function plain()\n"
                     "    while true do\n"
                     "        try\n            break\n        catch e\n            print(e)\n"
                     "        end\n    end\n"
                     "    return twice(21)\nend\nreturn plain()"),
              "42");
}

TEST(EmbedEngine, WhatTheHostThrowsIsAnErrorOfTheProgram) {
    Engine engine;
    engine.define("fail", [](Engine&, const Values&) -> Value {
        throw std::runtime_error("the disk is on fire");
    });
    engine.define("odd", [](Engine&, const Values&) -> Value { throw 1; });
    engine.define("none", [](Engine&, const Values&) -> Value { throw std::bad_alloc(); });
    engine.define("misuse", [](Engine&, const Values&) -> Value { return Value(1).asString(); });
    engine.define("raise", [](Engine& self, const Values&) -> Value {
        throw Error(self.map({{"code", 7}}));
    });
    EXPECT_EQ(outcomeOf(engine, "\nfail()"), "runtime: the disk is on fire");
    EXPECT_EQ(outcomeOf(engine, "odd()"), "runtime: the host has thrown something unknown");
    EXPECT_EQ(outcomeOf(engine, "none()"), "runtime: none: out of memory");
    EXPECT_EQ(outcomeOf(engine, "misuse()"), "runtime: the value is no string but an integer");
    for (const char* call : {"fail()", "odd()", "misuse()"}) {
        EXPECT_EQ(textOf(engine, "try\n " + std::string(call) + "\ncatch e\n return type(e)\nend"),
                  "string");
    }
    EXPECT_EQ(textOf(engine, "try\n raise()\ncatch e\n return e.code\nend"), "7");
    const auto thrown = errorOf([&] { engine.run("raise()"); });
    ASSERT_TRUE(thrown);
    EXPECT_EQ(thrown->failure(), Failure::Thrown);
    EXPECT_EQ(thrown->thrown().get("code").asInt(), 7);
}

TEST(EmbedEngine, ErrorsSayWhatAndWhere) {
    Engine engine;
    const auto fail = [&](const char* source, const char* name) {
        return errorOf([&] { engine.run(source, name); }).value();
    };
    const Error lexing = fail("let x = 1\nlet s = \"open", "a.plm");
    EXPECT_EQ(lexing.failure(), Failure::Syntax);
    EXPECT_EQ(lexing.source(), "a.plm");
    EXPECT_EQ(lexing.line(), 2u);
    EXPECT_EQ(lexing.column(), 9u);
    EXPECT_EQ(lexing.diagnostic().substr(0, lexing.diagnostic().find(':')), "SyntaxError (lexing)");

    const Error parsing = fail("let = 1", "b.plm");
    EXPECT_EQ(parsing.failure(), Failure::Syntax);
    EXPECT_EQ(parsing.diagnostic(), std::string("SyntaxError: ") + parsing.what() +
                                        "\n  --> b.plm:1:5\n1 | let = 1\n" + "        ^");

    const Error compiling = fail("break", "c.plm");
    EXPECT_EQ(compiling.failure(), Failure::Syntax);
    EXPECT_EQ(compiling.diagnostic().substr(0, 13), "CompileError:");

    const Error number = fail("return 1e999", "d.plm");
    EXPECT_EQ(number.failure(), Failure::Syntax);
    EXPECT_EQ(number.diagnostic(), "pellum: number literal out of range: 1e999");

    const Error running = fail("let a = 1\nreturn a + nil", "e.plm");
    EXPECT_EQ(running.failure(), Failure::Runtime);
    EXPECT_STREQ(running.what(), "cannot add number and nil");
    EXPECT_EQ(running.line(), 2u);
    EXPECT_EQ(running.diagnostic(),
              "RuntimeError: cannot add number and nil\n  --> e.plm:2:0\n2 | return a + nil\n"
              "    ^");

    // A builtin does not say where it was called; the host may know all the same.
    const Error builtin = fail("\n\npop([])", "f.plm");
    EXPECT_EQ(builtin.line(), 3u);
    EXPECT_EQ(builtin.diagnostic(), "RuntimeError: pop: list is empty");

    const Error thrown = fail("error({why: [1]})", "g.plm");
    EXPECT_EQ(thrown.failure(), Failure::Thrown);
    EXPECT_EQ(thrown.diagnostic(), "Error: {\"why\": [1]}");
    EXPECT_EQ(thrown.thrown().get("why").size(), 1u);
    EXPECT_EQ(thrown.line(), 1u);
}

// The place of an error is in the source that its function came from, not in the one that runs.
TEST(EmbedEngine, ErrorsFindTheirSource) {
    Engine engine;
    engine.run("\n\nfunction broken(x)\n    return x.y.z\nend", "library.plm");
    engine.define("again", [](Engine& self, const Values& args) { return self.call(args[0]); });
    for (const char* source :
         {"broken({})", "map(broken, [{}])", "again(function() return broken({}) end)"}) {
        const auto error = errorOf([&] { engine.run(source, "user.plm"); });
        ASSERT_TRUE(error) << source;
        EXPECT_EQ(error->source(), "library.plm") << source;
        EXPECT_EQ(error->line(), 4u) << source;
        EXPECT_NE(error->diagnostic().find("4 |     return x.y.z"), std::string::npos) << source;
    }
    const auto called = errorOf([&] { engine.call(engine.get("broken"), {1}); });
    ASSERT_TRUE(called);
    EXPECT_EQ(called->source(), "library.plm");
}

TEST(EmbedEngine, GoesOnAfterEachError) {
    Engine engine;
    engine.run(
        "let kept = [1]\n"
        "function deep(n)\n let here = n\n let f = function() return here end\n"
        "    if n == 0 then return nil + 1 end\n return deep(n - 1) + f() end\n"
        "function count(n)\n if n == 0 then return 0 end\n return 1 + count(n - 1)\nend");
    const char* const failing[] = {"deep(100)",
                                   "try\n deep(10)\ncatch e\n error(e)\nend",
                                   "sort([3, 1, 2], function(a, b) return deep(3) end)",
                                   "count(1e9)",
                                   "let x = (",
                                   "for i = 1, 10 do try\n if i == 5 then deep(1) end\n"
                                   "catch e\n  deep(2)\nend\nend"};
    for (int round = 0; round < 3; ++round) {
        for (const char* source : failing) {
            EXPECT_NE(outcomeOf(engine, source), "nothing") << source;
            // All frames and the whole stack are there again.
            EXPECT_EQ(engine.run("return count(4094 - len(kept))").asInt(), 4093) << source;
            EXPECT_EQ(textOf(engine, "return kept"), "[1]") << source;
        }
    }
}

TEST(EmbedEngine, OutputAndInputAreTheHosts) {
    std::string printed;
    std::vector<std::string> lines = {"first", "second"};
    Options options;
    options.output = [&](std::string_view text) { printed += text; };
    options.input = [&]() -> std::optional<std::string> {
        if (lines.empty()) return std::nullopt;
        std::string line = lines.front();
        lines.erase(lines.begin());
        return line;
    };
    Engine engine(options);
    engine.run("print('hello', 1)\nprint(input('? '), input(), input())\n");
    EXPECT_EQ(printed, "hello 1\n? first second nil\n");
    lines = {"more"};
    EXPECT_EQ(textOf(engine, "return input()"), "more");

    Engine silent;
    silent.run("print('lost')");
    EXPECT_TRUE(silent.run("return input()").isNil());
}

TEST(EmbedEngine, OutputAndInputMayFail) {
    Options options;
    bool fails = true;
    std::string printed;
    options.output = [&](std::string_view text) {
        if (fails) throw std::runtime_error("no paper");
        printed += text;
    };
    options.input = []() -> std::optional<std::string> { throw std::runtime_error("no hands"); };
    Engine engine(options);
    EXPECT_EQ(outcomeOf(engine, "print(1)"), "runtime: no paper");
    EXPECT_EQ(outcomeOf(engine, "print(1)"), "runtime: no paper");
    fails = false;
    EXPECT_EQ(outcomeOf(engine, "input()"), "runtime: no hands");
    engine.run("print(2)");
    EXPECT_EQ(printed, "2\n");
    EXPECT_EQ(textOf(engine, "try\n input()\ncatch e\n return e\nend"), "no hands");
    engine.define("mend", [&](Engine&, const Values&) {
        fails = false;
        return Value();
    });
    fails = true;
    engine.run("try\n print(3)\ncatch e\n mend()\n print('caught', e)\nend");
    EXPECT_EQ(printed, "2\ncaught no paper\n");
}

TEST(EmbedEngine, AFunctionOfTheHostMayUseTheEngine) {
    Engine engine;
    engine.define("run", [](Engine& self, const Values& args) {
        return self.run(args[0].asString(), "inner");
    });
    engine.define("attempt", [](Engine& self, const Values& args) -> Value {
        try {
            return self.call(args[0]);
        } catch (const Error& error) {
            return std::string("host: ") + error.what();
        }
    });
    EXPECT_EQ(engine.run("return run('let x = 5\\nreturn x * 2') + x").asInt(), 15);
    EXPECT_EQ(engine.run("return run(\"return run('return 1') + 1\") + 1").asInt(), 3);
    EXPECT_EQ(textOf(engine,
                     "let locals = 1\n"
                     "function f(a, b)\n"
                     "    let c = attempt(function() return a.b.c.d end)\n"
                     "    let d = attempt(function() return a + b end)\n"
                     "    return [a, b, c, d]\nend\nreturn f(1, 2)"),
              "[1, 2, \"host: cannot index number\", 3]");
    EXPECT_EQ(outcomeOf(engine, "run('let = 1')").substr(0, 8), "runtime:");
    EXPECT_EQ(textOf(engine, "try\n run('error([7])')\ncatch e\n return e\nend"), "[7]");
    EXPECT_EQ(outcomeOf(engine, "attempt2 = attempt"),
              "runtime: cannot assign to undefined variable 'attempt2' (use 'let' to declare it)");
}

// Recursion through the host ends like any other, on whatever stack there is.
TEST(EmbedEngine, EndlessRecursionThroughTheHostIsAnError) {
    Engine engine;
    engine.define("call", [](Engine& self, const Values& args) { return self.call(args[0]); });
    engine.run("function again() return call(again) end");
    EXPECT_EQ(outcomeOf(engine, "again()"), "runtime: call stack overflow (too much recursion)");
    EXPECT_EQ(outcomeOf(engine, "again()"), "runtime: call stack overflow (too much recursion)");
    EXPECT_EQ(engine.run("return 1").asInt(), 1);
}

// Many runs leave nothing behind but what they define.
TEST(EmbedEngine, DoesNotGrowWithTheNumberOfRuns) {
    Engine engine;
    const auto runMany = [&](int from) {
        for (int i = from; i < from + 640; ++i) {
            const std::string name = "local_" + std::to_string(i);
            engine.run("function f(" + name + ")\n return " + name + " + \"" + name +
                       "\"\nend\nreturn f('')");
        }
        return engine.memoryUsed();
    };
    const std::size_t once = runMany(0);
    EXPECT_LE(runMany(10'000), once + 4'096);
}

}  // namespace
}  // namespace pellum::test
