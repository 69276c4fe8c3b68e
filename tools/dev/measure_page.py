#!/usr/bin/env python3
"""Measures the page in the real panel, beside a real Calc on a virtual display: a tree of 10,000
rows that is scrolled and walked, and what 1,000 selections leave in the memory of the web process.

usage: measure_page.py QUORIN WORKBOOK

The workbook only brings the panel up; from there on the page is answered by a script that takes
the native side's place, so that the spreadsheet's own time is not counted. Status 0 when every
figure is within its budget.
"""
import sys

from measure_panel import at
from soak_panel import family, megabytes
from try_panel import Trial, wait_for

SCROLL_BUDGET = 8.0   # ms
KEY_BUDGET = 16.0     # ms
GROWTH_BUDGET = 5.0   # MB
ROUNDS, PER_ROUND = 8, 50
SELECTIONS = 1000
JUMP_EVERY = 25       # keys; the others go to the next row

NATIVE_SIDE = """(() => {
  const large = "=MAX(" + Array(5000).fill("-x").join(",") + ")";
  window.trial = {large, formula: "=1+1", number: 0, done: null};
  const answers = {
    probe: () => ({state: "ok"}),
    readCell: () => {
      const {formula, number} = window.trial;
      return {book: "Trial.xlsx", sheet: "Data", addr: "F" + (number + 1), row: number + 1, col: 6,
              formula, formulaLocal: formula, value: number};
    },
    evaluate: (text) => ({ok: true, value: text.startsWith("CELL(") ? "G" : 1}),
    readRange: () => ({rows: 1, cols: 2, values: [[1, 2]]}),
    markCells: () => ({applied: 1, shadowed: false, moved: true}),
    reveal: () => ({revealed: true, activated: false}),
  };
  const {qx} = window.webkit.messageHandlers;
  qx.postMessage = ({id, verb, args}) => {
    const payload = answers[verb] ? answers[verb](...args) : null;
    setTimeout(() => window.__qxResolve(id, {ok: true, payload}), 0);
  };
  window.trial.channel = qx;  // as long as it is held, it is the same object
  window.trial.move = (number, formula) => {
    Object.assign(window.trial, {number, formula});
    window.__qxEvent("selectionChanged",
                     {book: "Trial.xlsx", sheet: "Data", addr: "F" + (number + 1)});
  };
  window.trial.frames = async (count, act) => {
    const tree = document.querySelector("[data-testid=tree]"), times = [];
    window.trial.parts = [];
    for (let i = 0; i < count; ++i) {
      const begun = performance.now();
      act(tree, i);
      await Promise.resolve();
      const run = performance.now();
      void document.body.offsetHeight;
      const laid = performance.now();
      // The rest of the frame: it is painted after this and before the next task.
      const frame = await new Promise((done) => requestAnimationFrame(() => {
        const before = performance.now();
        setTimeout(() => done(performance.now() - before), 0);
      }));
      times.push(laid - begun + frame);
      window.trial.parts.push([run - begun, laid - run, frame]);
    }
    window.trial.done = times;
  };
  window.trial.select = async (from, to) => {
    for (let i = from; i < to; ++i) {
      window.trial.move(i, `=SUM(A${i + 1}:B${i + 1})*${i}+ROUND(C7:D7,2)`);
      while (document.querySelector("[data-testid=address]").textContent != "F" + (i + 1)) {
        await new Promise((next) => setTimeout(next, 2));
      }
      await new Promise((next) => setTimeout(next, 20));
    }
    window.trial.done = [to];
  };
})(); 0"""

SCROLL = """trial.done = null; trial.frames(%d, (tree, i) => {
  tree.scrollTop = (i * 613) %% tree.scrollHeight; tree.dispatchEvent(new Event("scroll")); }); 0"""
KEY = """trial.done = null; trial.frames(%d, (tree, i) => {
  const key = i %% 50 == 49 ? "Home" : i %% 25 == 24 ? "End" : "ArrowDown";
  tree.dispatchEvent(new KeyboardEvent("keydown", {key, bubbles: true, cancelable: true})); }); 0"""
PRESS = """document.querySelector("[data-testid=tree]").dispatchEvent(
  new KeyboardEvent("keydown", {key: "%s", bubbles: true, cancelable: true})); 0"""


def web_process(trial):
    return sum(megabytes(one) for one, name in family(trial.process.pid).items()
               if name.startswith("WebKitWebProces"))


def frames(trial, script):
    """The 95th percentile of the best round: other work of the machine comes in bursts."""
    trial.panel.eval(script % (ROUNDS * PER_ROUND))
    times = wait_for("the frames", lambda: trial.panel.eval("trial.done"), 300)
    parts = trial.panel.eval("trial.parts")
    jumps = [part for i, part in enumerate(parts) if i % JUMP_EVERY == JUMP_EVERY - 1]
    for what, some in (("frames", parts), (f"every {JUMP_EVERY}th", jumps)):
        means = [sum(part[i] for part in some) / len(some) for i in range(3)]
        print("mean of %s: script %.1f, layout %.1f, painting %.1f ms" % (what, *means))
    rounds = [times[i:i + PER_ROUND] for i in range(0, len(times), PER_ROUND)]
    return min(at(one, .95) for one in rounds), at(times, .5)


def main():
    trial = Trial(sys.argv[1], sys.argv[2], ".")
    good = True

    def report(what, value, budget, unit):
        nonlocal good
        good = good and value <= budget
        print(f"{what}: {value:.1f} {unit} (at most {budget:.0f})", flush=True)

    try:
        trial.start_calc()
        trial.start_quorin()
        wait_for("the panel to follow", lambda: trial.panel.shown()["address"])
        trial.panel.eval(NATIVE_SIDE)

        def select(first, last):
            trial.panel.eval(f"trial.done = null; trial.select({first}, {last}); 0")
            wait_for("the selections", lambda: trial.panel.eval("trial.done"), 600)
            return web_process(trial)

        select(0, 300)
        before = select(300, 500)
        after = select(500, 500 + SELECTIONS)
        print(f"web process after 500 selections: {before:.1f} MB, "
              f"after {SELECTIONS} more: {after:.1f} MB")
        report(f"growth over {SELECTIONS} selections", after - before, GROWTH_BUDGET, "MB")

        trial.panel.eval("trial.move(2000, trial.large); 0")
        wait_for("the large tree", lambda: trial.panel.eval(
            "document.querySelector('[data-testid=tree]')?.textContent.includes('MAX(-x')"))
        for key in ("*", "ArrowDown", "*", "Home"):
            trial.panel.eval(PRESS % key)
        wait_for("10,000 rows", lambda: trial.panel.eval(
            "document.querySelector('[data-testid=step]').textContent == 'Step 1 of 10001'"))
        worst, half = frames(trial, SCROLL)
        print(f"scrolled frame, p50: {half:.1f} ms")
        report("scrolled and painted frame, p95 of the best round", worst, SCROLL_BUDGET, "ms")
        worst, half = frames(trial, KEY)
        print(f"key to painted row, p50: {half:.1f} ms")
        report("key to painted row, p95 of the best round", worst, KEY_BUDGET, "ms")
    finally:
        trial.end()
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main())
