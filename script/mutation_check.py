"""Checks that script/mutation.py finds what it should and nothing else."""

import unittest

import mutation


def changes(source):
    """What the first change of each place makes of the source."""
    return [source[:place.start] + place.choices[0] + source[place.end:]
            for place in mutation.places(source)]


def body(statement):
    return "void f() {\n" + statement + "\n}\n"


class Mutation(unittest.TestCase):
    def check(self, statement, *wanted):
        self.assertCountEqual(changes(body(statement)), [body(change) for change in wanted])

    def test_operators(self):
        self.check("return a < b;", "return a <= b;")
        self.check("return a == b && c;", "return a != b && c;", "return a == b || c;")
        self.check("return !a;", "return a;")
        self.check("return a - b;", "return a + b;")
        self.check("return a\n    + b;", "return a\n    - b;")

    def test_what_only_looks_like_an_operator(self):
        self.check("std::vector<int> x{*y, &z, -w};")
        self.check("Value&& value = std::move(left);")
        self.check("for (const auto& x : all) return x;")
        self.check("template <typename T> T* g(const T& x);")

    def test_numbers(self):
        self.check("return 9;", "return 10;")
        self.check("return 65'536u;", "return 65537u;")
        self.check("return 0x10;", "return 17;")
        self.check("return 1.5;", "return (1.5 + 1.0);")
        self.check("return true;", "return false;")

    def test_what_is_no_code(self):
        self.check("// a < b")
        self.check("/* a < b\n a > b */")
        self.check('return "a < 1 // b";')
        self.check("return '1';")
        self.check("static_assert(sizeof(x) == 8);")
        self.assertEqual(changes('#include "a/b.h"\n#if A < 1\n#endif\n'), [])

    def test_macros(self):
        source = "#define M(x) \\\n    ((x) < 1)\nint y;\nint z;\n"
        self.assertCountEqual(changes(source), [source.replace("< 1", "<= 1"),
                                                source.replace("< 1", "< 2")])

    def test_conditions(self):
        self.check("if (isDone(x)) return;", "if ((isDone(x)) && false) return;")
        self.check("while (next()) ++x;", "while ((next()) && false) ++x;", "while (next()) --x;",
                   "while (next()) ;")
        self.check("if (const auto x = next()) return x;")
        self.check("return a ? b : c;", "return a || true ? b : c;")

    def test_statements(self):
        self.check("call(a,\n     b);", ";\n")
        self.check("a.b->c[d] = e;", ";")
        self.check("*a += b;", ";", "*a -= b;")
        self.check("throw Error(text);", ";")
        self.check("case A: call(); break;", "case A: ; break;", "case A: call(); ;")
        self.check("each([&] { call(); });", ";", "each([&] { ; });")

    def test_what_is_no_statement_to_remove(self):
        self.check("const Value x = call();")
        self.check("Value x(call());")
        self.check("return call();")
        self.assertEqual(changes("class A {\n    A(const A&) = delete;\n    void f();\n};\n"), [])


if __name__ == "__main__":
    unittest.main()
