#!/usr/bin/env python3
"""What the bench rests on: worlds that stay the same, checks that fail when they should, a page that keeps its text."""

import contextlib
import io
import pathlib
import tempfile
import unittest

import count
import measure
import page
import plot
import programs
import worlds
import writer


def workload(name):
    engines = dict.fromkeys(measure.ENGINES, 0.5)
    return {"name": name, "title": worlds.title(name), "entries": 726,
            "statements": {measure.BEFORE: 156, measure.DEFAULT: 32}, "cpu": {**engines, measure.FLOOR: 1.0},
            "ratio": engines, "memory": dict.fromkeys(measure.ENGINES, (12.0, 2048))}


RESULTS = {
    "machine": {"processor": "a slow one"}, "notes": ["Something is left out."],
    "workloads": [workload(name) for name in ("A", "B", "D40", "D640", "R5", "R20", "till", "load1000")],
    "network": [{"name": "B", "title": "100 lines x 50 rules",
                 **{engine: {"trips": 5020, "wall": 2.5} for engine in measure.ENGINES}}],
    "writer": dict.fromkeys((writer.QUIET, *measure.ENGINES), {"median": 0.001, "longest": 0.02, "writes": 7}),
}


class Worlds(unittest.TestCase):
    def test_a_workload_is_the_same_each_time(self):
        first, second = worlds.make("till"), worlds.make("till")
        self.assertEqual(first.calls, second.calls)
        self.assertEqual(worlds.rows_by_table(first.rules), worlds.rows_by_table(second.rules))

    def test_the_till_has_a_rule_of_each_type_and_all_its_steps(self):
        till = worlds.make("till")
        self.assertEqual(len({rule.kind for rule in till.rules}), 15)
        modes = [call[2] for call in till.calls if call[0] == "CalcPromotion"]
        self.assertEqual(modes, ["Single"] * 20 + ["All", "MzPromotion", "Gift", "Pay", "Coupon"])

    def test_a_call_tells_the_length_of_its_texts_in_bytes(self):
        self.assertEqual(worlds.call_bytes(("DeleteSaleSetByKey", "é")), b"DeleteSaleSetByKey 2\n\xc3\xa9\n")


class Checks(unittest.TestCase):
    def test_engines_with_other_results_are_not_compared(self):
        self.assertEqual(measure.same_digest("A", {"before": "1", "default": "1"}), "1")
        with self.assertRaisesRegex(RuntimeError, "the results of A differ"):
            measure.same_digest("A", {"before": "1", "default": "2"})

    def test_two_percent_more_instructions_pass_and_a_little_more_fails(self):
        baseline = {"A": 1000, "B": 1000, "till": 1000}
        with contextlib.redirect_stdout(io.StringIO()):
            self.assertEqual(count.compare({"A": 1020, "B": 1021, "till": 500}, baseline), ["B"])

    def test_a_baseline_is_read_as_it_was_written(self):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder, "baseline")
            count.write(path, {"A": 1, "B": 2, "till": 3})
            counts, versions = count.read(path)
        self.assertEqual(counts, {"A": 1, "B": 2, "till": 3})
        self.assertIn("compiler", versions)

    def test_events_are_counted_over_texts_that_look_like_events(self):
        self.assertEqual(programs.count_events(b"S 4\nS 1\n\nL 0\n\nS 1\nx\n"), {"S": 2, "L": 1})

    def test_a_ratio_is_taken_round_by_round(self):
        self.assertEqual(measure.median_ratio([1.0, 20.0, 3.0], [2.0, 40.0, 2.0]), 0.5)


class Page(unittest.TestCase):
    def test_the_text_around_the_measured_part_stays(self):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder, "page.md")
            path.write_text(f"before\n{page.BEGIN}\nof yesterday\n{page.END}\nbehind\n", "utf-8")
            page.write(path, RESULTS, "plot.svg")
            text = path.read_text("utf-8")
        self.assertTrue(text.startswith(f"before\n{page.BEGIN}\n") and text.endswith(f"{page.END}\nbehind\n"))
        self.assertNotIn("of yesterday", text)
        self.assertIn("| default | 0.50 | 0.50 | 0.50 | 0.50 | 32 | 1,506 ms |", text)
        self.assertIn("Something is left out.", text)

    def test_the_plot_has_a_bar_for_each_engine_and_curves_for_lines_and_rules(self):
        svg = plot.draw(RESULTS)
        self.assertEqual(svg.count(">0.50</text>"), 4 * 3 + 3)  # A, B, D640 and till; and each panel's scale
        self.assertEqual(svg.count("<polyline"), 6)


if __name__ == "__main__":
    unittest.main()
