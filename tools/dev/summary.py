#!/usr/bin/env python3
"""Counts a test run by label, from CTest's list of tests, its JUnit file and the GoogleTest files.

usage: summary.py RESULTS [--forbid-skips LABEL,LABEL]

A CTest entry that ran a whole GoogleTest program counts as that program's tests. One that could not
be started counts as failed. Prints a table, the names of the long tests that were left out and, last,
CTest's own closing line. Exits 1 when a test failed, a forbidden skip is found or nothing ran.
"""
import argparse
import collections
import json
import pathlib
import sys
import xml.etree.ElementTree as ET

from share import LONG, labels_of, long_tests


def labels_by_test(path):
    """Test name -> its label, as CTest lists them (its JUnit file leaves the labels out)."""
    return {test["name"]: " ".join(label for label in labels_of(test) if label != LONG) or "none"
            for test in json.loads(path.read_text())["tests"]}


def counts_of_program(path):
    """(passed, failed, names of skipped tests) of one GoogleTest result file."""
    passed, failed, skipped = 0, 0, []
    for case in ET.parse(path).getroot().iter("testcase"):
        if case.find("failure") is not None:
            failed += 1
        elif case.find("skipped") is not None or case.get("result") == "skipped":
            skipped.append(f"{case.get('classname')}.{case.get('name')}")
        elif case.get("status") != "notrun":
            passed += 1
    return passed, failed, skipped


def main():
    arguments = argparse.ArgumentParser()
    arguments.add_argument("results", type=pathlib.Path)
    arguments.add_argument("--forbid-skips", default="")
    options = arguments.parse_args()

    labels = labels_by_test(options.results / "tests.json")
    passed, failed, skipped = (collections.Counter() for _ in range(3))
    names_skipped = collections.defaultdict(list)
    ran = set()
    for case in ET.parse(options.results / "ctest.xml").getroot().iter("testcase"):
        name = case.get("name")
        ran.add(name)
        label = labels.get(name, "none")
        program = options.results / f"{name}.xml"
        if program.exists():
            p, f, s = counts_of_program(program)
            if f == 0 and case.get("status") == "fail":  # it ended badly outside of any test
                f = 1
        else:
            skip = case.find("skipped")
            s = [name] if skip is not None and "SKIP_" in skip.get("message", "") else []
            p = int(case.get("status") == "run")
            f = 1 - p - len(s)
        passed[label] += p
        failed[label] += f
        skipped[label] += len(s)
        names_skipped[label] += s

    print(f"\n{'label':<10}{'executed':>10}{'failed':>8}{'skipped':>9}")
    for label in sorted(set(passed) | set(failed) | set(skipped)):
        print(f"{label:<10}{passed[label] + failed[label]:>10}{failed[label]:>8}{skipped[label]:>9}")
        for name in names_skipped[label]:
            print(f"  skipped: {name}")

    left_out = [name for name in long_tests(options.results / "tests.json") if name not in ran]
    if left_out:
        print(f"{len(left_out)} long tests were not run; ./test --full runs them:")
        for name in left_out:
            print(f"  not run: {name}")

    status = 0
    for label in filter(None, options.forbid_skips.split(",")):
        if skipped[label]:
            print(f"No {label} test may be skipped here.")
            status = 1
    if sum(failed.values()):
        print("Tests failed.")
        status = 1
    if sum(passed.values()) + sum(failed.values()) == 0:
        print("No test was executed.")
        status = 1
    for line in (options.results / "ctest.log").read_text(errors="replace").splitlines():
        if "tests passed" in line:
            print(line)
    return status


if __name__ == "__main__":
    sys.exit(main())
