"""One run of the check over the project: which sources, which steps, in which order."""
import time

import bundle
import declared
import linking
import rules
import surface_index
from compiling import Compiler
from jobs import Runner
from toolchain import Toolchain

PORTABLE = ("kit", "app/shell")
ADAPTERS = "app/macos"
LONGEST_REPORT = 1500  # characters of one finding: the first error tells most


class Session:
    """Everything the steps share. Preparing it fetches the tools where they are not there yet."""

    def __init__(self, tool, project, folder, generated):
        self.tool, self.project, self.folder, self.generated = tool, project, folder, generated
        self.toolchain = Toolchain(folder / "tools")
        self.toolchain.prepare()
        self.runner = Runner(folder, self.toolchain.environment, self.toolchain.stamp)
        self.compiler = Compiler(self.toolchain, project, tool, folder)
        self.index = surface_index.read(self.compiler, self.runner)

    @property
    def adapters(self):
        return sorted((self.project / ADAPTERS).rglob("*.mm"))

    @property
    def portable(self):
        written = [path for place in PORTABLE for path in (self.project / place).rglob("*.cpp")]
        made = [path for place in PORTABLE for path in (self.generated / place).rglob("*.cpp")
                if "CMakeFiles" not in path.parts]
        return sorted(written) + sorted(made)

    def run_jobs(self, jobs):
        """The prefixes that the jobs rely on, then the jobs. Gives what failed."""
        prefixes = self.runner.run_all(list(self.compiler.prefixes.values()))
        broken = [result for result in prefixes if not result.ok]
        results = broken or self.runner.run_all(jobs)
        return [f"{result.job.label}\n{result.text}" for result in results if not result.ok]


def compile_step(session):
    compiler = session.compiler
    sources = session.portable + session.adapters
    return session.run_jobs([compiler.compile(source, "arm64") for source in sources] +
                            [compiler.check_syntax(source, "x86_64") for source in sources])


def link_step(session):
    objects = [session.compiler.compile(source, "arm64").output
               for source in session.portable + session.adapters]
    job = linking.job(session.toolchain, session.index, session.tool, session.folder, objects,
                      session.project / ADAPTERS / "CMakeLists.txt")
    result = session.runner.run(job)
    if result.ok:
        return []
    missing = linking.missing_symbols(result.text)
    return [f"nobody defines {name}" for name in missing] or [result.text]


def analysis_step(session):
    return session.run_jobs([session.compiler.analyze(source, "arm64")
                             for source in session.adapters])


def declared_step(session):
    jobs = {source: declared.job(session.compiler, source) for source in session.adapters}
    failed = session.run_jobs(list(jobs.values()))
    if failed:
        return failed
    found = []
    for source, job in jobs.items():
        name = source.relative_to(session.project)
        found += declared.findings(name, session.runner.run(job).text, session.index)
        found += declared.undumped_classes(source)
    return found


def rules_step(session):
    return rules.findings(session.project, session.project / ADAPTERS)


def bundle_step(session):
    return bundle.findings(session.project, session.project / ADAPTERS)


STEPS = (("rules", rules_step), ("bundle", bundle_step), ("types", compile_step),
         ("methods", declared_step), ("link", link_step), ("analysis", analysis_step))


def run(session):
    sources = len(session.portable), len(session.adapters)
    print(f"{sources[0]} portable sources, {sources[1]} adapters, "
          f"{len(session.index.methods)} classes and protocols declared")
    if not all(sources):
        print("nothing to check: a folder is missing")
        return 1
    status = 0
    for name, step in STEPS:
        start, before = time.monotonic(), session.runner.executed
        found = step(session)
        print(f"{name}: {'ok' if not found else 'FAILED'} ({time.monotonic() - start:.1f} s, "
              f"{session.runner.executed - before} commands)", flush=True)
        for text in found:
            shown = text.strip()[:LONGEST_REPORT]
            print("  " + shown.replace("\n", "\n  "))
        if found:
            status = 1
        if found and name == "types":
            break  # the steps after it need the objects
    return status
