"""Would the check notice? Each mistake of mutants/ is made in a copy of the sources and the steps
are run over the files that it touches, the cheap ones first, until one of them objects."""
import concurrent.futures
import dataclasses
import os
import pathlib
import re
import shutil
import time

import bundle
import declared
import linking
import rules
from compiling import OBJECTIVE
from session import LONGEST_REPORT, compile_step

NEEDED = 0.8       # of the mistakes must be noticed
COPIED = ("app/macos", "app/shell", "kit")
SPECIMENS = "specimens"


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
        self.frameworks = []  # that specimens need
        for path, old, new in mutant.edits:
            target = self.place(path)
            text = apply(target.read_text(), old, new, f"{mutant.name}: {path}")
            target.unlink()
            target.write_text(text)
            if target not in self.changed:
                self.changed.append(target)

    def place(self, path):
        """Where a changed file lies; a specimen becomes one of the adapters."""
        if not path.startswith(SPECIMENS):
            return self.root / path
        source = self.session.tool / "mutants" / path
        target = self.root / "app/macos" / f"{source.stem}.mm"
        if not target.exists():
            text = source.read_text()
            target.write_text(text)
            # Sparkle is never linked: the program must start without it.
            self.frameworks = [name for name in re.findall(r"#import <(\w+)/", text)
                               if name != "Sparkle"]
        return target

    def sources(self, suffixes):
        return [path for path in self.changed if path.suffix in suffixes]


def noticed(session, mutant):
    """The step that objects to the mistake and its first words, or none."""
    copy = Copy(session, mutant)
    try:
        for step, found in objections(session, copy):
            if found:
                return step, found[0].strip().replace(str(copy.root) + "/", "")
        return None
    finally:
        shutil.rmtree(copy.root)


def objections(session, copy):
    adapters = copy.root / "app/macos"
    yield "rules", rules.findings(copy.root, adapters)
    yield "bundle", [text for text in bundle.findings(copy.root, adapters)
                     if not text.endswith("not in app/macos/CMakeLists.txt") or
                     not is_specimen(session, text)]
    compiler = session.compiler.of(copy.root)
    sources = copy.sources({".mm", ".cpp"})
    yield "types", failures(session, compiler, [compiler.check_syntax(source, target)
                                                for target in ("arm64", "x86_64")
                                                for source in sources])
    adapted = [source for source in sources if source.suffix in OBJECTIVE]
    yield "methods", method_findings(session, compiler, adapted)
    yield "link", link_findings(session, compiler, copy, sources)
    yield "analysis", failures(session, compiler, [compiler.analyze(source, "arm64")
                                                   for source in adapted])


def is_specimen(session, text):
    return any(text.startswith(f"{path.stem}.mm")
               for path in (session.tool / "mutants" / SPECIMENS).iterdir())


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
    result = session.runner.run(linking.job(session, objects, output, copy.frameworks))
    output.unlink(missing_ok=True)
    if result.ok:
        return []
    return [f"nobody defines {name}" for name in linking.missing_symbols(result.text)] or [
        result.text]


def run(session):
    start = time.monotonic()
    mutants = read(session.tool / "mutants")
    for text in compile_step(session) + session.clean_findings:
        print(f"the project itself is at fault, see the check: {text[:LONGEST_REPORT]}")
        return 1
    specimens_are_sound(session)
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count() or 1) as pool:
        answers = list(pool.map(lambda each: noticed(session, each), mutants))
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


def specimens_are_sound(session):
    """A specimen that is found fault with as it is would make its mutants worthless."""
    for path in sorted((session.tool / "mutants" / SPECIMENS).iterdir()):
        name = f"{SPECIMENS}/{path.name}"
        whole = Mutant(f"sound-{path.stem}", "", "", [(name, "namespace quorin {",
                                                       "namespace quorin {")])
        if "namespace quorin {" not in path.read_text():
            whole.edits = [(name, "@implementation QX", "@implementation QX")]
        answer = noticed(session, whole)
        if answer is not None:
            raise SystemExit(f"{path.name} is at fault as it is: {answer[1]}")
