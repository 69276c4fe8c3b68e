#!/usr/bin/env python3
"""Measures the panel beside a real Calc on a virtual display: launch, messages, following, hot
keys, idle, and quitting while the spreadsheet is stopped.

usage: measure_panel.py QUORIN WORKBOOK

The workbook is the one that samples/make-sample.py writes.
"""
import os
import signal
import sys
import time

from keyboard import Keyboard
from try_panel import Trial, wait_for

PAGE = """<!doctype html><script>
const settled = new Map(); window.times = []; window.events = [];
window.__qxResolve = (id, reply) => { settled.get(id)(reply); };
window.surfaces = [];
window.__qxEvent = (name, payload) => {
  if (name == "selectionChanged") events.push(performance.timeOrigin + performance.now());
  if (name == "surface") surfaces.push({at: performance.timeOrigin + performance.now(), ...payload});
};
function call(verb, ...args) {
  window.answer = null;
  settled.set(-1, (reply) => { window.answer = reply; });
  webkit.messageHandlers.qx.postMessage({id: -1, verb, args});
}
async function measure(count) {
  for (let id = 0; id < count; ++id) {
    const begun = performance.now();
    await new Promise((done) => { settled.set(id, done);
      webkit.messageHandlers.qx.postMessage({id, verb: "log", args: []}); });
    times.push(performance.now() - begun);
  }
}
</script><body><p>page"""


HIDDEN_CELL = "'Operations'!$B$5"  # in the sample


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


def stopped(group):
    """True if every process of the group has stopped."""
    states = []
    for entry in os.listdir("/proc"):
        try:
            if entry.isdigit() and os.getpgid(int(entry)) == group:
                with open(f"/proc/{entry}/stat", encoding="utf-8", errors="replace") as stat:
                    states.append(stat.read().rpartition(")")[2].split()[0])
        except OSError:
            pass  # it has just ended
    return bool(states) and set(states) <= {"T", "Z"}


def load(trial, work):
    """What Quorin and Calc use while `work` is done, in words."""
    programs = {"Quorin": trial.process.pid, "Calc": trial.office.pid}
    begun, before = time.monotonic(), {name: processor_seconds(programs[name]) for name in programs}
    work()
    passed = time.monotonic() - begun
    return ", ".join(f"{name} {(processor_seconds(programs[name]) - before[name]) / passed:.1%}"
                     for name in programs) + " of a core"


def under_fingers(trial, keyboard):
    """A key is held down in Calc for ten seconds; then a text is typed."""
    trial.keys("ctrl+Home")
    time.sleep(2)
    trial.panel.eval("events.length = 0; 0")
    keyboard.hold("Down")
    held = load(trial, lambda: time.sleep(10))
    released = keyboard.release("Down")
    time.sleep(2)
    events = trial.panel.eval("events")
    print(f"key held for 10 s: {len(events)} events, the last {events[-1] - released:.0f} ms after "
          f"its release; {held}")

    def typing():
        for _ in range(100):
            keyboard.press("a")
            time.sleep(0.1)
    print(f"100 letters typed in 10 s: {load(trial, typing)}")
    trial.keys("Escape")


def surface_delay(trial, keyboard, number, visible):
    """From the hot key, pressed in Calc, to the page's event."""
    if not visible:
        trial.panel.eval("call('hidePanel'); 0")
        wait_for("the panel to go", lambda: not trial.panel.ask("window")["visible"])
    trial.keys()  # Calc comes to the front
    wait_for("the keyboard to be Calc's", lambda: not trial.panel.ask("window")["key"])
    trial.panel.eval("surfaces.length = 0; 0")
    time.sleep(0.03 * (number % 8))  # not in step with the poll
    pressed = keyboard.press("Alt_L+Shift_L+" + "asd"[number % 3])
    event = wait_for("the event", lambda: trial.panel.eval("surfaces[0]"))
    if event["wasVisible"] != visible or event["wasKey"]:
        raise RuntimeError(f"not what was to be measured: {event}")
    return event["at"] - pressed


def quitting_time(trial):
    """From the wish to quit to the end of the process, while Calc is stopped and holds a row that
    Quorin has shown and has to hide again. The next Quorin does that."""
    record = trial.folder / "data/Quorin/unhidden.json"
    trial.start_quorin()
    wait_for("the page", lambda: trial.panel.eval("typeof call == 'function'"))
    wait_for("the row before to be hidden again", lambda: not record.exists())
    trial.panel.eval(f"""call("reveal", ["{HIDDEN_CELL}"]); 0""")
    revealed = wait_for("the row", lambda: trial.panel.eval("answer"))
    if not revealed["ok"] or not record.exists():
        raise RuntimeError(f"{HIDDEN_CELL} is not shown: {revealed}")
    os.killpg(trial.office.pid, signal.SIGSTOP)
    try:
        wait_for("Calc to stop", lambda: stopped(trial.office.pid))
        begun = time.monotonic()
        trial.process.terminate()
        trial.process.wait(30)
        return time.monotonic() - begun
    finally:
        os.killpg(trial.office.pid, signal.SIGCONT)
        (trial.folder / "panel").unlink(missing_ok=True)


def main():
    trial = Trial(sys.argv[1], sys.argv[2], ".")
    try:
        trial.start_calc()
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

        keyboard = Keyboard(trial.environment["DISPLAY"])
        trial.keys("ctrl+Home")
        time.sleep(2)
        delays = []
        for number in range(400):
            trial.panel.eval("events.length = 0; 0")
            pressed = keyboard.press("Down" if number % 2 else "Right")
            delays.append(wait_for("the event", lambda: trial.panel.eval("events[0]")) - pressed)
            time.sleep(0.1 + 0.03 * (number % 8))
        print(f"key pressed to event, ms: p50 {at(delays, .5):.0f} p95 {at(delays, .95):.0f} "
              f"most {max(delays):.0f}")
        under_fingers(trial, keyboard)

        before = processor_seconds(trial.process.pid)
        time.sleep(10)
        used = processor_seconds(trial.process.pid) - before
        print(f"idle while following: {used * 10:.1f} % of a core")

        for visible in (True, False):
            surface_delay(trial, keyboard, 0, visible)
            delays = [surface_delay(trial, keyboard, number, visible) for number in range(40)]
            print(f"hot key to surface, panel {'visible' if visible else 'hidden'}, ms: "
                  f"p50 {at(delays, .5):.0f} p95 {at(delays, .95):.0f} most {max(delays):.0f}")
        keyboard.close()

        trial.panel.ask("quit")
        trial.process.wait(30)
        (trial.folder / "panel").unlink(missing_ok=True)
        times = [quitting_time(trial) for _ in range(5)]
        print("quitting while Calc is stopped, s:", [round(one, 2) for one in times])
    finally:
        trial.end()


if __name__ == "__main__":
    main()
