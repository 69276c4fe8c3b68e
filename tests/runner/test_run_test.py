#!/usr/bin/env python3
"""Runs a project that is not green, and looks that nothing of it counts as passed or as skipped.

usage: test_run_test.py QUORIN_FOLDER CXX [LAUNCHER...]

What is tried: tools/dev/run_ctest.sh, the counts of summary.py and quorin_test() of
cmake/QuorinTargets.cmake, in a whole GoogleTest program and in one whose tests are found one by one.
"""
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

QUORIN = pathlib.Path(sys.argv[1])
COMPILER = sys.argv[2]
LAUNCHER = ";".join(sys.argv[3:])
sys.path.insert(0, str(QUORIN / "tools/dev"))
from share import DAYS  # noqa: E402

PROJECT = QUORIN / "tests/runner/project"


class TestRun(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory(prefix="quorin-runner-")
        cls.addClassCleanup(folder.cleanup)
        cls.build = pathlib.Path(folder.name)
        subprocess.run(["cmake", "-G", "Ninja", "-S", PROJECT, "-B", cls.build,
                        f"-DQUORIN_ROOT={QUORIN}", f"-DCMAKE_CXX_COMPILER={COMPILER}",
                        f"-DCMAKE_CXX_COMPILER_LAUNCHER={LAUNCHER}"],
                       check=True, stdout=subprocess.DEVNULL)
        subprocess.run(["cmake", "--build", cls.build], check=True, stdout=subprocess.DEVNULL)

    def run_tests(self, *options, long="none"):
        """The exit status of a run, and label -> (executed, failed, skipped) of what it printed."""
        run = subprocess.run([QUORIN / "tools/dev/run_ctest.sh", self.build, *options],
                             env={**os.environ, "QUORIN_LONG": long},
                             stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        self.not_run = re.findall("not run: (.*)", run.stdout)
        rows = re.findall(r"^(\w+) +(\d+) +(\d+) +(\d+)$", run.stdout, re.MULTILINE)
        self.assertTrue(rows, run.stdout)
        return run.returncode, {row[0]: tuple(map(int, row[1:])) for row in rows}

    def count_again(self, *options):
        return subprocess.run([sys.executable, QUORIN / "tools/dev/summary.py",
                               self.build / "results", *options],
                              stdout=subprocess.DEVNULL).returncode

    def test_no_skip_hides_a_failure_of_a_whole_program(self):
        status, counts = self.run_tests("-R", "^whole$")
        self.assertEqual(status, 1)
        # What goes wrong at the end of a suite newer versions of GoogleTest report as one more test.
        self.assertIn(counts, ({"calc": (3, 2, 2)}, {"calc": (4, 3, 2)}))
        self.assertEqual(self.count_again(), 1)

    def test_no_skip_hides_a_failure_of_one_test(self):
        for name in ("Cases.FailsAndSkips", "Ending.Skips"):
            with self.subTest(name):
                status, counts = self.run_tests("-R", f"^{re.escape(name)}$")
                self.assertEqual(status, 1)
                self.assertEqual(counts, {"unit": (1, 1, 0)})

    def test_what_cannot_be_started_has_failed(self):
        status, counts = self.run_tests("-R", "^missing$")
        self.assertEqual(status, 1)
        self.assertEqual(counts, {"lint": (1, 1, 0)})
        self.assertEqual(self.count_again(), 1)

    def test_a_failure_is_told_by_the_count_alone(self):
        self.run_tests("-R", "^Cases.Fails$")
        self.assertEqual(self.count_again(), 1)

    def test_a_pass_and_a_skip_are_green_unless_skips_are_forbidden(self):
        status, counts = self.run_tests("-R", "^Cases.(Passes|Skips)$")
        self.assertEqual(status, 0)
        self.assertEqual(counts, {"unit": (1, 0, 1)})
        self.assertEqual(self.count_again("--forbid-skips", "calc,unit"), 1)
        self.assertEqual(self.count_again("--forbid-skips", "calc"), 0)

    def test_no_value_of_a_parameter_hides_a_test(self):
        status, counts = self.run_tests("-R", "^(Odd/Values.Pass/|After.Passes)")
        self.assertEqual(status, 0)
        self.assertEqual(counts, {"unit": (7, 0, 0)})

    def test_what_is_long_is_left_out_by_name_and_never_passed(self):
        status, counts = self.run_tests("-R", "^(parted|parted_long|After.Passes)$")
        self.assertEqual(status, 1)
        self.assertEqual(counts["unit"], (1, 0, 0))
        self.assertIn(counts["ui"], ((3, 2, 2), (4, 3, 2)))
        self.assertEqual(self.not_run, ["parted_long"])

    def test_long_tests_alone_are_no_run_where_they_are_left_out(self):
        run = subprocess.run([QUORIN / "tools/dev/run_ctest.sh", self.build, "-R", "^parted_long$"],
                             env={**os.environ, "QUORIN_LONG": "none"},
                             stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        self.assertNotEqual(run.returncode, 0)

    def test_all_are_run_when_all_are_asked_for(self):
        status, counts = self.run_tests("-R", "^parted_long$", long="all")
        self.assertEqual((status, counts), (0, {"ui": (7, 0, 0)}))
        self.assertEqual(self.not_run, [])

    def test_each_long_test_has_its_day(self):
        days = [f"2026-02-{day:02}" for day in range(1, 1 + DAYS)]
        left_out = []
        for day in days:
            self.run_tests("-R", "^(parted_long|After.Passes)$", long=day)
            left_out.append(self.not_run)
        self.assertEqual(sorted(left_out), [[]] + [["parted_long"]] * (DAYS - 1))

    def test_no_day_is_no_run(self):
        run = subprocess.run([QUORIN / "tools/dev/run_ctest.sh", self.build, "-R", "^After.Passes$"],
                             env={**os.environ, "QUORIN_LONG": "tomorrow"},
                             stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        self.assertNotEqual(run.returncode, 0)

    def test_skips_alone_are_no_run(self):
        status, counts = self.run_tests("-R", "^Cases.Skips$")
        self.assertEqual(status, 1)
        self.assertEqual(counts, {"unit": (0, 0, 1)})


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
