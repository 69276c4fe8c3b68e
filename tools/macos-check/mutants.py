"""Would the check notice? Each mistake of mutants/ is made in a copy of the sources and the steps
are run over the files that it touches, the cheap ones first, until one of them objects."""
import concurrent.futures
import dataclasses
import itertools
import os
import pathlib
import re
import shutil
import time

import bundle
import declared
import linking
import rules
from compiling import OBJECTIVE, targets_of
from session import LONGEST_REPORT, compile_step

NEEDED = 0.8       # of the mistakes must be noticed
COPIED = ("app/macos", "app/shell", "kit")
TEXTUAL = ("review", "bundle")  # kinds that no compiler is asked for


@dataclasses.dataclass
class Mutant:
    name: str
    kind: str
    mistake: str
    edits: list  # (path, text to take out, text to put in)


def listed(folder):
    for line in (folder / "list.tsv").read_text().splitlines():
        if line and not line.startswith("#"):
            yield line.split("\t")


def edits_by_name(folder):
    """The blocks of edits.txt."""
    found, name, path, out, into = {}, None, None, [], []

    def close():
        if out or into:
            found.setdefault(name, []).append((path, "\n".join(out), "\n".join(into)))
            out.clear()
            into.clear()

    for line in (folder / "edits.txt").read_text().splitlines():
        if line.startswith("#") or not line.strip():
            continue
        if line.startswith("["):
            close()
            name = line.strip("[]")
        elif re.match(r"-( |$)", line):
            if into:
                close()
            out.append(line[2:])
        elif re.match(r"\+( |$)", line):
            into.append(line[2:])
        else:
            close()
            path = line.strip()
    close()
    return found


def read(folder):
    edits = edits_by_name(folder)
    mutants = [Mutant(name, kind, mistake, edits.pop(name, [])) for name, kind, mistake
               in listed(folder)]
    without = [each.name for each in mutants if not each.edits]
    if without or edits:
        raise SystemExit(f"mutants: without an edit {without}, not in the list {sorted(edits)}")
    return mutants


def apply(text, old, new, where):
    """Replaces the one place of `old`; runs of white space match any other."""
    pattern = r"\s+".join(re.escape(word) for word in old.split())
    found = list(re.finditer(pattern, text))
    if len(found) != 1:
        raise SystemExit(f"{where}: the text to change stands there {len(found)} times")
    return text[:found[0].start()] + new + text[found[0].end():]


class Copy:
    """The project's checked folders once more, with one mistake in them."""

    def __init__(self, session, mutant):
        self.session = session
        self.root = session.folder / "mutants" / mutant.name
        shutil.rmtree(self.root, ignore_errors=True)
        for place in COPIED:
            shutil.copytree(session.project / place, self.root / place, copy_function=os.link)
        self.changed = []
        for path, old, new in mutant.edits:
            target = self.root / path
            text = apply(target.read_text(), old, new, f"{mutant.name}: {path}")
            target.unlink()
            target.write_text(text)
            if target not in self.changed:
                self.changed.append(target)

    def sources(self, suffixes):
        return [path for path in self.changed if path.suffix in suffixes]


def noticed(session, mutant, steps=6):
    """The step that objects to the mistake and its first words, or none. `steps`: how many are asked."""
    copy = Copy(session, mutant)
    try:
        for step, found in itertools.islice(objections(session, copy), steps):
            if found:
                return step, found[0].strip().replace(str(copy.root) + "/", "")
        return None
    finally:
        shutil.rmtree(copy.root)


def objections(session, copy):
    adapters = copy.root / "app/macos"
    yield "rules", rules.findings(copy.root, adapters)
    yield "bundle", bundle.findings(copy.root, adapters)
    compiler = session.compiler.of(copy.root)
    sources = copy.sources({".mm", ".cpp"})
    yield "types", failures(session, compiler, [compiler.check_syntax(source, target)
                                                for source in sources
                                                for target in targets_of(source)])
    adapted = [source for source in sources if source.suffix in OBJECTIVE]
    yield "methods", method_findings(session, compiler, adapted)
    yield "link", link_findings(session, compiler, copy, sources)
    yield "analysis", failures(session, compiler, [compiler.analyze(source, "arm64")
                                                   for source in adapted])


def failures(session, compiler, jobs):
    session.run_prefixes(compiler)
    results = [session.runner.run(job) for job in jobs]
    return [result.text for result in results if not result.ok]


def method_findings(session, compiler, sources):
    found = []
    for source in sources:
        text = "".join(session.runner.run(job).text for job in declared.jobs(compiler, source))
        found += declared.findings(source.name, text, session.index)
    return found


def link_findings(session, compiler, copy, sources):
    changed = {source.relative_to(copy.root): compiler.compile(source, "arm64")
               for source in sources}
    if not changed:
        return []
    broken = failures(session, compiler, list(changed.values()))
    if broken:
        return broken
    objects = [job.output for job in changed.values()]
    objects += [session.compiler.compile(source, "arm64").output
                for source in session.portable + session.adapters
                if not source.is_relative_to(session.project) or
                source.relative_to(session.project) not in changed]
    output = session.folder / f"mutant-{copy.root.name}"
    result = session.runner.run(linking.job(session, objects, output))
    opened = list(linking.openings(output)) if result.ok else []
    output.unlink(missing_ok=True)
    if result.ok:
        return opened
    return [f"nobody defines {name}" for name in linking.missing_symbols(result.text)] or [
        result.text]


def run_textual(session):
    """Only the mistakes that the textual rules are there for, and only those rules."""
    mutants = [each for each in read(session.tool / "mutants") if each.kind in TEXTUAL]
    return judge(session, mutants, session.clean_findings, steps=2)


def run(session):
    return judge(session, read(session.tool / "mutants"),
                 compile_step(session) + session.clean_findings)


def judge(session, mutants, faults, steps=6):
    start = time.monotonic()
    for text in faults:
        print(f"the project itself is at fault, see the check: {text[:LONGEST_REPORT]}")
        return 1
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count() or 1) as pool:
        answers = list(pool.map(lambda each: noticed(session, each, steps), mutants))
    survivors = []
    for mutant, answer in zip(mutants, answers):
        if answer is None:
            survivors.append(mutant)
            print(f"SURVIVED  {mutant.name}: {mutant.mistake}")
        else:
            step, words = answer
            print(f"{step:9} {mutant.name}: {first_error(words)}")
    caught = len(mutants) - len(survivors)
    print(f"{caught} of {len(mutants)} mistakes noticed "
          f"({time.monotonic() - start:.1f} s, {session.runner.executed} commands)")
    return 0 if caught >= NEEDED * len(mutants) else 1


def first_error(text):
    """The line of a report that says what is wrong."""
    lines = text.splitlines()
    errors = [line for line in lines if "error:" in line or "warning:" in line]
    line = (errors or lines)[0]
    return pathlib.Path(line.partition(":")[0]).name + ":" + line.partition(":")[2]

