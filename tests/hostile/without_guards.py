#!/usr/bin/env python3
"""Takes each guard out, one after another, and lists which tests of hostile workbooks then fail.

usage: without_guards.py [--folder FOLDER] [--guard NAME]... [--keep]

Works in a copy of the sources as they are committed: a git worktree in FOLDER, with a build of its
own. A guard is taken out by a small change of the sources; a change that no longer fits is an error,
so that this list stays true. What has to fail then is named beside it: cases of the corpus, tests of
a program, tests of the page. One that passes without its guard proves nothing, and is a failure here.
"""
import argparse
import dataclasses
import pathlib
import re
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tests" / "hostile"))
import make_corpus  # noqa: E402,F401
from case import CASES  # noqa: E402


@dataclasses.dataclass(frozen=True)
class Guard:
    name: str
    changes: tuple  # (file, text, text instead)
    cases: tuple = ()  # of the corpus, through quorinctl, each of which has to fail
    tests: tuple = ()  # (target, program, --gtest_filter), of which at least one test has to fail
    page: str = ""  # a file of the page's tests, of which at least one has to fail
    beside: tuple = ()  # of the corpus, beside the panel, each of which has to fail


CALC = "host/calc/"
ALL_ALLOWED = (CALC + "HarmlessFunctions.cpp", "bool isHarmless(std::string_view function) {\n",
               "bool isHarmless(std::string_view function) {\n  if (!function.empty()) return true;\n")
WRITTEN_AGAIN = (
    CALC + "ExpressionWriter.cpp",
    "  const auto [found, isNew] = names_.entries.try_emplace(key);\n",
    "  if (const auto old = names_.entries.find(key);\n"
    "      old != names_.entries.end() && !old->second.isOpen) {\n"
    "    names_.entries.erase(old);\n  }\n"
    "  const auto [found, isNew] = names_.entries.try_emplace(key);\n")
UNBOUNDED = (CALC + "ExpressionWriter.cpp", "void ExpressionWriter::bound() const {\n",
             "void ExpressionWriter::bound() const {\n  if (depth_ >= 0) return;\n")
ENDLESS = (CALC + "CallLimits.h", "  void check() const {\n",
           "  void check() const {\n    if (!until_ || until_) return;\n")

# Not a guard: what a workbook would do that ends the program. For the cases that Calc and its parsers
# bear, and once for all others.
ENDS = (CALC + "CalcWorkbooks.cpp", "  workbook->url = toText(model->getURL());\n",
        "  workbook->url = toText(model->getURL());\n"
        "  if (workbook->url.find(\"/books/\") != std::string::npos) __builtin_trap();\n")
# Of these Calc opens none, so nothing of ours meets them.
REFUSED = ("truncated", "other-contents", "repeated-cells", "entity-expansion-in-a-flat-document")

NO_PROXY = (CALC + "PrivateOffice.cpp", '"ooInetProxyType", "2"', '"ooInetProxyType", "0"')

