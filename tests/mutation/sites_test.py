"""Where sources may be changed by scripts/mutants, and where not."""

import os
import sys
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..",
                                "scripts", "lib", "mutation"))

import sites  # noqa: E402


def changes(text):
    return [site.apply(text) for site in sites.sites(text)]


class SitesTest(unittest.TestCase):
    def test_binary_operators_are_exchanged(self):
        self.assertEqual(changes("x = a < b;"), ["x = a <= b;"])
        self.assertEqual(changes("x = a && b;"), ["x = a || b;"])
        self.assertEqual(changes("x += a * b;"), ["x -= a * b;", "x += a / b;"])

    def test_an_operator_at_the_end_of_a_line_is_one(self):
        self.assertEqual(changes("x = a ||\n    b;"), ["x = a &&\n    b;"])

    def test_brackets_of_templates_pointers_and_references_are_no_operators(self):
        self.assertEqual(changes("std::vector<int> a(const T& b, T&& c, T* const d);"), [])
        self.assertEqual(changes("template <typename T, int n = 3>\nvoid f(T a);"), [])
        self.assertEqual(changes("p->f();"), [])

    def test_a_negation_goes(self):
        self.assertEqual(changes("return !isOpen(a);"), ["return isOpen(a);"])

    def test_a_step_turns_round(self):
        self.assertEqual(changes("++i;"), ["--i;"])

    def test_constants_change(self):
        self.assertEqual(changes("f(true, 7, 0.0F, 0.25);"),
                         ["f(false, 7, 0.0F, 0.25);", "f(true, 8, 0.0F, 0.25);",
                          "f(true, 7, 1.0F, 0.25);", "f(true, 7, 0.0F, 0.5);"])

    def test_suffixes_stay_and_names_and_other_bases_are_no_numbers(self):
        self.assertEqual(changes("f(4ULL, float32, 0x1F, 44'100, a1);"),
                         ["f(5ULL, float32, 0x1F, 44'100, a1);"])

    def test_a_condition_is_negated_as_a_whole(self):
        self.assertIn("if (!(f(a) == b)) {", changes("if (f(a) == b) {"))

    def test_a_condition_that_declares_is_left_alone(self):
        self.assertEqual(changes("if (const auto* a = f()) {"), [])
        self.assertEqual(changes("if (auto a = f(); a.isOpen()) {"), [])

    def test_comments_texts_and_directives_are_left_alone(self):
        self.assertEqual(changes('f("a < b", \'1\');  // 3 < 4, true\n/* 5\n 6 */'), [])
        self.assertEqual(changes("#if A && 1\nint a;\n#endif"), [])
        self.assertEqual(changes('f(R"(1 < "2" true)");'), [])
        self.assertEqual(changes("static_assert(sizeof(A) == 8);"), [])

    def test_lines_are_counted_from_one(self):
        text = "a;\nb = c - d;\n"
        self.assertEqual(sites.sites(text)[0].line(text), 2)

    def test_every_source_of_the_program_gives_some(self):
        root = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "src")
        count = 0
        for folder, _, names in os.walk(root):
            for name in names:
                if name.endswith((".cpp", ".h")):
                    with open(os.path.join(folder, name), encoding="utf-8") as file:
                        count += len(sites.sites(file.read()))
        self.assertGreater(count, 1000)


if __name__ == "__main__":
    unittest.main()
