"""One run of the check over the project: which sources, which steps, in which order."""
import functools
import threading
import time

import bundle
import declared
import linking
import rules
import sentmessages
import stubs
import surface_index
from compiling import Compiler
from jobs import Runner
from toolchain import Toolchain

PORTABLE = ("kit", "app/shell")
ADAPTERS = "app/macos"
TESTS = ("tests/app/contract", "tests/app/macos")
TESTS_BESIDE = ("tests/fakes/WorkbookDescription.cpp", "tests/kit/scripts/ExcelScratch.cpp",
                "tests/kit/scripts/HandlerConversation.cpp",
                "tests/kit/scripts/HandlerRequests.cpp")
TESTS_MADE = "tests/kit/scripts"
LONGEST_REPORT = 1500  # characters of one finding: the first error tells most


class Session:
    """Everything the steps share. Preparing it fails where the tools are not installed."""

    def __init__(self, tool, project, folder, generated):
        self.tool, self.project, self.folder, self.generated = tool, project, folder, generated
        self.toolchain = Toolchain(folder / "tools")
        self.toolchain.prepare()
        self.runner = Runner(folder, self.toolchain.stamp)
        self.compiler = Compiler(self.toolchain, project, tool, folder)
        self.prefix_lock = threading.Lock()
        self.index = surface_index.read(self.compiler, self.runner)

    @functools.cached_property
    def stubs(self):
        """The folder of the linker's stubs, written once."""
        folder = self.folder / "stubs"
        stubs.write(self.toolchain, self.index, self.tool / "symbols", folder)
        return folder

    @functools.cached_property
    def clean_findings(self):
        """What the rules say of the sources as they are."""
        return rules_step(self) + bundle_step(self)

    @property
    def adapters(self):
        return sorted((self.project / ADAPTERS).rglob("*.mm"))

    @property
    def portable(self):
        written = [path for place in PORTABLE for path in (self.project / place).rglob("*.cpp")]
        made = [path for place in PORTABLE for path in (self.generated / place).rglob("*.cpp")
                if "CMakeFiles" not in path.parts]
        return sorted(written) + sorted(made)

    @property
    def tests(self):
        """What the adapters' own test program is made of, beside GoogleTest."""
        found = [path for place in TESTS for path in (self.project / place).iterdir()
                 if path.suffix in (".cpp", ".mm")]
        made = (self.generated / TESTS_MADE).glob("*.embedded.cpp")
        return sorted(found) + [self.project / path for path in TESTS_BESIDE] + sorted(made)

    def run_prefixes(self, compiler):
        """Compiles ahead what the compiler's jobs rely on. Gives what failed."""
        with self.prefix_lock:
            return [result for result in self.runner.run_all(list(compiler.prefixes.values()))
                    if not result.ok]

    def run_jobs(self, jobs):
        """The prefixes that the jobs rely on, then the jobs. Gives what failed."""
        results = self.run_prefixes(self.compiler) or self.runner.run_all(jobs)
        return [f"{result.job.label}\n{result.text}" for result in results if not result.ok]


def portable_step(session):
    return session.run_jobs([session.compiler.compile(source, "arm64")
                             for source in session.portable])


def adapters_step(session):
    """To objects for one processor; what the methods step reads checks the types for the other."""
    compiler = session.compiler
    return session.run_jobs([compiler.compile(source, "arm64") for source in session.adapters] +
                            [job for source in session.adapters
                             for job in declared.jobs(compiler, source)])


def compile_step(session):
    return portable_step(session) or adapters_step(session)


def link_step(session):
    objects = [session.compiler.compile(source, "arm64").output
               for source in session.portable + session.adapters]
    program = session.folder / "Quorin"
    result = session.runner.run(linking.job(session, objects, program))
    if result.ok:
        return list(linking.openings(program))
    missing = linking.missing_symbols(result.text)
    return [f"nobody defines {name}" for name in missing] or [result.text]


def tests_step(session):
    """GoogleTest itself is another's to link: what its namespace lacks is not ours."""
    compiler = session.compiler
    failed = session.run_jobs([compiler.compile(source, "arm64", ahead=True)
                               for source in session.tests])
    if failed:
        return failed
    objects = [compiler.compile(source, "arm64", ahead=True).output for source in session.tests]
    objects += [compiler.compile(source, "arm64").output
                for source in session.portable + session.adapters if source.name != "main.mm"]
    result = session.runner.run(linking.job(session, objects, session.folder / "QuorinTests"))
    if result.ok:
        return ["GoogleTest was not asked for"]
    missing = linking.missing_symbols(result.text)
    return [f"nobody defines {name}" for name in missing if not linking.is_of_googletest(name)] or \
        ([] if missing else [result.text])


def analysis_step(session):
    return session.run_jobs([session.compiler.analyze(source, "arm64")
                             for source in session.adapters])


def dumps_of(session):
    """What failed, and source -> the text of its dumps."""
    jobs = {source: declared.jobs(session.compiler, source) for source in session.adapters}
    failed = session.run_jobs([job for each in jobs.values() for job in each])
    return failed, {source: "".join(session.runner.run(dump).text for dump in dumps)
                    for source, dumps in jobs.items()}


def rows_of(texts):
    return {row for text in texts.values() for row in sentmessages.sent(text)}


def declared_step(session):
    failed, texts = dumps_of(session)
    if failed:
        return failed
    found = list(sentmessages.findings(session.project, rows_of(texts)))
    for source, text in texts.items():
        found += declared.findings(source.relative_to(session.project), text, session.index)
        found += declared.undumped_classes(source, text)
    return found


def rules_step(session):
    return rules.findings(session.project, session.project / ADAPTERS)


def bundle_step(session):
    return bundle.findings(session.project, session.project / ADAPTERS)


NEEDED = ("portable", "adapters")  # the steps after them need their objects
STEPS = (("rules", rules_step), ("bundle", bundle_step), ("portable", portable_step),
         ("adapters", adapters_step), ("methods", declared_step), ("link", link_step),
         ("tests", tests_step), ("analysis", analysis_step))


def run(session, only=None):
    """All steps, or the one of this name."""
    sources = len(session.portable), len(session.adapters)
    print(f"{sources[0]} portable sources, {sources[1]} adapters, "
          f"{len(session.index.methods)} classes and protocols declared")
    if not all(sources):
        print("nothing to check: a folder is missing")
        return 1
    status = 0
    for name, step in STEPS:
        if only not in (None, name):
            continue
        start, before = time.monotonic(), session.runner.executed
        found = step(session)
        print(f"{name}: {'ok' if not found else 'FAILED'} ({time.monotonic() - start:.1f} s, "
              f"{session.runner.executed - before} commands)", flush=True)
        for text in found:
            shown = text.strip()[:LONGEST_REPORT]
            print("  " + shown.replace("\n", "\n  "))
        if found:
            status = 1
        if found and name in NEEDED:
            break
    return status


def write_selectors(session):
    """Makes the table of messages anew."""
    failed, texts = dumps_of(session)
    for text in failed:
        print(text[:LONGEST_REPORT])
    if not failed:
        (session.project / sentmessages.TABLE).write_text(sentmessages.written(rows_of(texts)))
    return 1 if failed else 0
