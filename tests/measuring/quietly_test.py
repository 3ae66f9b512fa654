"""What becomes of the figures of a program that measures."""

import contextlib
import io
import os
import pathlib
import sys
import tempfile
import unittest
import unittest.mock

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..",
                                "scripts", "lib", "measuring"))

import quietly  # noqa: E402

PRINTS = ["/bin/sh", "-c", "echo progress; echo '| launch | 1.25 × |'"]


class QuietlyTest(unittest.TestCase):
    def run_with(self, share, *arguments):
        """The exit code and what was printed, while others keep so many cores busy."""
        output, errors = io.StringIO(), io.StringIO()
        with contextlib.redirect_stdout(output), contextlib.redirect_stderr(errors), \
                unittest.mock.patch.object(quietly.processes.Others, "share", lambda _: share):
            code = quietly.main(list(arguments))
        return code, output.getvalue(), errors.getvalue()

    def test_a_quiet_machine_gives_the_figures(self):
        code, output, _ = self.run_with(0.02, *PRINTS)
        self.assertEqual(code, 0)
        self.assertEqual(output, "progress\n| launch | 1.25 × |\nOthers kept 0.02 cores busy.\n")

    def test_a_busy_machine_gives_none(self):
        with tempfile.TemporaryDirectory() as folder:
            page = pathlib.Path(folder, "page.md")
            page.write_text("# Page\n", encoding="utf-8")
            code, output, errors = self.run_with(0.5, "--write", str(page), "Program", *PRINTS)
            self.assertEqual(page.read_text(encoding="utf-8"), "# Page\n")
        self.assertEqual(code, quietly.TOO_BUSY)
        self.assertEqual(output, "")
        self.assertIn("0.50 cores busy", errors)

    def test_a_program_that_fails_is_passed_on(self):
        code, output, _ = self.run_with(0.5, "/bin/sh", "-c", "echo why; exit 7")
        self.assertEqual((code, output), (7, "why\n"))

    def test_the_rows_become_a_section_of_the_page(self):
        with tempfile.TemporaryDirectory() as folder:
            page = pathlib.Path(folder, "page.md")
            page.write_text("# Page\n\n## Program\n\nold\n\n## Last\n\nstays\n", encoding="utf-8")
            code, _, _ = self.run_with(0.02, "--write", str(page), "Program", *PRINTS)
            text = page.read_text(encoding="utf-8")
        self.assertEqual(code, 0)
        self.assertNotIn("old", text)
        self.assertNotIn("progress", text)
        self.assertIn("others kept 0.02 cores busy.\n\n| launch | 1.25 × |\n\n## Last\n\nstays\n",
                      text)

    def test_a_new_section_comes_last(self):
        self.assertEqual(quietly.with_section("# Page\n\n## A\n\na\n", "B", "b"),
                         "# Page\n\n## A\n\na\n\n## B\n\nb\n")

    def test_the_last_section_is_replaced(self):
        self.assertEqual(quietly.with_section("# Page\n\n## B\n\nold\n", "B", "b"),
                         "# Page\n\n## B\n\nb\n")


if __name__ == "__main__":
    unittest.main()
