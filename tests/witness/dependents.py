#!/usr/bin/env python3
"""Direct dependents of drawn cells: those that the page's model has after a real scan, beside those
that this slow witness works out cell by cell from the formulas in the file. Ends with status 1 where
a cell is missing or surplus for a cause that is not known, 77 where there are no workbooks.

    dependents.py QUORINCTL FOLDER [WORKBOOK...] [--cells 300] [--seed 1] [--show]

The scan and the model are the page's own, built for Node: npm run dependents in web/ does both.
Without names of workbooks all that have formulas; --show prints differences.
"""
import argparse
import collections
import json
import pathlib
import random
import re
import subprocess
import sys
import time

import stored
from references import References

SCRIPT = pathlib.Path(__file__).resolve().parents[2] / "web/out/bench/dependents.js"
# Named in a way that the page lists apart, as decided at run time.
KNOWN = {"relative name"}
AT_RUN_TIME = re.compile(r"\b(INDIRECT|OFFSET)\(", re.IGNORECASE)


def drawn(book, boxes, count, chance):
    """`count` cells, fewer where there are not so many. Two of three from what formulas name, the rest from all cells that hold anything."""
    named = [(box, home) for home, each in boxes.items() for _, box in each]
    edges = collections.defaultdict(lambda: [1, 1])
    for sheet, row, column in book.places:
        edge = edges[sheet]
        edge[0], edge[1] = max(edge[0], row), max(edge[1], column)
    cells = set()
    for attempt in range(count * 20):
        if len(cells) == count:
            break
        if named and attempt % 3:
            box, _ = chance.choice(named)
            bottom, right = edges[box.sheet]
            if box.top <= bottom and box.left <= right:
                cells.add((box.sheet, chance.randint(box.top, min(box.bottom, bottom)),
                           chance.randint(box.left, min(box.right, right))))
        elif book.places:
            cells.add(chance.choice(book.places))
    return sorted(cells)


def witnessed(cells, boxes):
    """For each drawn cell, who names it and how."""
    found = {cell: {} for cell in cells}
    rows_of = collections.defaultdict(list)
    for sheet, row, column in cells:
        rows_of[sheet].append((row, column))
    for home, each in boxes.items():
        for kind, box in each:
            for row, column in rows_of.get(box.sheet, ()):
                if box.has(row, column):
                    found[box.sheet, row, column].setdefault(home, kind)
    return found


def told(program, workbook, cells):
    """What the page's model says: for each cell the users, and how many more it did not list."""
    asked = json.dumps([{"sheet": s, "row": r, "col": c} for s, r, c in cells])
    run = subprocess.run(["node", SCRIPT, program, workbook], input=asked, text=True,
                         timeout=300, stdout=subprocess.PIPE, check=True)
    reply = json.loads(run.stdout)
    users = {}
    for cell, answer in zip(cells, reply["answers"], strict=True):
        listed = {(sheet, row, column) for sheet, top, left, bottom, right in answer["areas"]
                  for row in range(top, bottom + 1) for column in range(left, right + 1)}
        users[cell] = listed, answer["left"]
    return users, reply


def name(cell):
    return f"{cell[0]}!{stored.column_letters(cell[2])}{cell[1]}"


def compare(args, file):
    begun = time.monotonic()
    book = stored.read(file)
    if not book.formulas and not args.workbooks:
        return 0, 0
    references = References(book)
    boxes = {home: references.of(*home) for home in book.formulas}
    cells = drawn(book, boxes, args.cells, random.Random(f"{args.seed} {file.name}"))
    right = witnessed(cells, boxes)
    users, reply = told(args.program, file, cells)
    causes, examples, pairs = collections.Counter(), {}, 0
    for cell in cells:
        listed, left = users[cell]
        expected = right[cell]
        pairs += len(expected)
        if len(listed) + left == len(expected) and listed <= set(expected):
            continue
        for user in (set(expected) | listed) if left == 0 else (listed - set(expected)) or [None]:
            if user in expected and user in listed:
                continue
            cause = ("count", "left") if user is None else (
                ("missing", expected[user]) if user in expected else
                ("surplus", book.formulas[user].kind if user in book.formulas else "no formula"))
            causes[cause] += 1
            text = book.formulas[user].text if user in book.formulas else ""
            examples.setdefault(cause, []).append(
                f"{name(cell)} by {name(user) if user else 'some'}: {text[:150]}")
    wrong = sum(count for (_, kind), count in causes.items() if kind not in KNOWN)
    summary = ", ".join(f"{count} {what} ({kind})" for (what, kind), count in causes.items())
    print(f"{file.stem:42} {len(book.formulas):6} formulas, {len(cells):4} cells, {pairs:7} users, "
          f"{reply['questions']:4} questions, {reply['runTimeCells']} at run time "
          f"({sum(bool(AT_RUN_TIME.search(one.text)) for one in book.formulas.values())} "
          f"by the file's texts), "
          f"{len(reply['notRead'])} not read: {summary or 'all the same'} "
          f"({time.monotonic() - begun:.0f} s)", flush=True)
    if args.show:
        for cause, some in examples.items():
            print(*(f"    {' '.join(cause)}: {one}" for one in some[:8]), sep="\n")
    return wrong, pairs


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("program")
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("workbooks", nargs="*")
    parser.add_argument("--cells", type=int, default=300)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--show", action="store_true")
    args = parser.parse_args()
    files = [args.folder / f"{one}.xlsx" for one in args.workbooks] or sorted(
        args.folder.glob("*.xlsx"))
    if not files or not all(file.exists() for file in files):
        print(f"skipped: no workbooks in {args.folder}")
        return 77
    print(f"seed {args.seed}, {args.cells} cells of each workbook")
    results = [compare(args, file) for file in files]
    wrong, pairs = (sum(each) for each in zip(*results))
    print(f"{pairs} users, {wrong} missing or surplus for an unknown cause")
    # Nothing compared would be nothing shown.
    return 1 if wrong or not pairs else 0


sys.exit(main())
