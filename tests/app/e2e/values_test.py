#!/usr/bin/env python3
"""The values of a formula's parts: what the panel shows, and what Calc gives for the same text.

usage: values_test.py QUORIN [WORKBOOKS] [--count N] [--seed N] [--book NAME] [--all]

Draws formulas from the workbooks of a folder, or from the sample workbook, as different as can be,
selects them one after the other in a Calc of its own and reads every row of the tree that the panel
beside it shows. The text of each part is then written into a cell of a copy that another office
holds, by a client that knows nothing of Quorin, and both are compared. Prints what differs, by cause, and ends with status 1 where
a cause is not among the known ones; in the sample workbook nothing may differ. `--all` prints every
difference.
"""
import argparse
import collections
import json
import pathlib
import random
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parents[3]
sys.path.insert(0, str(ROOT / "tools" / "dev"))
from calc_text import OF_THE_PLACE, Home, Unknown, scope_at, translated  # noqa: E402
from try_panel import Trial, Trouble, letters, wait_for  # noqa: E402
from workbook_copy import copy_with_sheet  # noqa: E402

LARGEST_ARRAY = 2_000
CALL = re.compile(r"([A-Z][A-Z0-9.]*)\(")
# Another value each time, or one that depends on when it is asked for.
FLEETING = re.compile(r"\b(RAND|RANDBETWEEN|RANDARRAY|NOW|TODAY|RAND\.NV|RANDBETWEEN\.NV)\(", re.I)

# Errors that Calc alone has, and what Excel gives for the same: an argument out of range, one of the
# wrong kind, a formula that cannot be read, cells that wait for each other.
CALCS_OWN = {"Err:502": "#NUM!", "Err:504": "#VALUE!", "Err:508": "#NAME?", "Err:509": "#NAME?",
             "Err:510": "#NAME?", "Err:511": "#NAME?", "Err:512": "#NAME?", "Err:522": "#REF!",
             "Err:523": "#NUM!"}

SETTLED = """(() => {
  const rows = [...document.querySelectorAll('[data-testid="row"]')];
  const of = (row) => row.querySelector('[data-testid="row-value"]').dataset.state;
  const open = rows.filter((row) => !row.classList.contains('unused')
      && ['waiting', 'asking'].includes(of(row)));
  const check = document.querySelector('[data-testid="verification"]');
  return rows.length > 0 && open.length === 0 && check && check.dataset.state !== 'open';
})()"""

ROWS = """(() => {
  const exact = (value) => value && value.querySelector('[data-type]');
  const scroll = document.querySelector('[data-testid="tree"]').scrollTop;
  return [...document.querySelectorAll('[data-testid="row"]')].map((row) => {
    const value = row.querySelector('[data-testid="row-value"]');
    const told = exact(value);
    return { id: row.id, scroll, span: row.dataset.span, unused: row.classList.contains('unused'),
             state: value.dataset.state, text: value.textContent.trim(),
             type: told ? told.dataset.type : null,
             exact: told && told.dataset.exact !== undefined ? told.dataset.exact : null };
  });
})()"""

SETTLED_ROWS = f"{SETTLED} && {ROWS}"

# A press of the button that copies the value; what it copies is told instead of being put away.
COPY = """(() => {
  const row = document.getElementById(%s);
  if (!row) return null;
  row.click();
  return new Promise((done) => setTimeout(() => {
    const command = document.execCommand;
    document.execCommand = () => true;
    const add = document.body.append;
    let copied = null;
    document.body.append = function (one) { copied = one.value; return add.call(this, one); };
    document.querySelector('[data-testid="copy-part"]')?.click();
    document.body.append = add;
    document.execCommand = command;
    window.__copied = copied;
    done();
  }, 0)), 0;
})()"""


def shape(formula):
    """The formula without its numbers, texts and addresses."""
    return re.sub(r'"[^"]*"', '""', re.sub(r"\$?[A-Z]{1,3}\$?\d+|\d+\.?\d*", "0", formula))


