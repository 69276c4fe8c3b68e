#!/usr/bin/env python3
"""Would the unit tests notice? Makes small mistakes in kit/, one at a time, and runs the tests of
its folder over each. Needs a build of the preset "apart" (of the programs of PROGRAMS at least), where
each source has an object of its own; neither it nor the sources are touched: what is changed is
compiled on its own and linked first.

usage: mutate.py [--folder NAME ...] [--sample N] [--seed N] [--jobs N] [--list]
       mutate.py --change FILE OLD NEW

  --folder NAME   only of this folder of kit/ (value, scripts, ...); may be given several times
  --sample N      so many mistakes, each folder's share as large as its part of all (default 150)
  --seed N        which ones (default 1)
  --jobs N        so many at a time (default: one for each processor)
  --list          says what it would do
  --change        one change: the only place in FILE that holds OLD

First the programs are run without a change. Prints for each change whether the tests noticed it
(killed, with the test that failed), or not (survived), or whether it cannot be tried (refused: it
does not compile). Exits 1 when fewer than 90 of a hundred were noticed.
"""
import argparse
import collections
import concurrent.futures
import dataclasses
import json
import os
import pathlib
import random
import re
import shlex
import shutil
import signal
import subprocess
import sys
import tempfile

from mutations import Change, changes

ROOT = pathlib.Path(__file__).resolve().parents[2]
NEEDED = 90  # of a hundred
# Whose tests look at a folder, the nearest first.
PROGRAMS = {
    "value": ["value_test", "shapes_test", "bridge_test", "scripts_test"],
    "platform": ["platform_test", "support_test"],
    "support": ["support_test"],
    "shapes": ["shapes_test", "bridge_test"],
    "excel": ["excel_test", "bridge_test"],
    "scripts": ["scripts_test", "road_test"],
    "marks": ["marks_test", "bridge_test"],
    "bridge": ["bridge_test", "road_test"],
}
PROCESSOR_SECONDS = 60  # a program that takes more, or waits for longer than LONGEST, is stuck
LONGEST = 240
LIMITED = f'ulimit -t {PROCESSOR_SECONDS} -v {4 << 20} -c 0; exec "$0"'  # 4 GB, no core


class Refused(Exception):
    """The change does not compile."""


@dataclasses.dataclass
class Outcome:
    what: str  # killed, survived, refused
    by: str = ""


QUICKLY = {"-O1": "-O0", "-g1": "-g0"}
HEADERS = "quorin_headers.dir/cmake_pch.hxx"  # what the build reads ahead, as cmake/ says


class Build:
    """What the build knows: how each source is compiled and each program linked. What is compiled
    here is so at -O0, with headers read ahead for that, which are kept in the folder `scratch`."""

    def __init__(self, folder, scratch):
        self.folder = folder
        self.headers = scratch / "headers.hxx"
        self.commands = {}
        for entry in json.loads((folder / "compile_commands.json").read_text()):
            words = [each for each in shlex.split(entry["command"]) if each != "-Werror"]
            compiler = [i for i, each in enumerate(words) if re.search(r"(\+\+|cc)[-\d.]*$", each)]
            words = words[compiler[0]:]
            self.commands[str(pathlib.Path(entry["file"]).resolve())] = words
        self.links = {}
        for source, words in self.commands.items():
            if source.endswith(HEADERS + ".cxx"):
                shutil.copy(source.removesuffix(".cxx"), self.headers)
                self.run(words, source, f"{self.headers}.gch")

    def run(self, words, source, into, more=()):
        words = [QUICKLY.get(each, each) for each in words]
        words[words.index("-o") + 1] = str(into)
        words[words.index("-c") + 1] = str(source)
        if "-include" in words and words[words.index("-include") + 1].endswith(HEADERS):
            words[words.index("-include") + 1] = str(self.headers)
        words[1:1] = ["-w", *more]
        done = subprocess.run(words, cwd=self.folder, capture_output=True, text=True, check=False)
        if done.returncode:
            raise Refused(done.stderr)

    def compile(self, source, changed, into, overlay=None):
        """The object of `source`, as `changed` has it; the name that the build gives it."""
        words = self.commands[str(source.resolve())]
        self.run(words, changed, into, ["-I", str(overlay)] if overlay else [])
        return words[words.index("-o") + 1]

    def link(self, program, objects, into):
        """`objects` ({name in the build: file}) take the place of the build's own: where a library
        would give one, the linker has what it looks for already."""
        if program not in self.links:
            lines = subprocess.run(["ninja", "-C", self.folder, "-t", "commands", program],
                                   check=True, capture_output=True, text=True).stdout.splitlines()
            self.links[program] = shlex.split(lines[-1].removeprefix(": && ").removesuffix(" && :"))
        words = [str(objects.get(each, each)) for each in self.links[program]]
        words[words.index("-o") + 1] = str(into)
        words[1:1] = [str(file) for name, file in objects.items() if str(file) not in words]
        if shutil.which("ld.lld"):
            words.insert(1, "-fuse-ld=lld")
        done = subprocess.run(words, cwd=self.folder, capture_output=True, text=True, check=False)
        if done.returncode:
            raise Refused(done.stderr)


