#!/usr/bin/env python3
"""Tries Dependents and Drivers of a whole workbook in the real panel, beside a real Calc.

usage: try_dependents.py QUORIN WORKBOOK OUTPUT_FOLDER CELL

CELL is an input, "'My sheet'!B4". Reads the workbook, opens the cells that use the input three levels
deep, marks an entry, goes to a result that rests on the input and opens what that rests on and how it
gets there. Prints the rows, writes screenshots, and measures how long the page's main thread was kept
at a stretch. Status 0 when users on other sheets were listed and the result led back to the input.
"""
import json
import sys
import time

from try_panel import Trial, Trouble, wait_for

TOOLS = """(() => {
  // Rows are used again while a list is scrolled: their numbers tell their order.
  const number = (one) => Number(/^place-(\\d+)$/.exec(one.id)?.[1] ?? 0);
  const all = (id) => [...document.querySelectorAll(`[data-testid=${id}]`)]
    .sort((a, b) => number(a) - number(b));
  const text = (one) => one.innerText.replace(/\\s+/g, " ").trim();
  window.trial = {
    gaps: null,
    rows: () => all("place").map(text),
    levels: () => all("place").map((one) => [Number(one.ariaLevel ?? one.getAttribute("aria-level")),
                                            one.getAttribute("aria-expanded"), text(one)]),
    numbered: () => all("place").map((one) => [number(one), text(one)]),
    says: (id) => { const [one] = all(id); return one ? text(one) : ""; },
    press: (id) => { const [one] = all(id); one?.click(); return !!one; },
    open: (i) => { all("place")[i].querySelector(".twisty").click(); },
    choose: (i) => { all("place")[i].click(); },
    reply: null,
    select: (address) => webkit.messageHandlers.qx.postMessage(
      {id: -7, verb: "select", args: [[address]]}),
  };
  window.trial.parts = [];
  const timed = (what, work) => {
    const begun = performance.now();
    work();
    const took = performance.now() - begun;
    if (took >= 4) window.trial.parts.push([what, Math.round(took)]);
  };
  const resolve = window.__qxResolve;
  window.__qxResolve = (id, reply) => {
    if (id === -7) window.trial.reply = reply;
    else timed("reply", () => resolve(id, reply));
  };
  const post = Worker.prototype.postMessage;
  Worker.prototype.postMessage = function (...given) {
    timed("post", () => post.apply(this, given));
  };
  // How late a timer of no time at all comes: what keeps the main thread keeps it.
  const tick = () => {
    const now = performance.now();
    if (window.trial.gaps) window.trial.gaps.push(now - window.trial.last);
    window.trial.last = now;
    setTimeout(tick, 0);
  };
  window.trial.last = performance.now();
  tick();
})(); 0"""


class Tried:
    def __init__(self, trial, output):
        self.trial, self.panel, self.output = trial, trial.panel, output
        self.pictures = 0

    def eval(self, script):
        return self.panel.eval(script)

    def picture(self, what):
        self.pictures += 1
        name = f"{self.pictures}-{what}.png"
        self.trial.take_picture(name)
        print(f"  [{name}]")

    def rows(self):
        return self.eval("trial.levels()")

    def every_row(self):
        """Those out of sight too."""
        found = {}
        for step in range(200):
            place = self.eval(f"""(() => {{ const list = document.querySelector("[data-testid=list]");
                list.scrollTop = {step} * 200; return list.scrollTop; }})()""")
            time.sleep(0.05)
            for number, row in self.eval("trial.numbered()"):
                found[number] = row
            if place < step * 200:
                break
        self.eval("document.querySelector('[data-testid=list]').scrollTop = 0; 0")
        return [found[number] for number in sorted(found)]

    def show(self, limit=30):
        for level, _, text in self.rows()[:limit]:
            print("   " + "  " * level + text)

    def select(self, address):
        cell = address.rpartition("!")[2].replace("$", "")
        self.trial.keys()  # the selection is followed while Calc is in front
        self.eval(f"trial.reply = null; trial.select({json.dumps(address)}); 0")
        reply = wait_for("the selection", lambda: self.eval("trial.reply"))
        if not reply["ok"]:
            raise Trouble(f"{address} cannot be selected: {reply}")
        wait_for(f"{address} to be shown", lambda: self.eval("trial.says('address')") == cell)

    def whole(self):
        return (self.eval("trial.says('list-note')").startswith(("All ", "The only sheet"))
                and self.eval("trial.says('scan-text')") == "")

    def close_groups(self):
        """Only rows in sight are drawn."""
        for _ in range(40):
            open_one = next((i for i, (level, expanded, _) in enumerate(self.rows())
                             if level == 1 and expanded == "true"), None)
            if open_one is None:
                return
            self.eval(f"trial.open({open_one}); 0")

    def open(self, text, above=None):
        """Opens the first row with `text`, and gives its number once it holds rows."""
        def found():
            for i, (_, expanded, shown) in enumerate(self.rows()):
                if text in shown and expanded is not None and (above is None or i > above):
                    return i + 1
            return None
        number = wait_for(f"a row with {text}", found) - 1
        if self.rows()[number][1] != "true":
            self.eval(f"trial.open({number}); 0")

        def filled():
            rows = self.rows()
            inner = rows[number + 1] if number + 1 < len(rows) else None
            return inner and inner[0] > rows[number][0] and "Looking" not in inner[2]
        wait_for(f"the rows of {text}", filled)
        return number


