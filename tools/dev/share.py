#!/usr/bin/env python3
"""Which of the long tests a run leaves out.

usage: share.py TESTS.json none|all|YYYY-MM-DD

TESTS.json is CTest's list. Long tests have the label "long" beside their own. With a date, a share of
them is run, on each of DAYS days in a row another, and on the last of these each has been; those with
the label "daily" as well belong to every share. Prints a
regular expression for CTest's -E, which is empty when nothing is left out, and tells the choice on
standard error.
"""
import datetime
import json
import pathlib
import re
import sys

LONG = "long"
DAILY = "daily"
DAYS = 3


def labels_of(test):
    """The labels of a test, as CTest lists it."""
    return [label for entry in test.get("properties", []) if entry["name"] == "LABELS"
            for label in entry["value"]]


def cost_of(test):
    return next((entry["value"] for entry in test.get("properties", []) if entry["name"] == "COST"), 0)


def long_tests(path, also=None):
    """Their names, those of the same cost beside each other, so that shares are alike; with `also`
    of those alone that have this label too."""
    wanted = {LONG} if also is None else {LONG, also}
    found = [test for test in json.loads(pathlib.Path(path).read_text())["tests"]
             if wanted <= set(labels_of(test))]
    return [test["name"] for test in sorted(found, key=lambda test: (-cost_of(test), test["name"]))]


def share_of(names, day):
    """Every DAYS-th of the names, from one that the day decides."""
    return names[day.toordinal() % DAYS::DAYS]


def expression(names):
    """What matches these names alone, as CMake writes regular expressions."""
    if not names:
        return ""
    return "^(" + "|".join(re.sub(r"([][.*+?()^$|\\])", r"\\\1", name) for name in names) + ")$"


def main():
    names, choice = long_tests(sys.argv[1]), sys.argv[2]
    if choice == "none":
        run = []
    elif choice == "all":
        run = names
    else:
        try:
            day = datetime.date.fromisoformat(choice)
        except ValueError:
            print(f"{choice} is no date like 2026-01-31", file=sys.stderr)
            return 2
        daily = long_tests(sys.argv[1], DAILY)
        run = daily + share_of([name for name in names if name not in daily], day)
        print(f"Of {len(names)} long tests those of {day}, {len(run)} (again with QUORIN_DAY={day}): "
              f"{', '.join(run)}", file=sys.stderr)
    print(expression([name for name in names if name not in run]))
    return 0


if __name__ == "__main__":
    sys.exit(main())
