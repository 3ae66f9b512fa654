"""What scripts/test --coverage makes of the counts."""

import os
import sys
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..",
                                "scripts", "lib", "coverage"))

import report  # noqa: E402

COUNTS = """SF:/project/src/storage/List.cpp
FN:1,f
DA:1,5
DA:2,0
DA:3,0
DA:7,1
BRDA:1,0,0,4
BRDA:1,0,1,0
BRDA:2,0,0,-
end_of_record
SF:/project/src/storage/List.cpp
DA:2,3
end_of_record
SF:/project/src/platform/files/File.cpp
DA:1,1
end_of_record
"""


class ReportTest(unittest.TestCase):
    def setUp(self):
        self.sources = report.read(COUNTS, "/project")

    def test_a_line_that_ran_in_one_program_was_reached(self):
        self.assertEqual(self.sources["src/storage/List.cpp"].unreached(), [3])

    def test_a_condition_with_one_outcome_is_named_where_its_line_ran(self):
        self.assertEqual(self.sources["src/storage/List.cpp"].half(), [1, 2])
        line = report.Source()
        line.add_line(4, 0)
        line.add_branch((4, "0", "0"), 0)
        self.assertEqual(line.half(), [])

    def test_neighbouring_lines_are_a_range(self):
        self.assertEqual(report.ranges([1, 2, 3, 7, 9, 10]), "1 to 3, 7, 9 to 10")
        self.assertEqual(report.ranges([]), "")

    def test_folders_are_the_rooms(self):
        self.assertEqual(report.folder_of("src/platform/files/File.cpp"), "src/platform/files")
        self.assertEqual(report.folder_of("src/document/files/OVFileLoading.cpp"), "src/document")
        self.assertEqual(report.folder_of("src/keeper/main.cpp"), "src/keeper")

    def test_the_page_has_the_sums_and_what_is_missing(self):
        page = report.page(self.sources, "2026-11-23")
        self.assertIn("lines 4 of 5, 80.0 %; branches 1 of 3, 33.3 %", page)
        self.assertIn("| src/storage | 3 of 4, 75.0 % | 1 of 3, 33.3 % |", page)
        self.assertIn("| src/platform/files | 1 of 1, 100.0 % | none |", page)
        self.assertIn("| src/storage/List.cpp | 3 | 1 to 2 |", page)
        self.assertNotIn("File.cpp |", page)
        self.assertNotIn("@", page)


if __name__ == "__main__":
    unittest.main()
