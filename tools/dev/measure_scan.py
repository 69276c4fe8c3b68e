#!/usr/bin/env python3
"""Measures the reading of a whole workbook in the real panel, beside a real Calc.

usage: measure_scan.py QUORIN QUORINCTL WORKBOOK [KEYS]

Prints, all from one run:
- how long the scan takes while the user does nothing, against the same questions sent to the same
  Calc by quorinctl, one after the other; scan and questions by turns, twice;
- how long the page's main thread was kept at a stretch, by the click that begins the scan and
  after it, and what by;
- how long a key pressed in Calc takes to be shown as the selected cell, without a scan and during
  one, by turns (KEYS of each, 40 unless told), and where that time goes.
"""
import json
import pathlib
import random
import subprocess
import sys
import time

from keyboard import Keyboard
from measure_panel import at
from try_dependents import TOOLS, Tried
from try_panel import Trial, wait_for

RECORDER = """(() => {
  const handler = webkit.messageHandlers.qx;
  const now = () => performance.timeOrigin + performance.now();
  const open = new Map();
  window.record = {asked: [], keys: null, gaps: null};
  const kind = Object.getPrototypeOf(handler);
  const post = kind.postMessage;
  kind.postMessage = function (request) {
    const one = {verb: request.verb, args: request.args, posted: now(), replied: 0};
    open.set(request.id, one);
    record.asked.push(one);
    return post.call(this, request);
  };
  const resolve = window.__qxResolve;
  window.__qxResolve = (id, reply) => {
    const one = open.get(id);
    open.delete(id);
    if (one) one.replied = now();
    resolve(id, reply);
  };
  const hear = window.__qxEvent;
  window.__qxEvent = (name, payload) => {
    if (name === "selectionChanged") record.heard = now();
    hear(name, payload);
  };
  // What else runs on the page's thread: the model's answers, and drawing what has changed.
  const timed = (what, work) => (...given) => {
    const begun = performance.now();
    work(...given);
    const took = Math.round(performance.now() - begun);
    if (took >= 4) trial.parts.push([what, took]);
  };
  const heard = Object.getOwnPropertyDescriptor(Worker.prototype, "onmessage");
  Object.defineProperty(Worker.prototype, "onmessage", {
    ...heard, set(hear) { heard.set.call(this, timed("answer", hear)); }});
  const later = window.queueMicrotask.bind(window);
  window.queueMicrotask = (work) => later(timed("drawing", work));
  new MutationObserver(() => {
    const address = document.querySelector("[data-testid=address]")?.textContent;
    if (address !== record.address) { record.address = address; record.shown = now(); }
  }).observe(document.body, {subtree: true, childList: true, characterData: true});
})(); 0"""

SCAN_VERBS = ("workbookMap", "readFormulas", "evaluate")


