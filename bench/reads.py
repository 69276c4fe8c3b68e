#!/usr/bin/python3
"""Ranges read by quorinctl, from request to reply text, beside LibreOffice's own Python bridge and
json.dumps reading the same cells of the same file, by turns in one run.

    bench/reads.py build/release/tools/quorinctl [rounds]
    bench/reads.py build/release/tools/quorinctl --calls
    bench/reads.py build/release/tools/quorinctl --large

--calls compares the map of a workbook of 130 sheets and evaluations with the same calls made
directly from Python. --large reads 450,000 formula cells in pieces of 20,000 instead and tells what memory that takes.
Needs python3-uno. The first rounds are not counted. Processor time is that of the asking process
(for quorinctl with all its threads) and of its office."""
import contextlib
import json
import os
import pathlib
import statistics
import subprocess
import sys
import tempfile
import time

import uno

ROWS, COLUMNS, WARMING = 2000, 10, 4
HEAD = """<?xml version="1.0" encoding="UTF-8"?>
<office:document xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0"
 xmlns:table="urn:oasis:names:tc:opendocument:xmlns:table:1.0"
 xmlns:text="urn:oasis:names:tc:opendocument:xmlns:text:1.0"
 xmlns:of="urn:oasis:names:tc:opendocument:xmlns:of:1.2" office:version="1.3"
 office:mimetype="application/vnd.oasis.opendocument.spreadsheet"><office:body><office:spreadsheet>"""
TAIL = "</office:spreadsheet></office:body></office:document>"


def number(value):
    return f'<table:table-cell office:value-type="float" office:value="{value}"/>'


def text(value):
    return f'<table:table-cell office:value-type="string"><text:p>{value}</text:p></table:table-cell>'


def formula(value, written):
    return (f'<table:table-cell table:formula="of:={written}" office:value-type="float" '
            f'office:value="{value}"/>')


def datum(row, column):
    if column % 5 == 4:
        return text(f"text {row} {column}")
    return number(row * 10 + column + 2 + 0.125 * (column % 2))


def calculation(row, column):
    letter = chr(ord("A") + column)
    if column % 2:
        return formula(row + column, f"SUM([Data.{letter}{row + 1}:.{letter}{row + 3}])*1.5"
                                     f"+[Data.$A${row + 1}]")
    return formula(row + column, f"IF([Data.A{row + 1}]&gt;10;[Data.C{row + 1}]*2;[Data.B$1])")


def table(name, rows, columns, cell):
    lines = ("<table:table-row>" + "".join(cell(row, column) for column in range(columns)) +
             "</table:table-row>" for row in range(rows))
    return f'<table:table table:name="{name}">' + "".join(lines) + "</table:table>"


def processor(pid):
    """Seconds of a process with all its threads."""
    fields = pathlib.Path(f"/proc/{pid}/stat").read_text().rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


def memory(pid, entry):
    """Megabytes: VmRSS, or VmHWM for the most there ever was."""
    for line in pathlib.Path(f"/proc/{pid}/status").read_text().splitlines():
        if line.startswith(entry):
            return int(line.split()[1]) / 1024
    raise KeyError(entry)


def office_below(ancestor):
    """The office that this process, or a process started by it, runs."""
    children = {}
    for entry in pathlib.Path("/proc").glob("[0-9]*"):
        try:
            stat = (entry / "stat").read_text()
        except OSError:
            continue
        name, fields = stat[stat.index("(") + 1:stat.rindex(")")], stat.rsplit(")", 1)[1].split()
        children.setdefault(int(fields[1]), []).append((int(entry.name), name))
    waiting = [ancestor]
    while waiting:
        for pid, name in children.get(waiting.pop(), []):
            if name == "soffice.bin":
                return pid
            waiting.append(pid)
    raise ProcessLookupError("no office")


