"""What is written down of changes, and how a stopped run goes on."""

import os
import pathlib
import sys
import tempfile
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..",
                                "scripts", "lib", "mutation"))

import mutate  # noqa: E402
import sites  # noqa: E402

ROW = ["1", "abc", "src/a/a.cpp:1", "x → y", mutate.NOTICED, "ATest.Fails", "3"]


class FakeTree:
    """Three places in two sources."""

    def __init__(self, folder):
        self.folder = pathlib.Path(folder)
        (self.folder / "a.cpp").write_text("x = a < b;\n", encoding="utf-8")
        (self.folder / "b.cpp").write_text("y = !c;\nz = 5;\n", encoding="utf-8")

    def sources(self):
        return ["a.cpp", "b.cpp"]


class MutateTest(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)

    def test_the_same_number_is_the_same_place(self):
        tree = FakeTree(self.folder.name)
        self.assertEqual(mutate.choose(tree, "1", 7), mutate.choose(tree, "1", 7))

    def test_every_place_is_reached(self):
        tree = FakeTree(self.folder.name)
        chosen = {(choice[0], choice[2].begin)
                  for choice in (mutate.choose(tree, "1", number) for number in range(60))}
        self.assertEqual(len(chosen), 3)

    def test_a_change_is_told_by_its_line(self):
        text = "a;\n  b = c - d;\n"
        self.assertEqual(mutate.described(text, sites.sites(text)[0]), "b = c - d; → b = c + d;")

    def test_results_are_added_and_read_again(self):
        results = pathlib.Path(self.folder.name) / "results.tsv"
        self.assertEqual(mutate.read(results), [])
        mutate.write(results, ROW)
        mutate.write(results, ["2"] + ROW[1:])
        self.assertEqual([row["number"] for row in mutate.read(results)], ["1", "2"])
        self.assertEqual(mutate.read(results)[0]["noticed by"], "ATest.Fails")

    def test_changes_that_are_no_other_program_do_not_count(self):
        outcomes = [mutate.NOTICED, mutate.NOTICED, mutate.LIVES, mutate.NO_PROGRAM,
                    mutate.SAME_PROGRAM, mutate.UNSURE]
        rows = [dict(zip(mutate.COLUMNS, ROW), outcome=outcome) for outcome in outcomes]
        self.assertEqual(mutate.summary(rows), "2 of 3 changes are noticed, 67%; 3 do not count")

    def test_the_first_failed_test_is_found(self):
        output = "[ RUN      ] A.b\n[  FAILED  ] A.b (3 ms)\n[  FAILED  ] A.c, where x\n"
        self.assertEqual(mutate.FAILED_TEST.findall(output), ["A.b", "A.c"])
        ctest = "The following tests FAILED:\n\t 12 - A.b (Failed)\n\t 13 - K/C.d/0 (SEGFAULT)\n"
        self.assertEqual(mutate.FAILED_CTEST.findall(ctest), ["A.b", "K/C.d/0"])

    def test_a_program_that_takes_too_long_is_ended(self):
        code, _ = mutate.run([sys.executable, "-c", "while True: pass"], "/", 0.01)
        self.assertIsNone(code)


if __name__ == "__main__":
    unittest.main()
