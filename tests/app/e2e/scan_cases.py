"""Reading a whole workbook for Dependents and the Review, as the user's Calc sees it. Part of panel_test.py."""
import json
import subprocess
import time
import unittest

from desk import Quorin
from try_panel import wait_for

# Asked over Calc's own interface; given an address the workbook is saved under it first.
WORKBOOK = """
import hashlib, json, os, sys, uno
local = uno.getComponentContext()
resolver = local.ServiceManager.createInstance("com.sun.star.bridge.UnoUrlResolver")
context = resolver.resolve("uno:pipe,name=%s;urp;StarOffice.ComponentContext")
desktop = context.ServiceManager.createInstance("com.sun.star.frame.Desktop")
documents = desktop.Components.createEnumeration()
while not (document := documents.nextElement()).supportsService(
        "com.sun.star.sheet.SpreadsheetDocument"):
    pass
if sys.argv[1:]:
    kind = uno.createUnoStruct("com.sun.star.beans.PropertyValue")
    kind.Name, kind.Value = "FilterName", "Calc MS Excel 2007 XML"
    document.storeAsURL(sys.argv[1], (kind,))
cells = hashlib.sha256()
for sheet in document.Sheets:
    cursor = sheet.createCursor()
    cursor.gotoEndOfUsedArea(False)
    last = cursor.RangeAddress
    used = sheet.getCellRangeByPosition(0, 0, last.EndColumn, last.EndRow)
    cells.update(repr((sheet.Name, sheet.IsVisible, last.EndColumn, last.EndRow,
                       used.FormulaArray, sheet.DrawPage.Count, sheet.ConditionalFormats.Length)
                      ).encode())
    cells.update(repr([one.IsVisible for one in used.Rows]).encode())
view = document.CurrentController
print(json.dumps({
    "modified": document.isModified(), "undo": document.UndoManager.AllUndoActionTitles,
    "redo": document.UndoManager.AllRedoActionTitles, "cells": cells.hexdigest(),
    "names": document.NamedRanges.Count, "sheet": view.ActiveSheet.Name,
    "selection": view.Selection.AbsoluteName, "address": document.URL}), flush=True)
os._exit(0)  # what is left of the connection may crash the interpreter at its end
"""