def failure_of(program, folder):
    """The first test of the program that fails, "" for none."""
    environment = {**os.environ, "GTEST_FAIL_FAST": "1", "TMPDIR": str(folder)}
    run = subprocess.Popen(["sh", "-c", LIMITED, program], cwd=folder, env=environment, text=True,
                           stdout=subprocess.PIPE, stderr=subprocess.STDOUT, errors="replace",
                           start_new_session=True)
    stuck = False
    try:
        text = run.communicate(timeout=LONGEST)[0]
    except subprocess.TimeoutExpired:
        stuck = True
    try:
        os.killpg(run.pid, signal.SIGKILL)  # whatever it has left behind
    except ProcessLookupError:
        pass
    if stuck:
        text = run.communicate()[0]
    elif run.returncode in (0, 77):
        return ""
    if "LibraryFixture.h" in text:  # the handlers do not compile
        raise Refused(text)
    failed = re.findall(r"\[  FAILED  \] (\S+?)[,\s]", text)
    begun = re.findall(r"\[ RUN      \] (\S+)", text)
    name = failed[0] if failed else begun[-1] if begun else program.name
    if failed:
        return f"{program.name} {name}"
    stuck = stuck or run.returncode == -signal.SIGXCPU
    return f"{program.name} {name} ({'stuck' if stuck else 'died'})"


class Trial:
    """One change, compiled and tried in a folder of its own."""

    def __init__(self, build, change, folder):
        self.build, self.change, self.folder = build, change, folder
        self.source = ROOT / change.path

    def outcome(self):
        try:
            objects = self.objects()
            for name in PROGRAMS[self.change.path.split("/")[1]]:
                program = self.folder / name
                self.build.link(name, objects, program)
                failure = failure_of(program, self.folder)
                program.unlink()
                if failure:
                    return Outcome("killed", failure)
        except Refused:
            return Outcome("refused")
        return Outcome("survived")

    def objects(self):
        changed = self.folder / self.change.path
        changed.parent.mkdir(parents=True)
        changed.write_text(self.change.made_in(self.source.read_text()))
        if self.source.suffix == ".applescript":
            return self.handlers(changed)
        if self.source.suffix == ".h" and not including(self.source):
            raise Refused("Nothing of its folder sees it.")
        if self.source.suffix == ".h":
            return {self.build.compile(each, each, self.folder / f"{each.stem}.o", self.folder):
                    self.folder / f"{each.stem}.o" for each in including(self.source)}
        into = self.folder / "changed.o"
        return {self.build.compile(self.source, changed, into): into}

    def handlers(self, changed):
        files = [changed if each.name == changed.name else each
                 for each in sorted(self.source.parent.glob("*.applescript"))]
        texts, into = self.folder / "ScriptTexts.cpp", self.folder / "changed.o"
        subprocess.run(["cmake", f"-DOUTPUT={texts}", "-DFILES=" + ";".join(map(str, files)), "-P",
                        self.source.parent / "EmbedScripts.cmake"], check=True)
        built = self.build.folder / "kit/scripts/ScriptTexts.cpp"
        return {self.build.compile(built, texts, into): into}


