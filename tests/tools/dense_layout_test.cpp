// The formatter over small random programs that are all structure: blocks in lists in heads of
// blocks, empty ones among them, and names of all lengths, so that lines get too wide everywhere.
#include "agreement/random.h"
#include "tools/format_checks.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <string>

namespace pellum::test {

namespace {

class DenseProgram {
public:
    explicit DenseProgram(std::uint64_t seed) : dice_(seed) {}

    std::string write() {
        std::string text;
        for (int count = dice_.between(1, 4); count > 0; --count) text += statement(4) + "\n";
        return text;
    }

private:
    std::string name() {
        static const std::vector<std::string> names = {
            "a",
            "b",
            "some",
            "longerName",
            "aNameThatIsQuiteLong",
            "oneThatTakesSoMuchRoomThatOnlyTwoOfItsKindFitOnALine"};
        return dice_.pick(names);
    }

    // With at most one statement, since several would need line ends; `scrambled` adds those.
    std::string block(int depth) {
        return dice_.chance(25) || depth <= 0 ? " " : " " + statement(depth - 1) + " ";
    }

    std::string longBlock(int depth) {
        return dice_.chance(70) ? block(depth)
                                : "\n" + statement(depth - 1) + "\n" + statement(depth - 1) + "\n";
    }

    std::string statement(int depth) {
        if (depth <= 0) return name() + "(" + name() + ")";
        switch (dice_.below(9)) {
            case 0: return choice(depth);
            case 1: return "while " + expression(depth - 1) + " do" + longBlock(depth) + "end";
            case 2: return "for i in " + expression(depth - 1) + " do" + longBlock(depth) + "end";
            case 3: return "try" + longBlock(depth) + "catch e" + longBlock(depth) + "end";
            case 4: return "function f(" + name() + ")" + longBlock(depth) + "end";
            case 5: return "let x = " + expression(depth);
            case 6: return "x[" + expression(depth - 1) + "] += " + expression(depth - 1);
            case 7: return dice_.chance(50) ? "return" : "return " + expression(depth);
            default: return expression(depth);
        }
    }

    std::string choice(int depth) {
        std::string text = "if " + expression(depth - 1) + " then" + longBlock(depth);
        for (int count = dice_.below(3); count > 0; --count) {
            text += "elif " + expression(depth - 2) + " then" + longBlock(depth);
        }
        if (dice_.chance(60)) text += "else" + longBlock(depth);
        return text + "end";
    }

    std::string expression(int depth) {
        if (depth <= 0) return name();
        switch (dice_.below(8)) {
            case 0: return list(depth);
            case 1: return map(depth);
            case 2: return "function(" + name() + ")" + longBlock(depth) + "end";
            case 3:
                return name() + "(" + expression(depth - 1) + ", " + expression(depth - 1) + ")";
            case 4: return "-" + name() + " + (" + expression(depth - 1) + ")";
            case 5: return "f(" + expression(depth - 1) + ")[" + expression(depth - 2) + "].x";
            case 6: return "\"text ${" + name() + "}\"";
            default: return name();
        }
    }

    std::string list(int depth) {
        std::string text = "[";
        const int count = dice_.below(5);
        for (int i = 0; i < count; ++i) text += (i > 0 ? ", " : "") + expression(depth - 1);
        return text + (count > 0 && dice_.chance(20) ? ",]" : "]");
    }

    std::string map(int depth) {
        std::string text = "{";
        const int count = dice_.below(4);
        for (int i = 0; i < count; ++i) {
            if (i > 0) text += ", ";
            text += dice_.chance(80) ? name() : "[" + expression(depth - 2) + "]";
            text += ": " + expression(depth - 1);
        }
        return text + (count > 0 && dice_.chance(20) ? ",}" : "}");
    }

    Random dice_;
};

void check(std::uint64_t seed) {
    const std::string name = "seed " + std::to_string(seed);
    const std::string source = DenseProgram(seed).write();
    ASSERT_TRUE(isProgram(source)) << source;
    checkedFormat(source, name);
    checkedFormat(scrambled(source, seed), name + ", scrambled");
}

TEST(DenseLayout, StaysTheSameProgramAndTheSameLayout) {
    const char* const asked = std::getenv("PELLUM_FORMAT_DENSE");
    const std::uint64_t count = asked ? std::strtoull(asked, nullptr, 10) : 1000;
    for (std::uint64_t seed = 1; seed <= count && !HasFailure(); ++seed) check(seed);
}

}  // namespace

}  // namespace pellum::test
