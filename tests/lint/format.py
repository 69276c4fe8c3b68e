#!/usr/bin/env python3
"""Checks every C++ file against .clang-format.

usage: format.py PROJECT_FOLDER CLANG_FORMAT
"""
import pathlib
import subprocess
import sys

from tool_version import NOT_APPLICABLE, is_other

FOLDERS = ("kit", "script", "host", "app", "tools", "tests", "bench")


def main():
    root = pathlib.Path(sys.argv[1]).resolve()
    files = [str(path) for folder in FOLDERS for path in sorted((root / folder).rglob("*"))
             if path.suffix in {".h", ".cpp", ".mm"}]
    if not files:
        print("found no files at all")
        return 1
    if is_other(sys.argv[2]):
        return NOT_APPLICABLE
    return subprocess.run([sys.argv[2], "--style=file", "--dry-run", "-Werror", *files],
                          check=False).returncode


if __name__ == "__main__":
    sys.exit(main())
