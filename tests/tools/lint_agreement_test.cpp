// The linter against the engines: what it says about names and about the reach of statements must
// come true when random programs run, and what happens to names must have been foretold.
#include "agreement/generator.h"
#include "agreement/random.h"
#include "support/findings.h"
#include "support/playing.h"
#include "support/text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace pellum::test {

namespace {

// Programs of a few names, declared and hidden in all ways, and of lines that try to read one. Such
// a line prints its number and what came of it. All code is reached but for what stands behind a
// `return`, `break` or `continue`.
class NameGame {
public:
    explicit NameGame(std::uint64_t seed) : random_(seed) {}

    std::string program() {
        block(0, false, false);
        return std::move(text_);
    }

private:
    void line(const std::string& code) {
        text_ += code + "\n";
        ++lines_;
    }
    std::string number() { return std::to_string(++number_); }
    std::string name() { return random_.pick<std::string>({"a", "b", "c", "d"}); }

    void probe() {
        const std::string at = "print(\"#" + std::to_string(lines_) + "\", ";
        line("try " + at + name() + ") catch _ " + at + "_) end");
    }

    void block(int depth, bool isInFunction, bool isInLoop) {
        std::vector<std::string> atEnd;
        const int statements = random_.between(2, depth == 0 ? 9 : 5);
        for (int i = 0; i < statements; ++i) {
            const int kind = random_.below(depth > 3 ? 5 : 12);
            if (kind < 2) {
                line("let " + name() + " = " + number());
            } else if (kind < 5) {
                probe();
            } else if (kind < 8) {
                function(depth, atEnd);
            } else {
                compound(depth, isInFunction, isInLoop);
            }
        }
        for (const std::string& call : atEnd) line(call);
        probe();
        if (isInLoop && random_.chance(15)) line(random_.chance(50) ? "break" : "continue");
        if (isInFunction && random_.chance(15)) line("return " + name());
        if (random_.chance(30)) probe();
    }

    // Called at once, or when its block has made all its variables, or both.
    void function(int depth, std::vector<std::string>& atEnd) {
        const std::string called = "f" + number();
        const bool takesOne = random_.chance(30);
        const std::string head = takesOne ? "(" + name() + ")" : "()";
        line(random_.chance(50) ? "function " + called + head
                                : "let " + called + " = function" + head);
        block(depth + 1, true, false);
        line("end");
        const std::string call = called + (takesOne ? "(" + number() + ")" : "()");
        const int when = random_.below(3);
        if (when != 0) line(call);
        if (when != 1) atEnd.push_back(call);
    }

    void compound(int depth, bool isInFunction, bool isInLoop) {
        switch (random_.below(4)) {
            case 0:
                line("if true then");
                block(depth + 1, isInFunction, isInLoop);
                break;
            case 1: {
                const std::string value = number();
                line("for " + name() + " = " + value + ", " + value + " do");
                block(depth + 1, isInFunction, true);
                break;
            }
            case 2:
                line("for " + name() + " in [" + number() + "] do");
                block(depth + 1, isInFunction, true);
                break;
            case 3:
                line("try error(" + number() + ") catch " + name());
                block(depth + 1, isInFunction, isInLoop);
                break;
        }
        line("end");
    }

