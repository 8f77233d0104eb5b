// What a host allows a program, and that no program gets around it.
#include "embed/embedding.h"
#include "value/limits.h"

#include <chrono>
#include <thread>

namespace pellum::test {
namespace {

using embed::Engine;
using embed::Error;
using embed::Failure;
using embed::Options;
using embed::Value;
using embed::Values;

Options withSteps(std::uint64_t steps) {
    Options options;
    options.maxSteps = steps;
    return options;
}

Options withMemory(std::size_t bytes) {
    Options options;
    options.maxMemory = bytes;
    return options;
}

constexpr const char* noSteps = "steps: step limit reached";
constexpr const char* noMemory = "memory: memory limit reached";

class EndlessProgram : public testing::TestWithParam<const char*> {};

TEST_P(EndlessProgram, EndsAfterItsSteps) {
    Engine engine(withSteps(10'000));
    engine.define("call", [](Engine& self, const Values& args) { return self.call(args[0]); });
    engine.define("hide", [](Engine& self, const Values& args) -> Value {
        try {
            return self.call(args[0]);
        } catch (const Error&) {
            return "hidden";
        }
    });
    engine.run("let kept = 1\nfunction spin() while true do end end");
    const std::string source = std::string("kept += 1\n") + GetParam();
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(outcomeOf(engine, source), noSteps);
        EXPECT_EQ(engine.stepsTaken(), 10'000u);
        EXPECT_EQ(engine.get("kept").asInt(), 2 + round);
        // Each run has its own steps.
        EXPECT_EQ(engine.run("let n = 0\nfor i = 1, 5000 do n += i end\nreturn n").asInt(),
                  12'502'500);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Embed, EndlessProgram,
    testing::Values(
        "while true do end", "for i = 1, 1e15 do end", "for i = 1, 2, 0 do end",
        "for i = 0.5, 1e15 do kept = kept end",
        "let xs = [1]\nwhile true do for x in xs do continue end end",
        "try\n while true do end\ncatch e\n kept = -1\nend",
        "try\n spin()\ncatch e\n kept = -1\nend\nkept = -2",
        "while true do try\n spin()\ncatch e\n kept = -1\nend end",
        "while true do try\n break\ncatch e\n kept = -1\nend end\n"
        "while true do try\n spin()\ncatch e\n kept = -1\nend end",
        "function f() while true do try\n break\ncatch e\n end end\n while true do end end\nf()",
        "function f() while true do try\n continue\ncatch e\n end end end\nf()",
        "function f(n)\n if n > 0 then\n f(n - 1)\n f(n - 1)\n end\nend\nf(100)",
        "function f() return 1 end\nwhile f() do end", "sort(range(3), function(a, b) spin() end)",
        "map(function(x) while x do end end, [1])",
        "function twice(f, x)\n f(x)\n return f(x)\nend\n"
        "function grow(n) \n if n == 0 then return end\n twice(grow, n - 1)\nend\ngrow(60)",
        "let r = range(100000)\nwhile true do reduce(max, r) end", "call(spin)",
        "try\n call(spin)\ncatch e\n kept = -1\nend",
        "try\n hide(spin)\ncatch e\n kept = -1\nend\nkept = -2",
        "try\n hide(function()\n hide(spin)\n kept = -3\n end)\ncatch e\n kept = -1\nend\nkept = "
        "-2"));

TEST(EmbedLimits, StepsAreWhatTheyAreSaidToBe) {
    Engine engine(withSteps(1'000'000));
    const auto stepsOf = [&](const char* source) {
        engine.run(source);
        return engine.stepsTaken();
    };
    EXPECT_EQ(stepsOf(""), 1u);  // the script itself
    EXPECT_EQ(stepsOf("print(1)\nlet x = [1, 2]"), 1u);
    EXPECT_EQ(stepsOf("function f() return 1 end\nf()\nf()"), 3u);
    EXPECT_EQ(stepsOf("let n = 0\nwhile n < 10 do n += 1 end"), 11u);
    EXPECT_EQ(stepsOf("for i = 1, 10 do end"), 11u);
    EXPECT_EQ(stepsOf("for i in range(10) do end"), 11u);
    EXPECT_EQ(stepsOf("map(function(x) return x end, range(10))"), 11u);
    EXPECT_EQ(stepsOf("map(str, range(10))"), 11u);
    EXPECT_EQ(stepsOf("function plain() for i = 1, 10 do try\n continue\ncatch e\n end end end\n"
                      "plain()"),
              12u);
}

TEST(EmbedLimits, TheVeryLastStepIsAllowed) {
    Engine engine(withSteps(11));
    engine.run("for i = 1, 10 do end");
    EXPECT_EQ(outcomeOf(engine, "for i = 1, 11 do end"), noSteps);
    EXPECT_EQ(outcomeOf([&] { Engine(withSteps(1)).run("let f = function() end\nf()"); }), noSteps);
}

TEST(EmbedLimits, StepsSayWhereTheyEnded) {
    Engine engine(withSteps(1'000));
    engine.run("\n\nfunction spin()\n    while true do\n    end\nend", "library");
    const auto error = errorOf([&] { engine.run("try\n spin()\ncatch e\nend", "user"); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->failure(), Failure::Steps);
    EXPECT_EQ(error->source(), "library");
    EXPECT_EQ(error->line(), 4u);
}

TEST(EmbedLimits, WithoutALimitNothingIsCounted) {
    Engine engine;
    engine.run("for i = 1, 100000 do end");
    EXPECT_EQ(engine.stepsTaken(), 0u);
}

class GreedyProgram : public testing::TestWithParam<const char*> {};

TEST_P(GreedyProgram, EndsAtItsMemory) {
    constexpr std::size_t most = std::size_t{8} << 20;
    Engine engine(withMemory(most));
    engine.run("let kept = 0\nlet all = nil");
    const std::string source = std::string("kept += 1\n") + GetParam();
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(outcomeOf(engine, source), noMemory);
        EXPECT_LE(engine.memoryUsed(), most);
        EXPECT_EQ(engine.get("kept").asInt(), 1 + round);
        // What it held can be used by others, of other sizes.
        engine.set("all", nullptr);
        EXPECT_EQ(engine
                      .run("let s = []\nfor i = 1, 2000 do push(s, 'number ' + str(i)) end\n"
                           "let n = len(join(s, ' and '))\ns = nil\nreturn n")
                      .asInt(),
                  2000 * 7 + 6893 + 1999 * 5);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Embed, GreedyProgram,
    testing::Values(
        "all = ''\nwhile true do all += 'a piece of text' end",
        "all = 'x'\nwhile true do all = all + all end", "all = nil\nwhile true do all = [all] end",
        "all = nil\nwhile true do all = {next: all} end",
        "all = []\nwhile true do push(all, nil) end",
        "all = []\nwhile true do all += range(1000) end",
        "all = []\nwhile true do push(all, {a: 1, b: [2]}) end",
        "all = {}\nlet i = 0\nwhile true do all[i] = i\n i += 1 end",
        "all = {}\nlet i = 0\nwhile true do all['key ' + str(i)] = i\n i += 1 end",
        "all = []\nwhile true do push(all, function() return all end) end",
        "try\n all = range(1e7)\ncatch e\n kept = -1\nend",
        "try\n all = repeat('x', 1e8)\ncatch e\n kept = -1\nend\nkept = -2",
        "while true do try\n all = repeat([1, 2, 3], 1e7)\ncatch e\n kept = -1\nend end",
        "all = [1]\nfor i = 1, 22 do all = [all, all] end\nprint(all)",
        "all = [1]\nfor i = 1, 22 do all = [all, all] end\nall = str(all)",
        "all = repeat('ab', 3e6)\nall = upper(all)", "all = repeat('ab', 3e6)\nall = chars(all)",
        "all = repeat('ab', 3e6)\nfor c in all do kept = kept end",
        "all = repeat('a ', 1e6)\nall = split(all)",
        "all = repeat('a ', 3e6)\nall = [all, 1]\nall = join(all, ',')",
        "all = repeat('ab', 3e6)\nall = num(all)",
        "function deep(n)\n let xs = range(1000)\n return deep(n + 1) + len(xs) end\ndeep(0)",
        "all = range(200000)\nall = sort(all, function(a, b) return a < b end)\n"
        "all = [all, map(str, all), map(str, all)]"));

TEST(EmbedLimits, MemoryThatIsGivenBackIsFreeAgain) {
    Engine engine(withMemory(std::size_t{8} << 20));
    for (int i = 0; i < 20; ++i) {
        engine.run("let all = range(100000)\nlet s = repeat('x', 1e6)\nall = nil\ns = nil");
        engine.run("let all = []\nfor i = 1, 20000 do push(all, [i]) end\nall = nil");
        engine.run(
            "let all = {}\nfor i = 1, 10000 do all[str(i) + ' is a key'] = i end\nall = nil");
    }
    EXPECT_LE(engine.memoryUsed(), std::size_t{8} << 20);
}

TEST(EmbedLimits, TooLittleMemoryForAnEngineIsAnError) {
    EXPECT_EQ(outcomeOf([] { const Engine engine(withMemory(1'000)); }), noMemory);
    EXPECT_EQ(outcomeOf([] { const Engine engine(withMemory(20'000)); }), noMemory);
    EXPECT_EQ(outcomeOf([] { const Engine engine(withMemory(1 << 20)); }), "nothing");
}

TEST(EmbedLimits, TheHostMeetsTheLimitToo) {
    Engine engine(withMemory(std::size_t{1} << 20));
    const Value list = engine.list();
    EXPECT_EQ(outcomeOf([&] {
                  while (true) list.push(1);
              }),
              noMemory);
    EXPECT_GT(list.size(), 1'000u);
    EXPECT_EQ(outcomeOf([&] { engine.set("x", std::string(2'000'000, 'x')); }), noMemory);
    EXPECT_EQ(outcomeOf([&] { engine.run(std::string(2'000'000, ' ')); }), noMemory);
    EXPECT_EQ(engine.run("return 1").asInt(), 1);
}

// Syntax trees are of the engine's memory as well.
TEST(EmbedLimits, SourcesMeetTheLimit) {
    Engine engine(withMemory(std::size_t{1} << 20));
    std::string source = "let x = [";
    for (int i = 0; i < 30'000; ++i) source += "1,\n";
    EXPECT_EQ(outcomeOf(engine, source + "1]"), noMemory);
    EXPECT_EQ(engine.run("return 1").asInt(), 1);
}

TEST(EmbedLimits, InterruptsEndARun) {
    Options options;
    options.isInterruptible = true;
    Engine engine(options);
    engine.interrupt();  // nothing runs
    EXPECT_EQ(engine.run("return 1").asInt(), 1);
    for (int round = 0; round < 2; ++round) {
        std::thread other([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            engine.interrupt();
        });
        EXPECT_EQ(outcomeOf(engine, "while true do try\n while true do end\ncatch e\nend end"),
                  "interrupt: interrupted");
        other.join();
        EXPECT_EQ(engine.run("return 1").asInt(), 1);
    }
}

}  // namespace
}  // namespace pellum::test