def draw(found, count, source):
    """So many of the formulas: first those that bring in functions of their own, then those of
    different shapes."""
    shapes = collections.defaultdict(list)
    for one in found:
        if one[3] in ("=TRUE()", "=FALSE()"):
            continue  # what Calc makes of a truth value that is no formula in the file
        if not FLEETING.search(one[3]) and len(one[3]) > 4:
            shapes[shape(one[3])].append(one)
    groups = [shapes[key] for key in sorted(shapes)]
    source.shuffle(groups)
    groups.sort(key=lambda group: -min(len(group[0][3]) // 12, 8))
    reached, first = set(), []
    for group in groups:
        functions = set(CALL.findall(group[0][3].upper()))
        if functions - reached:
            first.append(group)
            reached |= functions
    groups = first + [group for group in groups if group not in first]
    drawn = []
    while groups and len(drawn) < count:
        drawn += [group.pop(source.randrange(len(group))) for group in groups][:count - len(drawn)]
        groups = [group for group in groups if group]
    return drawn


def same(page, calc):
    """True if a value that the page tells is the one that Calc gives."""
    kind, exact = page
    if isinstance(calc, dict):
        return kind == "Error" and exact == calc["error"]
    if kind == "Number":
        return isinstance(calc, float) and float(exact) == calc
    if kind == "Logical":
        return isinstance(calc, float) and calc == (exact == "TRUE")
    if kind == "Text":
        return exact == calc
    return kind == "Blank" and calc in ("", 0.0)


def as_excel_names(calc):
    if isinstance(calc, dict):
        return {"error": CALCS_OWN.get(calc["error"], calc["error"])}
    return calc


def same_cell(told, calc):
    """A cell of an array, of which the page's copy tells the text alone."""
    if isinstance(calc, dict):
        return told == calc["error"]
    if isinstance(calc, str):
        return told == calc or (told == "" and calc == "")
    if told in ("TRUE", "FALSE"):
        return calc == (told == "TRUE")
    try:
        return float(told) == calc if told else calc == 0
    except ValueError:
        return False


class Values(Trial):
    def __init__(self, arguments):
        self.arguments = arguments
        self.sample = None
        if not arguments.workbooks:
            self.sample = tempfile.TemporaryDirectory(prefix="quorin-values-")
            arguments.workbooks = self.sample.name
            subprocess.run([sys.executable, ROOT / "samples" / "make-sample.py",
                            pathlib.Path(self.sample.name) / "Sample.xlsx"], check=True)
        self.books = sorted(path for path in pathlib.Path(arguments.workbooks).iterdir()
                            if path.suffix == ".xlsx"  # one with macros asks questions
                            and (not arguments.book or arguments.book in path.name))
        if not self.books:
            raise Trouble(f"no workbooks in {arguments.workbooks}")
        super().__init__(arguments.quorin, self.books[0], "/tmp")
        self.compared = collections.Counter()
        self.causes = collections.defaultdict(list)
        self.left_out = collections.Counter()
        self.formulas = 0

    def start_client(self):
        other = self.folder / "other"
        self.other_pipe = f"{self.pipe}-copy"
        self.open_office(other, self.other_pipe, "--headless", "--nodefault")
        script = pathlib.Path(__file__).with_name("value_client.py")

        def connected():
            self.client = subprocess.Popen(
                ["/usr/bin/python3", str(script), self.pipe, self.other_pipe],
                env=self.environment, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                stderr=subprocess.DEVNULL, text=True, start_new_session=True)
            try:
                self.ask("formulas")
            except OSError:
                return False
            except Trouble:
                pass  # it has no workbook yet, but it answers
            self.started.append(self.client)
            return True
        wait_for("the other office", connected)

    def ask(self, what, *arguments):
        self.client.stdin.write(json.dumps({"do": what, "with": arguments}) + "\n")
        self.client.stdin.flush()
        line = self.client.stdout.readline()
        if not line:
            self.client.wait()
            raise OSError("the client is gone")
        reply = json.loads(line)
        if "trouble" in reply:
            raise Trouble(f"{what}: {reply['trouble']}")
        return reply["ok"]

    def run(self):
        self.start_display("1600x1000")
        self.start_office()
        self.start_client()
        self.start_quorin()
        share, rest = divmod(self.arguments.count, len(self.books))
        drawn = []
        for at, book in enumerate(self.books):
            drawn.append((book, share + (at < rest)))
        missing = 0
        for book, count in drawn:
            missing = self.try_book(book, count + missing)
        return self.report()

    def try_book(self, book, count):
        """Compares so many formulas of the book; tells how many it lacked."""
        if count == 0:
            return 0
        self.workbook = self.folder / book.name
        copy = self.folder / "copies" / book.name
        copy.parent.mkdir(exist_ok=True)
        if not self.workbook.exists():
            shutil.copy(book, self.workbook)
        copy_with_sheet(book, copy, "values of parts")
        # Opened as the user would: an office that is told to from outside may block itself.
        self.start("soffice", f"-env:UserInstallation=file://{self.folder / 'office'}",
                   "--norestore", "--nologo", "--calc", self.workbook)
        self.window = wait_for("the workbook's window", self.calc_window)
        wait_for("the workbook", lambda: self.is_open(copy))
        self.tool("xdotool", "windowactivate", "--sync", int(self.window, 16))
        source = random.Random(f"{self.arguments.seed} {book.name}")
        self.functions = self.ask("functions")
        formulas = draw(self.ask("formulas"), count, source)
        begun = time.monotonic()
        for sheet, row, column, text in formulas:
            self.try_formula(book.name, sheet, row, column, text)
        print(f"{book.name}: {len(formulas)} formulas, {time.monotonic() - begun:.0f} s",
              flush=True)
        return count - len(formulas)

    def is_open(self, copy):
        try:
            return self.ask("open", str(self.workbook), str(copy))
        except Trouble:
            return False  # it is still loading

    def show(self, sheet, row, column):
        address = f"{letters(column)}{row + 1}"
        self.ask("select", sheet, row, column)

        def shown():
            now = self.panel.shown()
            return now if (now["sheet"] == sheet and now["value"] is not None and
                           (now["address"] or "").replace("$", "") == address) else None
        end = time.monotonic() + 60
        while time.monotonic() < end:
            try:
                return wait_for("the cell", shown, 5)
            except Trouble:
                # Somebody else came forward meanwhile, or the selection was not heard of.
                self.tool("xdotool", "windowactivate", int(self.window, 16))
                self.ask("select", sheet, row, column)
        raise Trouble(f"the panel does not show {sheet}!{address} but {self.panel.shown()}")

    def rows(self):
        """All rows of the tree with their values, those that are asked for on request, too."""
        found = {}
        self.panel.eval("""document.querySelector('[data-testid="tree"]').scrollTop = 0; 0""")
        while True:
            wait_for("all values", lambda: self.panel.eval(SETTLED))
            asked = self.panel.eval("""(() => { const one = document.querySelector(
                '[data-testid="row-value"][data-state="offered"] button');
                if (one && !one.dataset.tried) { one.dataset.tried = 1; one.click(); return true; }
                return false; })()""")
            if asked:
                continue
            for row in wait_for("all values", lambda: self.panel.eval(SETTLED_ROWS)):
                found[row["id"]] = row
            if not self.panel.eval("""(() => {
                  const tree = document.querySelector('[data-testid="tree"]');
                  const before = tree.scrollTop;
                  tree.scrollTop += tree.clientHeight;
                  return tree.scrollTop > before; })()"""):
                return list(found.values())
            self.let_rows_follow()

    def let_rows_follow(self):
        self.panel.eval("""window.__trialFrames = 0; requestAnimationFrame(() =>
            requestAnimationFrame(() => { window.__trialFrames = 2; })); 0""")
        wait_for("the rows", lambda: self.panel.eval("window.__trialFrames") == 2)

    def copied(self, row):
        if not self.panel.eval(f"document.getElementById({json.dumps(row['id'])}) !== null"):
            self.panel.eval("document.querySelector('[data-testid=\"tree\"]').scrollTop = "
                            f"{row['scroll']}; 0")
            self.let_rows_follow()
        self.panel.eval("window.__copied = undefined; " + COPY % json.dumps(row["id"]))
        wait_for("the copy", lambda: self.panel.eval("window.__copied !== undefined"))
        return self.panel.eval("window.__copied")

    def try_formula(self, book, sheet, row, column, stored):
        place = f"{book} {sheet}!{letters(column)}{row + 1}"
        try:
            shown = self.show(sheet, row, column)
        except Trouble as trouble:
            self.differs("unexplained", place, stored, str(trouble), "")
            return
        if not shown["formula"]:
            self.differs("unexplained", place, stored, "no formula", "")
            return
        self.formulas += 1
        formula = shown["formula"].encode("utf-16-le")
        verdict = None
        try:
            parts = self.rows()
        except Trouble as trouble:
            rows = [row for row in self.panel.eval(ROWS) if row["state"] != "known"]
            self.differs("unexplained", place, shown["formula"], f"{trouble}: {rows}", "")
            return
        known = self.ask("home", sheet, row, column)
        self.home = Home(sheet, set(known["names"]), known["table"], set(known["tables"]),
                         self.functions)
        for part in parts:
            start, end = map(int, part["span"].split(":"))
            text = formula[2 * start:2 * end].decode("utf-16-le")
            verdict = verdict or self.panel.eval(
                "document.querySelector('[data-testid=\"verification\"]').dataset.state")
            before = formula[:2 * start].decode("utf-16-le")
            scope = scope_at(shown["formula"], len(before))
            try:
                self.try_part(place, (sheet, row, column), part, text, scope, verdict)
            except Trouble as trouble:
                self.differs("unexplained", place, text, str(trouble), "")

    def try_part(self, place, cell, part, text, scope, verdict):
        if part["state"] != "known":
            what = "not used" if part["unused"] else part["text"] or part["state"]
            self.left_out[f"parts without a value: {what}"] += 1
            return
        try:
            calc_text = translated(text, self.home, scope)
        except Unknown:
            self.left_out["parts that the translator does not know"] += 1
            return
        if FLEETING.search(calc_text):
            self.left_out["parts that change with time"] += 1
            return
        sheet, row, column = cell
        self.beside = [sheet] if OF_THE_PLACE.search(calc_text) else []
        where = (calc_text, row, column)
        if part["type"] == "Array":
            self.try_array(place, part, text, where)
            return
        page = (part["type"], part["exact"])
        if part["exact"] is None:
            page = (part["type"], self.copied(part))
        calc = self.ask("value", *where, *self.beside)
        if same(page, calc):
            self.compared[part["type"]] += 1
            return
        stored = self.ask("stored", *cell) if part["id"] == "row-0" else None
        of_array = stored is not None and self.ask("is_array", *cell)
        cause = self.cause(page, calc, where, stored, verdict, of_array)
        self.differs(cause, place, text, page, calc)

    def cause(self, page, calc, where, stored, verdict, of_array):
        if page[0] == "Error" and isinstance(calc, dict) and as_excel_names(calc) != calc:
            if same(page, as_excel_names(calc)):
                return f"an error of Calc's own, {calc['error']}, that the page names as Excel does"
        if stored is not None and same(page, as_excel_names(stored)):
            if verdict == "differs":
                return "the cell holds another value than its formula gives; the page says so"
            numbers = isinstance(stored, float) and isinstance(calc, float)
            if numbers and abs(stored - calc) <= 1e-12 * abs(calc):
                return "the cell holds another value than its formula gives, by less than 1e-12"
            if of_array:
                return "a cell of an array formula holds its own part of what the formula gives"
            if re.search(r"\bTABLE\(", where[0]):
                return "the cell of a data table, which Calc leaves blank until it calculates"
        if re.search(r"\bFORMULA\(", where[0]):
            return "the text of a formula, which Calc writes in a grammar of its own"
        if page[0] == "Number" and isinstance(calc, float):
            if abs(float(page[1]) - calc) <= 2.3e-16 * abs(calc):
                return "the last bit of a number"
        array = self.ask("array", *where, 1, 1, *self.beside)["values"][0][0]
        if same(page, array):
            return "a range where one value is meant: the page shows what an array formula gives"
        if page[0] == "Error" and isinstance(calc, dict):
            return f"another error: the page {page[1]}, Calc {calc['error']}"
        return "unexplained"

    def try_array(self, place, part, text, where):
        rows, columns = (int(word.replace(",", "")) for word in
                         re.match(r"([\d,]+) × ([\d,]+)", part["text"]).groups())
        told = part["exact"] if part["exact"] is not None else self.copied(part)
        if not told or rows * columns > LARGEST_ARRAY:
            size = self.ask("array", *where, 1, 1, *self.beside)
            if (size["rows"], size["columns"]) == (rows, columns):
                self.compared["Size of a large range"] += 1
            else:
                self.differs("unexplained", place, text, (rows, columns), size)
            return
        given = self.ask("array", *where, rows, columns, *self.beside)
        cells = [line.split("\t") for line in told.split("\n")]
        fits = (given["rows"], given["columns"]) == (rows, columns) and all(
            same_cell(page, calc) for page_row, calc_row in zip(cells, given["values"])
            for page, calc in zip(page_row, calc_row)) and len(cells) == rows
        if fits:
            self.compared["Array"] += 1
            return
        self.differs("unexplained", place, text, told[:200], given)

    def differs(self, cause, place, text, page, calc):
        self.causes[cause].append(f"{place}: {text}\n    page {page}\n    Calc {calc}")

    def report(self):
        equal = sum(self.compared.values())
        different = sum(map(len, self.causes.values()))
        print(f"{self.formulas} formulas of {len(self.books)} workbooks, seed "
              f"{self.arguments.seed}: {equal + different} parts compared, {different} differ")
        for kind, amount in sorted(self.compared.items()):
            print(f"  equal: {kind:30}{amount:6}")
        for what, amount in sorted(self.left_out.items()):
            print(f"  left out: {amount:4}  {what}")
        for cause, ones in sorted(self.causes.items()):
            print(f"  differ: {len(ones):4}  {cause}")
            shown = ones if self.arguments.all or cause == "unexplained" else ones[:2]
            for one in shown:
                print(f"    {one}"[:900])
        enough = self.formulas >= self.arguments.count * 0.9 and equal > self.formulas
        # In the sample workbook nothing differs at all.
        return enough and not (self.causes if self.sample else self.causes["unexplained"])


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("quorin")
    parser.add_argument("workbooks", nargs="?")
    parser.add_argument("--count", type=int, default=12)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--book", default="")
    parser.add_argument("--all", action="store_true")
    trial = Values(parser.parse_args())
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))
    begun = time.monotonic()
    try:
        good = trial.run()
    except (Trouble, OSError) as trouble:
        print(f"The trial failed: {trouble}")
        trial.output = trial.folder  # the picture goes with it
        trial.tell_what_was_said()
        good = False
    finally:
        trial.end()
        if trial.sample:
            trial.sample.cleanup()
    print(f"{time.monotonic() - begun:.0f} s")
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main())
