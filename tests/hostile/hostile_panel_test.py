#!/usr/bin/env python3
"""Hostile workbooks beside the real panel: selecting their cells makes nothing reach out.

usage: hostile_panel_test.py QUORIN REACHES.so [--only CASE]

One display, one Calc and one panel. Opens each workbook as its user would, selects cells, waits for
the panel to show each and its lists, and closes it. What Calc does alone is no fault of the panel's:
it is looked at before the panel is, and not counted. Nothing of a workbook's texts may become markup.
"""
import argparse
import os
import pathlib
import re
import signal
import sys
import time

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "app" / "e2e"))
from desk import Desk, Quorin  # noqa: E402
from try_panel import Trouble as PanelTrouble  # noqa: E402
import make_corpus  # noqa: E402
from case import CASES, Place  # noqa: E402
from surroundings import Lines, Listener, Reaches, Trouble, children_of, memory  # noqa: E402

MOST_MEMORY = 500  # MB
OPENING = 20  # seconds that the office may take to open a workbook
SHOWING = 30  # and the panel to show a cell, with every value of its formula asked for
PROGRAMS = r"soffice|oosplash|quorin|WebKit"

STATE = """(() => {
  const text = (name) => document.querySelector(`[data-testid="${name}"]`)?.textContent.trim() ?? "";
  const rows = [...document.querySelectorAll('[data-testid="row-value"]')];
  return { book: text("book"), sheet: text("sheet"), address: text("address").replaceAll("$", ""),
           state: document.querySelector('[data-testid="state"]')?.dataset.state ?? "",
           open: rows.filter((row) => ["waiting", "asking"].includes(row.dataset.state)).length,
           hostile: "hostile" in window || document.querySelectorAll(
             "img, iframe, object, embed, link[href^=http], [onload], [onerror], b, script[src]").length,
           place: location.href }; })()"""


class PanelDesk(Desk):
    """A desk whose programs are watched."""

    def __init__(self, quorin, watch):
        self.watch = watch
        super().__init__(quorin)

    def start_display(self, *given, **named):
        super().start_display(*given, **named)
        self.environment.update(self.watch, HOME=str(self.folder))


