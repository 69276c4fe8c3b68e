#!/usr/bin/env python3
"""Would running the adapters show it? Makes each mistake of mutants/ in one adapter, compiles that alone,
links mac_on_linux_test anew and runs it until the first test fails.

usage: try_mutants.py BUILD_FOLDER [NAME...]

Ends with 0 when at least NEEDED of the mistakes are noticed. A run that does not end in time is noticed.
"""
import concurrent.futures
import os
import pathlib
import re
import shlex
import shutil
import signal
import subprocess
import sys
import tempfile
import time

HERE = pathlib.Path(__file__).resolve().parent
PROJECT = HERE.parents[2]
sys.path.insert(0, str(PROJECT / "tools/macos-check"))
import mutants  # noqa: E402  what reads and makes the mistakes

PROGRAM = "tests/macos/runtime/mac_on_linux_test"
NEEDED = 0.85
LONGEST = 90  # seconds for a run, which takes eight where nothing is wrong
WAITING = 3   # runs at a time for each processor: they wait for time to pass


class Build:
    """The commands with which the program was built."""

    def __init__(self, folder):
        self.folder = folder
        subprocess.run(["ninja", "-C", folder, "--quiet", PROGRAM], check=True)
        lines = subprocess.run(["ninja", "-C", folder, "-t", "commands", PROGRAM], check=True,
                               capture_output=True, text=True).stdout.splitlines()
        self.compiling = {}
        for line in lines:
            made = re.search(r" -o (\S+/app/macos/\w+\.mm\.o) ", line)
            if made:
                self.compiling[pathlib.Path(made[1]).name[:-2]] = (line, made[1])
        self.linking = next(line for line in lines if f" -o {PROGRAM} " in line)

    def run(self, command):
        return subprocess.run(command, shell=True, cwd=self.folder, capture_output=True, text=True)

    def program_with(self, mutant, place):
        """The program with the mistake in it, or the compiler's objection."""
        linking = self.linking.replace(f" -o {PROGRAM} ", f" -o {shlex.quote(str(place / 'test'))} ")
        for path in {edit[0] for edit in mutant.edits}:
            text = (PROJECT / path).read_text()
            for edited, old, new in mutant.edits:
                if edited == path:
                    text = mutants.apply(text, old, new, f"{mutant.name}: {path}")
            name = pathlib.Path(path).name
            source, made = place / name, place / f"{name}.o"
            source.write_text(text)
            compiling, usual = self.compiling[name]
            command = compiling.replace(str(PROJECT / path), str(source)).replace(usual, str(made))
            answer = self.run(re.sub(r" -Werror\b", "", command))
            if answer.returncode != 0:
                raise SystemExit(f"{mutant.name} does not compile:\n{answer.stderr}")
            linking = linking.replace(usual, str(made))
        answer = self.run(linking)
        if answer.returncode != 0:
            raise SystemExit(f"{mutant.name} does not link:\n{answer.stderr}")
        return place / "test"


def failure_of(program, folder):
    """The first test that fails, how the run ended otherwise, or none."""
    with open(folder / "output", "w+", errors="replace") as output:
        running = subprocess.Popen([program, "--gtest_fail_fast", "--gtest_brief=0"], stdout=output,
                                   stderr=subprocess.STDOUT, stdin=subprocess.DEVNULL, cwd=folder,
                                   start_new_session=True, env={**os.environ, "TMPDIR": str(folder)})
        try:
            status = running.wait(LONGEST)
        except subprocess.TimeoutExpired:
            os.killpg(running.pid, signal.SIGKILL)
            running.wait()
            status = None
        output.seek(0)
        text = output.read()
    if status == 0:
        return None
    failed = re.search(r"^\[  FAILED  \] ([^\s,]+)", text, re.MULTILINE)
    if failed:
        return f"fails {failed[1]}"
    begun = re.findall(r"^\[ RUN      \] (\S+)", text, re.MULTILINE)
    return f"{'does not end' if status is None else 'dies'} in {begun[-1] if begun else 'no test'}"


def noticed(build, mutant):
    place = pathlib.Path(tempfile.mkdtemp(prefix="quorin-mutant-"))
    try:
        return failure_of(build.program_with(mutant, place), place)
    finally:
        shutil.rmtree(place, ignore_errors=True)


def main(folder, names):
    build = Build(pathlib.Path(folder).resolve())
    every = [each for each in mutants.read(HERE / "mutants") if not names or each.name in names]
    with tempfile.TemporaryDirectory(prefix="quorin-mutant-") as place:
        fault = failure_of(build.folder / PROGRAM, pathlib.Path(place))
    if fault:
        sys.exit(f"without any mistake it {fault}")
    start = time.monotonic()
    with concurrent.futures.ThreadPoolExecutor(WAITING * (os.cpu_count() or 1)) as pool:
        answers = list(pool.map(lambda each: noticed(build, each), every))
    for mutant, answer in zip(every, answers):
        print(f"{mutant.name}: {answer}" if answer else
              f"SURVIVED  {mutant.name} ({mutant.kind}): {mutant.mistake}")
    caught = sum(answer is not None for answer in answers)
    print(f"{caught} of {len(every)} mistakes noticed by running ({time.monotonic() - start:.0f} s)")
    return 0 if caught >= NEEDED * len(every) else 1


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    sys.exit(main(sys.argv[1], sys.argv[2:]))