    Random random_;
    std::string text_;
    int lines_ = 1;  // the number of the next one
    int number_ = 0;
};

using Answers = std::map<std::size_t, std::set<std::string>>;  // by line

Answers answersOn(Engine engine, const std::string& program) {
    const Outcome outcome = playInProcess(onEngine(engine, {"-c", program}), "");
    Answers answers;
    for (const std::string& line : splitLines(outcome.output)) {
        const std::size_t blank = line.find(' ');
        answers[std::stoul(line.substr(1))].insert(line.substr(blank + 1));
    }
    return answers;
}

// The lines for which the linter has a finding of that rule.
std::set<std::size_t> linesOf(const std::vector<std::string>& findings, const std::string& rule) {
    std::set<std::size_t> lines;
    for (const std::string& finding : findings) {
        if (finding.find(": " + rule + ": ") != finding.npos) lines.insert(std::stoul(finding));
    }
    return lines;
}

bool isUndefined(const std::string& answer) { return answer.starts_with("undefined variable"); }

// Whether the program makes a global variable of the name that an error complains about. It may
// come too late for a function that needs it, and only running tells.
bool isMadeSomewhere(const std::string& answer, const std::string& program) {
    const std::size_t quote = answer.find('\'');
    return ("\n" + program).find("\nlet " + answer.substr(quote + 1, 1) + " = ") !=
           std::string::npos;
}

TEST(LintAgreement, NamesAreWhatTheEnginesFind) {
    std::size_t undefined = 0, differing = 0, unreachable = 0;
    for (std::uint64_t seed = 1; seed <= 150; ++seed) {
        const std::string program = NameGame(seed).program();
        SCOPED_TRACE("seed " + std::to_string(seed) + "\n" + program);
        const std::vector<std::string> findings = findingsIn(program);
        const Answers tree = answersOn(Engine::Tree, program);
        const Answers vm = answersOn(Engine::Vm, program);

        std::set<std::size_t> never = linesOf(findings, "undefined-name");
        never.merge(linesOf(findings, "early-use"));
        for (const std::size_t line : never) {
            for (const Answers* const answers : {&tree, &vm}) {
                if (!answers->contains(line)) continue;
                for (const std::string& answer : answers->at(line)) {
                    EXPECT_TRUE(isUndefined(answer)) << "line " << line << ": " << answer;
                    ++undefined;
                }
            }
        }
        const std::set<std::size_t> doubtful = linesOf(findings, "engines-differ");
        for (const auto& [line, answers] : vm) {
            for (const std::string& answer : answers) {
                if (!isUndefined(answer) || isMadeSomewhere(answer, program)) continue;
                EXPECT_TRUE(never.contains(line) || doubtful.contains(line))
                    << "line " << line << ": " << answer;
            }
            if (tree.contains(line) && tree.at(line) == answers) continue;
            EXPECT_TRUE(doubtful.contains(line)) << "the engines differ in line " << line;
            ++differing;
        }
        for (const std::size_t line : linesOf(findings, "unreachable-code")) {
            EXPECT_FALSE(tree.contains(line) || vm.contains(line)) << "line " << line;
            ++unreachable;
        }
    }
    EXPECT_GT(undefined, 200U);
    EXPECT_GT(differing, 20U);
    EXPECT_GT(unreachable, 20U);
}

// These programs define what they use, but for one name that is there to fail.
TEST(LintAgreement, GeneratedProgramsAreMissingWhatTheyAreMeantToMiss) {
    const std::string missing = "undefinedName";
    std::size_t total = 0;
    for (std::uint64_t seed = 1; seed <= 150; ++seed) {
        const std::string program = textOf(generateProgram(seed));
        std::size_t wanted = 0, given = 0;
        for (std::size_t at = 0; (at = program.find(missing, at)) != program.npos; ++at) ++wanted;
        for (const std::string& finding : findingsIn(program)) {
            EXPECT_EQ(finding.find(" early-use: "), finding.npos) << "seed " << seed << finding;
            if (finding.find(" undefined-name: ") == finding.npos) continue;
            EXPECT_TRUE(finding.ends_with("'" + missing + "'")) << "seed " << seed << finding;
            ++given;
        }
        EXPECT_EQ(given, wanted) << "seed " << seed;
        total += given;
    }
    EXPECT_GT(total, 5U);
}

// Every operation on operands of all types fails where the linter says so, and nowhere else.
TEST(LintAgreement, OperationsFailWhereItSaysSo) {
    const std::vector<std::string> operands = {
        "nil",     "true",        "(not 1)",   "1",         "2.5",
        "(-1)",    "(1 + 2)",     "\"a\"",     "\"${1}\"",  "(\"a\" + \"b\")",
        "[1]",     "([1] + [2])", "{a: 1}",    "str(1)",    "(function() end)",
        "(1 < 2)", "(1 > 2)",     "type(nil)", "(1 and 2)", "(\"a\" or \"b\")",
    };
    std::size_t bad = 0, constant = 0;
    for (const std::string& left : operands) {
        std::vector<std::string> code = {
            "-" + left,
            left + "()",
            left + "[0]",
            "{[" + left + "]: 1}",
            "(function() for i in " + left + " do return i end end)()",
            "(function() for i = 1, " + left + " do return i end end)()",
        };
        for (const char* const op :
             {"+", "-", "*", "/", "//", "%", "^", "<", "<=", ">", ">=", "==", "!="}) {
            for (const std::string& right : operands) {
                code.push_back(left + " " + op + " " + right);
            }
        }
        std::string program;
        for (const std::string& expression : code) {
            program += "try print(" + expression + ") catch _ print(\"failed\") end\n";
        }
        const std::vector<std::string> findings = findingsIn(program);
        const std::set<std::size_t> badLines = linesOf(findings, "bad-operand");
        const std::set<std::size_t> constantLines = linesOf(findings, "constant-comparison");
        bad += badLines.size();
        constant += constantLines.size();
        for (const Engine engine : bothEngines) {
            const Outcome outcome = playInProcess(onEngine(engine, {"-c", program}), "");
            const std::vector<std::string> output = splitLines(outcome.output);
            ASSERT_EQ(output.size(), code.size()) << outcome.errors;
            for (std::size_t i = 0; i < code.size(); ++i) {
                EXPECT_EQ(output[i] == "failed", badLines.contains(i + 1)) << code[i];
                if (!constantLines.contains(i + 1)) continue;
                const bool isUnequal = code[i].find(" != ") != std::string::npos;
                EXPECT_EQ(output[i], isUnequal ? "true" : "false") << code[i];
            }
        }
    }
    EXPECT_GT(bad, 1000U);
    EXPECT_GT(constant, 300U);
}

}  // namespace

}  // namespace pellum::test
