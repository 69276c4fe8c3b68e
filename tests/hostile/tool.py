"""quorinctl with an office of its own, and a client that opens further workbooks in that office."""
import os
import pathlib
import re
import time

from surroundings import (HERE, PATIENCE, Lines, Trouble, children_of, forget_peak, peak, processes)

# What a call may take, in seconds, and half a second more. An evaluation may be two calls: one for
# the value, and one for the name of the error.
BUDGETS = {"probe": 3, "pollCell": 3, "readCell": 10, "evaluate": 9, "readRange": 10,
           "readFormulas": 10, "workbookMap": 10, "select": 10, "activate": 10, "dependents": 10,
           "reveal": 3, "deepEval": 65, "markCells": 25, "clearMarks": 25}
OVER = 0.5
PATIENCE_OVER = 5
OFFICE = ("soffice.bin", "oosplash")


class Tool:
    """Asks quorinctl. A call that takes longer than it may is noted."""

    def __init__(self, program, ordinary, environment):
        self.program, self.ordinary, self.environment = program, ordinary, environment
        self.number = 0
        self.start()

    def start(self):
        self.tool = Lines([self.program, "--workbook", self.ordinary, "--timing", "--data",
                           self.environment["XDG_DATA_HOME"]], self.environment)
        self.client = None
        try:
            self.value("probe", patience=PATIENCE)
            self.office = self.office_process()
            self.client = Lines(["/usr/bin/python3", HERE / "office_client.py", self.pipe()],
                                {name: text for name, text in self.environment.items()
                                 if name not in ("LD_PRELOAD", "QUORIN_REACHES")})
            if self.client.line(PATIENCE) is None:
                raise Trouble("no connection to the office")
        except Exception:
            self.end()
            raise

    def office_process(self):
        known = processes()
        for one in children_of(self.tool.process.pid):
            if one in known and known[one][1] == "soffice.bin":
                return one
        raise Trouble("quorinctl has no office")

    def pipe(self):
        words = pathlib.Path(f"/proc/{self.office}/cmdline").read_bytes().decode().split("\0")
        return next(found.group(1) for found in
                    (re.search(r"accept=pipe,name=([^;,]+)", word) for word in words) if found)

    def value(self, verb, *args, patience=None):
        """The reply's payload, None when the call failed. After a call that takes too long nothing
        more is asked."""
        self.number += 1
        patience = patience or BUDGETS[verb] + PATIENCE_OVER
        begun = time.monotonic()
        reply = self.tool.ask({"id": self.number, "verb": verb, "args": list(args)}, patience)
        took = reply["ms"] / 1000 if reply else time.monotonic() - begun
        allowed = BUDGETS[verb] + OVER
        if reply is None or took > allowed:
            shown = str(args)[:120]
            raise Trouble(f"{verb}{shown} took {took:.1f} s of {BUDGETS[verb]}")
        return reply["payload"] if reply["ok"] else None

    def in_office(self, do, *given, patience=PATIENCE):
        reply = self.client.ask({"do": do, "with": list(given)}, patience)
        if reply is None:
            raise Trouble(f"the office does not {do}")
        return reply.get("ok")

    def ours(self):
        """Our own processes: what quorinctl started, without the office and what that started."""
        known = processes()
        offices = {one for one in children_of(self.tool.process.pid)
                   if one in known and known[one][1] in OFFICE}
        not_ours = set().union(*map(children_of, offices)) if offices else set()
        return children_of(self.tool.process.pid) - not_ours

    def forget_peaks(self):
        for one in self.ours():
            forget_peak(one)

    def peak(self):
        return sum(peak(one) for one in self.ours())

    def restart(self):
        self.end()
        self.start()

    def end(self):
        """Also of an office that answers nobody any more."""
        offices = children_of(self.tool.process.pid) - {self.tool.process.pid}
        if self.client:
            self.client.process.kill()
            self.client.end()
        for one in offices:
            if processes().get(one, (0, ""))[1] in OFFICE:
                os.kill(one, 9)
        self.tool.end()
