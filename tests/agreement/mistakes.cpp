// What goes wrong in generated programs on purpose. Each mistake is a single one: where two steps
// of a statement could fail, the engines may differ about which comes first.
#include "agreement/writer.h"

namespace pellum::test {

namespace {

const std::vector<std::string> failingExpressions = {
    R"((1 + "a"))",
    R"(("a" + 1))",
    "([1] + 2)",
    "({} + {})",
    R"((2 * "ab"))",
    "(nil - 1)",
    R"(("a" / 2))",
    "([1] // 2)",
    "(true % 2)",
    "(nil ^ nil)",
    "(-nil)",
    R"((-"a"))",
    "(1 / 0)",
    "(1 // 0)",
    "(1 % 0)",
    "(1.5 // 0.0)",
    "(2.5 % 0)",
    R"((1 < "a"))",
    "(nil >= nil)",
    "([1] < [2])",
    "[1, 2][2]",
    "[1][-2]",
    "[1][0.0]",
    R"("abc"[3])",
    R"("abc"["a"])",
    "nil.field",
    "(5)[0]",
    "print[0]",
    "nil(1)",
    R"("f"())",
    "undefinedName",
    "len()",
    "len(1, 2)",
    "range(1, 2, 3, 4)",
    "len(5)",
    R"(sqrt("x"))",
    "pop([])",
    "randint(5, 1)",
    "parse_int(\"12\", 1)",
    "clamp(1, 3, 2)",
    "zip([], {})",
    "remove_at([1], 1)",
    "insert([], 2, 0)",
    "delete([], 1)",
    "repeat(\"x\", 1e15)",
    "range(1e15)",
    "range(0, 1, 0)",
    "char(256)",
    "reduce(reduce, [1, 2, 3])",
    "map(map, [1])",
    "sort([3, 1, 2], sort)",
    "reduce(function(a, b) return a.x end, [1, 2])",
    "(4611686018427387904 * 2 // 0)",
    R"(sum([1, "a"]))",
    R"(sort([1, "a"]))",
    "(function(a) return a end)()",
    "map(function() return 1 end, [1])",
    "map(function(e) return e.f end, [1])",
    "map(5, [1])",
    R"(filter(print, "ab"))",
    "{[nil]: 1}",
    "{[[]]: 2}",
    "error(41)",
    R"(error({code: 7, why: "because"}))",
    R"(error("thrown"))",
    "error()",
    "assert(false)",
    R"(assert(nil, "asserted"))",
    R"(num("12x"))",
    R"("a${1 + nil}b")",
};

const std::vector<std::string> failingStatements = {
    "[1, 2][5] = 0",         R"([1]["a"] = 0)",          "{}[nil] = 1",
    "({})[true] = 1",        R"("abc"[0] = "x")",        "nil.field = 1",
    "{a: 1}.b += 1",         R"({a: 1}.a -= "x")",       "[1, 2][5] *= 2",
    "undefinedName = 1",     "for x in 5 do end",        "for x in nil do end",
    "for x = 1, nil do end", R"(for x = "a", 2 do end)", "for x = 1, 2, [] do end",
};

}  // namespace

std::string Writer::failingExpression() {
    if (random_.chance(15)) {
        const auto function = scope_.pick(random_, Type::Declared);
        if (function) {  // with too many arguments, the last one evaluated as well
            std::string text = callOf(*function, 1);
            text.pop_back();
            return text + (text.back() == '(' ? "" : ", ") + "print(\"last\"))";
        }
    }
    return random_.pick(failingExpressions);
}

Statement Writer::failingStatement() {
    if (random_.chance(30)) return simple(random_.pick(failingStatements));
    if (random_.chance(20)) {
        const auto variable = scope_.pickAssignable(
            random_, [](const Variable& v) { return v.type == Type::Int || v.type == Type::Ints; });
        if (variable) {
            return simple(variable->name +
                          random_.pick<std::string>({" += ", " -= ", " //= ", " ^= "}) +
                          random_.pick<std::string>({"\"a\"", "nil", "{}"}));
        }
    }
    // Among things that happen before.
    return simple("print(" + expression(dataType(), Demand::Anything, 2) + ", " +
                  failingExpression() + ")");
}

}  // namespace pellum::test
