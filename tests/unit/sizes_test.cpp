// The longest string and the longest list, made in every way that makes one longer: what just fits,
// and what is one too many. Only a build with small limits comes there soon; in the ordinary one
// the cases under tests/limits ask for what is far too large.
#include "unit/running.h"

#include <gtest/gtest.h>

namespace pellum {
namespace {

using test::compileText;
using test::errorOf;
using test::MemoryConsole;
using test::onTree;
using test::onVm;

struct Row {
    const char* name;
    const char* expression;  // makes something of the size `n`, or fails
    const char* message;
};

// With `s(n)`, a string of n bytes, and `xs(n)`, a list of n elements. Both are made anew, so that
// sums may take place where they are, unless they are kept in `text` and `list`.
constexpr Row strings[] = {
    {"Sum", "s(n - 1) + \"y\"", "operator '+': result too large"},
    {"SumOfTwoLong", "text + s(n - len(text))", "operator '+': result too large"},
    {"SumInPlace", "(function() let t = s(n - 1)\nt += \"y\"\nreturn t end)()",
     "operator '+': result too large"},
    {"SumOfAGlobal", "(function() kept = s(n - 2)\nkept += \"yz\"\nreturn kept end)()",
     "operator '+': result too large"},
    {"SumOfAField", "(function() let m = {t: s(n - 2)}\nm.t += \"yz\"\nreturn m.t end)()",
     "operator '+': result too large"},
    {"SumBehindABuffer", "(text + \"!\") + s(n - len(text) - 1)", "operator '+': result too large"},
    {"Interpolation", "\"a${s(n - 2)}b\"", "operator '+': result too large"},
    {"Repeat", "repeat(\"y\", n)", "repeat: result too large"},
    {"RepeatOfALongUnit", "repeat(s(n // 2), 2) + repeat(\"z\", n % 2)", nullptr},
    {"Join", "join([s(n - 3), \"ab\"], \"-\")", "join: result too large"},
    {"JoinOfOthers", "join([s(n - 4), 1, nil])", "join: result too large"},
    {"JoinOfAContainer", "join([[s(n - 4)]])", "join: result too large"},
    {"Replace", "replace(\"ab\", \"b\", s(n - 1))", "replace: result too large"},
    {"ReplaceInText", "replace(s(n - 3) + \"y\", \"y\", \"abc\")", "replace: result too large"},
    {"Str", "str([s(n - 4)])", "str: result too large"},
    {"StrOfAMap", "str({k: s(n - 9)})", "str: result too large"},
    {"Repr", "repr(s(n - 2))", "repr: result too large"},
    {"ReprWithEscapes", "repr(repeat(\"\\n\", n // 2 - 1)) + repeat(\"z\", n % 2)", nullptr},
    {"Upper", "upper([s(n - 4)])", "upper: result too large"},
    {"Lower", "lower([s(n - 4)])", "lower: result too large"},
    {"Capitalize", "capitalize([s(n - 4)])", "capitalize: result too large"},
};

constexpr Row lists[] = {
    {"Range", "range(n)", "range: result too large"},
    {"RangeOfFloats", "range(0.0, n * 0.5, 0.5)", "range: result too large"},
    {"Push", "push(xs(n - 1), 1)", "push: result too large"},
    {"PushOfSeveral", "push(xs(n - 3), 1, 2, 3)", "push: result too large"},
    {"Insert", "insert(xs(n - 1), 0, 1)", "insert: result too large"},
    {"Sum", "xs(n - 1) + [1]", "operator '+': result too large"},
    {"SumOfTwoLong", "list + xs(n - len(list))", "operator '+': result too large"},
    {"SumInPlace", "(function() let l = xs(n - 2)\nl += [1, 2]\nreturn l end)()",
     "operator '+': result too large"},
    {"Repeat", "repeat([1], n)", "repeat: result too large"},
    {"RepeatOfALongUnit", "repeat(xs(n // 2), 2) + repeat([0], n % 2)", nullptr},
    {"Chars", "chars(s(n))", "chars: result too large"},
    {"Split", "split(repeat(\",\", n - 1), \",\")", "split: result too large"},
    {"SplitIntoWords", "split(repeat(\"a \", n))", "split: result too large"},
    {"ForInOverAString", "(function() let l = 0\nfor c in s(n) do l += 1 end\nreturn xs(l) end)()",
     "cannot iterate over string: too long"},
    {"Keys", "keys(mapOf(n))", "keys: result too large"},
    {"Values", "values(mapOf(n))", "values: result too large"},
    {"Items", "items(mapOf(n))", "items: result too large"},
};

std::string onStackCode(std::string_view source) {
    MemoryConsole memory;
    const std::string error =
        errorOf([&] { VM(memory.console, VM::Code::Stack).run(compileText(source)); });
    return memory.out.str() + error;
}

void expectEdge(const Row& row, std::size_t most) {
    const std::string source = R"(
function s(n) return repeat("x", n) end
function xs(n) return range(n) end
function mapOf(n)
    let m = {}
    for i = 1, n do m[i] = i end
    return m
end
let text = "a text that is kept"
let list = [1, 2, 3]
let kept = nil
function make(n) return )" + std::string(row.expression) +
                               R"( end
for n = )" + std::to_string(most) +
                               " - 1, " + std::to_string(most) + R"( + 1 do
    try
        print(len(make(n)))
    catch e
        print(e)
    end
    print(text, list)
end)";
    const std::string whole = "a text that is kept [1, 2, 3]\n";
    const std::string fits = std::to_string(most);
    const std::string wanted = std::to_string(most - 1) + "\n" + whole + fits + "\n" + whole +
                               (row.message ? row.message : "operator '+': result too large") +
                               "\n" + whole;
    EXPECT_EQ(onVm(source), wanted) << source;
    EXPECT_EQ(onStackCode(source), wanted);
    EXPECT_EQ(onTree(source), wanted);
}

class Longest : public testing::TestWithParam<Row> {};

class LongestString : public Longest {};
TEST_P(LongestString, FitsAndNoMore) { expectEdge(GetParam(), maxStringLength); }

class LongestList : public Longest {};
TEST_P(LongestList, FitsAndNoMore) { expectEdge(GetParam(), maxListLength); }

const auto nameOf = [](const auto& row) { return std::string(row.param.name); };
INSTANTIATE_TEST_SUITE_P(Limits, LongestString, testing::ValuesIn(strings), nameOf);
INSTANTIATE_TEST_SUITE_P(Limits, LongestList, testing::ValuesIn(lists), nameOf);

}  // namespace
}  // namespace pellum