class Trial:
    def __init__(self, options):
        self.listener = Listener()
        self.desk = self.quorin = self.client = None
        try:
            self.begin(options)
        except BaseException:
            self.end()
            raise

    def begin(self, options):
        record = pathlib.Path(os.environ.get("TMPDIR", "/tmp")) / f"quorin-reaches-{os.getpid()}"
        self.record = record
        self.desk = PanelDesk(options.quorin, {"LD_PRELOAD": str(options.reaches),
                                               "QUORIN_REACHES": str(record)})
        folder = self.desk.folder
        bait = folder / "bait"
        make_corpus.make_bait(bait)
        self.paths = make_corpus.make_corpus(folder / "books", Place(self.listener.address, bait))
        self.ordinary = folder / "Ordinary.xlsx"
        make_corpus.make_ordinary(self.ordinary)
        self.reaches = Reaches(record, [folder, options.quorin.parents[2]], bait, PROGRAMS)
        self.client = Lines(["/usr/bin/python3", HERE / "office_client.py", self.desk.pipe],
                            {name: text for name, text in self.desk.environment.items()
                             if name not in self.desk.watch})
        if self.client.line(60) is None:
            raise Trouble("no connection to the office")
        Quorin.desk, Quorin.program = self.desk, options.quorin
        self.quorin = Quorin("--show")
        self.place = self.state()["place"]
        if wrong := self.ordinary_works(60):
            raise Trouble(wrong[0])
        self.reaches.learn()

    def state(self):
        return self.quorin.panel.eval(STATE)

    def in_office(self, do, *given, patience=60):
        reply = self.client.ask({"do": do, "with": list(given)}, 2)
        end = time.monotonic() + patience
        while reply is None:
            if time.monotonic() > end:
                raise Trouble(f"the office does not {do}")
            self.desk.tool("xdotool", "key", "Escape")  # it asks something
            reply = self.client.line(1)
        return reply.get("ok")

    def shows(self, path, sheet, cell, patience=SHOWING):
        """What is wrong, once the panel shows the cell and has asked all that it asks."""
        letters, row = re.fullmatch(r"([A-Z]+)(\d+)", cell).groups()
        column = 0
        for letter in letters:
            column = column * 26 + ord(letter) - 64
        self.in_office("select", str(path), sheet, column - 1, int(row) - 1)
        end, now = time.monotonic() + patience, None
        while time.monotonic() < end:
            now = self.state()
            if now["address"] == cell and path.name in now["book"] and not now["open"]:
                break
            time.sleep(0.05)
        else:
            return [f"the panel does not come to rest on {cell}: {now}"]
        wrong = ["a text of the workbook became markup"] if now["hostile"] else []
        return wrong + ([f"the page went to {now['place']}"] if now["place"] != self.place else [])

    def lists(self):
        """The other views have been looked at, with what they say."""
        for view in ("deps", "map", "tree"):
            self.quorin.panel.eval(
                f"document.querySelector('[data-testid=\"tab-{view}\"]')?.click(), 0")
            time.sleep(0.15)
        return ["a text of the workbook became markup"] if self.state()["hostile"] else []

    def ordinary_works(self, patience=SHOWING):
        if not self.in_office("open", str(self.ordinary)):
            return ["the office does not open an ordinary workbook"]
        wrong = self.shows(self.ordinary, "Sheet1", "B1", patience)
        self.in_office("close", str(self.ordinary))
        return wrong

    def reached(self):
        return [f"with the panel: {one}" for one in self.reaches.forbidden(
            ("quorin-marks-keeper",))] + [f"the server was asked: {one}" for one in
                                          sorted(set(self.listener.take()))]

    def run(self, case):
        path = self.paths[case.name]
        # Nobody asks the panel to follow while Calc alone opens the file.
        self.quorin.panel.eval("document.querySelector('[data-testid=\"follow\"]').click(), 0")
        sheets = self.in_office("open", str(path), patience=OPENING)
        self.reaches.take(), self.listener.take()
        self.quorin.panel.eval("document.querySelector('[data-testid=\"follow\"]').click(), 0")
        if not sheets:
            return ["the office does not open it"] if case.loads else []
        wrong = []
        for cell in case.cells[:2]:
            sheet, _, address = cell.rpartition("!")
            sheet = sheet[1:-1].replace("''", "'") if sheet.startswith("'") else sheet or sheets[0]
            wrong += self.shows(path, sheet, address)
        wrong += self.lists() + self.reached()
        if (most := memory(children_of(self.quorin.process.pid))) > MOST_MEMORY:
            wrong.append(f"{most:.0f} MB of memory")
        self.in_office("close", str(path))
        return wrong + self.reached()

    def end(self):
        for one in (self.quorin, self.client, self.desk):
            if one is not None:
                one.end()
        self.listener.end()
        self.record.unlink(missing_ok=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__.partition("\n")[0])
    parser.add_argument("quorin", type=pathlib.Path)
    parser.add_argument("reaches", type=pathlib.Path)
    parser.add_argument("--only", action="append")
    options = parser.parse_args()
    signal.signal(signal.SIGTERM, lambda *_: sys.exit("ended from outside"))
    options.quorin, options.reaches = options.quorin.resolve(), options.reaches.resolve()
    cases = [case for case in CASES if not options.only or case.name in options.only]
    trial, failed = Trial(options), []
    try:
        for case in cases:
            begun = time.monotonic()
            try:
                wrong = trial.run(case)
            except (Trouble, PanelTrouble, OSError) as trouble:
                wrong = [str(trouble)]
            print(f"{'FAILED' if wrong else 'passed'} {case.name} "
                  f"({time.monotonic() - begun:.1f} s)", flush=True)
            if wrong:
                failed.append(case.name)
                print("".join(f"    {one[:300]}\n" for one in wrong[:12]), flush=True)
        if wrong := trial.ordinary_works():
            failed.append("ordinary")
            print(wrong[0])
    finally:
        trial.end()
    print(f"{len(cases)} hostile workbooks beside the panel, {len(failed)} failures")
    return 1 if failed or not cases else 0


if __name__ == "__main__":
    sys.exit(main())
