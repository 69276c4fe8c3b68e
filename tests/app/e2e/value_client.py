#!/usr/bin/python3
"""A small client of LibreOffice that knows nothing of Quorin.

usage: value_client.py SHOWN_PIPE OTHER_PIPE

One JSON request a line, one JSON reply a line. The office behind SHOWN_PIPE is the one beside which
the panel stands; the one behind OTHER_PIPE holds a copy of the workbook, in which formulas are
worked out by writing them into cells of a sheet that nothing refers to.
"""
import json
import re
import sys

import uno
from com.sun.star.beans import PropertyValue
from com.sun.star.table.CellContentType import EMPTY, TEXT, VALUE

FORMULA_CELLS = 16
ERRORS = {503: "#NUM!", 519: "#VALUE!", 521: "#NULL!", 524: "#REF!", 525: "#NAME?",
          532: "#DIV/0!", 32767: "#N/A"}
NUMBER, TEXT_RESULT = 1, 2


def desktop(pipe):
    local = uno.getComponentContext()
    resolver = local.ServiceManager.createInstance("com.sun.star.bridge.UnoUrlResolver")
    context = resolver.resolve(f"uno:pipe,name={pipe};urp;StarOffice.ComponentContext")
    return context.ServiceManager.createInstanceWithContext("com.sun.star.frame.Desktop", context)


def hidden():
    flag = PropertyValue()
    flag.Name, flag.Value = "Hidden", True
    return (flag,)


class Client:
    def __init__(self, shown, other):
        self.shown_office, self.other_office = desktop(shown), desktop(other)
        self.shown = self.copy = None

    def open(self, file, copy):
        """The workbook that was opened beside the panel, and its copy."""
        url = uno.systemPathToFileUrl(file)
        self.shown = next((one for one in self.shown_office.Components
                           if getattr(one, "URL", "") == url), None)
        if not self.shown:
            return False
        if self.copy:
            self.copy.setModified(False)
            self.copy.close(True)
        self.copy = self.other_office.loadComponentFromURL(uno.systemPathToFileUrl(copy), "_blank",
                                                           0, hidden())
        self.copy.Sheets.insertNewByName("values of parts", self.copy.Sheets.Count)
        self.scratch = self.copy.Sheets.getByName("values of parts")
        return True

    def formulas(self):
        """Every formula of a sheet that can be shown: sheet, row and column from 0, and text."""
        found = []
        for sheet in self.copy.Sheets:
            if not sheet.IsVisible:
                continue
            for area in sheet.queryContentCells(FORMULA_CELLS).RangeAddresses:
                cells = sheet.getCellRangeByPosition(area.StartColumn, area.StartRow,
                                                     area.EndColumn, area.EndRow)
                for i, row in enumerate(cells.getFormulaArray()):
                    for k, text in enumerate(row):
                        found.append((sheet.Name, area.StartRow + i, area.StartColumn + k, text))
        return found

    def select(self, sheet, row, column):
        controller = self.shown.getCurrentController()
        controller.select(self.shown.Sheets.getByName(sheet).getCellByPosition(column, row))
        return True

    def value(self, text, row, column):
        """What the text gives as the formula of the scratch cell at that place."""
        cell = self.scratch.getCellByPosition(column, row)
        cell.setFormula("=" + text)
        try:
            return self.of(cell)
        finally:
            cell.setFormula("")

    def array(self, text, row, column, rows, columns):
        """What it gives as an array formula of that size: its own size, and the values."""
        sizes = []
        for function in ("ROWS", "COLUMNS"):
            cell = self.scratch.getCellRangeByPosition(column, row, column, row)
            cell.setArrayFormula(f"={function}({text})")
            sizes.append(self.of(cell.getCellByPosition(0, 0)))
            cell.setArrayFormula("")
        cells = self.scratch.getCellRangeByPosition(column, row, column + columns - 1,
                                                    row + rows - 1)
        cells.setArrayFormula("=" + text)
        try:
            return {"rows": sizes[0], "columns": sizes[1],
                    "values": [[self.of(cells.getCellByPosition(k, i)) for k in range(columns)]
                               for i in range(rows)]}
        finally:
            cells.setArrayFormula("")

    def stored(self, sheet, row, column):
        """What the formula's own cell holds in the copy."""
        return self.of(self.copy.Sheets.getByName(sheet).getCellByPosition(column, row))

    @staticmethod
    def of(cell):
        error = cell.getError()
        if error:
            return {"error": ERRORS.get(error, f"Err:{error}")}
        if cell.getType() == TEXT or (cell.getType() not in (EMPTY, VALUE)
                                      and cell.FormulaResultType2 == TEXT_RESULT):
            return cell.getString()
        return cell.getValue()


def main():
    client = Client(*sys.argv[1:])
    for line in sys.stdin:
        request = json.loads(line)
        try:
            reply = {"ok": getattr(client, request["do"])(*request["with"])}
        except Exception as error:  # told to whoever asked
            reply = {"trouble": re.sub(r"\s+", " ", f"{type(error).__name__}: {error}")[:300]}
        print(json.dumps(reply), flush=True)


if __name__ == "__main__":
    main()
