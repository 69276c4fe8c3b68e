#!/usr/bin/env python3
"""Lets the panel follow a real Calc for a long time and watches the memory of Quorin's processes.

usage: soak_panel.py QUORIN WORKBOOK [MINUTES [CHANGES]]

Presses keys in Calc, 2,000 in 20 minutes unless told otherwise, so that each selects another cell,
and makes sure that the page hears of them. Counts the memory that is Quorin's alone, with its web
processes: anonymous and shared memory, in RAM or swapped out, files left out. Prints it for each
minute, and in the end how much it has grown from the fourth minute to the last. Status 0 when that
is under 5 MB.
"""
import collections
import os
import random
import sys
import time

from keyboard import Keyboard
from measure_panel import at
from try_panel import Trial, wait_for

BUDGET = 5.0  # MB
WARM_UP = 3   # minutes
FIELDS = ("Pss_Anon:", "Pss_Shmem:", "SwapPss:")

COUNT_EVENTS = """(() => { const own = window.__qxEvent; window.__soak = 0;
    window.__qxEvent = (name, payload) => {
      if (name === "selectionChanged") ++window.__soak;
      return own(name, payload);
    }; })(); 0"""


def family(process):
    """The process and all that came from it, each with its name."""
    parents, names = collections.defaultdict(list), {}
    for entry in os.listdir("/proc"):
        if not entry.isdigit():
            continue
        try:
            with open(f"/proc/{entry}/stat", encoding="utf-8", errors="replace") as stat:
                name, _, rest = stat.read().rpartition(")")
        except OSError:
            continue
        names[int(entry)] = name.partition("(")[2]
        parents[int(rest.split()[1])].append(int(entry))
    found, waiting = {}, [process]
    while waiting:
        one = waiting.pop()
        if one in names:
            found[one] = names[one]
        waiting.extend(parents[one])
    return found


def megabytes(process):
    total = 0
    with open(f"/proc/{process}/smaps_rollup", encoding="utf-8") as rollup:
        for line in rollup:
            if line.startswith(FIELDS):
                total += int(line.split()[1])
    return total / 1024


def sample(process):
    """Memory by the name of the process."""
    total = collections.Counter()
    for one, name in family(process).items():
        total[name] += megabytes(one)
    return total


def middle(samples, name=None):
    return at([one[name] if name else sum(one.values()) for one in samples], .5)


def moves():
    """Keys for ever: about the sheet and to other sheets, and back before they get far away."""
    chance = random.Random(7)
    while True:
        for _ in range(chance.randrange(10, 30)):
            yield chance.choice(("Down", "Right", "Down", "Down", "Right", "Left", "Up"))
        yield chance.choice(("Control_L+Next", "Control_L+Prior", "Control_L+End"))
        yield "Control_L+Home"


def main():
    minutes = float(sys.argv[3]) if len(sys.argv) > 3 else 20
    changes = int(sys.argv[4]) if len(sys.argv) > 4 else 2000
    trial = Trial(sys.argv[1], sys.argv[2], ".")
    try:
        trial.start_calc()
        trial.cell()
        trial.start_quorin()
        wait_for("the panel to follow", lambda: trial.panel.shown()["address"])
        trial.panel.eval(COUNT_EVENTS)
        trial.keys("ctrl+Home")
        keyboard = Keyboard(trial.environment["DISPLAY"])
        begun, by_minute = time.monotonic(), collections.defaultdict(list)
        between, step, taken = minutes * 60 / changes, moves(), 0
        for number in range(changes):
            keyboard.press(next(step))
            time.sleep(max(0, begun + (number + 1) * between - time.monotonic()))
            now = time.monotonic() - begun
            if now // 5 > taken:  # every five seconds
                taken = now // 5
                by_minute[int(now // 60)].append(sample(trial.process.pid))
                done = by_minute.get(int(now // 60) - 1)
                if done and len(by_minute[int(now // 60)]) == 1:  # a minute is over
                    print(f"{now // 60:4.0f} min: {middle(done):6.1f} MB", ", ".join(
                        f"{name} {middle(done, name):.1f}" for name in sorted(done[-1])),
                        flush=True)
        keyboard.close()
        heard = trial.panel.eval("window.__soak")
        held, shown = trial.cell(), trial.panel.shown()
        print(f"{changes} keys, {heard} selections in the page; "
              f"Calc is on {held['row'], held['column']}, the panel on {shown['address']}")
        whole = [minute for minute in sorted(by_minute) if minute < int(minutes)]
        warm = by_minute[min(WARM_UP, whole[-1])]
        last = by_minute[whole[-1]]
        growth = middle(last) - middle(warm)
        print(f"from {middle(warm):.1f} MB to {middle(last):.1f} MB, grown by {growth:+.1f} MB "
              f"(budget {BUDGET:.0f}):", ", ".join(
            f"{name} {middle(last, name) - middle(warm, name):+.1f}" for name in sorted(last[-1])))
        # Where an arrow points out of the sheet nothing is selected.
        return 0 if growth < BUDGET and heard > changes * 0.8 else 1
    finally:
        trial.end()


if __name__ == "__main__":
    sys.exit(main())
