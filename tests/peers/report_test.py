"""The page of a comparison: what may be published, and what its cells say."""

import copy
import os
import sys
import unittest

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..")
sys.path.insert(0, os.path.join(ROOT, "benchmarks", "peers"))

import report  # noqa: E402

RESULTS = os.path.join(ROOT, "benchmarks", "peers", "results.json")
PAGE = os.path.join(ROOT, "docs", "comparison.md")


def results(**orvo):
    """Figures in which all programs are equal, but for those of Orvo that are given."""
    names = (report.ORVO, *report.PEERS)
    figures = {measure.key: {name: [0.5, 0.5, 0.5] for name in names}
               for measure in report.MEASURES}
    for key, value in orvo.items():
        figures[key.replace("_", " ")][report.ORVO] = [value] * 3
    return {"date": "2001-02-03", "machine": {"cores": 2, "system": "Some System"},
            "versions": {name: "1.0" for name in names},
            "seconds": {"watched": 30, "recorded": 30},
            "busy": {"limit": 0.1, "before": 0.01, "during": {"start": 0.02}},
            "figures": figures}


def measure(key):
    return next(each for each in report.MEASURES if each.key == key)


class PublishingTest(unittest.TestCase):
    def test_complete_figures_of_a_quiet_machine_are_published(self):
        report.check(results())

    def test_a_program_without_a_figure_prevents_the_page(self):
        for each in report.MEASURES:
            for name in (report.ORVO, *report.PEERS):
                for values in ([], [float("nan")], [float("inf")], [None], [-1]):
                    broken = results()
                    broken["figures"][each.key][name] = values
                    with self.assertRaisesRegex(report.NotPublishable, name):
                        report.page(broken)

    def test_a_missing_measure_prevents_the_page(self):
        broken = results()
        del broken["figures"]["killed"]
        with self.assertRaisesRegex(report.NotPublishable, "kill -9"):
            report.page(broken)

    def test_a_busy_machine_prevents_the_page(self):
        for busy in ({"before": 0.11}, {"during": {"start": 0.05, "idle": 0.11}}):
            broken = results()
            broken["busy"].update(busy)
            with self.assertRaisesRegex(report.NotPublishable, "too busy"):
                report.page(broken)


class DisturbedTest(unittest.TestCase):
    def test_only_what_others_disturbed_is_measured_again(self):
        refused = results()
        refused["busy"]["during"] = {"start": 0.05, "open wav": 0.13, "idle": 0.2}
        self.assertEqual(report.disturbed(refused), ["open wav", "idle"])

    def test_what_was_measured_again_replaces_the_disturbed_figures(self):
        refused, again = results(), results(open_wav=0.25)
        refused["busy"]["during"] = {"start": 0.05, "open wav": 0.13}
        again["busy"]["during"] = {"open wav": 0.01}
        again["figures"] = {"open wav": again["figures"]["open wav"]}
        mended = report.mended(refused, again)
        self.assertEqual(mended["busy"]["during"], {"start": 0.05, "open wav": 0.01})
        self.assertEqual(mended["figures"]["open wav"]["Orvo"], [0.25] * 3)
        self.assertEqual(mended["figures"]["start"], refused["figures"]["start"])
        report.check(mended)


class CellTest(unittest.TestCase):
    def test_orvo_has_its_figure_and_the_others_a_ratio(self):
        of = results(start=0.25)
        self.assertEqual(report.cell(of, measure("start"), "Orvo"), "250 ms")
        self.assertEqual(report.cell(of, measure("start"), "Audacity"), "2.00 ×")

    def test_the_figure_is_the_median(self):
        of = results()
        of["figures"]["open wav"]["Orvo"] = [9.0, 1.0, 2.0]
        self.assertEqual(report.cell(of, measure("open wav"), "Orvo"), "2.00 s")
        self.assertEqual(report.cell(of, measure("open wav"), "mhWaveEdit"), "**0.25 ×**")

    def test_large_ratios_have_no_decimals(self):
        self.assertEqual(report.cell(results(start=0.01), measure("start"), "Audacity"), "50 ×")

    def test_what_is_kept_is_a_share_for_all(self):
        of = results(kept=0.995, killed=0)
        self.assertEqual(report.cell(of, measure("kept"), "Orvo"), "99.5 %")
        self.assertEqual(report.cell(of, measure("kept"), "Audacity"), "50.0 %")
        self.assertEqual(report.cell(of, measure("killed"), "Audacity"), "**50.0 %**")

    def test_beside_nothing_there_is_a_figure_instead_of_a_ratio(self):
        of = results(processor_idle=0)
        self.assertEqual(report.cell(of, measure("processor idle"), "Audacity"), "0.50 %")


class WorseTest(unittest.TestCase):
    def test_equal_figures_are_not_worse(self):
        self.assertEqual(report.worse(results()), ["Nothing of what was measured."])

    def test_small_differences_are_not_worse(self):
        self.assertEqual(report.worse(results(start=0.5 * 1.04, kept=0.495)),
                         ["Nothing of what was measured."])

    def test_what_others_do_better_is_said_with_their_names(self):
        lines = report.worse(results(resize=1.0))
        self.assertEqual(len(lines), 1)
        self.assertIn("resize", lines[0])
        self.assertIn("Audacity 0.50 ×, mhWaveEdit 0.50 ×, GNOME Sound Recorder 0.50 ×", lines[0])
        self.assertIn("Orvo 1,000 ms", lines[0])

    def test_keeping_less_is_worse(self):
        self.assertIn("kill -9", report.worse(results(killed=0.2))[0])


class PageTest(unittest.TestCase):
    def test_every_mark_of_the_template_is_filled(self):
        self.assertNotRegex(report.page(results()), "@[A-Z_]+@")

    def test_every_measure_has_a_full_row_in_both_tables(self):
        lines = report.page(results()).splitlines()
        for each in report.MEASURES:
            rows = [line for line in lines if line.startswith(f"| {each.label} |")]
            self.assertEqual(len(rows), 2, each.label)
            for row in rows:
                cells = row.strip("|").split("|")
                self.assertEqual(len(cells), 2 + len(report.PEERS))
                self.assertTrue(all(cell.strip() for cell in cells), row)

    def test_busiest_moment_is_named(self):
        of = copy.deepcopy(results())
        of["busy"]["during"]["idle"] = 0.07
        self.assertIn("0.07 cores busy", " ".join(report.page(of).split()))

    def test_the_page_of_this_tree_is_that_of_its_figures(self):
        self.assertEqual(os.path.exists(RESULTS), os.path.exists(PAGE),
                         "the page and its figures belong together")
        if os.path.exists(RESULTS):
            import json
            with open(RESULTS, encoding="utf-8") as file:
                expected = report.page(json.load(file))
            with open(PAGE, encoding="utf-8") as file:
                self.assertEqual(file.read(), expected)


class PlainTest(unittest.TestCase):
    def test_a_trial_of_one_program_prints_no_ratio(self):
        of = results()
        of["figures"] = {"start": {"Audacity": [0.5]}}
        text = report.plain(of)
        self.assertIn("500 ms", text)
        self.assertNotIn("×", text)


if __name__ == "__main__":
    unittest.main()
