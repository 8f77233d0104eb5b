// Deep sources, recursion and data at all sizes of the stack: an answer or the error that says that
// it is too deep, never a crash.
#include "support/files.h"
#include "support/process.h"
#include "support/surroundings.h"
#include "support/text.h"

#include <gtest/gtest.h>

#include <string>

namespace pellum::test {

namespace {

constexpr const char* stackLimits[] = {"stack 256K", "stack 1M", "stack unlimited"};

// A piece that goes deeper each time it comes again.
struct Deep {
    const char* what;
    const char* before;
    const char* piece;
    const char* after;

    std::string source() const {
        std::string text = before;
        for (int i = 0; i < 20'000; ++i) text += piece;
        return text + after;
    }
};

constexpr Deep deepSources[] = {
    {"brackets", "let x = ", "(", "1"},
    {"lists", "let x = ", "[", ""},
    {"maps", "let x = ", "{a: ", ""},
    {"calls", "let x = ", "f(", ""},
    {"indexes", "let x = ", "x[", ""},
    {"not", "let x = ", "not ", "1"},
    {"minus", "let x = ", "-", "1"},
    {"powers", "let x = 1", " ^ 1", ""},
    {"sums", "let x = 1", " + 1", ""},
    {"comparisons", "let x = 1", " == 1", ""},
    {"or", "let x = nil", " or nil", ""},
    {"chains of calls", "let f = nil\nf", "()", ""},
    {"chains of fields", "let f = nil\nf", ".a", ""},
    {"if", "", "if true then ", ""},
    {"elif", "if false then 1\n", "elif false then 1\n", "end"},
    {"while", "", "while true do ", ""},
    {"for", "", "for i = 1, 2 do ", ""},
    {"functions", "", "function f() ", ""},
    {"function values", "let x = ", "function() return ", ""},
    {"try", "", "try ", ""},
    {"strings in strings", "let x = \"", "${", "\""},
};

// What deep nesting may lead to. Where it is no nesting to the parser, the program may well run.
bool isClean(const Outcome& outcome) {
    if (outcome.status == 0) return outcome.errors.empty();
    const std::string firstLine = outcome.errors.substr(0, outcome.errors.find('\n'));
    return outcome.status == 1 &&
           (firstLine.starts_with("SyntaxError") || firstLine.starts_with("CompileError: ") ||
            firstLine.starts_with("RuntimeError: "));
}

Outcome play(const std::string& source, Engine engine, const char* limit) {
    const TemporaryFolder folder;
    writeFile(folder.path() / "deep", source);
    Surroundings surroundings;
    surroundings.addLimit(limit);
    Process process;
    process.executable = programPath();
    process.arguments = onEngine(engine, {"deep"});
    process.folder = folder.path();
    process.prepare = [&] { return surroundings.enter(); };
    return process.run();
}

TEST(Stack, DeepSources) {
    for (const Deep& deep : deepSources) {
        const std::string source = deep.source();
        for (const Engine engine : bothEngines) {
            for (const char* limit : {"stack 256K", "stack 1M"}) {
                const Outcome outcome = play(source, engine, limit);
                EXPECT_TRUE(isClean(outcome)) << deep.what << ", " << engineName(engine) << ", "
                                              << limit << ": status " << outcome.status << "\n"
                                              << outcome.errors.substr(0, 200);
            }
        }
    }
}

// Each ends with "goes on" when the error can be caught and all is well afterwards.
constexpr const char* deepPrograms[] = {
    "function f(x) return 1 + f(x) end\ntry f(1) catch e end\nprint(\"goes on\")",
    "function f(x)\nfor i = 1, 2 do\nif x then\nlet y = [f(x)]\nend\nend\nend\n"
    "try f(1) catch e end\nprint(\"goes on\")",
    "function f(x) return map(f, [x]) end\ntry f(1) catch e end\nprint(\"goes on\")",
    "function f(a, b) return sort([2, 1], f) end\ntry f(1, 2) catch e end\nprint(\"goes on\")",
    "let xs = [reduce]\npush(xs, xs)\ntry reduce(reduce, xs) catch e end\nprint(\"goes on\")",
    "let xs = []\nfor i = 1, 100000 do xs = [xs] end\ntry str(xs) catch e end\nxs = nil\n"
    "print(\"goes on\")",
    "let m = {}\nfor i = 1, 100000 do m = {a: m} end\ntry repr(m) catch e end\nm = nil\n"
    "print(\"goes on\")",
    // At the very bottom, whatever builtins need must still fit.
    "function f(x)\ntry\nf(x)\ncatch e\nlet t = sort(split(\"b a \" + str(1.5)))\n"
    "t = [hex(255), replace(\"aXa\", \"X\", \"b\"), num(\"1e5\"), sin(1), {a: t}, upper(str(t))]\n"
    "error(e)\nend\nend\ntry f(1) catch e end\nprint(\"goes on\")",
};

TEST(Stack, DeepPrograms) {
    for (const char* program : deepPrograms) {
        for (const char* limit : stackLimits) {
            for (const Engine engine : bothEngines) {
                SCOPED_TRACE(std::string(program) + ", " + engineName(engine) + ", " + limit);
                EXPECT_EQ(play(program, engine, limit), (Outcome{0, "goes on\n", ""}));
            }
        }
    }
}

// Where address space is scarce, a share of it is the limit of the stack.
TEST(Stack, RecursionUnderALimitOnMemory) {
    for (const char* limit : {"memory 12M", "memory 20M", "memory 50M", "memory 100M"}) {
        Surroundings surroundings;
        surroundings.addLimit(limit);
        if (const char* reason = surroundings.whyImpossible()) GTEST_SKIP() << reason;
        for (const Engine engine : bothEngines) {
            SCOPED_TRACE(std::string(engineName(engine)) + ", " + limit);
            // Whoever asks first for what is not there says so: the stack, or a variable.
            const Outcome outcome = play(deepPrograms[0], engine, limit);
            if (outcome.status != 0) {
                EXPECT_EQ(outcome, (Outcome{1, "", "pellum: out of memory\n"}));
            } else {
                EXPECT_EQ(outcome, (Outcome{0, "goes on\n", ""}));
            }
        }
    }
}

}  // namespace

}  // namespace pellum::test