GUARDS = (
    Guard("allow list", (ALL_ALLOWED,),
          cases=("webservice", "webservice-in-name", "webservice-in-nested-names",
                 "webservice-in-names-of-sheets", "webservice-in-a-calculated-column",
                 "webservice-where-references-are-expected",
                 "webservice-in-conditional-formats-and-validation",
                 "webservice-in-a-flat-document", "dde"),
          tests=(("calc_text_test", "tests/calc/calc_text_test", "HarmlessFunctions.*"),
                 ("calc_reads_test", "tests/calc/calc_reads_test", "CalcReach.*"))),
    Guard("texts that name other files", ((
        CALC + "ExpressionWriter.cpp", "void ExpressionWriter::keepInside(const Frame& frame) {\n",
        "void ExpressionWriter::keepInside(const Frame& frame) {\n"
        "  if (frame.function == \"INDIRECT\") return;\n"),),
          cases=("webservice-in-a-text-of-indirect",),
          tests=(("calc_reads_test", "tests/calc/calc_reads_test", "CalcReach.FindsNothing*"),)),
    Guard("names written once", (WRITTEN_AGAIN,),
          tests=(("calc_text_test", "tests/calc/calc_text_test", "BoundedExpression.*"),)),
    Guard("bounds of what is written", (UNBOUNDED,),
          tests=(("calc_text_test", "tests/calc/calc_text_test",
                  "BoundedExpression.IsNoLonger*"),)),
    Guard("bounds of arrays", ((
        CALC + "OfficeWork.cpp", "mostCrossed = 4e6;", "mostCrossed = 4e60;"),),
          tests=(("calc_text_test", "tests/calc/calc_text_test", "ArrayWork.*"),)),
    Guard("bounds of what Calc does in one go", (
        (CALC + "OfficeWork.cpp", "mostSteps = 5e7;", "mostSteps = 5e70;"),
        (CALC + "OfficeWork.cpp", "mostCounted = 1e8;", "mostCounted = 1e80;"),
        (CALC + "OfficeWork.cpp", "mostCharacters = 2e8;", "mostCharacters = 2e80;"),
        (CALC + "OfficeWork.cpp", "mostCrossed = 4e6;", "mostCrossed = 4e60;")),
          cases=("work-that-nobody-can-end", "big-arrays"),
          tests=(("calc_text_test", "tests/calc/calc_text_test", "OfficeWork.*"),
                 ("calc_reads_test", "tests/calc/calc_reads_test",
                  "CalcLimitsAmongScatteredCells.AskNothing*"))),
    Guard("sizes of cells that are found", ((
        CALC + "ExpressionCalls.cpp", "  if (findsCells(frame.function) && !isTakenWhole()) {\n",
        "  if (findsCells(frame.function) && frame.signs < 0) {\n"),),
          cases=("work-that-nobody-can-end",),
          tests=(("calc_text_test", "tests/calc/calc_text_test", "OfficeWork.*"),)),
    Guard("last dates", ((
        CALC + "BoundedCall.cpp", "if (isIn(dated, call.function, i))",
        "if (values < 0 && isIn(dated, call.function, i))"),),
          cases=("work-that-nobody-can-end",),
          tests=(("calc_text_test", "tests/calc/calc_text_test", "OfficeWork.*"),)),
    Guard("the deadline among shapes and headers", (ENDLESS,),
          tests=(("calc_reads_test", "tests/calc/calc_reads_test",
                  "CalcLimitsTest.AreLookedAtAmongThe*"),)),
    Guard("permissions", ((
        "app/linux/WebKitView.cpp", "  webkit_permission_request_deny(request);\n",
        "  webkit_permission_request_allow(request);\n"),),
          tests=(("gtk_test", "tests/app/linux/gtk_test", "WebKitViewTest.GrantsNo*"),)),
    Guard("room for text", ((
        CALC + "AreaGrid.h", "most = 12'000'000;", "most = 12'000'000'000;"),),
          cases=("one-long-string-in-many-cells",)),
    Guard("quoted names of sheets", ((
        CALC + "ReferenceText.cpp", "  std::string quoted = \"$'\";\n",
        "  if (!name.empty()) return \"$\" + name;\n  std::string quoted = \"$'\";\n"),),
          cases=("quotes",)),
    Guard("the program, which ends where it meets the workbook", (ENDS,),
          cases=tuple(case.name for case in CASES
                      if case.write.__module__ in ("odd_cases", "endless_cases")
                      and case.name not in REFUSED)),
    Guard("deadlines", (ENDLESS,),
          tests=(("calc_reads_test", "tests/calc/calc_reads_test", "CalcLimitsTest.*"),)),
    Guard("copies", ((CALC + "CalcEvaluator.cpp",
                      "  if (!context.asked) refuseCopyThatReaches(",
                      "  if (context.asked) refuseCopyThatReaches("),),
          tests=(("calc_reads_test", "tests/calc/calc_reads_test", "CalcReach.Copies*"),)),
    Guard("settings of a private office", ((
        CALC + "PrivateOffice.cpp", '"BlockUntrustedRefererLinks", "true"',
        '"BlockUntrustedRefererLinks", "false"'), NO_PROXY),
          cases=("pictures-elsewhere", "indirect-at-loading")),
    Guard("address of the page", ((
        "app/shell/PageAddress.cpp",
        "bool isSamePage(std::string_view address, std::string_view page) {\n",
        "bool isSamePage(std::string_view address, std::string_view page) {\n"
        "  if (!address.empty()) return true;\n"),),
          tests=(("shell_test", "tests/app/shell/shell_test", "PageAddress*"),)),
    Guard("the page's look at what Excel is asked", ((
        "web/src/core/evaluation/ReachGuard.ts",
        "private async reason(expressions: readonly string[]): Promise<string | undefined> {\n",
        "private async reason(expressions: readonly string[]): Promise<string | undefined> {\n"
        "    if (expressions.length > 0) return undefined;\n"),),
          page="tests/core/evaluation/ReachGuard.test.ts"),
    Guard("texts as texts", tuple(
        (f"web/src/view/{view}.tsx", f"textContent={{{text}}}", f"innerHTML={{{text}}}")
        for view, text in (("TreeView", "text()"), ("RowValue", "text()"),
                           ("PlaceListView", "oneLine(row().text)"),
                           ("Crumbs", "oneLine(label())"))),
          beside=("texts-that-look-like-markup", "markup-in-names")),
    Guard("values in the log", ((
        "kit/bridge/LoggedError.cpp", "std::string loggedText(const std::exception& error) {\n",
        "std::string loggedText(const std::exception& error) {\n"
        "  if (error.what()) return error.what();\n"),),
          tests=(("bridge_test", "tests/kit/bridge/bridge_test", "Dispatch.Logs*"),)),
)


def run(*words, folder, check=True, patience=3600):
    done = subprocess.run([str(word) for word in words], cwd=folder, capture_output=True, text=True,
                          errors="replace", timeout=patience, check=False)
    if check and done.returncode:
        raise SystemExit(f"{' '.join(map(str, words))}\n{done.stdout[-3000:]}{done.stderr[-3000:]}")
    return done


