#!/usr/bin/env python3
"""Tables for tools/dev/share.py: which of the long tests are run on which day.

usage: share_test.py QUORIN_FOLDER
"""
import collections
import datetime
import json
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

QUORIN = pathlib.Path(sys.argv[1])
sys.path.insert(0, str(QUORIN / "tools/dev"))
from share import DAYS, expression, long_tests, share_of  # noqa: E402

FIRST = datetime.date(2026, 2, 26)


def days(count, first=FIRST):
    return [first + datetime.timedelta(days=i) for i in range(count)]


class Shares(unittest.TestCase):
    def test_each_test_has_one_day_of_every_three_in_a_row(self):
        for number in (0, 1, 4, 5, 6, 31, 100):
            names = [f"test {i}" for i in range(number)]
            for first in (*days(7), datetime.date(2027, 12, 30), datetime.date(2028, 2, 27)):
                with self.subTest(number=number, first=first):
                    run = [name for day in days(3, first) for name in share_of(names, day)]
                    self.assertEqual(collections.Counter(run), collections.Counter(names))

    def test_five_working_days_are_enough_whichever_week_it_is(self):
        names = [f"test {i}" for i in range(13)]
        for week in range(6):
            monday = datetime.date(2026, 2, 2) + datetime.timedelta(weeks=week)
            self.assertEqual({name for day in days(5, monday) for name in share_of(names, day)},
                             set(names))

    def test_a_day_gives_the_same_share_again(self):
        names = [f"test {i}" for i in range(31)]
        for day in days(7):
            self.assertEqual(share_of(names, day), share_of(list(names), day))

    def test_days_in_a_row_differ_and_are_alike_in_number(self):
        names = [f"test {i}" for i in range(31)]
        shares = [share_of(names, day) for day in days(DAYS)]
        self.assertEqual({len(share) for share in shares}, {10, 11})
        self.assertEqual(len({tuple(share) for share in shares}), DAYS)

    def test_a_known_day(self):
        names = list("abcdefg")
        for day, share in (("2026-11-23", "cf"), ("2026-11-24", "adg"), ("2026-11-25", "be"),
                           ("2026-11-26", "cf"), ("2028-02-29", "adg"), ("2028-03-01", "be")):
            self.assertEqual(share_of(names, datetime.date.fromisoformat(day)), list(share), day)


class LongTests(unittest.TestCase):
    def test_are_those_with_the_label_the_costliest_first(self):
        def entry(name, labels, cost=None):
            costs = [] if cost is None else [{"name": "COST", "value": cost}]
            return {"name": name, "properties": [{"name": "LABELS", "value": labels}, *costs]}
        with tempfile.NamedTemporaryFile("w") as file:
            json.dump({"tests": [entry("b", ["unit", "long"], 2.0), entry("longer", ["unit"], 9.0),
                                 entry("c", ["long", "ui"]), entry("a", ["long"], 2.0),
                                 {"name": "bare"}, entry("d", ["calc", "long"], 300.0),
                                 entry("e", ["daily"]), entry("f", ["long", "daily"])]}, file)
            file.flush()
            self.assertEqual(long_tests(file.name), ["d", "a", "b", "c", "f"])
            self.assertEqual(long_tests(file.name, "daily"), ["f"])

    def test_that_are_daily_are_run_on_each_day_and_no_other_is(self):
        with tempfile.NamedTemporaryFile("w") as file:
            json.dump({"tests": [{"name": name, "properties": [{"name": "LABELS", "value": labels}]}
                                 for name, labels in (("style", ["long", "daily"]), ("one", ["long"]),
                                                      ("two", ["long"]), ("three", ["long"]),
                                                      ("quick", ["unit"]))]}, file)
            file.flush()
            for choice, left in [(str(day), 2) for day in days(3)] + [("none", 4), ("all", 0)]:
                run = subprocess.run([sys.executable, QUORIN / "tools/dev/share.py", file.name, choice],
                                     capture_output=True, text=True, check=True)
                out = [name for name in ("style", "one", "two", "three", "quick")
                       if run.stdout.strip() and re.search(run.stdout.strip(), name)]
                self.assertEqual(len(out), left, choice)
                self.assertEqual("style" in out, choice == "none")


class Expressions(unittest.TestCase):
    def test_match_the_names_and_nothing_else(self):
        names = ["one", "Odd/Values.Pass/0", "a+b", "c(d)"]
        found = re.compile(expression(names))
        for name in names:
            self.assertTrue(found.search(name), name)
        for name in ("one_long", "someone", "Odd/ValuesxPass/0", "aab", "cd"):
            self.assertFalse(found.search(name), name)

    def test_of_nothing_is_nothing(self):
        self.assertEqual(expression([]), "")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
