"""Text stubs (.tbd) of the libraries that the program links, made from the declarations, from the
lists in symbols/ and from libc++'s own symbols. A symbol that is in none of them is a link error.
"""
import re
import subprocess

HEADER = """--- !tapi-tbd
tbd-version: 4
targets: [ x86_64-macos, arm64-macos ]
install-name: '{install_name}'
"""
LIST = "[ {} ]"

# Frameworks that hold what another header folder of the surface declares, or hand it on.
REEXPORTS = {
    "Foundation": ["/System/Library/Frameworks/CoreFoundation.framework/CoreFoundation",
                   "/usr/lib/libobjc.A.dylib"],
}
# What the compiler itself refers to for literals.
IMPLICIT = {"CoreFoundation": {"__CFConstantStringClassReference", "kCFBooleanTrue",
                               "kCFBooleanFalse", "__NSArray0__", "__NSDictionary0__"}}
OF_FOUNDATION = {"NSClassFromString", "NSLog", "NSSelectorFromString"}
OF_OBJECTIVE_C = {"NSObject"}


def quoted(names):
    return LIST.format(", ".join(f"'{name}'" for name in sorted(names)))


def stub(install_name, symbols=(), classes=(), reexports=()):
    text = HEADER.format(install_name=install_name)
    if reexports:
        text += ("reexported-libraries:\n  - targets: [ x86_64-macos, arm64-macos ]\n"
                 f"    libraries: {quoted(reexports)}\n")
    text += "exports:\n  - targets: [ x86_64-macos, arm64-macos ]\n"
    text += f"    symbols: {quoted('_' + name for name in symbols)}\n"
    if classes:
        text += f"    objc-classes: {quoted(classes)}\n"
    return text + "...\n"


def listed(path):
    """The names of a list file: one or more on a line, # starts a comment."""
    return {name for line in path.read_text().splitlines()
            for name in line.partition("#")[0].split()}


def exported(library):
    """The symbols that a Linux shared library defines."""
    text = subprocess.run(["nm", "-D", "--defined-only", "--format=posix", library], check=True,
                          capture_output=True, text=True).stdout
    return {line.split()[0].partition("@")[0] for line in text.splitlines() if line}


def utf8proc_functions(header):
    return set(re.findall(r"^UTF8PROC_DLLEXPORT[^;(]*?\b(utf8proc_\w+)\s*\(", header.read_text(),
                          re.M))


def write(toolchain, index, symbols, folder):
    """Writes all stubs, laid out as the linker looks for them below a system root."""
    def put(path, text):
        target = folder / path
        target.parent.mkdir(parents=True, exist_ok=True)
        target.write_text(text)

    frameworks = set(index.classes) | set(index.symbols)
    for name in frameworks - {"base", "dispatch"}:
        place = f"System/Library/Frameworks/{name}.framework/{name}"
        own = set(index.symbols.get(name, ())) | IMPLICIT.get(name, set())
        if name == "Foundation":
            own |= OF_FOUNDATION
        put(place + ".tbd", stub("/" + place, own, index.classes.get(name, ()),
                                 REEXPORTS.get(name, ())))
    for name in ("libobjc.A.tbd", "libobjc.tbd"):
        put(f"usr/lib/{name}", stub("/usr/lib/libobjc.A.dylib", listed(symbols / "libobjc.txt"),
                                    OF_OBJECTIVE_C))
    put("usr/lib/libSystem.tbd", stub("/usr/lib/libSystem.B.dylib",
                                      listed(symbols / "libSystem.txt") |
                                      listed(symbols / "c-headers.txt") |
                                      index.symbols.get("dispatch", set())))
    put("usr/lib/libclang_rt.tbd", stub("/usr/lib/libclang_rt.dylib",
                                        listed(symbols / "clang_rt.txt")))
    runtime = exported(toolchain.shared_library("libc++")) | exported(
        toolchain.shared_library("libc++abi"))
    put("usr/lib/libc++.tbd", stub("/usr/lib/libc++.1.dylib", runtime))
    put("usr/local/lib/libutf8proc.tbd",
        stub("/usr/local/lib/libutf8proc.dylib",
             utf8proc_functions(toolchain.third_party / "utf8proc.h")))
