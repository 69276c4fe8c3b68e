#!/usr/bin/env python3
"""Measures the panel beside a real Calc on a virtual display: launch, messages, following, idle.

usage: measure_panel.py QUORIN WORKBOOK
"""
import os
import sys
import time

from try_panel import Trial, wait_for

PAGE = """<!doctype html><script>
const settled = new Map(); window.times = []; window.events = [];
window.__qxResolve = (id) => { settled.get(id)(); };
window.__qxEvent = (name) => { if (name == "selectionChanged") events.push(Date.now()); };
async function measure(count) {
  for (let id = 0; id < count; ++id) {
    const begun = performance.now();
    await new Promise((done) => { settled.set(id, done);
      webkit.messageHandlers.qx.postMessage({id, verb: "log", args: []}); });
    times.push(performance.now() - begun);
  }
}
</script><body><p>page"""


def at(values, share):
    return sorted(values)[min(len(values) - 1, int(len(values) * share))]


def processor_seconds(process):
    """Of the process and its children."""
    total = 0
    for stat in (f"/proc/{one}/stat" for one in os.listdir("/proc") if one.isdigit()):
        try:
            name_and_rest = open(stat, encoding="utf-8", errors="replace").read().rpartition(")")
        except OSError:
            continue
        fields = name_and_rest[2].split()
        if int(stat.split("/")[2]) == process or int(fields[1]) == process:
            total += int(fields[11]) + int(fields[12])
    return total / os.sysconf("SC_CLK_TCK")


def main():
    trial = Trial(sys.argv[1], sys.argv[2], ".")
    try:
        trial.start_display()
        trial.start_office()
        trial.start_witness()
        trial.cell()
        launches = []
        for _ in range(6):
            begun = time.time() * 1000
            trial.start_quorin()
            painted = "performance.getEntriesByName('first-contentful-paint')[0]"
            wait_for("the first paint", lambda: trial.panel.eval(f"!!{painted}"))
            launches.append(trial.panel.eval(f"performance.timeOrigin + {painted}.startTime")
                            - begun)
            trial.panel.ask("quit")
            trial.process.wait(30)
            (trial.folder / "panel").unlink(missing_ok=True)
        print("launch to first paint, ms:", [round(one) for one in launches])

        page = trial.folder / "page.html"
        page.write_text(PAGE)
        trial.environment["QX_DEV_URL"] = f"file://{page}"
        trial.start_quorin()
        wait_for("the page", lambda: trial.panel.eval("typeof measure == 'function'"))
        trial.panel.eval("measure(3000); 0")
        wait_for("the messages", lambda: trial.panel.eval("times.length == 3000"))
        times = trial.panel.eval("times")
        # The page's clock goes in steps of a millisecond: one trip is known to that, many better.
        print(f"message round trip, ms: mean {sum(times) / len(times):.2f}, "
              f"p99 at most {at(times, .99):.0f}")

        trial.keys("ctrl+Home")
        time.sleep(2)
        delays = []
        for number in range(40):
            trial.panel.eval("events.length = 0; 0")
            begun = time.time() * 1000
            trial.tool("xdotool", "key", "Down" if number % 2 else "Right")
            delays.append(wait_for("the event", lambda: trial.panel.eval("events[0]")) - begun)
            time.sleep(0.03 * (number % 8))
        print(f"key pressed to event, ms: p50 {at(delays, .5):.0f} p95 {at(delays, .95):.0f}")

        before = processor_seconds(trial.process.pid)
        time.sleep(10)
        used = processor_seconds(trial.process.pid) - before
        print(f"idle while following: {used * 10:.1f} % of a core")
    finally:
        trial.end()


if __name__ == "__main__":
    main()
