#!/usr/bin/env python3
"""Checks who includes whom: the table below is the rule, docs/architecture.md prints it.

usage: include_rules.py PROJECT_FOLDER

Every `#include "folder/..."` of a file in a folder named here must lead to the same folder or to
one that the table allows. UNO headers belong to host/calc, platform conditionals to the platform
folders.
"""
import pathlib
import re
import sys

EVERYTHING = {"*"}
ALLOWED = {
    "kit/value": set(),
    "kit/platform": {"kit/value"},
    "kit/support": {"kit/value", "kit/platform"},
    "kit/shapes": {"kit/value"},
    "kit/excel": {"kit/value", "kit/platform", "kit/support", "kit/shapes"},
    "kit/marks": {"kit/value", "kit/support", "kit/shapes"},
    "kit/reviews": {"kit/value", "kit/support", "kit/marks"},
    "kit/bridge": {"kit"},
    "app/shell": {"kit"},
    "app/macos": {"app/shell", "kit"},
    "app/linux": {"app/shell", "kit", "host", "script"},
    "script": {"kit/value"},
    "host": {"kit/value", "kit/excel", "script"},
    "host/calc": {"kit/value", "kit/platform", "kit/excel", "script", "host"},
    "tools": {"kit", "host", "script"},
    "tests": EVERYTHING,
    "bench": EVERYTHING,
}
INCLUDE = re.compile(r'^\s*#\s*(?:include|import)\s*([<"])([^>"]+)[>"]')
UNO = re.compile(r"^(com/sun/star|cppu|cppuhelper|rtl|osl|sal|uno|typelib|comphelper)/")
CONDITIONAL = re.compile(
    r"^\s*#\s*(?:if|ifdef|ifndef|elif)\b.*\b(__APPLE__|__linux__|__MACH__|_WIN32|__unix__)\b")
CONDITIONAL_FOLDERS = ("app/macos", "app/linux", "host/calc", "tests", "bench")
CONDITIONAL_FILES = {"kit/support/FileSync.cpp"}  # the one place that knows how to sync a file


def folder_of(path):
    """The longest folder of the table that holds the path, or none."""
    best = None
    for folder in ALLOWED:
        if path.startswith(folder + "/") and (best is None or len(folder) > len(best)):
            best = folder
    return best


def allows(source, target):
    rule = ALLOWED[source]
    if source == target or rule is EVERYTHING:
        return True
    return any(target == entry or target.startswith(entry + "/") for entry in rule)


def findings(root):
    for path in sorted(root.rglob("*")):
        relative = path.relative_to(root).as_posix()
        if path.suffix not in {".h", ".cpp", ".mm", ".m"} or relative.startswith(("build/", "out/")):
            continue
        source = folder_of(relative)
        if source is None:
            continue
        for number, line in enumerate(path.read_text().splitlines(), 1):
            place = f"{relative}:{number}"
            if CONDITIONAL.match(line) and not relative.startswith(CONDITIONAL_FOLDERS) \
                    and relative not in CONDITIONAL_FILES:
                yield f"{place}: a platform conditional outside the platform folders"
            match = INCLUDE.match(line)
            if not match:
                continue
            bracket, name = match.groups()
            if UNO.match(name) and source not in ("host/calc", "tests", "bench"):
                yield f"{place}: UNO header {name} outside host/calc"
            if bracket == "<":
                continue
            target = folder_of(name)
            if target is None:
                if name.startswith(("kit/", "app/", "host/", "script/")):
                    yield f"{place}: {name} is in no folder of the table"
            elif not allows(source, target):
                yield f"{place}: {source} may not include {target} ({name})"


def main():
    root = pathlib.Path(sys.argv[1]).resolve()
    found = list(findings(root))
    print("\n".join(found) if found else "every include is in the table")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