class Quorin:
    def __init__(self, program, workbook):
        self.process = subprocess.Popen([program, "--workbook", workbook], stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE)
        self.ask("probe", [])
        self.pid, self.office = self.process.pid, office_below(self.process.pid)

    def ask(self, verb, args):
        request = json.dumps({"id": 1, "verb": verb, "args": args}) + "\n"
        self.process.stdin.write(request.encode())
        self.process.stdin.flush()
        reply = self.process.stdout.readline()
        if b'"ok":true' not in reply[:30]:
            raise RuntimeError(reply[:300])
        return reply

    def read(self, formulas):
        if formulas:
            return self.ask("readFormulas", [f"Calc!A1:J{ROWS}", "a1", False])
        return self.ask("readRange", [f"Data!A1:J{ROWS}"])

    def close(self):
        self.process.stdin.close()
        self.process.wait()


class PythonBridge:
    def __init__(self, folder, workbook):
        pipe = f"quorin-bench-{os.getpid()}"
        self.process = subprocess.Popen(
            ["soffice", "--headless", "--norestore", "--nologo", "--nodefault",
             f"-env:UserInstallation=file://{folder}/profile", f"--accept=pipe,name={pipe};urp;"],
            stderr=subprocess.DEVNULL)
        local = uno.getComponentContext()
        resolver = local.ServiceManager.createInstanceWithContext(
            "com.sun.star.bridge.UnoUrlResolver", local)
        for _ in range(300):
            try:
                context = resolver.resolve(f"uno:pipe,name={pipe};urp;StarOffice.ComponentContext")
                break
            except Exception:
                time.sleep(0.1)
        self.desktop = context.ServiceManager.createInstanceWithContext(
            "com.sun.star.frame.Desktop", context)
        self.document = self.desktop.loadComponentFromURL(f"file://{workbook}", "_blank", 0, ())
        self.pid, self.office = os.getpid(), office_below(self.process.pid)

    def read(self, formulas):
        cells = self.document.Sheets.getByName("Calc" if formulas else "Data")
        cells = cells.getCellRangeByName(f"A1:J{ROWS}")
        reply = {"values": cells.getDataArray(), "rows": ROWS, "cols": COLUMNS}
        if formulas:
            reply["formulas"] = cells.getFormulaArray()
        return json.dumps(reply)

    def map(self):
        """What "workbookMap" needs: names, the used areas of 50 sheets, defined names."""
        sheets = self.document.Sheets
        names, areas = sheets.getElementNames(), []
        for name in names[:50]:
            cursor = sheets.getByName(name).createCursor()
            cursor.gotoStartOfUsedArea(False)
            cursor.gotoEndOfUsedArea(True)
            area = cursor.getRangeAddress()
            areas.append([area.StartRow, area.StartColumn, area.EndRow, area.EndColumn])
        own = [self.document.NamedRanges] + [sheets.getByName(name).NamedRanges for name in names]
        defined = [(name, ranges.getByName(name).getContent())
                   for ranges in own for name in ranges.getElementNames()]
        return json.dumps([self.document.getURL(), names, areas, defined])

    def evaluate(self, formula):
        """In a spare cell, which an evaluation that leaves no trace must not do."""
        cell = self.document.Sheets.getByIndex(1).getCellByPosition(50, 0)
        cell.setFormula("=" + formula)
        value = cell.getError() or cell.getValue()
        cell.setFormula("")
        return json.dumps(value)

    def close(self):
        try:
            self.desktop.terminate()
        except Exception:
            pass
        self.process.wait()


def measured(reader, work):
    own, office, start = processor(reader.pid), processor(reader.office), time.perf_counter()
    work()
    wall = time.perf_counter() - start
    return wall * 1000, (processor(reader.pid) - own) * 1000, (
        processor(reader.office) - office) * 1000


