"""The Mach-O link: portable objects and adapters against the stubs of the system's libraries."""
import re

from jobs import Job

ARCHITECTURE = "arm64"


def frameworks(cmake_lists):
    """The frameworks that the build links: what CMake names as "-framework X"."""
    return re.findall(r'-framework (\w+)', cmake_lists.read_text())


def linker_command(toolchain, root, objects, named, output):
    command = [toolchain.linker, "-arch", ARCHITECTURE, "-platform_version", "macos", "13.0",
               "13.0", "-syslibroot", root, "-F", root / "System/Library/Frameworks",
               "-L", root / "usr/lib", "-L", root / "usr/local/lib",
               "-e", "_main", "-undefined", "error", "--error-limit=0",
               "-o", output]
    for name in named:
        command += ["-framework", name]
    return [*command, "-lSystem", "-lc++", "-lobjc", "-lutf8proc", "-lclang_rt", *objects]


def job(session, objects, output, more_frameworks=()):
    named = [*frameworks(session.project / "app/macos/CMakeLists.txt"), *more_frameworks]
    command = linker_command(session.toolchain, session.stubs, objects, named, output)
    return Job("link (arm64)", command, [*objects, *sorted(session.stubs.rglob("*.tbd"))],
               output=output)


def missing_symbols(text):
    """The undefined symbols of a failed link."""
    return sorted(set(re.findall(r"undefined symbol: (.+)", text)))


def is_of_googletest(symbol):
    """True if a mangled name belongs to its namespace."""
    return re.match(r"__Z(?:T[VIST]|GV)?N?K?7testing", symbol) is not None


def openings(program):
    """What lets others look into the linked program: the functions that listen for them, and the
    variable that tells the Linux program's tests where."""
    content = program.read_bytes()
    for name in ("socket", "bind", "listen", "accept", "connect"):
        if b"\0_" + name.encode() + b"\0" in content:
            yield f"the program calls {name}"
    if b"QX_TEST" in content:
        yield "the program knows the socket for tests"
