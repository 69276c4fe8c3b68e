#!/usr/bin/env python3
"""Checks that every source file is built: each .cpp and .mm stands in a CMakeLists.txt above it.

usage: sources_listed.py PROJECT_FOLDER
"""
import pathlib
import re
import sys

FOLDERS = ("kit", "script", "host", "app", "tools", "tests", "bench")


def main():
    root = pathlib.Path(sys.argv[1]).resolve()
    lists = {path.parent: set(re.findall(r"[\w./+-]+\.(?:cpp|mm)\b", path.read_text()))
             for folder in FOLDERS for path in (root / folder).rglob("CMakeLists.txt")}
    missing, seen = [], 0
    for folder in FOLDERS:
        for path in sorted((root / folder).rglob("*")):
            if path.suffix not in {".cpp", ".mm"}:
                continue
            seen += 1
            listed = any(path.relative_to(parent).as_posix() in lists.get(parent, ())
                         for parent in path.parents if parent.is_relative_to(root))
            if not listed:
                missing.append(path.relative_to(root).as_posix())
    if not seen:
        print("found no sources at all")
        return 1
    for path in missing:
        print(f"{path}: in no CMakeLists.txt above it")
    if not missing:
        print(f"{seen} source files, all listed")
    return 1 if missing else 0


if __name__ == "__main__":
    sys.exit(main())