def side_by_side(title, rounds, ours, theirs):
    """Each is (reader, work)."""
    times = [], []
    for _ in range(rounds + WARMING):
        for each, (reader, work) in zip(times, (ours, theirs)):
            each.append(measured(reader, work))
    print(title)
    summary = []
    for name, each in zip(("quorinctl", "python"), times):
        wall, own, office = zip(*each[WARMING:])
        summary.append((statistics.median(wall), statistics.mean(own) + statistics.mean(office)))
        print(f"  {name:10} median {summary[-1][0]:6.1f} ms, best {min(wall):6.1f} ms, "
              f"processor {statistics.mean(own):5.1f} + {statistics.mean(office):5.1f} ms")
    print(f"  ratio of the medians {summary[0][0] / summary[1][0]:.2f}, "
          f"of processor time {summary[0][1] / summary[1][1]:.2f}")


@contextlib.contextmanager
def both(program, folder, workbook):
    """Quorin and Python's bridge with the workbook open, both closed whatever happens."""
    with contextlib.ExitStack() as opened:
        readers = []
        for make in (lambda: Quorin(program, workbook), lambda: PythonBridge(folder, workbook)):
            readers.append(make())
            opened.callback(readers[-1].close)
        yield readers


def compare(program, rounds, folder):
    workbook = folder / "reads.fods"
    workbook.write_text(HEAD + table("Data", ROWS, COLUMNS, datum) +
                        table("Calc", ROWS, COLUMNS, calculation) + TAIL)
    with both(program, folder, workbook) as (ours, theirs):
        for formulas in (False, True):
            side_by_side(f"{'readFormulas' if formulas else 'readRange'} of {ROWS * COLUMNS} cells",
                         rounds, (ours, lambda: ours.read(formulas)),
                         (theirs, lambda: theirs.read(formulas)))


def compare_calls(program, folder):
    workbook = folder / "sheets.fods"
    workbook.write_text(HEAD + "".join(table(f"Sheet {number}", 20, 10, datum)
                                       for number in range(130)) + TAIL)
    with both(program, folder, workbook) as (ours, theirs):
        side_by_side("workbookMap of 130 sheets", 20, (ours, lambda: ours.ask("workbookMap", [])),
                     (theirs, theirs.map))
        for excel, calc in (("1+2", "1+2"),
                            ("SUM('Sheet 3'!A1:B20)*2", "SUM($'Sheet 3'.A1:B20)*2")):
            side_by_side(f"evaluate {excel}", 40, (ours, lambda: ours.ask("evaluate", [excel])),
                         (theirs, lambda: theirs.evaluate(calc)))


def large(program, folder):
    rows, columns = 45000, 10
    workbook = folder / "large.fods"
    workbook.write_text(HEAD + table("Data", 3, 3, datum) +
                        table("Calc", rows, columns, calculation) + TAIL)
    start = time.perf_counter()
    with contextlib.closing(Quorin(program, workbook)) as quorin:
        print(f"opened in {time.perf_counter() - start:.1f} s")
        read_large(quorin, rows, columns)


def read_large(quorin, rows, columns):
    quorin.ask("readFormulas", [f"Calc!A1:J{ROWS}", "a1", False])
    before, cpu, start = memory(quorin.pid, "VmRSS"), processor(quorin.pid), time.perf_counter()
    size = 0
    for first in range(1, rows, ROWS):
        size += len(quorin.ask("readFormulas",
                               [f"Calc!A{first}:J{min(first + ROWS - 1, rows)}", "a1", False]))
    took, cpu = time.perf_counter() - start, processor(quorin.pid) - cpu
    print(f"{rows * columns} formula cells in {took:.1f} s, {size / 1e6:.0f} MB of replies, "
          f"{cpu:.1f} s of our processor time")
    print(f"our memory before {before:.0f} MB, after {memory(quorin.pid, 'VmRSS'):.0f} MB, "
          f"at most {memory(quorin.pid, 'VmHWM'):.0f} MB")


def main():
    program = os.path.abspath(sys.argv[1])
    with tempfile.TemporaryDirectory(prefix="quorin-bench-") as name:
        folder = pathlib.Path(name)
        if sys.argv[2:] == ["--large"]:
            large(program, folder)
        elif sys.argv[2:] == ["--calls"]:
            compare_calls(program, folder)
        else:
            compare(program, int(sys.argv[2]) if sys.argv[2:] else 40, folder)


main()
