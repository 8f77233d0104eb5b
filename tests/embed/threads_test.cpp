// Several engines, on one thread and on several. Built with the thread sanitizer these tests show
// that engines have nothing in common (docs/embedding.md has the command).
#include "embed/embedding.h"

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

namespace pellum::test {
namespace {

using embed::Engine;
using embed::Value;
using embed::Values;

constexpr const char* work =
    "let words = {}\n"
    "function note(w)\n    words[w] = get(words, w, 0) + 1\n    return w\nend\n"
    "for i = 1, 300 do\n"
    "    note('word ' + str(i % 17))\n"
    "    note(char(97 + i % 26))\n"
    "    let r = randint(1, 6) + random()\n"
    "end\n"
    "let sorted = sort(keys(words), function(a, b) return a < b end)\n"
    "try\n    error({all: sorted})\ncatch e\n    sorted = e.all\nend\n"
    "return join(map(upper, sorted), ',')\n";

std::string resultOfWork() {
    Engine engine;
    return textOf(engine, work);
}

TEST(EmbedThreads, EnginesOnOneThreadAreApart) {
    Engine one;
    Engine two;
    one.run("let x = 'of one'\nfunction print(t) x = t end");
    two.run("let y = 'of two'");
    one.run("print('changed')");
    EXPECT_FALSE(two.has("x"));
    EXPECT_FALSE(one.has("y"));
    EXPECT_EQ(textOf(two, "return print"), "<native function print>");
    EXPECT_EQ(one.get("x").asString(), "changed");
}

// Each calls the other, and both are where they were when the call comes back.
TEST(EmbedThreads, EnginesMayCallEachOther) {
    Engine one;
    Engine two;
    one.define("two", [&](Engine&, const Values& args) { return two.run(args[0].asString()); });
    two.define("one", [&](Engine&, const Values& args) { return one.run(args[0].asString()); });
    EXPECT_EQ(textOf(one,
                     "let list = ['of one']\n"
                     "let got = two(\"let s = 'two: ' + one('return list[0] + char(33)')\\n"
                     "return s\")\n"
                     "push(list, got)\nreturn list"),
              "[\"of one\", \"two: of one!\"]");
}

TEST(EmbedThreads, EnginesOnManyThreads) {
    const std::string wanted = resultOfWork();
    std::atomic<int> right = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 5; ++round) {
                if (resultOfWork() == wanted) ++right;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(right, 20);
}

// An engine that is made, used and ended on threads of its own each time, with a sibling left
// behind on each of them.
TEST(EmbedThreads, AnEngineMayGoFromThreadToThread) {
    auto engine = std::make_unique<Engine>();
    std::vector<std::unique_ptr<Engine>> siblings;
    Value kept;
    for (int round = 0; round < 4; ++round) {
        std::thread([&] {
            siblings.push_back(std::make_unique<Engine>());
            siblings.back()->run(work);
            engine->run(work);
            kept = engine->run("let s = 'a' + 'b'\nreturn [s, s[0], words]");
        }).join();
        EXPECT_EQ(kept.get(1).asString(), "a");
        EXPECT_EQ(engine->run("return len(words)").asInt(), 43);
    }
    std::thread([&] { engine.reset(); }).join();
    EXPECT_EQ(kept.get(2).size(), 43u);
    for (const auto& sibling : siblings) EXPECT_TRUE(sibling->has("sorted"));
    std::thread([&] { kept = Value(); }).join();
}

// Functions with deep recursion find the end of the stack that they are on.
TEST(EmbedThreads, RecursionKnowsTheStackOfItsThread) {
    std::string outcome;
    std::thread([&] {
        Engine engine;
        engine.define("call", [](Engine& self, const Values& args) { return self.call(args[0]); });
        engine.run("function again() return call(again) end");
        outcome = outcomeOf(engine, "again()");
        std::string nested(100'000, '(');
        outcome += "; " + outcomeOf(engine, "return " + nested);
    }).join();
    EXPECT_EQ(outcome,
              "runtime: call stack overflow (too much recursion); "
              "syntax: nesting too deep");
}

TEST(EmbedThreads, TwoThreadsInOneEngineAreMisuse) {
    Engine engine;
    std::string outcome;
    engine.define("meanwhile", [&](Engine& self, const Values&) {
        std::thread([&] { outcome = outcomeOf(self, "return 1"); }).join();
        return Value();
    });
    engine.run("meanwhile()");
    EXPECT_EQ(outcome, "misuse: the engine is in use by another thread");
}

}  // namespace
}  // namespace pellum::test