def outcome_of(build, change):
    with tempfile.TemporaryDirectory(prefix="quorin-mutant-") as folder:
        os.chmod(folder, 0o755)  # some tests act as other users
        return Trial(build, change, pathlib.Path(folder)).outcome()


def failing_unchanged(build, programs):
    """What would be taken for a test that notices."""
    failing = []
    for name in programs:
        with tempfile.TemporaryDirectory(prefix="quorin-mutant-") as folder:
            os.chmod(folder, 0o755)
            program = pathlib.Path(folder) / name
            build.link(name, {}, program)
            failing += [each for each in [failure_of(program, pathlib.Path(folder))] if each]
    return failing


def including(header):
    """The sources of its folder that see the header, or, where none does, their tests. At -O0, as
    tests are compiled, what is inline in it is linked from the first of them for all."""
    folder = header.parent
    seen = {str(header.relative_to(ROOT))}
    def sees(file):
        return any(f'#include "{each}"' in file.read_text() for each in seen)
    for _ in range(3):
        seen |= {str(each.relative_to(ROOT)) for each in folder.glob("*.h") if sees(each)}
    sources = [each for each in sorted(folder.glob("*.cpp")) if sees(each)]
    return sources or [each for each in sorted((ROOT / "tests/kit" / folder.name).glob("*.cpp"))
                       if sees(each)]


def all_changes(folders):
    found = collections.defaultdict(list)
    for folder in folders:
        for file in sorted((ROOT / "kit" / folder).iterdir()):
            if file.suffix in (".cpp", ".h", ".applescript"):
                found[folder] += changes(str(file.relative_to(ROOT)), file.read_text())
    return found


def sampled(found, size, seed):
    """Every folder's share, in the order of files and lines."""
    total = sum(map(len, found.values()))
    chosen = []
    for folder, each in found.items():
        share = min(len(each), max(1, round(size * len(each) / total)))
        chosen += random.Random(f"{seed} {folder}").sample(each, share)
    return sorted(chosen, key=lambda change: (change.path, change.start, change.new))


def only_change(path, old, new):
    text = (ROOT / path).read_text()
    if text.count(old) != 1:
        sys.exit(f"{path} holds that {text.count(old)} times")
    at = text.index(old)
    return Change(path, text.count("\n", 0, at) + 1, at, at + len(old), old, new, "as told")


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawTextHelpFormatter)
    parser.add_argument("--folder", action="append", choices=PROGRAMS)
    parser.add_argument("--sample", type=int, default=150)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--list", action="store_true")
    parser.add_argument("--change", nargs=3)
    told = parser.parse_args()
    if told.change:
        chosen = [only_change(*told.change)]
    else:
        chosen = sampled(all_changes(told.folder or PROGRAMS), told.sample, told.seed)
    if told.list:
        print(*chosen, sep="\n")
        return 0
    counts = collections.defaultdict(collections.Counter)
    with (tempfile.TemporaryDirectory(prefix="quorin-mutants-") as scratch,
          concurrent.futures.ThreadPoolExecutor(told.jobs) as pool):
        build = Build(ROOT / "build/apart", pathlib.Path(scratch))
        needed = {each for change in chosen for each in PROGRAMS[change.path.split("/")[1]]}
        failing = failing_unchanged(build, sorted(needed))
        if failing:
            sys.exit("without a change: " + ", ".join(failing))
        for change, outcome in zip(chosen, pool.map(lambda each: outcome_of(build, each), chosen)):
            counts[change.path.split("/")[1]][outcome.what] += 1
            by = f"  [{outcome.by}]" if outcome.by else ""
            print(f"{outcome.what:8} {change}{by}", flush=True)
    whole = sum(counts.values(), collections.Counter())
    for folder, count in [*sorted(counts.items()), ("together", whole)]:
        tried = count["killed"] + count["survived"]
        share = 100 * count["killed"] / tried if tried else 100
        print(f"{folder:9} {count['killed']:4} killed {count['survived']:4} survived "
              f"{count['refused']:4} refused {share:6.1f} %")
    return 0 if share >= NEEDED else 1


if __name__ == "__main__":
    sys.exit(main())
