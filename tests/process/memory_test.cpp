// Programs that grow without an end, under limits on memory from next to nothing upwards. Whatever
// runs out first, the end is a report and status 1.
#include "support/files.h"
#include "support/process.h"
#include "support/surroundings.h"

#include <gtest/gtest.h>

#include <string>

namespace pellum::test {

namespace {

struct Growth {
    const char* what;
    const char* program;
};

constexpr Growth growths[] = {
    {"a string that doubles", "let s = \"x\"\nwhile true do s = s + s end"},
    {"a string by pieces", "let s = \"\"\nwhile true do s += \"some more of it\" end"},
    {"a list by elements", "let xs = []\nwhile true do push(xs, 1) end"},
    {"a list that doubles", "let xs = [1]\nwhile true do xs = xs + xs end"},
    {"lists in lists", "let xs = nil\nwhile true do xs = [xs, 1] end"},
    {"a map", "let m = {}\nlet i = 0\nwhile true do\nm[\"key\" + str(i)] = i\ni += 1\nend"},
    {"maps in maps", "let m = nil\nwhile true do m = {next: m} end"},
    {"closures", "let f = nil\nwhile true do\nlet g = f\nf = function() return g end\nend"},
    {"calls", "function f(n) return [f(n + 1), n] end\nf(0)"},
    {"calls through a builtin", "function f(x) return map(f, [x, x]) end\nf(0)"},
    {"calls with handlers",
     "function f(n)\ntry f(n + 1) catch e error([e, n]) end\nend\nwhile true do f(0) end"},
    {"results of builtins", "let xs = []\nwhile true do push(xs, range(10000)) end"},
    {"texts of lists", "let xs = [1]\nwhile true do xs = [str(xs), str(xs)] end"},
    {"caught refusals",
     "let xs = []\nwhile true do\ntry\npush(xs, repeat(\"x\", 1000000))\ncatch e\npush(xs, e)\n"
     "end\nend"},
};

// One of the two ways to say so, or the stack, which needs memory too.
bool saysWhy(const std::string& errors) {
    if (errors == "pellum: out of memory\n") return true;
    const std::string firstLine = errors.substr(0, errors.find('\n'));
    if (firstLine.starts_with("Error: [")) return true;  // thrown by the program itself
    return firstLine.starts_with("RuntimeError: ") &&
           (firstLine.ends_with(": out of memory") || firstLine.ends_with("(too much recursion)") ||
            firstLine.ends_with(" too large"));
}

void play(const Growth& growth, Engine engine, const char* limit) {
    Surroundings surroundings;
    surroundings.addLimit(limit);
    if (const char* reason = surroundings.whyImpossible()) GTEST_SKIP() << reason;
    Process process;
    process.executable = programPath();
    process.arguments = onEngine(engine, {"-c", growth.program});
    process.prepare = [&] { return surroundings.enter(); };
    const Outcome outcome = process.run();
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_TRUE(saysWhy(outcome.errors)) << outcome.errors;
}

TEST(Memory, GrowthWithoutAnEndIsReported) {
    for (const Growth& growth : growths) {
        for (const Engine engine : bothEngines) {
            SCOPED_TRACE(std::string(growth.what) + ", " + engineName(engine));
            play(growth, engine, "memory 16M");
            if (testing::Test::IsSkipped()) return;
        }
    }
}

// A session that never ends, of inputs that leave nothing behind.
TEST(Memory, ThePromptForgetsWhatItHasRun) {
    Surroundings surroundings;
    surroundings.addLimit("memory 40M");
    if (const char* reason = surroundings.whyImpossible()) GTEST_SKIP() << reason;
    Process process;
    process.executable = programPath();
    process.prepare = [&] { return surroundings.enter(); };
    constexpr int inputs = 200'000;
    std::string wanted = "Pellum 6  --  type Ctrl-D (or 'exit') to quit\n";
    for (int i = 0; i < inputs; ++i) {
        process.input += "1 + 1\n";
        wanted += ">> 2\n";
    }
    const Outcome outcome = process.run();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_TRUE(outcome.output == wanted + ">> \n");
}

// From too little for the system to load the program to enough for it to run, in small steps.
// Status 127 is the system's own, before the program is reached.
TEST(Memory, TheStartItself) {
    int loaded = 0;
    for (rlim_t kilobytes = 4000; kilobytes < 16'000; kilobytes += 75) {
        for (const Engine engine : bothEngines) {
            Surroundings surroundings;
            surroundings.limits = {{RLIMIT_AS, kilobytes << 10}};
            if (const char* reason = surroundings.whyImpossible()) GTEST_SKIP() << reason;
            Process process;
            process.executable = programPath();
            process.arguments = onEngine(engine, {"-c", "print(sort([2, 1]))"});
            process.prepare = [&] { return surroundings.enter(); };
            const Outcome outcome = process.run();
            SCOPED_TRACE(std::to_string(kilobytes) + " KB: " + outcome.errors);
            if (outcome.status == 0) {
                EXPECT_EQ(outcome, (Outcome{0, "[1, 2]\n", ""}));
            } else if (outcome.status != 127) {
                EXPECT_EQ(outcome.status, 1);
                EXPECT_NE(outcome.errors, "");
            }
            if (outcome.status != 127) ++loaded;
        }
    }
    EXPECT_GT(loaded, 0);
}

}  // namespace

}  // namespace pellum::test
