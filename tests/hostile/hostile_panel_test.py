#!/usr/bin/env python3
"""Hostile workbooks beside the real panel: selecting their cells makes nothing reach out.

usage: hostile_panel_test.py QUORIN REACHES.so [--only CASE] [--without CASE]

One display, one Calc and one panel for all of them. Opens each workbook as its user would, selects
its cells, waits for the panel to show each and its lists, closes it, and looks whether the panel
shows the ordinary workbook behind it again. What Calc does alone is no fault of the panel's: it is
looked at before the panel is, and not counted. Nothing of a workbook's texts may become markup, no
call may take longer than it may, and our processes may not grow.
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
from case import Place, add_choice, chosen  # noqa: E402
from surroundings import (Lines, Listener, Reaches, Trouble, children_of, memory,  # noqa: E402
                          open_to_others, told_by_log)
from tool import BUDGETS, OVER  # noqa: E402

MOST_MEMORY = 500  # MB
MOST_CELLS = 2  # of each workbook; the test through quorinctl asks all
# Seconds for what takes a moment: only what never comes fails, whatever else the machine does.
PATIENCE = 120
LAST_LINES = 40  # of each log that are told of a failure
PROGRAMS = r"soffice|oosplash|quorin|WebKit"

STATE = """(() => {
  const text = (name) => document.querySelector(`[data-testid="${name}"]`)?.textContent.trim() ?? "";
  // A branch that is not taken is not asked for.
  const rows = [...document.querySelectorAll('.row:not(.unused) [data-testid="row-value"]')];
  return { book: text("book"), sheet: text("sheet"), address: text("address").replaceAll("$", ""),
           value: text("value"), pinned: document.querySelector('[data-testid="follow"]').ariaPressed,
           open: rows.filter((row) => ["waiting", "asking"].includes(row.dataset.state)).length,
           asking: document.querySelectorAll(".places .waiting").length,
           hostile: "hostile" in window || document.querySelectorAll(
             "img, iframe, object, embed, link[href^=http], [onload], [onerror], b, script[src]").length,
           place: location.href }; })()"""
CLICK = """document.querySelector('[data-testid="%s"]').click(), 0"""


class PanelDesk(Desk):
    """A desk whose programs are watched."""

    def __init__(self, quorin, watch):
        self.watch = watch
        super().__init__(quorin)

    def start_display(self, *given, **named):
        super().start_display(*given, **named)
        self.environment.update(self.watch, HOME=str(self.folder))

    def refuse_questions(self):
        """Closes what the office asks in a window of its own, such as whether to repair a file."""
        for window in self.clients():
            try:
                told = self.tool("xprop", "-id", window, "WM_CLASS", "_NET_WM_WINDOW_TYPE")
                if "TYPE_DIALOG" in told and re.search("soffice|libreoffice", told, re.IGNORECASE):
                    self.tool("xdotool", "windowactivate", window, "key", "Escape")
            except PanelTrouble:
                continue  # it has just gone

    def bring_book_forward(self, stem):
        """The window of Calc with this workbook; without a name the one with another than the
        desk's own and Ordinary."""
        for window in self.clients():
            try:
                told = self.tool("xprop", "-id", window, "WM_CLASS", "WM_NAME")
            except PanelTrouble:
                continue  # it has just gone
            others = self.workbook.stem in told or "Ordinary" in told
            if "libreoffice-calc" in told and (stem in told if stem else not others):
                self.tool("xdotool", "windowactivate", window)
                return


