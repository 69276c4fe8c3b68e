#!/usr/bin/env python3
"""Writes workbooks to try `quorinctl audit` on: a folder of small ones, or a single large one.

usage: make_workbooks.py FOLDER [--count N] [--seed N] [--protected FILE]
       make_workbooks.py --large FILE.xlsx

Every fifth of the small ones has a formula that breaks the pattern of its column. Every 50th is cut
off, every 125th is empty, and with --protected every 100th is a copy of that file, which is to ask
for a password. The large one has 450,000 formulas, 150 of them distinct, on 12 sheets. The numbers
are drawn by the seed, so that the same call writes the same files.
"""
import argparse
import os
import random
import shutil
import zipfile

MAIN = "http://schemas.openxmlformats.org/spreadsheetml/2006/main"
RELATIONS = "http://schemas.openxmlformats.org/officeDocument/2006/relationships"
PACKAGE = "http://schemas.openxmlformats.org/package/2006"
HEAD = '<?xml version="1.0" encoding="UTF-8" standalone="yes"?>'


def letters(column):
    text = ""
    while column:
        column, rest = divmod(column - 1, 26)
        text = chr(65 + rest) + text
    return text


def cell(address, content):
    """A text, a number, or a pair of a formula and what it gives."""
    if isinstance(content, str):
        return f'<c r="{address}" t="inlineStr"><is><t>{content}</t></is></c>'
    if isinstance(content, tuple):
        return f'<c r="{address}"><f>{content[0]}</f><v>{content[1]}</v></c>'
    return f'<c r="{address}"><v>{content}</v></c>'


def write(path, sheets):
    """`sheets`: a name and an iterable of rows, each a number and its XML, for each."""
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as archive:
        def part(name, text):
            archive.writestr(zipfile.ZipInfo(name, (2026, 1, 1, 0, 0, 0)), HEAD + text,
                             zipfile.ZIP_DEFLATED)
        spreadsheet = "application/vnd.openxmlformats-officedocument.spreadsheetml"
        part("[Content_Types].xml",
             f'<Types xmlns="{PACKAGE}/content-types"><Default Extension="rels" ContentType='
             '"application/vnd.openxmlformats-package.relationships+xml"/><Override PartName='
             f'"/xl/workbook.xml" ContentType="{spreadsheet}.sheet.main+xml"/>'
             + "".join(f'<Override PartName="/xl/worksheets/sheet{i}.xml" ContentType='
                       f'"{spreadsheet}.worksheet+xml"/>' for i in range(1, len(sheets) + 1))
             + "</Types>")
        part("_rels/.rels",
             f'<Relationships xmlns="{PACKAGE}/relationships"><Relationship Id="rId1" '
             f'Type="{RELATIONS}/officeDocument" Target="xl/workbook.xml"/></Relationships>')
        part("xl/workbook.xml",
             f'<workbook xmlns="{MAIN}" xmlns:r="{RELATIONS}"><sheets>'
             + "".join(f'<sheet name="{name}" sheetId="{i}" r:id="rId{i}"/>'
                       for i, (name, _) in enumerate(sheets, 1)) + "</sheets></workbook>")
        part("xl/_rels/workbook.xml.rels",
             f'<Relationships xmlns="{PACKAGE}/relationships">'
             + "".join(f'<Relationship Id="rId{i}" Type="{RELATIONS}/worksheet" '
                       f'Target="worksheets/sheet{i}.xml"/>' for i in range(1, len(sheets) + 1))
             + "</Relationships>")
        for i, (_, rows) in enumerate(sheets, 1):
            body = "".join(f'<row r="{number}">{xml}</row>' for number, xml in rows)
            part(f"xl/worksheets/sheet{i}.xml",
                 f'<worksheet xmlns="{MAIN}"><sheetData>{body}</sheetData></worksheet>')


def small(path, draw, is_odd):
    """A list of prices with amounts and their sum, and a sheet that takes it."""
    count = draw.randint(12, 60)
    odd = draw.randint(4, count - 2) if is_odd else 0
    rows = [(1, "".join(cell(f"{letters(i)}1", name)
                        for i, name in enumerate(["Item", "Price", "Pieces", "Amount"], 1)))]
    total = 0
    for row in range(2, count + 2):
        price, pieces = draw.randint(2, 90), draw.randint(1, 12)
        amount = price + pieces if row == odd else price * pieces
        sign = "+" if row == odd else "*"
        total += amount
        rows.append((row, cell(f"A{row}", f"Item {draw.randint(100, 999)}-{row}")
                     + cell(f"B{row}", price) + cell(f"C{row}", pieces)
                     + cell(f"D{row}", (f"B{row}{sign}C{row}", amount))))
    last = count + 2
    rows.append((last, cell(f"A{last}", "Total")
                 + cell(f"D{last}", (f"SUM(D2:D{last - 1})", total))))
    summary = [(1, cell("A1", "Total of the list") + cell("B1", (f"List!D{last}", total))),
               (2, cell("A2", "Discount") + cell("B2", 0.05)),
               (3, cell("A3", "To be paid") + cell("B3", ("B1*(1-B2)", total * 0.95)))]
    write(path, [("List", rows), ("Summary", summary)])


def large(path):
    """37,500 formulas a sheet: 3,000 rows of 12 or 13 columns, each column with a formula of its own."""
    sheets, distinct = [], 0
    for number in range(1, 13):
        columns = 13 if number <= 6 else 12
        per_row = [f"{{before}}{{row}}*{distinct + i}+$A{{row}}" for i in range(columns)]
        distinct += columns
        height = -(-37_500 // columns)
        left = 37_500

        rows = []
        for row in range(1, height + 1):
            xml = [cell(f"A{row}", row)]
            for i, formula in enumerate(per_row[:left]):
                before = letters(i + 1)
                xml.append(f'<c r="{letters(i + 2)}{row}">'
                           f'<f>{formula.format(before=before, row=row)}</f></c>')
            left -= len(per_row[:left])
            rows.append((row, "".join(xml)))
        sheets.append((f"Part {number}", rows))
    write(path, sheets)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("folder", nargs="?")
    parser.add_argument("--count", type=int, default=1_000)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--protected")
    parser.add_argument("--large")
    given = parser.parse_args()
    if given.large:
        large(given.large)
    if not given.folder:
        return
    draw = random.Random(given.seed)
    os.makedirs(given.folder, exist_ok=True)
    for number in range(1, given.count + 1):
        path = os.path.join(given.folder, f"Model {number:04}.xlsx")
        small(path, draw, number % 5 == 0)
        if given.protected and number % 100 == 0:
            os.remove(path)
            shutil.copyfile(given.protected,
                            os.path.splitext(path)[0] + os.path.splitext(given.protected)[1])
        elif number % 125 == 0:
            open(path, "wb").close()
        elif number % 50 == 0:
            with open(path, "r+b") as file:
                file.truncate(os.path.getsize(path) // 2)
    print(f"{given.count} workbooks by seed {given.seed} in {given.folder}")


if __name__ == "__main__":
    main()
