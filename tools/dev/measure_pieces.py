#!/usr/bin/env python3
"""What reading a workbook in small pieces costs beside reading it in large ones.

usage: measure_pieces.py QUORINCTL [ROUNDS]

Writes a workbook of 450,000 formulas on 12 sheets, has quorinctl open it in a Calc of its own, and
reads all of it by readFormulas in R1C1 with values: in pieces of at most 5,000 cells, with which come
the displayed texts, and of at most 20,000, with which they do not. By turns, ROUNDS times (3 unless
told), after a first time that does not count. Prints the seconds and the ratio of their medians.
"""
import json
import pathlib
import statistics
import subprocess
import sys
import tempfile
import time

TESTS = pathlib.Path(__file__).resolve().parents[2] / "tests"
sys.path += [str(TESTS / "hostile"), str(TESTS / "witness")]
from stored import column_letters  # noqa: E402
from xlsx_writer import Sheet, Workbook  # noqa: E402

SHEETS, ROWS, COLUMNS = 12, 375, 100


def formula(sheet, row, column):
    """Years across, lines down: each sheet builds on itself, on the one before and on the inputs."""
    here = column_letters(column)
    above, left = f"{here}{row - 1}", f"{column_letters(column - 1)}{row}"
    if column == 1 or row == 1:
        return f"Inputs!B{row % 40 + 1}+{column}"
    kind = row % 12
    if kind == 0:
        return f"SUM({here}{row - 11}:{above})/12"
    if kind == 1:
        return f"{left}*(1+Inputs!$B$2/1000)" if sheet == 0 else f"S{sheet - 1}!{here}{row}*1.01"
    if kind == 2:
        return f"{above}*Inputs!$B${sheet + 5}/10"
    return f"({above}+{left})/2+{kind}.{sheet}"


def write(path):
    sheets = [Sheet(f"S{number}") for number in range(SHEETS)]
    for number, sheet in enumerate(sheets):
        # Without values, which Calc works out when it opens the file.
        sheet.raw = "".join(
            f'<row r="{row}">' + "".join(
                f'<c r="{column_letters(column)}{row}"><f>{formula(number, row, column)}</f></c>'
                for column in range(1, COLUMNS + 1)) + "</row>" for row in range(1, ROWS + 1))
    inputs = Sheet("Inputs", {f"B{row}": row + 0.5 for row in range(1, 41)})
    Workbook(*sheets, inputs).save(path)


def pieces(limit):
    rows = limit // COLUMNS
    for sheet in range(SHEETS):
        for top in range(1, ROWS + 1, rows):
            yield f"'S{sheet}'!A{top}:{column_letters(COLUMNS)}{min(ROWS, top + rows - 1)}"


def main():
    rounds = int(sys.argv[2]) if len(sys.argv) > 2 else 3
    with tempfile.TemporaryDirectory(prefix="quorin-pieces-") as folder:
        path = pathlib.Path(folder) / "Pieces.xlsx"
        write(path)
        tool = subprocess.Popen([sys.argv[1], "--workbook", path], stdin=subprocess.PIPE,
                                stdout=subprocess.PIPE)

        def ask(verb, *args):
            line = json.dumps({"id": 1, "verb": verb, "args": args}) + "\n"
            tool.stdin.write(line.encode())
            tool.stdin.flush()
            return tool.stdout.readline()
        try:
            begun = time.monotonic()
            ask("pollCell")
            print(f"opened after {time.monotonic() - begun:.0f} s")
            found = json.loads(ask("readFormulas", "'S3'!B2:C3", "r1c1", False))["payload"]
            print("for example", found["formulas"][0], found["values"][0])
            for address in pieces(20_000):  # what Calc works out only when it is asked
                ask("readFormulas", address, "r1c1", False)
            times = {5_000: [], 20_000: []}
            for _ in range(rounds):
                for limit, seconds in times.items():
                    addresses = list(pieces(limit))
                    begun = time.monotonic()
                    for address in addresses:
                        if b'"ok":true' not in ask("readFormulas", address, "r1c1", False):
                            raise RuntimeError(f"{address} was not read")
                    seconds.append(time.monotonic() - begun)
        finally:
            tool.stdin.close()
            tool.wait(60)
    for limit, seconds in times.items():
        print(f"{SHEETS * ROWS * COLUMNS:,} formulas, {len(list(pieces(limit)))} pieces of {limit:,}: "
              + ", ".join(f"{one:.2f}" for one in seconds) + " s")
    small, large = (statistics.median(seconds) for seconds in times.values())
    print(f"small pieces {small / large:.2f} times large ones (at most 1.25)")


if __name__ == "__main__":
    main()
