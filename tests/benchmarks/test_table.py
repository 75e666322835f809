#!/usr/bin/env python3
"""Tests benchmarks/table.py. Run by CTest as the test "benchmarktable"."""
import json
import pathlib
import sys
import unittest

project = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(project / "benchmarks"))
import table  # pylint: disable=wrong-import-position


def runs(name, *times):
    return [{"name": name, "run_type": "iteration", "real_time": time, "time_unit": "ns"}
            for time in times]


def only_row(own, peer):
    found = table.rows(runs("queue/own", *own) + runs("queue/turns", *peer))
    assert len(found) == 1
    return found[0]


class Verdict(unittest.TestCase):
    def test_a_value_up_to_the_goal_is_ok(self):
        self.assertEqual(table.verdict(1.20, 0.05, 1.30), "ok")
        self.assertEqual(table.verdict(1.30, 0, 1.30), "ok")

    def test_a_value_above_the_goal_is_over(self):
        self.assertEqual(table.verdict(1.40, 0.05, 1.30), "over")

    def test_a_spread_larger_than_the_distance_is_noisy(self):
        self.assertEqual(table.verdict(1.20, 0.15, 1.30), "noisy")
        self.assertEqual(table.verdict(1.40, 0.15, 1.30), "noisy")

    def test_a_spread_equal_to_the_distance_is_not_noisy(self):
        self.assertEqual(table.verdict(1.25, 0.25, 1.50), "ok")
        self.assertEqual(table.verdict(1.75, 0.25, 1.50), "over")


class Row(unittest.TestCase):
    def test_the_ratio_is_that_of_the_medians(self):
        row = only_row((100, 500, 300), (200, 100, 900))
        self.assertEqual(row["ratio"], 300 / 200)
        self.assertEqual(row["rounds"], 3)

    def test_the_spread_is_the_median_deviation_of_the_ratios_of_the_rounds(self):
        # The ratios of the rounds are 1.0, 1.2, 1.8; that of the medians is 1.2.
        row = only_row((100, 120, 180), (100, 100, 100))
        self.assertAlmostEqual(row["spread"], 0.2)

    def test_what_changes_both_times_of_a_round_is_no_spread(self):
        row = only_row((120, 240, 600), (100, 200, 500))
        self.assertAlmostEqual(row["spread"], 0)
        self.assertEqual(row["verdict"], "ok")

    def test_aggregates_are_no_rounds(self):
        mean = dict(runs("queue/own_mean", 900)[0], run_type="aggregate", name="queue/own")
        found = table.rows(runs("queue/own", 100) + [mean] + runs("queue/turns", 100))
        self.assertEqual(found[0]["rounds"], 1)

    def test_units_are_read(self):
        own = [{"name": "queue/own", "run_type": "iteration", "real_time": 2, "time_unit": "us"}]
        self.assertAlmostEqual(table.rows(own + runs("queue/turns", 1000))[0]["ratio"], 2)

    def test_a_work_without_its_peer_has_no_row(self):
        self.assertEqual(table.rows(runs("queue/own", 100)), [])


class RecordedResults(unittest.TestCase):
    def test_each_row_has_its_verdict(self):
        path = project / "tests/data/benchmarks/results.json"
        found = table.rows(json.loads(path.read_text(encoding="utf-8"))["benchmarks"])
        seen = [(row.get("work"), row.get("peer"), row["rounds"], row["verdict"]) for row in found]
        self.assertEqual(seen, [
            ("queue", "turns", 5, "over"),
            ("fastAppend", "write", 5, "over"),
            ("fastAppend", "spdlog", 5, "over"),
            ("append", "write", 5, "over"),
            ("counter", "pread", 5, "ok"),
            ("toQStringMixed", "qt", 5, "ok"),
            (None, None, 5, "over"),
        ])


class Duration(unittest.TestCase):
    def test_the_unit_fits_the_size(self):
        self.assertEqual(table.duration(5.59e-7), "559 ns")
        self.assertEqual(table.duration(0.0123), "12.3 ms")
        self.assertEqual(table.duration(75), "75 s")


if __name__ == "__main__":
    unittest.main()