class Trial:
    def __init__(self, options):
        self.listener = Listener()
        self.desk = self.quorin = self.client = None
        self.record = pathlib.Path(os.environ.get("TMPDIR", "/tmp")) / (
            f"quorin-reaches-{os.getpid()}")
        try:
            self.begin(options)
        except BaseException:
            self.end()
            raise

    def begin(self, options):
        self.desk = PanelDesk(options.quorin, {"LD_PRELOAD": str(options.reaches),
                                               "QUORIN_REACHES": str(self.record)})
        folder = self.desk.folder
        bait = folder / "bait"
        make_corpus.make_bait(bait)
        self.paths = make_corpus.make_corpus(folder / "books", Place(self.listener.address, bait))
        self.ordinary = folder / "Ordinary.xlsx"
        make_corpus.make_ordinary(self.ordinary)
        self.reaches = Reaches(self.record, [folder, options.quorin.parents[2]], bait, PROGRAMS)
        self.client = Lines(["/usr/bin/python3", HERE / "office_client.py", self.desk.pipe],
                            {name: text for name, text in self.desk.environment.items()
                             if name not in self.desk.watch})
        if self.client.line(PATIENCE) is None:
            raise Trouble("no connection to the office")
        self.in_office("open", str(self.ordinary))
        Quorin.desk, Quorin.program = self.desk, options.quorin
        self.quorin = Quorin("--show")
        self.place = self.state()["place"]
        self.last = None  # what the panel showed last
        # What the panel does once, with the first cell and the first look at each of its lists.
        if wrong := self.shows(self.ordinary, "Sheet1", "B1") + self.lists(self.ordinary):
            raise Trouble(wrong[0])
        if not self.calls():
            raise Trouble("what the page asks for is not seen")
        self.book = self.last[0]
        self.reaches.learn()

    def state(self):
        return self.quorin.panel.eval(STATE)

    def calls(self):
        """What the page asked for since the last time, and the seconds that the program took, from
        the beginning of its work to the reply."""
        return self.quorin.panel.ask("calls")

    def click(self, name):
        self.quorin.panel.eval(CLICK % name)

    def in_office(self, do, *given):
        reply = self.client.ask({"do": do, "with": list(given)}, 1)
        end = time.monotonic() + PATIENCE
        while reply is None:
            if time.monotonic() > end:
                raise Trouble(f"the office does not {do}")
            self.desk.refuse_questions()
            reply = self.client.line(1)
        if "trouble" in reply:
            raise Trouble(f"the office does not {do}: {reply['trouble']}")
        return reply["ok"]

    def bring_forward(self, path):
        self.desk.bring_book_forward(path.stem if path == self.ordinary else "")

    def wait(self, path, is_so, what):
        """The state in which it is so. Nobody follows a Calc that another window has covered."""
        end, again = time.monotonic() + PATIENCE, time.monotonic() + 3
        while not is_so(now := self.state()):
            if time.monotonic() > end:
                raise Trouble(f"the panel does not {what}: {now}")
            if time.monotonic() > again:
                self.bring_forward(path)
                again = time.monotonic() + 3
            time.sleep(0.03)
        return now

    def shows(self, path, sheet, cell):
        """What is wrong, once the panel shows the cell and has asked all that it asks."""
        letters, row = re.fullmatch(r"([A-Z]+)(\d+)", cell).groups()
        column = 0
        for letter in letters:
            column = column * 26 + ord(letter) - 64
        self.in_office("select", str(path), sheet, column - 1, int(row) - 1)
        now = self.wait(path, lambda now: now["address"] == cell and not now["open"]
                        and (now["book"], now["sheet"], now["address"]) != self.last,
                        f"come to rest on {cell}")
        self.last = (now["book"], now["sheet"], now["address"])
        return self.wrong_with(now)

    def wrong_with(self, now):
        wrong = ["a text of the workbook became markup"] if now["hostile"] else []
        return wrong + ([f"the page went to {now['place']}"] if now["place"] != self.place else [])

    def lists(self, path):
        """The other views have been looked at, with what they say."""
        wrong = []
        for view in ("deps", "map"):
            self.click(f"tab-{view}")
            wrong += self.wrong_with(self.wait(
                path, lambda now: not now["asking"], f"show its {view}"))
        self.click("tab-tree")
        return wrong

    def ordinary_works(self):
        """The ordinary workbook is in front again, and the panel shows it."""
        self.bring_forward(self.ordinary)
        now = self.wait(self.ordinary, lambda now: now["book"] == self.book and not now["open"],
                        "come back to an ordinary workbook")
        self.last = (now["book"], now["sheet"], now["address"])
        shown = (now["address"], now["value"])
        # Calc takes the value from the file, and the file says 1.
        return [] if shown == ("B1", "1") else [f"an ordinary workbook shows {shown}"]

    def reached(self, case):
        """What the panel is to blame for. Some of the pictures and objects elsewhere Calc fetches
        itself, when it comes to paint them."""
        heard = {one for one in self.listener.take()
                 if not any(f"/{name} " in one for name in case.calc_fetches)}
        wrong = self.reaches.forbidden(("quorin-marks-keeper",))
        if case.calc_fetches:
            wrong = [one for one in wrong if not one.startswith("soffice.bin ")]
        return [f"with the panel: {one}" for one in wrong] + [
            f"the server was asked: {one}" for one in sorted(heard)]

    def run(self, case):
        """What is wrong, and whether Calc opened it."""
        path = self.paths[case.name]
        # The panel stays where it is while Calc alone opens the file.
        self.click("follow")
        sheets = self.in_office("open", str(path))
        self.reaches.take(), self.listener.take()
        self.click("follow")
        if not sheets and case.loads:
            return ["the office does not open it"], sheets
        wrong = []
        if sheets:
            for cell in case.cells[:MOST_CELLS]:
                sheet, _, address = cell.rpartition("!")
                sheet = (sheet[1:-1].replace("''", "'") if sheet.startswith("'")
                         else sheet or sheets[0])
                wrong += self.shows(path, sheet, address)
            wrong += self.lists(path)
            self.in_office("close", str(path))
        wrong += self.ordinary_works() + self.reached(case)
        wrong += [f"{verb} took {took:.1f} s of {BUDGETS[verb]}" for verb, took in self.calls()
                  if verb in BUDGETS and took > BUDGETS[verb] + OVER]
        most = memory(children_of(self.quorin.process.pid))
        self.most = max(self.most, most)
        return wrong + ([f"{most:.0f} MB of memory"] if most > MOST_MEMORY else []), sheets

    most = 0  # MB

    def tell_what_was_said(self):
        """The last lines of what every program wrote."""
        for log in sorted(self.desk.folder.rglob("*.log")):
            for line in log.read_text(errors="replace").splitlines()[-LAST_LINES:]:
                print(f"    {log.stem}: {line[:200]}")
        for process in self.desk.started:
            if process.poll() is not None:
                print(f"    ended with {process.returncode}: {process.args[0]}")

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
    parser.add_argument("--group", action="append", choices=("reaching", "endless", "odd"))
    add_choice(parser)
    options = parser.parse_args()
    signal.signal(signal.SIGTERM, lambda *_: sys.exit("ended from outside"))
    options.quorin, options.reaches = options.quorin.resolve(), options.reaches.resolve()
    cases = [case for case in chosen(parser, options)
             if not options.group or case.write.__module__.partition("_")[0] in options.group]
    cases.sort(key=lambda case: case.write.__module__ == "endless_cases")  # those that may hang last
    trial, failed, refused = Trial(options), [], []
    try:
        for case in cases:
            begun, sheets, gone = time.monotonic(), None, False
            try:
                wrong, sheets = trial.run(case)
            except (Trouble, PanelTrouble, OSError) as trouble:
                wrong, gone = [str(trouble)], True
            refused += [] if sheets else [case.name]
            print(f"{'FAILED' if wrong else 'passed' if sheets else 'refused'} {case.name} "
                  f"({time.monotonic() - begun:.1f} s)", flush=True)
            if wrong:
                failed.append(case.name)
                print("".join(f"    {one[:300]}\n" for one in wrong[:12])
                      + f"    guarded by: {case.guard}", flush=True)
            if gone:
                trial.tell_what_was_said()
                print("Nothing further can be tried.")
                break
        most = trial.most
        for line in told_by_log(trial.desk.folder) + open_to_others(trial.desk.folder):
            failed.append(line)
            print(line[:300], flush=True)
    finally:
        trial.end()
    print(f"{len(cases)} hostile workbooks beside the panel, {len(failed)} failures; at most "
          f"{most:.0f} MB. Calc opens none of {', '.join(refused) or 'nothing'}.")
    return 1 if failed or not cases else 0


if __name__ == "__main__":
    sys.exit(main())