class Scratch:
    def __init__(self, folder):
        self.sources = folder / "sources"
        if not (self.sources / ".git").exists():
            run("git", "worktree", "add", "--force", "--detach", self.sources, "HEAD", folder=ROOT)
        else:
            head = run("git", "rev-parse", "HEAD", folder=ROOT).stdout.strip()
            run("git", "checkout", "--force", "--detach", head, folder=self.sources)
        self.build = self.sources / "build" / "dev"
        self.prepared = False

    def prepare(self):
        """What a build needs that is not in git."""
        if not self.prepared:
            modules = self.sources / "web" / "node_modules"
            if not modules.exists():
                modules.symlink_to(ROOT / "web" / "node_modules")
            if not (self.sources / "web" / "dist").exists():
                run("npm", "run", "build", folder=self.sources / "web")
            if not (self.build / "CMakeCache.txt").exists():
                run("cmake", "--preset", "dev", folder=self.sources)
        self.prepared = True

    def make(self, *targets):
        self.prepare()
        run("cmake", "--build", "--preset", "dev", "--target", *targets, folder=self.sources)

    def change(self, guard):
        for file, text, instead in guard.changes:
            path = self.sources / file
            before = path.read_text()
            if before.count(text) != 1:
                raise SystemExit(f"{guard.name}: the change no longer fits {file}")
            path.write_text(before.replace(text, instead))

    def restore(self):
        run("git", "checkout", "--force", "--", ".", folder=self.sources)

    def failing_cases(self, cases):
        return self.failing_of(cases, "hostile_quorinctl_test.py", "quorinctl", "tools")

    def failing_beside_the_panel(self, cases):
        self.prepare()
        run("npm", "run", "build", folder=self.sources / "web")
        return self.failing_of(cases, "hostile_panel_test.py", "quorin_inspected", "app/linux")

    def failing_of(self, cases, test, target, place):
        self.make(target, "hostile_reaches", "quorin-marks-keeper")
        only = [word for case in cases for word in ("--only", case)]
        told = run(sys.executable, self.sources / "tests/hostile" / test,
                   self.build / place / target,
                   self.build / "tests/hostile/libhostile_reaches.so", *only, folder=self.sources,
                   check=False).stdout
        # One that is not told about did not pass either: the test may have ended in it.
        passed = {line.split()[1] for line in told.splitlines() if line.startswith("passed")}
        return [case for case in cases if case not in passed], told

    def failing_tests(self, target, program, only):
        self.make(target)
        told = run(self.build / program, f"--gtest_filter={only}", folder=self.sources,
                   check=False).stdout
        return sorted(set(re.findall(r"^\[  FAILED  \] ([\w./]+)", told, re.M)))

    def failing_on_the_page(self, file):
        self.prepare()
        told = run("npx", "vitest", "run", "--reporter=verbose", file, folder=self.sources / "web",
                   check=False).stdout
        return len(re.findall(r"^ *\S*×", told, re.M))

    def end(self):
        run("git", "worktree", "remove", "--force", self.sources, folder=ROOT)


def try_without(scratch, guard):
    """Lines for the reader, and what passed that should have failed."""
    lines, passed = [], []
    scratch.change(guard)
    try:
        if guard.page:
            failed = scratch.failing_on_the_page(guard.page)
            lines.append(f"{guard.page}: {failed} tests fail")
            passed += [] if failed else [guard.page]
        for target, program, only in guard.tests:
            failed = scratch.failing_tests(target, program, only)
            lines += failed
            passed += [] if failed else [f"{target} {only}"]
        for cases, look in ((guard.cases, scratch.failing_cases),
                            (guard.beside, scratch.failing_beside_the_panel)):
            if not cases:
                continue
            failed, told = look(cases)
            lines += [one.strip() for one in told.splitlines() if one.startswith(("FAILED", "    "))]
            passed += [case for case in cases if case not in failed]
    finally:
        scratch.restore()
    return lines, passed


def main():
    parser = argparse.ArgumentParser(description=__doc__.partition("\n")[0])
    parser.add_argument("--folder", type=pathlib.Path)
    parser.add_argument("--guard", action="append", choices=[guard.name for guard in GUARDS])
    parser.add_argument("--keep", action="store_true", help="keep the sources and their build")
    options = parser.parse_args()
    folder = options.folder or pathlib.Path(tempfile.mkdtemp(prefix="quorin-without-"))
    folder.mkdir(exist_ok=True)
    scratch, needless = Scratch(folder.resolve()), []
    try:
        for guard in GUARDS:
            if options.guard and guard.name not in options.guard:
                continue
            lines, passed = try_without(scratch, guard)
            print(f"without: {guard.name}", *(f"  {line[:160]}" for line in lines), sep="\n")
            for one in passed:
                print(f"  PASSES WITHOUT IT: {one}")
            sys.stdout.flush()
            needless += passed
    finally:
        if not options.keep:
            scratch.end()
    print(f"{len(needless)} pass without their guard")
    return 1 if needless else 0


if __name__ == "__main__":
    sys.exit(main())
