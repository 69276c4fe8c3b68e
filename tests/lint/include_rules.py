#!/usr/bin/env python3
"""Checks who includes whom: the table below is the rule, docs/architecture.md explains it and has a
row for each of its folders.

usage: include_rules.py PROJECT_FOLDER

Every `#include "folder/..."` of a file in a folder named here must lead to the same folder or to
one that the table allows. A file belongs to the longest folder of the table that holds it. UNO
headers belong to host/calc, but for its grammar, and platform conditionals to the platform folders.
"""
import pathlib
import re
import sys

EVERYTHING = {"*"}
# What a room of host/calc may include beside the rooms below it.
UNDER_CALC = {"kit/value", "kit/platform", "kit/excel", "host"}
# The rooms of host/calc and of script, each after those that it may include.
CALC_ROOMS = {
    "uno": set(),
    "office": {"uno"},
    "grammar": {"uno"},
    "workbook": {"uno", "grammar"},
    "cells": {"uno", "grammar", "workbook"},
    "evaluation": {"uno", "grammar", "workbook", "cells"},
    "marks": {"uno", "office", "workbook", "evaluation"},
    "reveal": {"uno", "workbook", "marks"},
    "keeper": {"uno", "office", "workbook", "marks", "reveal"},
}
SCRIPT_ROOMS = {
    "terms": set(),
    "lex": {"terms"},
    "values": {"terms", "lex"},
    "parse": {"terms", "lex", "values"},
    "run": {"terms", "values", "parse"},
    "lint": {"terms", "lex", "parse"},
}


def floors(building, rooms, outside):
    return {f"{building}/{room}": outside | {f"{building}/{other}" for other in below}
            for room, below in rooms.items()}


# "kit/*" stands for every folder in kit.
ALLOWED = {
    "kit/value": set(),
    "kit/platform": {"kit/value"},
    "kit/support": {"kit/value", "kit/platform"},
    "kit/shapes": {"kit/value"},
    "kit/excel": {"kit/value", "kit/platform", "kit/support", "kit/shapes"},
    "kit/marks": {"kit/value", "kit/support", "kit/shapes"},
    "kit/reviews": {"kit/value", "kit/support", "kit/marks"},
    "kit/bridge": {"kit/*"},
    "app/shell": {"kit/*"},
    "app/macos": {"app/shell", "kit/*"},
    "app/linux": {"app/shell", "kit/*", "host", "host/model", "host/calc/*", "script/terms"},
    "script": {"kit/value", "script/terms", "script/lex", "script/parse", "script/run"},
    "host": {"kit/value", "kit/excel", "script", "script/terms"},
    "host/dictionary": {"kit/value", "script/terms"},
    "host/model": {"kit/value", "kit/excel", "script", "script/terms", "host", "host/dictionary"},
    "host/calc": UNDER_CALC | {"host/model"}
    | {"host/calc/" + room for room in CALC_ROOMS if room != "keeper"},
    "tools": {"kit/*", "host/*", "script/*"},
    "tests": EVERYTHING,
    "bench": EVERYTHING,
} | floors("script", SCRIPT_ROOMS, {"kit/value"}) | floors("host/calc", CALC_ROOMS, UNDER_CALC)
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
    return any(target == entry or (entry.endswith("/*") and (target + "/").startswith(entry[:-1]))
               for entry in rule)


def may_use_uno(folder):
    if folder == "host/calc/grammar":  # text in, text out
        return False
    return folder.startswith("host/calc") or folder in ("tests", "bench")


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
            if UNO.match(name) and not may_use_uno(source):
                yield f"{place}: UNO header {name} in {source}"
            if bracket == "<":
                continue
            target = folder_of(name)
            if target is None:
                if name.startswith(("kit/", "app/", "host/", "script/")):
                    yield f"{place}: {name} is in no folder of the table"
            elif not allows(source, target):
                yield f"{place}: {source} may not include {target} ({name})"


ROW = re.compile(r"^\| (`[^|]+`) \|", re.MULTILINE)


def missing_rows(root):
    """The folders that the table of the document lacks, and those that it has too many."""
    text = (root / "docs/architecture.md").read_text()
    begin = text.index("\n| folder |")
    table = text[begin:text.index("\n\n", begin)]
    told = {name.strip("`") for cell in ROW.findall(table) for name in cell.split(", ")}
    for name in sorted(set(ALLOWED) - told):
        yield f"docs/architecture.md: no row for {name}"
    # A folder without sources is told, and no rule is about it.
    for name in sorted(told - set(ALLOWED)):
        if not (root / name).is_dir():
            yield f"docs/architecture.md: there is no {name}"


def main():
    root = pathlib.Path(sys.argv[1]).resolve()
    found = list(findings(root))
    if (root / "docs").is_dir():
        found += missing_rows(root)
    print("\n".join(found) if found else "every include is in the table")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
