#!/usr/bin/env python3
"""The macOS program as a whole: main.mm, portable code, adapters, handlers and page, beside an Excel
in memory.

usage: mac_program_test.py QUORIN [unittest option...]
"""
import sys
import unittest

from end_cases import EndTest  # noqa: F401
from excel_cases import ExcelTest  # noqa: F401
from follow_cases import FollowTest  # noqa: F401
from mac_desk import Desk, Mac
from shell_cases import ShellTest  # noqa: F401


def main():
    Mac.program = sys.argv.pop(1)
    Mac.desk = Desk()
    try:
        return unittest.main(__name__, verbosity=2, exit=False).result.wasSuccessful()
    finally:
        Mac.desk.end()


if __name__ == "__main__":
    sys.exit(0 if main() else 1)
