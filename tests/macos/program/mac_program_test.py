#!/usr/bin/env python3
"""The macOS program as a whole: main.mm, portable code, adapters, handlers and page, beside an Excel
in memory.

usage: mac_program_test.py QUORIN [PART/PARTS] [unittest option...]

2/4 is the second of four parts, for who runs them at a time.
"""
import re
import sys
import unittest

from end_cases import EndTest  # noqa: F401
from excel_cases import ExcelTest  # noqa: F401
from follow_cases import FollowTest  # noqa: F401
from mac_desk import Desk, Mac
from shell_cases import ShellTest  # noqa: F401

CLASSES = sorted(name for name, one in globals().items()
                 if isinstance(one, type) and issubclass(one, unittest.TestCase))


def main():
    Mac.program = sys.argv.pop(1)
    if part := re.fullmatch(r"(\d)/(\d)", sys.argv[1] if sys.argv[1:] else ""):
        sys.argv[1:2] = CLASSES[int(part[1]) - 1::int(part[2])]
    Mac.desk = Desk()
    try:
        return unittest.main(__name__, verbosity=2, exit=False).result.wasSuccessful()
    finally:
        Mac.desk.end()


if __name__ == "__main__":
    sys.exit(0 if main() else 1)