class ScanTest(unittest.TestCase):
    def setUp(self):
        self.desk = Quorin.desk
        self.script = self.desk.folder / "workbook.py"
        self.script.write_text(WORKBOOK % self.desk.pipe)
        self.desk.bring_calc_forward()
        self.quorin = Quorin("--show")
        self.addCleanup(self.quorin.end)
        self.eval = self.quorin.panel.eval

    def workbook(self, *save_as):
        for _ in range(3):
            run = subprocess.run(["/usr/bin/python3", str(self.script), *save_as], timeout=120,
                                 env=self.desk.environment, capture_output=True, text=True,
                                 check=False)
            if run.returncode >= 0:
                break  # else the asking program itself has crashed, which says nothing
        self.assertEqual(run.returncode, 0, run.stderr)
        return json.loads(run.stdout)

    def text(self, place):
        return self.eval(f"document.querySelector('[data-testid={place}]')?.innerText ?? ''")

    def press(self, place):
        return self.eval(f"(() => {{ const one = document.querySelector('[data-testid={place}]');"
                         " one?.click(); return !!one; })()")

    def click(self, element):
        """The user's own, with the mouse: in the middle of what the script gives."""
        window = self.desk.window_of(self.quorin)
        x, y = self.eval(f"""(() => {{ const one = {element};
            one.scrollIntoView({{block: 'center'}});
            const at = one.getBoundingClientRect();
            return [at.x + at.width / 2, at.y + at.height / 2]; }})()""")
        self.desk.tool("xdotool", "mousemove", "--window", window, round(x), round(y), "click", "1")

    def click_on(self, place):
        self.click(f"document.querySelector('[data-testid={place}]')")

    def type(self, *keys):
        """The user's own keys, to whoever has the keyboard."""
        for key in keys:
            self.desk.tool("xdotool", "key", key)

    def rows(self):
        """Level and text of the rows that are drawn, from above."""
        return self.eval("""[...document.querySelectorAll('[data-testid=place]')]
            .sort((a, b) => a.getBoundingClientRect().y - b.getBoundingClientRect().y)
            .map((one) => [Number(one.getAttribute('aria-level')),
                           one.innerText.replace(/\\s+/g, ' ').trim()])""")

    def wait_for_row(self, level, text):
        wait_for(f"a row {text}", lambda: [row for row in self.rows()
                                           if row[0] == level and row[1].startswith(text)])

    def open(self, text, level):
        """Clicks on the sign before a row, and waits for the rows inside."""
        row = (f"[...document.querySelectorAll('[data-testid=place][aria-level=\"{level}\"]')]"
               f".find((one) => one.innerText.replace(/\\s+/g, ' ').trim().startsWith('{text}'))")
        wait_for(f"a row {text}", lambda: self.eval(f"!!{row}"))
        self.click(f"{row}.querySelector('.twisty')")

        def inner():
            rows = self.rows()
            at = next((i for i, (_, told) in enumerate(rows) if told.startswith(text)), None)
            after = [] if at is None else rows[at + 1:]
            return after and after[0][0] == level + 1 and "Looking" not in after[0][1]
        wait_for(f"the rows of {text}", inner)

    def is_whole(self):
        return self.text("list-note").startswith("All ") and self.text("scan-text") == ""

    def go_to_a_used_cell(self):
        """Total_Capex, which cells of other sheets use by its name."""
        self.go_to_cell("Construction", "D9")

    def go_to_cell(self, sheet, address):
        """The panel follows Calc while that is in front."""
        self.desk.bring_calc_forward()
        target = json.dumps(f"'{sheet}'!{address}")
        self.eval("webkit.messageHandlers.qx.postMessage("
                  f"{{id: -7, verb: 'select', args: [[{target}]]}}); 0")
        self.addCleanup(self.desk.go_to)
        wait_for("the cell", lambda: self.text("address") == address
                 and self.text("sheet") == sheet)

    def test_leaves_the_workbook_as_it_was(self):
        self.go_to_a_used_cell()
        before = self.workbook()
        self.assertEqual((before["sheet"], before["selection"]),
                         ("Construction", "$Construction.$D$9"))
        self.press("tab-deps")
        wait_for("all sheets", self.is_whole)
        wait_for("cells of other sheets", lambda: "Debt" in self.text("list"))
        self.press("scan-go")
        wait_for("the workbook to be read again", lambda: not self.is_whole())
        wait_for("all sheets again", self.is_whole)
        self.assertEqual(self.workbook(), before)

    def test_follows_a_workbook_that_is_saved_under_another_name(self):
        self.go_to_a_used_cell()
        first = self.workbook()["address"]
        self.addCleanup(self.workbook, first)
        self.press("tab-deps")
        wait_for("all sheets", self.is_whole)
        # Between two scans, and while one is under way.
        for name in ("Between.xlsx", "During.xlsx"):
            if name == "During.xlsx":
                self.press("scan-go")
            self.workbook((self.desk.folder / name).as_uri())
            wait_for("the new name", lambda: name in self.text("book"))
            wait_for("all sheets of the new name", self.is_whole)
            wait_for("cells of other sheets", lambda: "Debt" in self.text("list"))
            time.sleep(0.5)
            self.assertTrue(self.is_whole(), self.text("scan"))

    def test_leads_by_clicks_from_an_input_to_its_results_and_back(self):
        # The price of modules, which the other sheets use by its name.
        self.go_to_cell("Inputs", "D21")
        self.click_on("tab-deps")
        wait_for("all sheets", self.is_whole)
        self.wait_for_row(1, "Construction 1 cell")
        self.open("D4", 2)
        self.open("D8", 3)
        self.open("D9", 4)
        self.wait_for_row(5, "Summary!D3 ")
        self.go_to_cell("Summary", "D5")
        wait_for("its list", lambda: "D5" in self.text("list-heading") and self.is_whole())
        # Calc is in front: the click gives the panel the keyboard, and the cell is read again; what
        # it rests on is then worked out again.
        self.open("What it rests on", 1)
        self.wait_for_row(2, "Inputs!D21 ")

    def review_number_typed_over(self):
        """Makes the finding active that a number was typed over the formula of its row."""
        wait_for("a cell", lambda: self.text("address"))
        self.click_on("tab-tree")
        wait_for("the keyboard", lambda: self.quorin.window()["key"])
        self.type("4")
        wait_for("all sheets", self.is_whole)

        def rank():
            told = self.eval("""[...document.querySelectorAll('[data-testid=finding]')]
                .map((one) => one.innerText.trim())""")
            return next((i for i, text in enumerate(told) if text.startswith("Operations!J8")), None)
        wait_for("the finding", lambda: rank() is not None)
        self.type("Home", *["Down"] * rank())
        wait_for("its sentence", lambda: "J8 is a typed-in number" in self.text("finding-sentence"))

    def test_reviews_what_is_odd_and_goes_there_by_keys(self):
        self.go_to_a_used_cell()
        before = self.workbook()
        self.review_number_typed_over()
        self.assertIn("typed in", self.text("formula-own"))
        self.assertTrue(self.text("formula-expected").startswith("="), self.text("formula-expected"))
        self.type("Return")
        self.addCleanup(self.desk.keys, "ctrl+Prior", "ctrl+Prior", "ctrl+Home")  # as others find it
        wait_for("the mark", lambda: "Operations!J8" in self.text("marked"))
        wait_for("Calc to go there", lambda: self.workbook()["selection"] == "$Operations.$J$8")
        self.desk.bring_calc_forward()
        wait_for("the panel to follow", lambda: self.text("address") == "J8")
        self.assertIn("J8 is a typed-in number", self.text("finding-sentence"))
        self.press("clear")
        wait_for("the mark to go", lambda: self.text("marked") == "")
        after = self.workbook()
        for name in ("modified", "undo", "redo", "cells", "names"):
            self.assertEqual(after[name], before[name], name)

    def test_keeps_what_is_said_of_a_finding(self):
        self.review_number_typed_over()
        self.click_on("say-note")
        self.type("a", "s", "space", "4")
        self.click_on("say-fine")
        kept = self.quorin.folder / "data" / "Quorin" / "reviews.json"
        wait_for("reviews.json", kept.exists)
        self.assertEqual(kept.stat().st_mode & 0o777, 0o600)
        [record] = json.loads(kept.read_text())
        self.assertIn(record["book"], self.text("book"))
        [said] = record["review"]["snapshots"][0]["said"]
        self.assertEqual((said["state"], said["note"], said["cells"]),
                         ("fine", "as 4", [["Operations", "J8"]]))
        # Another Quorin, as after the next start of the machine.
        self.quorin.end()
        self.quorin = Quorin("--show", after=self.quorin)
        self.addCleanup(self.quorin.end)
        self.eval = self.quorin.panel.eval
        self.desk.bring_calc_forward()
        self.review_number_typed_over()
        wait_for("what was said", lambda: self.text("finding-state") == "Fine")
        self.assertEqual(
            self.eval("document.querySelector('[data-testid=say-note]').value"), "as 4")
        self.assertIn("1 fine", self.text("review-progress"))
