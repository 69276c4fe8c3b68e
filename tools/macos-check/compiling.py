"""The compiler's commands: which flags, for which sources, for which processor."""
import hashlib

from jobs import Job

TARGETS = ("arm64", "x86_64")
SYSTEM = "apple-macos13"

WARNINGS = ["-Wall", "-Wextra", "-Wpedantic", "-Wshadow", "-Wconversion", "-Werror"]

ADAPTER_WARNINGS = [
    "-Wall", "-Wextra", "-Wpedantic", "-Wshadow", "-Wconversion", "-Wformat=2", "-Wnonnull",
    "-Wnullable-to-nonnull-conversion", "-Wunguarded-availability", "-Wundeclared-selector",
    "-Wselector", "-Wprotocol", "-Wobjc-designated-initializers", "-Wobjc-missing-super-calls",
    "-Wstrict-selector-match", "-Warc-repeated-use-of-weak", "-Warc-retain-cycles",
    "-Wimplicit-retain-self", "-Wmethod-signatures", "-Woverriding-method-mismatch",
    "-Wsuper-class-method-mismatch", "-Wobjc-method-access", "-Wincompatible-pointer-types",
    "-Wincomplete-implementation", "-Wunused-result", "-Werror",
    "-Wno-four-char-constants",  # as the build has it
]

ANALYZER = ["--analyze", "--analyzer-output", "text",
            *(f for name in ("core", "cplusplus", "deadcode", "unix", "osx", "nullability")
              for f in ("-Xclang", f"-analyzer-checker={name}")), "-Xclang", "-analyzer-werror"]

OBJECTIVE = {".mm": ["-x", "objective-c++", "-fobjc-arc", "-fblocks"]}


def targets_of(source):
    """The processors that a source is checked for. They differ in the system's declarations alone,
    which portable code does not read."""
    return TARGETS if source.suffix in OBJECTIVE else TARGETS[:1]


class Compiler:
    """Makes the jobs for one project folder; `tool` is the folder of the check itself."""

    def __init__(self, toolchain, project, tool, folder):
        self.toolchain = toolchain
        self.project = project
        self.tool = tool
        self.surface = tool / "surface"
        self.folder = folder
        self.headers = toolchain.include_flags(self.surface)
        self.prefixes = {}  # output -> job, of what the jobs made so far rely on

    def of(self, copy):
        """The same for a copy of the project in another folder."""
        return Compiler(self.toolchain, copy, self.tool, self.folder)

    def base(self, target):
        # A checkout changes the times of files and not their content.
        return [self.toolchain.clang, "-target", f"{target}-{SYSTEM}", "-Xclang",
                "-fvalidate-ast-input-files-content", *self.headers]

    def language(self, source, target):
        objective = OBJECTIVE.get(source.suffix)
        warnings = ADAPTER_WARNINGS if objective else WARNINGS
        return [*self.base(target), *(objective or ["-x", "c++"]), "-std=c++20", *warnings]

    def prefix_job(self, source, target):
        """Compiles prefix.h ahead for sources of this one's language."""
        header = self.tool / "prefix.h"
        name = "objective" if source.suffix in OBJECTIVE else "plain"
        output = self.place("prefix", header, target, f".{name}.pch")
        language = [f"{flag}-header" if flag in ("c++", "objective-c++") else flag
                    for flag in self.language(source, target)]
        dependencies = output.with_suffix(".d")
        return Job(f"prefix.h ({name}, {target})",
                   # By its time a header that is checked out anew would count as another one.
                   [*language, "-fpch-instantiate-templates", "-Xclang", "-fno-pch-timestamp",
                    "-MD", "-MF", dependencies, "-o", output, header], [header],
                   dependencies, output)

    def place(self, kind, source, target, suffix):
        """A file of our own for what a job makes; one name never stands for two sources."""
        tag = hashlib.sha256(str(source).encode()).hexdigest()[:8]
        folder = self.folder / kind / target
        folder.mkdir(parents=True, exist_ok=True)
        return folder / f"{source.stem}-{tag}{suffix}"

    def job(self, kind, source, target, action, suffix=None, prefix=True):
        dependencies = self.place(kind, source, target, ".d")
        command = [*self.language(source, target), "-I", self.project, *action]
        if kind == "object" and not prefix:
            # A new folder then need not compile again what another one has compiled.
            command = [*self.toolchain.cache, *command]
        inputs = [source]
        if prefix:
            ahead = self.prefix_job(source, target)
            self.prefixes[ahead.output] = ahead
            command += ["-include-pch", ahead.output]
            inputs.append(ahead.output)
        output = self.place(kind, source, target, suffix) if suffix else None
        command += ["-MD", "-MF", dependencies, *(["-o", output] if output else []), source]
        name = source.relative_to(self.project) if source.is_relative_to(self.project) \
            else source.name
        return Job(f"{name} ({kind}, {target})", command, inputs, dependencies, output)

    def compile(self, source, target, ahead=None):
        """To an object file, with what is compiled ahead, or from nothing but what the source itself
        includes. Adapters are compiled so, because no other build reads the system's headers for
        them; tests/lint/std_includes.py and releases look at what portable code includes."""
        if ahead is None:
            ahead = source.suffix not in OBJECTIVE
        return self.job("object", source, target, ["-c"], ".o", prefix=ahead)

    def check_syntax(self, source, target):
        return self.job("syntax", source, target, ["-fsyntax-only"])

    def analyze(self, source, target):
        return self.job("analysis", source, target, ANALYZER)
