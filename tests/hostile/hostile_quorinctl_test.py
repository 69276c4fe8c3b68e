#!/usr/bin/env python3
"""Hostile workbooks through quorinctl: none makes it reach out, run away or fail afterwards.

usage: hostile_quorinctl_test.py QUORINCTL REACHES.so [--group reaching|endless|odd]
                                [--only CASE] [--without CASE]

Opens each in the office that quorinctl has, asks what a page would ask of it, and more, and closes
it. Meanwhile a server on the loopback interface must hear nothing; no program may open a file, start
a program or connect to anything that the workbook's own opening, or an ordinary one, does not need;
no call may take longer than it may; our own processes may not grow; and an ordinary workbook must
work at once. What Calc does alone, when it opens the file, is told apart.
"""
import argparse
import os
import pathlib
import shutil
import signal
import sys
import tempfile
import time

import make_corpus
from case import Case, Place, add_choice, chosen
from surroundings import Listener, Reaches, Trouble, told_by_log
from tool import Tool
from walk import walk

MOST_MEMORY = 500  # MB
OPENING = 30  # seconds that the office may take to open a workbook
RUNS = ("quorin-marks-keeper",)  # programs that ours may start


class Trial:
    def __init__(self, options, folder):
        self.folder = folder
        for name in ("home", "tmp", "data", "state"):
            (folder / name).mkdir()
        self.listener = Listener()
        try:
            self.begin(options)
        except BaseException:
            self.listener.end()
            raise

    def begin(self, options):
        folder = self.folder
        bait = folder / "bait"
        make_corpus.make_bait(bait)
        self.bait = set(bait.iterdir())
        self.paths = make_corpus.make_corpus(folder / "books", Place(self.listener.address, bait))
        self.ordinary = folder / "Ordinary.xlsx"
        make_corpus.make_ordinary(self.ordinary)
        self.first = folder / "First.xlsx"
        make_corpus.make_ordinary(self.first)
        self.reaches = Reaches(folder / "reaches", [folder, options.quorinctl.parent], bait)
        self.tool = Tool(options.quorinctl, self.first, dict(
            os.environ, HOME=str(folder / "home"), TMPDIR=str(folder / "tmp"),
            XDG_DATA_HOME=str(folder / "data"), XDG_STATE_HOME=str(folder / "state"),
            LD_PRELOAD=str(options.reaches), QUORIN_REACHES=str(folder / "reaches")))

    def prepare(self):
        """What an office does once, with the first workbooks, is not the hostile ones'."""
        self.in_front()
        walk(Case("ordinary", "", None, "", cells=("B1",), ranges=("A1:B2",)), ["Sheet1"],
             self.tool.value)
        if wrong := self.ordinary_works():
            raise Trouble(wrong[0])
        self.reaches.learn()

    def in_front(self):
        self.tool.in_office("open", str(self.ordinary))

    def is_seen(self):
        """That what the tests look for would be seen: Calc reaches out when it is told to."""
        self.tool.value("evaluate", f'WEBSERVICE("http://{self.listener.address}/seen")', "asked")
        self.tool.in_office("write", str(self.ordinary), "Sheet1", 5, 6,
                            f"='{(self.reaches.bait)}/secret.fods'#$Sheet1.A1")
        reached = self.reaches.forbidden(RUNS)
        seen = {"a request": any("/seen" in one for one in self.listener.take()),
                "a connection": any(self.listener.address in one for one in reached),
                "a file": any(one.endswith("secret.fods") for one in reached)}
        self.tool.in_office("close", str(self.ordinary))
        self.in_front()
        return [f"{what} of Calc's own is not seen" for what, is_so in seen.items() if not is_so]

    def ordinary_works(self):
        """What is wrong with it, if anything. A call that was given up may go on for a moment."""
        self.tool.in_office("bring_forward", str(self.ordinary))
        end = time.monotonic() + 5
        while True:
            value = self.tool.value("evaluate", "SUM(A1:A2)*Factor")
            if value == {"ok": True, "value": 15}:
                break
            if time.monotonic() > end:
                return [f"an ordinary workbook gives {value}"]
        cells = self.tool.value("readRange", "A1:A2")
        if not cells or cells.get("values") != [[2], [3]]:
            return [f"cells of an ordinary workbook are {cells}"]
        return []

    def reached(self, who):
        wrong = [f"{who}: {one}" for one in self.reaches.forbidden(RUNS)]
        wrong += [f"{who} asked the server: {one}" 
                  for one in sorted(set(self.listener.take()))]
        for file in set(pathlib.Path(self.reaches.bait).iterdir()) - self.bait:
            wrong.append(f"{who} wrote {file.name}")
            file.unlink()
        return wrong

    def opened(self, case):
        """The names of the workbook's sheets; none when the office does not open it."""
        try:
            return self.tool.in_office("open", str(self.paths[case.name]), patience=OPENING)
        except Trouble:
            self.tool.restart()
            self.in_front()
            self.reaches.take()
            return None

    def run(self, case):
        """What went wrong, as texts, and the most memory."""
        self.tool.forget_peaks()
        sheets = self.opened(case)
        wrong = self.reached("Calc alone")  # nothing, as a private office is set up
        if not sheets:
            return wrong + (["the office does not open it"] if case.loads else [])
        try:
            walk(case, sheets, self.tool.value)
            if case.names is not None:
                told = (self.tool.value("workbookMap") or {}).get("names")
                if told is None or len(told) != case.names:
                    wrong.append(f"the map tells {told and len(told)} names of {case.names}")
            for expression, value in case.gives:
                given = self.tool.value("evaluate", expression)
                if given != (value if isinstance(value, dict) else {"ok": True, "value": value}):
                    wrong.append(f"{expression} gives {given}")
            wrong += self.reached("with Quorin")
            if (most := self.tool.peak()) > MOST_MEMORY:
                wrong.append(f"{most:.0f} MB of memory")
            self.tool.in_office("close", str(self.paths[case.name]))
            wrong += self.ordinary_works() + self.reached("afterwards")
        except Trouble as trouble:
            wrong += self.reached("with Quorin") + [str(trouble)]
            self.tool.restart()
            self.in_front()
            self.reaches.take()
        return wrong

    def end(self):
        self.tool.end()
        self.listener.end()


