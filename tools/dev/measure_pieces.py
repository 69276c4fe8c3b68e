#!/usr/bin/env python3
"""What reading a workbook in small pieces costs beside reading it in large ones.

usage: measure_pieces.py QUORINCTL [ROUNDS]

Writes a workbook of 450,000 formulas on 12 sheets, has quorinctl open it in a Calc of its own, and
reads all of it by readFormulas in R1C1 with values: in pieces of at most 5,000 cells, with which come
the displayed texts, and of at most 20,000, with which they do not. By turns, ROUNDS times (3 unless
told). Prints the seconds and the ratio of their medians.
"""
import json
import pathlib
import statistics
import subprocess
import sys
import tempfile
import time
import zipfile

SHEETS, ROWS, COLUMNS = 12, 375, 100


def letters(column):
    text = ""
    while column:
        column, rest = divmod(column - 1, 26)
        text = chr(65 + rest) + text
    return text


def formula(sheet, row, column):
    """Years across, lines down: each sheet builds on itself, on the one before and on the inputs."""
    here, above, left = letters(column), f"{letters(column)}{row - 1}", f"{letters(column - 1)}{row}"
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
    main = "http://schemas.openxmlformats.org/spreadsheetml/2006/main"
    relation = "http://schemas.openxmlformats.org/officeDocument/2006/relationships"
    package = "http://schemas.openxmlformats.org/package/2006"
    kind = "application/vnd.openxmlformats-officedocument.spreadsheetml"
    head = '<?xml version="1.0" encoding="UTF-8" standalone="yes"?>'
    names = [f"S{i}" for i in range(SHEETS)] + ["Inputs"]
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED, compresslevel=1) as book:
        book.writestr("[Content_Types].xml", (
            f'{head}<Types xmlns="{package}/content-types"><Default Extension="rels" ContentType='
            '"application/vnd.openxmlformats-package.relationships+xml"/><Override PartName='
            f'"/xl/workbook.xml" ContentType="{kind}.sheet.main+xml"/>' + "".join(
                f'<Override PartName="/xl/worksheets/{name}.xml" ContentType="{kind}.worksheet+xml"/>'
                for name in names) + "</Types>"))
        book.writestr("_rels/.rels", (
            f'{head}<Relationships xmlns="{package}/relationships"><Relationship Id="r1" '
            f'Type="{relation}/officeDocument" Target="xl/workbook.xml"/></Relationships>'))
        book.writestr("xl/workbook.xml", (
            f'{head}<workbook xmlns="{main}" xmlns:r="{relation}"><sheets>' + "".join(
                f'<sheet name="{name}" sheetId="{i}" r:id="r{i}"/>'
                for i, name in enumerate(names, 1)) + "</sheets></workbook>"))
        book.writestr("xl/_rels/workbook.xml.rels", (
            f'{head}<Relationships xmlns="{package}/relationships">' + "".join(
                f'<Relationship Id="r{i}" Type="{relation}/worksheet" Target="worksheets/{name}.xml"/>'
                for i, name in enumerate(names, 1)) + "</Relationships>"))
        for sheet, name in enumerate(names[:-1]):
            rows = "".join(
                f'<row r="{row}">' + "".join(
                    f'<c r="{letters(column)}{row}"><f>{formula(sheet, row, column)}</f></c>'
                    for column in range(1, COLUMNS + 1)) + "</row>" for row in range(1, ROWS + 1))
            book.writestr(f"xl/worksheets/{name}.xml",
                          f'{head}<worksheet xmlns="{main}"><sheetData>{rows}</sheetData></worksheet>')
        rows = "".join(f'<row r="{row}"><c r="B{row}"><v>{row}.5</v></c></row>'
                       for row in range(1, 41))
        book.writestr("xl/worksheets/Inputs.xml",
                      f'{head}<worksheet xmlns="{main}"><sheetData>{rows}</sheetData></worksheet>')


def pieces(limit):
    rows = limit // COLUMNS
    for sheet in range(SHEETS):
        for top in range(1, ROWS + 1, rows):
            yield f"'S{sheet}'!A{top}:{letters(COLUMNS)}{min(ROWS, top + rows - 1)}"


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