def gaps(tried, what, work):
    tried.eval("trial.gaps = []; 0")
    begun = time.monotonic()
    work()
    took = time.monotonic() - begun
    found = tried.eval("trial.gaps.filter((one) => one > 12)")
    total = tried.eval("(() => { const all = trial.gaps.length; trial.gaps = null; return all; })()")
    found.sort(reverse=True)
    parts = tried.eval("trial.parts.splice(0)")
    print(f"{what}: {took:.1f} s, main thread kept over 16 ms {sum(one > 16 for one in found)} times "
          f"of {total}, longest {[round(one) for one in found[:6]]} ms; of replies handled "
          f"{sorted((p[1] for p in parts if p[0] == 'reply'), reverse=True)[:4]}, of messages to the "
          f"model {sorted((p[1] for p in parts if p[0] == 'post'), reverse=True)[:4]}")


def three_levels(tried):
    """Opens users of users; gives how deep it came."""
    depth, above = 0, 0
    for _ in range(3):
        rows = tried.rows()
        for i in range(above, len(rows)):
            level, expanded, text = rows[i]
            if level == depth + 2 and expanded is not None and "!" in text + "!":
                break
        else:
            return depth
        if rows[i][1] != "true":
            tried.eval(f"trial.open({i}); 0")
        wait_for("its users", lambda: "Looking" not in " ".join(
            text for _, _, text in tried.rows()[i + 1:i + 2]))
        depth, above = depth + 1, i
    return depth


def main():
    quorin, workbook, output, cell = sys.argv[1:]
    trial = Trial(quorin, workbook, output)
    good = True
    try:
        trial.start_calc()
        trial.start_quorin()
        trial.stand_beside_calc()
        tried = Tried(trial, output)
        wait_for("the page", lambda: tried.eval("!!document.querySelector('[data-testid=state]')"))
        tried.eval(TOOLS)
        wait_for("a cell", lambda: tried.eval("trial.says('address')"))
        tried.select(cell)
        gaps(tried, "nothing done", lambda: time.sleep(8))

        def scan():
            tried.eval("trial.press('tab-deps'); 0")
            wait_for("the scan", lambda: tried.whole() or tried.eval("trial.press('scan-go')"))
            wait_for("all sheets", tried.whole, 400)
        gaps(tried, "the scan", scan)
        print(tried.eval("trial.says('list-heading')"), "|", tried.eval("trial.says('list-under')"))
        print(tried.eval("trial.says('list-note')"))
        others = [text for level, expanded, text in tried.rows()
                  if level == 1 and expanded == "true" and not text.startswith("This sheet")]
        good &= bool(others)
        gaps(tried, "three levels", lambda: None if three_levels(tried) == 3 else print("not three"))
        tried.show()
        tried.picture("dependents")

        entry = next(i for i, (level, _, _) in enumerate(tried.rows()) if level == 2)
        tried.eval(f"trial.choose({entry}); 0")
        wait_for("the marks", lambda: tried.eval("trial.says('marked')"))
        print("marked:", tried.eval("trial.says('marked')"), "| shapes on the sheets:",
              trial.cell()["shapes"])
        tried.picture("marked")

        tried.close_groups()
        tried.open("Results that rest on it")
        results = [text for _, _, text in tried.rows()]
        at_results = next(i for i, text in enumerate(results) if text.startswith("Results"))
        print("results:", results[at_results + 1:at_results + 4])
        tried.open("", above=at_results)
        tried.picture("result-ways")
        address = results[at_results + 1].split(" ×")[0]
        sheet, _, rest = address.rpartition("!")
        first = rest.split()[0].split(":")[0]
        tried.select(f"'{sheet}'!{first}" if sheet else f"{cell.rpartition('!')[0]}!{first}")
        tried.eval("trial.press('tab-deps'); 0")
        wait_for("all sheets", tried.whole, 400)
        tried.close_groups()
        number = tried.open("What it rests on")
        drivers = tried.every_row()[number + 1:]
        print("drivers:", drivers[:6])
        name = cell.replace("'", "")
        hit = [text for text in drivers if name in text or name.rpartition("!")[2] in text]
        print("the input among them:", hit[:2])
        good &= bool(hit)
        tried.open("", above=number)
        tried.picture("drivers")
    finally:
        trial.end()
    sys.exit(0 if good else 1)


if __name__ == "__main__":
    main()
