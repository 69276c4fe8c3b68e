#!/usr/bin/python3
"""Opens and closes workbooks in the office behind a pipe, as its user would.

usage: office_client.py PIPE

One JSON request a line, one JSON reply a line: {"ok": ...} or {"trouble": text}. Knows nothing of
Quorin.
"""
import json
import re
import sys

import uno
from com.sun.star.beans import PropertyValue

REJECT_MACROS_THAT_ASK = 5  # com.sun.star.document.MacroExecMode.USE_CONFIG_REJECT_CONFIRMATION
AS_CONFIGURED = 2  # com.sun.star.document.UpdateDocMode.ACCORDING_TO_CONFIG
# What a user would answer when the office asks how to read text: commas, quotes, UTF-8.
TEXT = {"FilterName": "Text - txt - csv (StarCalc)", "FilterOptions": "44,34,76,1"}


def properties(**given):
    made = []
    for name, value in given.items():
        one = PropertyValue()
        one.Name, one.Value = name, value
        made.append(one)
    return tuple(made)


class Client:
    def __init__(self, pipe):
        local = uno.getComponentContext()
        resolver = local.ServiceManager.createInstance("com.sun.star.bridge.UnoUrlResolver")
        context = resolver.resolve(f"uno:pipe,name={pipe};urp;StarOffice.ComponentContext")
        self.desktop = context.ServiceManager.createInstanceWithContext(
            "com.sun.star.frame.Desktop", context)
        self.books = {}

    def open(self, path):
        """The names of its sheets; none when the office does not open it as a workbook."""
        document = self.desktop.loadComponentFromURL(
            uno.systemPathToFileUrl(path), "_blank", 0, properties(
                MacroExecutionMode=REJECT_MACROS_THAT_ASK, UpdateDocMode=AS_CONFIGURED,
                OnMainThread=True, **(TEXT if path.endswith(".csv") else {})))
        if document is None:
            return None
        self.books[path] = document
        if not document.supportsService("com.sun.star.sheet.SpreadsheetDocument"):
            self.close(path)
            return None
        self.bring_forward(path)
        return list(document.Sheets.ElementNames)

    def bring_forward(self, path):
        self.books[path].getCurrentController().getFrame().activate()

    def close(self, path):
        document = self.books.pop(path, None)
        if document is not None:
            document.setModified(False)
            document.close(True)

    def select(self, path, sheet, column, row):
        """Columns and rows from 0."""
        document = self.books[path]
        document.getCurrentController().select(
            document.Sheets.getByName(sheet).getCellByPosition(column, row))

    def write(self, path, sheet, column, row, formula):
        cell = self.books[path].Sheets.getByName(sheet).getCellByPosition(column, row)
        cell.setFormula(formula)
        return cell.getString()


def main():
    client = Client(sys.argv[1])
    print(json.dumps({"ok": None}), flush=True)
    for line in sys.stdin:
        request = json.loads(line)
        try:
            reply = {"ok": getattr(client, request["do"])(*request["with"])}
        except Exception as error:  # told to whoever asked
            reply = {"trouble": re.sub(r"\s+", " ", f"{type(error).__name__}: {error}")[:300]}
        print(json.dumps(reply), flush=True)


if __name__ == "__main__":
    main()
