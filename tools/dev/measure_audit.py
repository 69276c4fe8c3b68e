#!/usr/bin/env python3
"""Compares what `quorinctl audit` of one workbook takes with the bare reading of the same cells.

usage: measure_audit.py QUORINCTL WORKBOOK [--rounds N]

The bare reading opens the workbook and sends `readFormulas` for pieces of 5,000 cells, one after the
other. Both are run in turn, so that they meet the same load. Beside the times it prints the most
memory that the process which audits held, and the one that started it.
"""
import argparse
import json
import os
import re
import subprocess
import time

PIECE = 5_000


class Reader:
    def __init__(self, program, workbook):
        self.process = subprocess.Popen([program, "--workbook", workbook], stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, text=True)
        self.last = 0

    def ask(self, verb, *args):
        self.last += 1
        print(json.dumps({"id": self.last, "verb": verb, "args": args}),
              file=self.process.stdin, flush=True)
        reply = json.loads(self.process.stdout.readline())
        assert reply["id"] == self.last and reply["ok"], reply
        return reply["payload"]

    def close(self):
        self.process.stdin.close()
        self.process.wait()


def letters(column):
    text = ""
    while column:
        column, rest = divmod(column - 1, 26)
        text = chr(65 + rest) + text
    return text


def number(text):
    column = 0
    for letter in text:
        column = column * 26 + ord(letter) - 64
    return column


def bare(program, workbook):
    """Seconds, cells and formulas."""
    start = time.monotonic()
    reader = Reader(program, workbook)
    cells = formulas = 0
    for sheet in reader.ask("workbookMap")["sheets"]:
        corners = re.findall(r"([A-Z]+)(\d+)", sheet["usedRange"].replace("$", ""))
        (left, top), (right, bottom) = corners[0], corners[-1]
        width = number(right) - number(left) + 1
        height = max(1, PIECE // width)
        for row in range(int(top), int(bottom) + 1, height):
            last = min(int(bottom), row + height - 1)
            name = sheet["name"].replace("'", "''")
            told = reader.ask("readFormulas", f"'{name}'!{left}{row}:{right}{last}", "r1c1", False)
            cells += told["rows"] * told["cols"]
            formulas += sum(text != "" for line in told["formulas"] for text in line)
    reader.close()
    return time.monotonic() - start, cells, formulas


def most_memory(process):
    try:
        with open(f"/proc/{process}/status", encoding="utf8") as status:
            found = re.search(r"VmHWM:\s+(\d+) kB", status.read())
    except OSError:
        return 0
    return int(found[1]) / 1000 if found else 0


def children(process):
    try:
        with open(f"/proc/{process}/task/{process}/children", encoding="utf8") as file:
            return [int(child) for child in file.read().split()]
    except OSError:
        return []


def audit(program, workbook):
    """Seconds, and megabytes of the process that audits and of the one that started it."""
    start = time.monotonic()
    process = subprocess.Popen([program, "audit", workbook, "--format", "json"],
                               stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    worker = parent = 0
    while process.poll() is None:
        parent = max(parent, most_memory(process.pid))
        worker = max([worker, *map(most_memory, children(process.pid))])
        time.sleep(0.1)
    assert process.returncode == 0, process.returncode
    return time.monotonic() - start, worker, parent


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("quorinctl")
    parser.add_argument("workbook")
    parser.add_argument("--rounds", type=int, default=3)
    given = parser.parse_args()
    for _ in range(given.rounds):
        reading, cells, formulas = bare(given.quorinctl, given.workbook)
        took, worker, parent = audit(given.quorinctl, given.workbook)
        budget = 1.5 * reading + 3
        print(f"{formulas:,} formulas in {cells:,} cells: bare reading {reading:.1f} s, audit "
              f"{took:.1f} s (at most {budget:.1f} s); {worker:.0f} MB and {parent:.0f} MB; "
              f"load {os.getloadavg()[0]:.1f}", flush=True)


if __name__ == "__main__":
    main()
