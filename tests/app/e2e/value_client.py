#!/usr/bin/python3
"""A small client of LibreOffice that knows nothing of Quorin.

usage: value_client.py SHOWN_PIPE OTHER_PIPE

One JSON request a line, one JSON reply a line. The office behind SHOWN_PIPE is the one beside which
the panel stands; the one behind OTHER_PIPE holds a copy of the workbook, in which formulas are
worked out by writing them into cells of a blank sheet at its end, or beside all that a sheet holds
where the formula has to stand on that sheet.
"""
import json
import re
import sys

import uno
from com.sun.star.beans import PropertyValue
from com.sun.star.table.CellContentType import EMPTY, TEXT, VALUE

FORMULA_CELLS = 16
FAR = 40  # columns behind the last one in use
ERRORS = {503: "#NUM!", 519: "#VALUE!", 521: "#NULL!", 524: "#REF!", 525: "#NAME?",
          532: "#DIV/0!", 32767: "#N/A"}
NUMBER, TEXT_RESULT = 1, 2
ENGLISH, OOXML, FUNCTIONS = 1, 5, 16  # languages, and a group, of the office's names


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
        self.scratch = self.copy.Sheets.getByIndex(self.copy.Sheets.Count - 1)
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

    def home(self, sheet, row, column):
        """The sheet's own names, the table in which the cell stands, and all tables; names in
        small letters."""
        own = self.copy.Sheets.getByName(sheet)
        index = own.RangeAddress.Sheet
        tables = [name for name in self.copy.DatabaseRanges.ElementNames
                  if self.covers(self.copy.DatabaseRanges.getByName(name).DataArea,
                                 index, row, column)]
        return {"names": [name.lower() for name in own.NamedRanges.ElementNames],
                "table": tables[0] if len(tables) == 1 else "",
                "tables": [name.lower() for name in self.copy.DatabaseRanges.ElementNames]}

    @staticmethod
    def covers(area, sheet, row, column):
        return (area.Sheet == sheet and area.StartRow <= row <= area.EndRow
                and area.StartColumn <= column <= area.EndColumn)

    def functions(self):
        """What the office itself calls each function, by the name that Excel's files have."""
        mapper = self.copy.createInstance("com.sun.star.sheet.FormulaOpCodeMapper")
        own = {self.token(one): one.Name for one in mapper.getAvailableMappings(ENGLISH, FUNCTIONS)}
        found = {}
        for one in mapper.getAvailableMappings(OOXML, FUNCTIONS):
            excel, calc = one.Name.removeprefix("_xlfn."), own.get(self.token(one))
            # Two functions of the office's go by one name of Excel's: Excel's own is called alike.
            if calc and found.get(excel) != excel:
                found[excel] = calc
        return found

    @staticmethod
    def token(mapping):
        """What tells a function from others; those of add-ins by their own names."""
        data = mapping.Token.Data
        return mapping.Token.OpCode, data if isinstance(data, str) else None

    def place(self, row, column, sheet):
        """The sheet to write to, and the column: a free one in the same row of the given sheet."""
        if sheet is None:
            return self.scratch, column
        own = self.copy.Sheets.getByName(sheet)
        if own.isProtected():
            own.unprotect("")
        used = own.createCursor()
        used.gotoEndOfUsedArea(False)
        return own, used.RangeAddress.EndColumn + FAR

    def value(self, text, row, column, sheet=None):
        """What the text gives as the formula of that cell of the blank sheet, or of that sheet."""
        cells, column = self.place(row, column, sheet)
        cell = cells.getCellByPosition(column, row)
        cell.setFormula("=" + text)
        try:
            return self.of(cell)
        finally:
            cell.setFormula("")

    def array(self, text, row, column, rows, columns, sheet=None):
        """What it gives as an array formula of that size: its own size, and the values."""
        place, column = self.place(row, column, sheet)
        sizes = []
        for function in ("ROWS", "COLUMNS"):
            cell = place.getCellRangeByPosition(column, row, column, row)
            cell.setArrayFormula(f"={function}({text})")
            sizes.append(self.of(cell.getCellByPosition(0, 0)))
            cell.setArrayFormula("")
        cells = place.getCellRangeByPosition(column, row, column + columns - 1, row + rows - 1)
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

    def is_array(self, sheet, row, column):
        """True if the cell is one of an array formula."""
        cell = self.copy.Sheets.getByName(sheet).getCellByPosition(column, row)
        return cell.getFormula().startswith("{=")

    @staticmethod
    def of(cell):
        error = cell.getError()
        if error:
            return {"error": ERRORS.get(error, f"Err:{error}")}
        if cell.getType() == TEXT or (cell.getType() not in (EMPTY, VALUE)
                                      and cell.FormulaResultType2 == TEXT_RESULT):
            at = cell.CellAddress  # the text itself, not as its format shows it
            return cell.Spreadsheet.getCellRangeByPosition(
                at.Column, at.Row, at.Column, at.Row).getDataArray()[0][0]
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
