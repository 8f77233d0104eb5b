#include "parser/parser.h"

#include "driver/errors/errors.h"
#include "lexer/lexer.h"
#include "support/small_stack.h"
#include "unit/tree_text.h"
#include "value/limits.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace pellum::test {

namespace {

Block parseSource(std::string_view source) { return parse(tokenize(source)); }

std::string tree(std::string_view source) { return treeText(parseSource(source)); }

std::string treeWithPositions(std::string_view source) {
    return treeText(parseSource(source), Positions::Shown);
}

// The message and the place of the error that `source` gives.
std::string parseError(std::string_view source) {
    try {
        parseSource(source);
    } catch (const PellumError& error) {
        const bool isLexical = dynamic_cast<const LexError*>(&error) != nullptr;
        EXPECT_EQ(error.kind, isLexical ? "SyntaxError (lexing)" : "SyntaxError");
        return std::to_string(error.line) + ':' + std::to_string(error.column) + ' ' +
               error.message;
    }
    return "no error";
}

struct Row {
    std::string_view source, expected;
};

template <std::size_t count>
void expectAll(std::string (*result)(std::string_view), const Row (&rows)[count]) {
    for (const Row& row : rows) {
        SCOPED_TRACE(row.source);
        EXPECT_EQ(result(row.source), row.expected);
    }
}

template <std::size_t count>
void expectTrees(const Row (&rows)[count]) {
    expectAll(tree, rows);
}
template <std::size_t count>
void expectPositions(const Row (&rows)[count]) {
    expectAll(treeWithPositions, rows);
}
template <std::size_t count>
void expectErrors(const Row (&rows)[count]) {
    expectAll(parseError, rows);
}

std::string repeat(std::string_view piece, std::size_t times) {
    std::string out;
    out.reserve(piece.size() * times);
    for (; times > 0; --times) out += piece;
    return out;
}

TEST(Parser, Precedence) {
    expectTrees({
        {"2 ^ 3 ^ 2", "(^ 2 (^ 3 2))"},
        {"2 - 3 - 4", "(- (- 2 3) 4)"},
        {"-2 ^ 2", "(^ (- 2) 2)"},
        {"2 ^ -3 ^ 2", "(^ 2 (^ (- 3) 2))"},
        {"not a == b", "(== (not a) b)"},
        {"not not - a", "(not (not (- a)))"},
        {"- a.b(c)[d]", "(- (index (call (get a b) c) d))"},
        {"a < b < c", "(< (< a b) c)"},
        {"a == b != c", "(!= (== a b) c)"},
        {"a < b == c >= d", "(== (< a b) (>= c d))"},
        {"a + b < c - d", "(< (+ a b) (- c d))"},
        {"a + b * c", "(+ a (* b c))"},
        {"a * b + c", "(+ (* a b) c)"},
        {"a * b / c // d % e", "(% (// (/ (* a b) c) d) e)"},
        {"a * b ^ c * d", "(* (* a (^ b c)) d)"},
        {"a or b and c or d", "(or (or a (and b c)) d)"},
        {"a and b == c", "(and a (== b c))"},
        {"a <= b and not c > d", "(and (<= a b) (> (not c) d))"},
        {"(a + b) * c", "(* (+ a b) c)"},
        {"((a))", "a"},
        {"a - (b - c)", "(- a (- b c))"},
    });
}

// Each pair of levels, from both sides.
TEST(Parser, TighterOperatorsBindFirst) {
    const std::vector<std::vector<std::string>> levels = {
        {"or"}, {"and"}, {"==", "!="}, {"<", "<=", ">", ">="}, {"+", "-"}, {"*", "/", "//", "%"},
        {"^"}};
    for (std::size_t low = 0; low < levels.size(); ++low) {
        for (std::size_t high = low; high < levels.size(); ++high) {
            for (const std::string& loose : levels[low]) {
                for (const std::string& tight : levels[high]) {
                    const std::string source = "a " + loose + " b " + tight + " c";
                    const std::string mirrored = "a " + tight + " b " + loose + " c";
                    const bool nestsRight = low < high || loose == "^";
                    EXPECT_EQ(tree(source), nestsRight ? "(" + loose + " a (" + tight + " b c))"
                                                       : "(" + tight + " (" + loose + " a b) c)");
                    if (low == high) continue;
                    EXPECT_EQ(tree(mirrored), "(" + loose + " (" + tight + " a b) c)");
                }
            }
        }
    }
}

TEST(Parser, OperatorsCarryTheirCode) {
    const std::string_view texts[] = {
        "+", "-", "*", "/", "//", "%", "^", "==", "!=", "<", "<=", ">", ">=", "and", "or"};
    int number = 0;
    for (const std::string_view text : texts) {
        SCOPED_TRACE(text);
        const Block program = parseSource("a " + std::string(text) + " b");
        const auto& node = as<BinaryExpr>(*as<ExprStmt>(*program.at(0)).expr);
        EXPECT_EQ(node.op, text);
        EXPECT_EQ(node.code, static_cast<BinaryOp>(number));
        if (number < 7) {
            const Block assignment = parseSource("a " + std::string(text) + "= b");
            const auto& assign = as<AssignStmt>(*assignment.at(0));
            EXPECT_EQ(assign.op, text);
            EXPECT_EQ(assign.code, node.code);
            EXPECT_TRUE(assign.isCompound());
        }
        ++number;
    }
    const Block plain = parseSource("a = b");
    EXPECT_EQ(as<AssignStmt>(*plain.at(0)).op, "");
    EXPECT_EQ(as<AssignStmt>(*plain.at(0)).code, BinaryOp::Unknown);
    EXPECT_FALSE(as<AssignStmt>(*plain.at(0)).isCompound());
}

TEST(Parser, Literals) {
    expectTrees({
        {"10", "10"},
        {"10.0", "10.0"},
        {"1e1", "10.0"},
        {"007", "7"},
        {"9007199254740993", "9007199254740992"},
        {"9223372036854775807", "-9223372036854775808"},
        {"99999999999999999999", "-9223372036854775808"},
        {"9223372036854774784", "9223372036854774784"},
        {"true", "true"},
        {"false", "false"},
        {"nil", "nil"},
        {"'a\\n'", "\"a\\n\""},
        {"\"\"", "\"\""},
    });
}

TEST(Parser, EqualTextsShareOneString) {
    constexpr std::size_t longest = limit(64, 3);
    const std::string key(longest, 'k');
    const std::string longText(longest + 1, 'k');
    const auto literal = [](const StmtPtr& stmt) -> const StringObj& {
        return as<LiteralExpr>(*as<ExprStmt>(*stmt).expr).value.asString();
    };
    const Block program = parseSource("'" + key + "'\n\"" + key + "\"\n'" + longText + "'\na." +
                                      key + "\n{" + key + ": 1}");
    ASSERT_EQ(program.size(), 5u);
    const StringObj* shared = &literal(program[0]);
    EXPECT_EQ(&literal(program[1]), shared);
    EXPECT_EQ(literal(program[2]).view(), longText);
    EXPECT_EQ(as<GetExpr>(*as<ExprStmt>(*program[3]).expr).name.string().get(), shared);
    const auto& map = as<MapLitExpr>(*as<ExprStmt>(*program[4]).expr);
    EXPECT_EQ(&as<LiteralExpr>(*map.entries.at(0).first).value.asString(), shared);
}

TEST(Parser, Postfix) {
    expectTrees({
        {"f()", "(call f)"},
        {"f(1, x, y + 1)", "(call f 1 x (+ y 1))"},
        {"f(1)(2)", "(call (call f 1) 2)"},
        {"a[0][1]", "(index (index a 0) 1)"},
        {"a.b.c", "(get (get a b) c)"},
        {"a.b[c](d).e", "(get (call (index (get a b) c) d) e)"},
        {"\"s\"[0]", "(index \"s\" 0)"},
        {"5(1)", "(call 5 1)"},
        {"(function() end)()", "(call (function <anonymous> () {}))"},
        {"[1][0]", "(index (list 1) 0)"},
        {"{a: 1}.a", "(get (map [\"a\" 1]) a)"},
        {"f\n(x)", "f x"},
        {"a\n[0]", "a (list 0)"},
    });
}

TEST(Parser, Lists) {
    expectTrees({
        {"[]", "(list)"},
        {"[\n\n]", "(list)"},
        {"[1]", "(list 1)"},
        {"[1, 2,]", "(list 1 2)"},
        {"[\n1,\n\n2\n\n]", "(list 1 2)"},
        {"[1,\n2,\n]", "(list 1 2)"},
        {"[[], [1]]", "(list (list) (list 1))"},
    });
    expectErrors({
        {"[1\n, 2]", "2:1 expected ']' to close list, got ','"},
        {"[1 2]", "1:4 expected ']' to close list, got '2'"},
        {"[1 +\n2]", "1:4 unexpected end of line in expression"},
        {"[,]", "1:2 unexpected ',' in expression"},
        {"[1,,2]", "1:4 unexpected ',' in expression"},
        {"[", "1:1 unexpected end of file in expression"},
        {"[1", "1:2 expected ']' to close list, got end of file"},
        {"[1,", "1:3 unexpected end of file in expression"},
        {"[1}", "1:3 expected ']' to close list, got '}'"},
    });
}

TEST(Parser, Maps) {
    expectTrees({
        {"{}", "(map)"},
        {"{\n}", "(map)"},
        {"{[1 + 1]: 2, a: 3, \"b\": 4}", "(map [(+ 1 1) 2] [\"a\" 3] [\"b\" 4])"},
        {"{\na: 1,\n\nb: 2\n}", "(map [\"a\" 1] [\"b\" 2])"},
        {"{a: 1,}", "(map [\"a\" 1])"},
        {"{1: 2, 1.5: 3}", "(map [1 2] [1.5 3])"},
        {"{(a): 1}", "(map [a 1])"},
        {"{true: 1, nil: 2}", "(map [true 1] [nil 2])"},
        {"{\"a${b}\": 1}", "(map [(+ \"a\" (call str b)) 1])"},
        {"{{}: 1}", "(map [(map) 1])"},
        {"{function() end: 1}", "(map [(function <anonymous> () {}) 1])"},
        {"{a: {b: [1]}}", "(map [\"a\" (map [\"b\" (list 1)])])"},
    });
    expectErrors({
        {"{a = 1}", "1:4 expected ':' between map key and value, got '='"},
        {"{a}", "1:3 expected ':' between map key and value, got '}'"},
        {"{a.b: 1}", "1:3 expected ':' between map key and value, got '.'"},
        {"{a\n: 1}", "1:2 expected ':' between map key and value, got end of line"},
        {"{a:\n1}", "1:3 unexpected end of line in expression"},
        {"{[1: 2}", "1:4 expected ']' after computed map key, got ':'"},
        {"{[\n1]: 2}", "1:2 unexpected end of line in expression"},
        {"{-1: 2}", "1:2 unexpected '-' in expression"},
        {"{if: 2}", "1:2 unexpected 'if' in expression"},
        {"{1 + 1: 2}", "1:4 expected ':' between map key and value, got '+'"},
        {"{a: 1\n, b: 2}", "2:1 expected '}' to close map, got ','"},
        {"{a: 1", "1:5 expected '}' to close map, got end of file"},
        {"{", "1:1 unexpected end of file in expression"},
        {"{,}", "1:2 unexpected ',' in expression"},
    });
}

TEST(Parser, Functions) {
    expectTrees({
        {"function f() end", "(declare f () {})"},
        {"function f(a, b) return a end", "(declare f (a b) {(return a)})"},
        {"function f(a)\n  a()\n\n  a()\nend", "(declare f (a) {(call a) (call a)})"},
        {"function() end", "(function <anonymous> () {})"},
        {"x = function(a) return function() end end",
         "(= x (function <anonymous> (a) {(return (function <anonymous> () {}))}))"},
        {"function() return 1 end()", "(call (function <anonymous> () {(return 1)}))"},
    });
    expectErrors({
        {"function f", "1:10 expected '(' before parameters, got end of file"},
        {"function 5()", "1:10 expected '(' before parameters, got '5'"},
        {"function", "1:1 expected '(' before parameters, got end of file"},
        {"function f(1)", "1:12 expected a parameter name, got '1'"},
        {"function f(a,)", "1:14 expected a parameter name, got ')'"},
        {"function f(\na)", "1:11 expected a parameter name, got end of line"},
        {"function f(a b)", "1:14 expected ')' after parameters, got 'b'"},
        {"function f(a, b", "1:15 expected ')' after parameters, got end of file"},
        {"function f()\nx\n", "2:1 expected 'end' to close function, got end of file"},
        {"function f() else", "1:14 expected 'end' to close function, got 'else'"},
        {"x = function() catch", "1:16 expected 'end' to close function, got 'catch'"},
        {"function f() x y end", "1:16 expected end of statement, got 'y'"},
    });
}

TEST(Parser, CallsAndGroupings) {
    expectErrors({
        {"f(1, 2,)", "1:8 unexpected ')' in expression"},
        {"f(,)", "1:3 unexpected ',' in expression"},
        {"f(\n1)", "1:2 unexpected end of line in expression"},
        {"f(1\n)", "1:3 expected ')' after arguments, got end of line"},
        {"f(1 2)", "1:5 expected ')' after arguments, got '2'"},
        {"f(1", "1:3 expected ')' after arguments, got end of file"},
        {"(1", "1:2 expected ')' to close grouping, got end of file"},
        {"(1\n)", "1:2 expected ')' to close grouping, got end of line"},
        {"(a = 1)", "1:4 expected ')' to close grouping, got '='"},
        {"()", "1:2 unexpected ')' in expression"},
        {"a[1", "1:3 expected ']' after index, got end of file"},
        {"a[]", "1:3 unexpected ']' in expression"},
        {"a[1, 2]", "1:4 expected ']' after index, got ','"},
        {"a.", "1:2 expected a field name after '.', got end of file"},
        {"a.1", "1:2 expected end of statement, got '.1'"},
        {"a.end", "1:3 expected a field name after '.', got 'end'"},
        {"a.\nb", "1:2 expected a field name after '.', got end of line"},
        {"a.\"b\"", "1:3 expected a field name after '.', got 'b'"},
        {"1.", "1:2 expected a field name after '.', got end of file"},
    });
}

TEST(Parser, UnexpectedInExpression) {
    expectErrors({
        {"1 +", "1:3 unexpected end of file in expression"},
        {"1 +\n2", "1:3 unexpected end of line in expression"},
        {"* 2", "1:1 unexpected '*' in expression"},
        {"+1", "1:1 unexpected '+' in expression"},
        {"1 + then", "1:5 unexpected 'then' in expression"},
        {"1 - not", "1:5 unexpected end of file in expression"},
        {"2 ^ ^", "1:5 unexpected '^' in expression"},
        {"x = let", "1:5 unexpected 'let' in expression"},
        {"in", "1:1 unexpected 'in' in expression"},
        {")", "1:1 unexpected ')' in expression"},
        {"a = (b = c)", "1:8 expected ')' to close grouping, got '='"},
    });
}

TEST(Parser, LetAndAssignment) {
    expectTrees({
        {"let x = 1", "(let x 1)"},
        {"let f = function() end", "(let f (function <anonymous> () {}))"},
        {"x = 1", "(= x 1)"},
        {"a.b = 1", "(= (get a b) 1)"},
        {"a[0] = 1", "(= (index a 0) 1)"},
        {"f().b = 1", "(= (get (call f) b) 1)"},
        {"(x) = 1", "(= x 1)"},
        {"x += 1", "(+= x 1)"},
        {"x -= 1", "(-= x 1)"},
        {"x *= 1", "(*= x 1)"},
        {"x /= 1", "(/= x 1)"},
        {"x //= 1", "(//= x 1)"},
        {"x %= 1", "(%= x 1)"},
        {"x ^= a or b", "(^= x (or a b))"},
    });
    expectErrors({
        {"let", "1:1 expected a variable name after 'let', got end of file"},
        {"let 5 = 1", "1:5 expected a variable name after 'let', got '5'"},
        {"let end = 1", "1:5 expected a variable name after 'let', got 'end'"},
        {"let x", "1:5 expected '=' in let declaration, got end of file"},
        {"let x\n= 1", "1:5 expected '=' in let declaration, got end of line"},
        {"let x += 1", "1:7 expected '=' in let declaration, got '+='"},
        {"let x =", "1:7 unexpected end of file in expression"},
        {"let a.b = 1", "1:6 expected '=' in let declaration, got '.'"},
        {"1 = 2", "1:3 invalid assignment target"},
        {"f() = 1", "1:5 invalid assignment target"},
        {"a + b = 1", "1:7 invalid assignment target"},
        {"-a = 1", "1:4 invalid assignment target"},
        {"'s' += @", "1:8 unexpected character '@'"},
        {"[a] = 1", "1:5 invalid assignment target"},
        {"nil //= )", "1:5 invalid assignment target"},
        {"function() end = 1", "1:16 invalid assignment target"},
        {"\"${x}\" = 1", "1:8 invalid assignment target"},
        {"a = b = c", "1:7 expected end of statement, got '='"},
        {"a =", "1:3 unexpected end of file in expression"},
    });
}

TEST(Parser, StatementsEndAtLineEnds) {
    expectTrees({
        {"", ""},
        {"\n \n# nothing\n", ""},
        {"\n\na\n\n\nb\n", "a b"},
        {"if x then y = 1 else y = 2 end", "(if x {(= y 1)} else {(= y 2)})"},
        {"while a do b() end\nc", "(while a {(call b)}) c"},
    });
    expectErrors({
        {"x = 1 y = 2", "1:7 expected end of statement, got 'y'"},
        {"x = 1 'abc'", "1:7 expected end of statement, got 'abc'"},
        {"a \"b${c}\"", "1:3 expected end of statement, got ''"},
        {"a 1.50", "1:3 expected end of statement, got '1.50'"},
        {"break break", "1:7 expected end of statement, got 'break'"},
        {"if a then end b", "1:15 expected end of statement, got 'b'"},
        {"a then", "1:3 expected end of statement, got 'then'"},
        {"a )", "1:3 expected end of statement, got ')'"},
        {"end", "1:1 unexpected 'end'"},
        {"a\nend\nb", "2:1 unexpected 'end'"},
        {"a end", "1:3 unexpected 'end'"},
        {"else", "1:1 unexpected 'else'"},
        {"elif x", "1:1 unexpected 'elif'"},
        {"\n catch", "2:2 unexpected 'catch'"},
        {"if a then end end", "1:15 unexpected 'end'"},
    });
}

TEST(Parser, If) {
    expectTrees({
        {"if a then x elif b then y else z end", "(if a {x} b {y} else {z})"},
        {"if a then end", "(if a {})"},
        {"if a then\nelse\nend", "(if a {} else {})"},
        {"if a then x elif b then y elif c then z end", "(if a {x} b {y} c {z})"},
        {"if a then if b then c else d end end", "(if a {(if b {c} else {d})})"},
        {"if a then\n\nx\ny\n\nend", "(if a {x y})"},
    });
    const Block program = parseSource("if a then x elif b then y else z end");
    const auto& choice = as<IfStmt>(*program.at(0));
    ASSERT_EQ(choice.branches.size(), 3u);
    EXPECT_EQ(choice.branches[2].cond, nullptr);
    expectErrors({
        {"if x then", "1:6 expected 'end' to close if, got end of file"},
        {"if x\nthen", "1:4 expected 'then' after if condition, got end of line"},
        {"if x do", "1:6 expected 'then' after if condition, got 'do'"},
        {"if then", "1:4 unexpected 'then' in expression"},
        {"if x then elif y end", "1:18 expected 'then' after elif condition, got 'end'"},
        {"if x then else y elif z then end", "1:18 expected 'end' to close if, got 'elif'"},
        {"if x then else else end", "1:16 expected 'end' to close if, got 'else'"},
        {"if x then catch", "1:11 expected 'end' to close if, got 'catch'"},
        {"if x = 1 then end", "1:6 expected 'then' after if condition, got '='"},
    });
}

TEST(Parser, Loops) {
    expectTrees({
        {"while a < b do end", "(while (< a b) {})"},
        {"while a do break end", "(while a {(break)})"},
        {"for i = 1, 10 do end", "(for i 1 10 {})"},
        {"for i = 1, 3, 1 do end", "(for i 1 3 1 {})"},
        {"for i = a + 1, f(b), -1 do continue end",
         "(for i (+ a 1) (call f b) (- 1) {(continue)})"},
        {"for i in xs do end", "(for-in i xs {})"},
        {"for c in \"abc\" do\nprint(c)\nend", "(for-in c \"abc\" {(call print c)})"},
    });
    const Block program = parseSource("for i = 1, 10 do end");
    EXPECT_EQ(as<NumericForStmt>(*program.at(0)).step, nullptr);
    EXPECT_TRUE(as<NumericForStmt>(*program.at(0)).body.empty());
    expectErrors({
        {"while a then", "1:9 expected 'do' after while condition, got 'then'"},
        {"while a\ndo", "1:7 expected 'do' after while condition, got end of line"},
        {"while a do", "1:9 expected 'end' to close while, got end of file"},
        {"while a do else", "1:12 expected 'end' to close while, got 'else'"},
        {"for", "1:1 expected a loop variable after 'for', got end of file"},
        {"for 1 = 1", "1:5 expected a loop variable after 'for', got '1'"},
        {"for i, v in xs do", "1:6 expected '=' or 'in' in for loop"},
        {"for i", "1:5 expected '=' or 'in' in for loop"},
        {"for i\n= 1, 2 do end", "1:5 expected '=' or 'in' in for loop"},
        {"for i += 1, 2 do end", "1:7 expected '=' or 'in' in for loop"},
        {"for i = 1 do", "1:11 expected ',' after the numeric-for start value, got 'do'"},
        {"for i = 1, 2, 3, 4 do", "1:16 expected 'do' after numeric-for header, got ','"},
        {"for i = 1, 2\ndo", "1:12 expected 'do' after numeric-for header, got end of line"},
        {"for i = 1, do", "1:12 unexpected 'do' in expression"},
        {"for i in xs, ys do", "1:12 expected 'do' after for-in header, got ','"},
        {"for i in do", "1:10 unexpected 'do' in expression"},
        {"for i = 1, 2 do", "1:14 expected 'end' to close for, got end of file"},
        {"for i in xs do elif", "1:16 expected 'end' to close for, got 'elif'"},
    });
}

TEST(Parser, ReturnBreakContinue) {
    expectTrees({
        {"return", "(return)"},
        {"return\n1", "(return) 1"},
        {"return 1 + 2", "(return (+ 1 2))"},
        {"function f() return end", "(declare f () {(return)})"},
        {"function f() return\nend", "(declare f () {(return)})"},
        {"if a then return elif b then return else return end",
         "(if a {(return)} b {(return)} else {(return)})"},
        {"try return catch e return e end", "(try {(return)} e {(return e)})"},
        {"return function() end", "(return (function <anonymous> () {}))"},
        {"break\ncontinue", "(break) (continue)"},
    });
    const Block program = parseSource("return");
    EXPECT_EQ(as<ReturnStmt>(*program.at(0)).value, nullptr);
    expectErrors({
        {"return do", "1:8 unexpected 'do' in expression"},
        {"return 1, 2", "1:9 expected end of statement, got ','"},
        {"break 1", "1:7 expected end of statement, got '1'"},
        {"continue if", "1:10 expected end of statement, got 'if'"},
    });
}

TEST(Parser, Try) {
    expectTrees({
        {"try catch e end", "(try {} e {})"},
        {"try\n  f()\ncatch e\n  g(e)\nend", "(try {(call f)} e {(call g e)})"},
        {"try a catch e b end", "(try {a} e {b})"},
    });
    expectErrors({
        {"try a end", "1:7 expected 'catch' after try body, got 'end'"},
        {"try a", "1:5 expected 'catch' after try body, got end of file"},
        {"try a else", "1:7 expected 'catch' after try body, got 'else'"},
        {"try a catch end", "1:13 expected a variable name after 'catch', got 'end'"},
        {"try a catch\ne end", "1:7 expected a variable name after 'catch', got end of line"},
        {"try a catch e", "1:13 expected 'end' to close try, got end of file"},
        {"try a catch e catch", "1:15 expected 'end' to close try, got 'catch'"},
    });
}

TEST(Parser, InterpolatedStrings) {
    expectTrees({
        {R"("a${x}b")", R"((+ (+ "a" (call str x)) "b"))"},
        {R"("${x}")", "(call str x)"},
        {R"("${a}${b}")", "(+ (call str a) (call str b))"},
        {R"("a${1 + 2}")", R"((+ "a" (call str (+ 1 2))))"},
        {R"("${{a: 1}["a"]}")", R"((call str (index (map ["a" 1]) "a")))"},
        {R"("${"${x}"}")", "(call str (call str x))"},
        {R"("${function(a) return a end}")", "(call str (function <anonymous> (a) {(return a)}))"},
        {R"("${x # why}")", "(call str x)"},
        {"\"${[1,\t2]}\"", "(call str (list 1 2))"},
        {R"(1 + "${a}b" * 2)", R"((+ 1 (* (+ (call str a) "b") 2)))"},
        {R"("${a}".b)", "(get (call str a) b)"},
    });
    expectErrors({
        {R"("${}")", "1:1 unexpected end of file in expression"},
        {R"("${ # x}")", "1:1 unexpected end of file in expression"},
        {R"(x = "abc${1 2}")", "1:3 unexpected '2' in ${...} interpolation"},
        {R"("${a = 1}")", "1:3 unexpected '=' in ${...} interpolation"},
        {R"("${ let }")", "1:2 unexpected 'let' in expression"},
        {R"("${a end}")", "1:3 unexpected 'end' in ${...} interpolation"},
        {R"("${f(}")", "1:2 unexpected end of file in expression"},
        {R"("a${ ! }")", "1:2 '!' must be followed by '=' (did you mean 'not'?)"},
        {R"("a${"\q"}")", "1:4 unknown escape sequence '\\q'"},
        {"\"${'a\nb'}\"", "1:1 unterminated string literal"},
        {"\"${1e}\"", "1:1 malformed number: exponent has no digits"},
    });
    EXPECT_THROW(parseSource("\"${1e999}\""), std::out_of_range);
}

TEST(Parser, Positions) {
    expectPositions({
        {"  1", "1@1:3"},
        {"a + b * c", "(+@1:3 a@1:1 (*@1:7 b@1:5 c@1:9))"},
        {"x = - y", "(=@1:3 x@1:1 (-@1:5 y@1:7))"},
        {"a.b[0] += not c", "(+=@1:8 (index@1:4 (get@1:2 a@1:1 b) 0@1:5) (not@1:11 c@1:15))"},
        {"f(x)(y)", "(call@1:5 (call@1:2 f@1:1 x@1:3) y@1:6)"},
        {"(a)\n (b + c)", "a@1:2 (+@2:5 b@2:3 c@2:7)"},
        {" let x = [1]", "(let@1:2 x (list@1:10 1@1:11))"},
        {"{a: 1, [b]: 2}", "(map@1:1 [\"a\"@1:2 1@1:5] [b@1:9 2@1:13])"},
        {"if a then\n b\nelif c then\n d\nelse\n e\nend",
         "(if@1:1 a@1:4 {b@2:2} c@3:6 {d@4:2} else {e@6:2})"},
        {" while a do break end", "(while@1:2 a@1:8 {(break@1:13)})"},
        {" for i = 1, 2, 3 do continue end", "(for@1:2 i 1@1:10 2@1:13 3@1:16 {(continue@1:21)})"},
        {" for i in x do end", "(for-in@1:2 i x@1:11 {})"},
        {" function f(a)\n return a\nend", "(declare@1:2 f (a) {(return@2:2 a@2:9)})"},
        {"x = function() end", "(=@1:3 x@1:1 (function@1:5 <anonymous> () {}))"},
        {" try\na\ncatch e\nb end", "(try@1:2 {a@2:1} e {b@4:1})"},
        {" \"a${ x + 1 }${y}\"",
         "(+@1:2 (+@1:2 \"a\"@1:2 (call@1:2 str@1:2 (+@1:4 x@1:2 1@1:6))) "
         "(call@1:2 str@1:2 y@1:1))"},
        {"true\n nil", "true@1:1 nil@2:2"},
    });
    const Block program = parseSource("a + b\nf()");
    EXPECT_EQ(program.at(0)->column, 3u);
    EXPECT_EQ(program.at(1)->line, 2u);
    EXPECT_EQ(program.at(1)->column, 2u);
}

TEST(Parser, KindNumbers) {
    const std::string_view statements[] = {"let a = 1",
                                           "a = 1",
                                           "a",
                                           "if a then end",
                                           "while a do end",
                                           "for i = 1, 2 do end",
                                           "for i in a do end",
                                           "function f() end",
                                           "return",
                                           "break",
                                           "continue",
                                           "try catch e end"};
    std::uint32_t number = 0;
    for (const std::string_view source : statements) {
        SCOPED_TRACE(source);
        EXPECT_EQ(parseSource(source).at(0)->kind, number++);
    }
    const std::string_view expressions[] = {"1",   "[]",  "{}",   "a",   "-a",
                                            "a+a", "a()", "a[a]", "a.a", "function() end"};
    number = 0;
    for (const std::string_view source : expressions) {
        SCOPED_TRACE(source);
        const Block program = parseSource(source);
        EXPECT_EQ(as<ExprStmt>(*program.at(0)).expr->kind, number++);
    }
}

TEST(Parser, NestingTooDeepIsAnError) {
    constexpr std::size_t many = 30'000;
    const std::string_view pieces[] = {"(",
                                       "[",
                                       "{",
                                       "{a:",
                                       "{[",
                                       "- ",
                                       "not ",
                                       "a(",
                                       "a[",
                                       "a + (",
                                       "2 ^ ",
                                       "function() ",
                                       "function f() ",
                                       "if a then ",
                                       "if a then else ",
                                       "while a do ",
                                       "for i in a do ",
                                       "for i = 1, 2 do ",
                                       "try ",
                                       "try catch e ",
                                       "if function() "};
    for (const std::string_view piece : pieces) {
        SCOPED_TRACE(piece);
        const std::string source = repeat(piece, many);
        std::string error;
        onSmallStack([&] { error = parseError(source); });
        EXPECT_EQ(error.substr(error.find(' ') + 1), "nesting too deep") << error;
        EXPECT_EQ(error.substr(0, 2), "1:") << error;
    }
}

// Strings within the code of strings, `depth` of them.
std::string nestedStrings(std::size_t depth) {
    return repeat("\"${", depth) + "x" + repeat("}\"", depth);
}

TEST(Parser, InterpolationsNestToADepth) {
    constexpr std::size_t deepest = limit(1'000, 6);
    const Block program = parseSource(nestedStrings(deepest));
    EXPECT_EQ(program.size(), 1u);
    EXPECT_EQ(parseError(nestedStrings(deepest + 1)), "1:1 nesting too deep");
    EXPECT_EQ(parseError(nestedStrings(20 * deepest)), "1:1 nesting too deep");
    std::string error;
    onSmallStack([&] {
        const std::string brackets = repeat("[", 30'000);
        error = parseError("\"${" + brackets + "}\"");
    });
    EXPECT_EQ(error.substr(error.find(' ') + 1), "nesting too deep") << error;
}

TEST(Parser, ChainsNeedNoStack) {
    constexpr std::size_t many = 1'000'000;
    onSmallStack([&] {
        const Block sum = parseSource("1" + repeat("+1", many - 1));
        const auto* last = &as<BinaryExpr>(*as<ExprStmt>(*sum.at(0)).expr);
        std::size_t operators = 1;
        while (last->left->exprKind() == ExprKind::Binary) {
            last = &as<BinaryExpr>(*last->left);
            ++operators;
        }
        EXPECT_EQ(operators, many - 1);
    });
    for (const std::string_view link : {"()", "[0]", ".b", " or a"}) {
        SCOPED_TRACE(link);
        onSmallStack([&] { EXPECT_EQ(parseError("a" + repeat(link, many / 10)), "no error"); });
    }
    onSmallStack([&] {
        const Block program =
            parseSource("if a then " + repeat("elif a then ", many / 10) + "else end");
        EXPECT_EQ(as<IfStmt>(*program.at(0)).branches.size(), many / 10 + 2);
    });
    onSmallStack(
        [&] { EXPECT_EQ(parseError("\"" + repeat("a${b}", many / 100) + "\""), "no error"); });
}

}  // namespace

}  // namespace pellum::test