class Direct:
    """The same Calc asked by quorinctl."""

    def __init__(self, trial, program):
        home = trial.folder / "direct"  # the panel has its own to itself
        environment = dict(trial.environment, XDG_DATA_HOME=str(home), XDG_STATE_HOME=str(home))
        self.process = subprocess.Popen([program, "--attach"], env=environment, text=True,
                                        stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self.ask("pollCell", [])

    def ask(self, verb, args):
        self.process.stdin.write(json.dumps({"id": 1, "verb": verb, "args": args}) + "\n")
        self.process.stdin.flush()
        return self.process.stdout.readline()

    def time_of(self, questions):
        begun = time.monotonic()
        for verb, args in questions:
            self.ask(verb, args)
        return time.monotonic() - begun

    def end(self):
        self.process.stdin.close()
        self.process.wait(30)


class Scans(Tried):
    def begin(self):
        """Asks for the scan; a large workbook is measured first, and asks back."""
        self.eval("record.asked.length = 0; trial.press('tab-deps'); requestAnimationFrame("
                  "() => setTimeout(() => { trial.drawn = trial.gaps?.length; })); 0")
        wait_for("the scan", lambda: self.eval(
            "record.asked.some((one) => one.verb === 'readFormulas')") or (
                not self.reading() and self.eval("trial.press('scan-go'); 0")))

    def reading(self):
        return self.eval("document.querySelector('[data-testid=scan-stop]') !== null")

    def wait(self):
        wait_for("all sheets", lambda: not self.reading(), 400)

    def asked(self):
        return [one for one in self.eval("record.asked.splice(0)") if one["verb"] in SCAN_VERBS]

    def undisturbed(self):
        """A scan's seconds and its questions, while the main thread is watched. What keeps it until
        the view that was asked for is on the screen is told apart: that is the user's click."""
        self.eval("trial.parts.length = 0; trial.gaps = []; 0")
        self.begin()
        self.wait()
        drawn, gaps = self.eval(
            "(() => { const all = [trial.drawn, trial.gaps]; trial.gaps = null; return all; })()")
        parts = self.eval("trial.parts.splice(0)")
        asked = self.asked()
        print(f"  drawing the view kept the main thread {max(gaps[:drawn]):.0f} ms")
        gaps = sorted(gaps[drawn:], reverse=True)
        print(f"  then over 16 ms {sum(one > 16 for one in gaps)} times of {len(gaps)}, longest "
              f"{[round(one) for one in gaps[:6]]}; 4 ms and more: "
              f"{sorted(((p[1], p[0]) for p in parts), reverse=True)[:6]}")
        took = [one["replied"] - one["posted"] for one in asked]
        print(f"  {len(asked)} questions, ms each: p50 {at(took, .5):.0f} p95 {at(took, .95):.0f} "
              f"most {max(took):.0f}; between two of them "
              f"{sum(b['posted'] - a['replied'] for a, b in zip(asked, asked[1:])):.0f} in all")
        slow = sorted(zip(took, asked), key=lambda one: -one[0])[:3]
        print("  slowest:", "; ".join(f"{ms:.0f} {one['verb']} {''.join(map(str, one['args']))[:120]}"
                                       for ms, one in slow))
        print("  " + self.eval("trial.says('list-note')"))
        seconds = (asked[-1]["replied"] - asked[0]["posted"]) / 1000
        return seconds, [(one["verb"], one["args"]) for one in asked]

    def key(self, keyboard, name):
        """Milliseconds from the key to the event, to the question, to the answer, to what is shown."""
        self.eval("record.asked.length = 0; record.heard = record.shown = 0; 0")
        time.sleep(random.random() * 0.3)  # not in step with the poll
        pressed = keyboard.press(name)
        wait_for("the next cell", lambda: self.eval("record.heard && record.shown > record.heard"))
        heard, shown, asked = self.eval("[record.heard, record.shown, record.asked]")
        own = [one for one in asked if one["verb"] in ("readCell", "probe") and one["replied"]
               and one["posted"] >= heard - 1]
        last = next((one for one in own if one["verb"] == "readCell"), None)
        begun, ended = (own[0]["posted"], last["replied"]) if last else (heard, heard)
        return shown - pressed, heard - pressed, begun - heard, ended - begun, shown - ended


def selections(trial, tried, count):
    keyboard = Keyboard(trial.environment["DISPLAY"])
    trial.keys("ctrl+Home")
    time.sleep(1)
    found = {"without a scan": [], "during one": []}
    random.seed(1)
    for number in range(count):
        for what, times in found.items():
            if what == "during one" and not tried.reading():
                tried.begin()
            if what == "without a scan" and tried.reading():
                tried.eval("trial.press('scan-stop'); 0")
                wait_for("the scan to stop", lambda: not tried.reading())
            name = ("Right", "Down", "Left", "Up")[number % 4]
            one = tried.key(keyboard, name)
            if what == "without a scan" or tried.reading():
                times.append(one)
            time.sleep(0.1)
    keyboard.close()
    for what, times in found.items():
        print(f"  {what}, {len(times)} keys, ms (p50, p95):", ", ".join(
            f"{part} {at([one[i] for one in times], .5):.0f} {at([one[i] for one in times], .95):.0f}"
            for i, part in enumerate(("to the shown cell", "to the event", "to the first question",
                                      "to the answer", "to what is shown"))))
    usual, busy = ([one[0] for one in times] for times in found.values())
    print(f"  p95 {at(busy, .95) - at(usual, .95):+.0f} ms, p50 {at(busy, .5) - at(usual, .5):+.0f} ms")


def main():
    quorin, program, workbook = sys.argv[1:4]
    keys = int(sys.argv[4]) if len(sys.argv) > 4 else 40
    trial = Trial(quorin, workbook, ".")
    try:
        trial.start_calc()
        trial.cell()
        trial.start_quorin()
        tried = Scans(trial, pathlib.Path("."))
        wait_for("the page", lambda: tried.eval("!!document.querySelector('[data-testid=state]')"))
        tried.eval(TOOLS)
        tried.eval(RECORDER)
        wait_for("a cell", lambda: tried.eval("trial.says('address')"))
        time.sleep(11)  # the user counts as away
        direct = Direct(trial, program)
        for turn in (1, 2):
            print(f"scan {turn}")
            seconds, questions = tried.undisturbed()
            alone = direct.time_of(questions)
            print(f"  scan {seconds:.2f} s, the same {len(questions)} questions by quorinctl "
                  f"{alone:.2f} s: {seconds / alone:.2f} times")
        direct.end()
        print("selections")
        selections(trial, tried, keys)
    finally:
        trial.end()


if __name__ == "__main__":
    main()
