#!/usr/bin/env python3
"""What the rewrites make of lines of code, what they leave alone, and in which order they are drawn."""
import os
import sys
import unittest

sys.dont_write_bytecode = True
import equivalents
import rewrites
import source

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..")

# A text, and all that it may become.
CASES = [
    ("if (a < b) f();", ["if (a <= b) f();", "if (!(a < b)) f();", "if (a < b) ;"]),
    ("x = a && !b;", ["x = a || !b;", "x = a && b;", ";"]),
    ("return at ? one : two;", ["return at ? two : one;"]),
    ("if (const auto* x = f(); g(*x)) return;", ["if (const auto* x = f(); g(*x)) ;"]),
    ("return std::min(a, b);", ["return std::max(a, b);"]),
    ("f(a, b.c, \"text\");", ["f(b.c, a, \"text\");", ";"]),
    ("f(1, 2);", ["f(0, 2);", "f(2, 2);", "f(1, 1);", "f(1, 3);", "f(2, 1);", ";"]),
    ("x += 0.5;", ["x -= 0.5;", "x += (0.5 * 2);", ";"]),
    ("double x = 0.0;", []),
    ("m_all.insert(\n    one);", [";\n"]),
    ("bool isOpen = true;", ["bool isOpen = false;"]),
    ("c = '<';", [";"]),
    # Nothing to be seen, or nothing to be compiled.
    ("// if (a < b)", []),
    ("/* a < b\n a == b */", []),
    ("utl_ASSERT(a < 3 && f(b, c));", []),
    ("static_assert(sizeof(int) == 4, \"a < b\");", []),
    ("rows.reserve(a + 1);", []),
    ("rows->Reserve(a + 1);", []),
    ("enum class Kind { One = 1, Two = 2 };", []),
    ("#if a < 1\n#endif", []),
    ("#ifdef _WIN32\nx = a < b;\n#else\n;\n#endif", []),
    ("constexpr std::size_t pieceBytes = 64 << 10;", []),
    ("void f(const double point[3]);", []),
    ("public: Table(const Keyword& keyword, int columns);", []),
    ("template <class T, int N> void f(T&& a, const T& b);", []),
    ("text += \"a < b, \" + name + \" 1\";", [";"]),
    ("R\"x(a < b)\" == 1)x\"", []),
    ("const long long n = 1'000'000;", []),
]


class Rewrites(unittest.TestCase):
    def test_cases(self):
        for text, expected in CASES:
            with self.subTest(text=text):
                made = [mutant.text(text) for mutant in rewrites.of("parser/x.cpp", text)]
                self.assertEqual(sorted(made), sorted(expected))

    def test_material_rows_change_bounds(self):
        row = 'INPS_BEHAVIOR(Density, Density, "", Table, Once, "rho>0 ~b>=0")'
        made = {mutant.after for mutant in rewrites.of("inpS/materials/inpS_mass.def", row)}
        self.assertIn(row.replace("rho>0", "rho>=0"), made)
        self.assertIn(row.replace("b>=0", "b>0"), made)
        self.assertIn(row.replace("Once", "Many"), made)

    def test_every_mutant_keeps_the_lines_of_the_file(self):
        for path, text in TEXTS.items():
            for mutant in rewrites.of(path, text):
                self.assertEqual(mutant.text(text).count("\n"), text.count("\n"), mutant)
                self.assertNotEqual(mutant.before, mutant.after)

    def test_a_seed_draws_the_same_whatever_is_added_elsewhere(self):
        few = {path: TEXTS[path] for path in sorted(TEXTS)[::20]}
        first = [(one.path, one.before, one.after) for one in rewrites.draw(few, 7)]
        self.assertEqual(first, [(one.path, one.before, one.after) for one in rewrites.draw(few, 7)])
        self.assertNotEqual(first, [(one.path, one.before, one.after) for one in rewrites.draw(few, 8)])
        path = min(few)
        added = dict(few, **{path: "// a comment\n" + few[path] + "\nint added = 1;\n"})
        with_added = [(one.path, one.before, one.after) for one in rewrites.draw(added, 7)]
        self.assertEqual(first, [one for one in with_added if one[1] != "int added = 1;"])

    def test_equivalent_mutants_can_still_be_made(self):
        table = equivalents.rows()
        self.assertEqual(equivalents.unmatched(table, TEXTS), [])
        away = dict(table[0], before="gone") if table else {"file": "gone", "before": "a", "after": "b"}
        self.assertEqual(equivalents.unmatched([away], TEXTS), [away])


TEXTS = {path: source.read(ROOT, path) for path in source.files(ROOT)}

if __name__ == "__main__":
    unittest.main()