def main():
    parser = argparse.ArgumentParser(description=__doc__.partition("\n")[0])
    parser.add_argument("quorinctl", type=pathlib.Path)
    parser.add_argument("reaches", type=pathlib.Path)
    parser.add_argument("--group", default="")
    add_choice(parser)
    options = parser.parse_args()
    signal.signal(signal.SIGTERM, lambda *_: sys.exit("ended from outside"))
    options.quorinctl, options.reaches = options.quorinctl.resolve(), options.reaches.resolve()
    cases = [case for case in chosen(parser, options)
             if case.write.__module__.startswith(options.group)]
    folder = pathlib.Path(tempfile.mkdtemp(prefix="quorin-hostile-"))
    failed = []
    try:
        trial = Trial(options, folder)
        try:
            trial.prepare()
            for line in trial.is_seen():
                failed.append(line)
                print(line, flush=True)
            for case in cases:
                begun = time.monotonic()
                wrong = trial.run(case)
                print(f"{'FAILED' if wrong else 'passed'} {case.name} "
                      f"({time.monotonic() - begun:.1f} s, {trial.tool.peak():.0f} MB)", flush=True)
                if wrong:
                    failed.append(case.name)
                    print("".join(f"    {one[:300]}\n" for one in wrong[:12])
                          + f"    guarded by: {case.guard}", flush=True)
        finally:
            trial.end()
        for line in told_by_log(folder):
            failed.append(line)
            print(line[:300], flush=True)
    finally:
        shutil.rmtree(folder, ignore_errors=True)
    print(f"{len(cases)} hostile workbooks, {len(failed)} failures")
    return 1 if failed or not cases else 0


if __name__ == "__main__":
    sys.exit(main())
