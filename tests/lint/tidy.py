#!/usr/bin/env python3
"""Runs clang-tidy's allow-list over the project's own sources (tests and benchmarks left out).

usage: tidy.py PROJECT_FOLDER BUILD_FOLDER CLANG_TIDY [FOLDER | -FOLDER]...

With folders of the project only what is in them is checked, with some after a "-" what is in none of these.

The headers that sources share are most of the work, so files built with the same options are
checked as one unit, unless their private names meet. Where that finds something, or a clash that
was not foreseen, the files it is about are checked by themselves. A file is checked again only when
it, a project header that it depends on, or the list of checks has changed: what passed is remembered
in BUILD_FOLDER/tidy.
"""
import concurrent.futures
import hashlib
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

from tool_version import NOT_APPLICABLE, is_other

FOLDERS = ("kit", "script", "host", "app", "tools")
TOGETHER = 16
PRIVATE = re.compile(r"^namespace \{\n(.*?)^\}  // namespace$", re.MULTILINE | re.DOTALL)
ALIAS = re.compile(r"^using (\w+) = (.*?);", re.MULTILINE | re.DOTALL)
DECLARED = re.compile(r"^(?:(?:struct|class|enum(?: class)?) (\w+)"
                      r"|(?!using )[\w:][^\n({=;]*?[ *&](\w+)(?:\(|\{| =|;|\[))", re.MULTILINE)
BLAMED = re.compile(r"^(\S+?):\d+:\d+: error:", re.MULTILINE)


def object_of(entry):
    """The object file that a compile command makes."""
    return re.search(r" -o (\S+)", entry["command"])[1]


def without_headers_ahead(command):
    """The compile command without what was compiled ahead by another compiler: a unit reads what it
    includes."""
    return re.sub(r" -Winvalid-pch -include \S+", "", command)


def apart(entry):
    """The entries of the sources that the build compiles as this one: several of a library at a time."""
    if "/Unity/unity_" not in entry["file"]:
        return [entry]
    joined = re.findall(r'^#include "(.*)"$', pathlib.Path(entry["file"]).read_text(), re.MULTILINE)
    return [{**entry, "file": file, "command": entry["command"].replace(entry["file"], file)}
            for file in joined]


def options_of(entry):
    """Of the compile command: everything but the files."""
    return entry["command"].replace(object_of(entry), "").replace(entry["file"], "")


def private_names(text):
    """What a source declares for itself alone, as clang-format lays it out: names, and for an alias
    what it stands for."""
    result = dict.fromkeys(re.findall(r"^int (main)\(", text, re.MULTILINE))
    for part in PRIVATE.findall(text):
        result.update((name, None) for names in DECLARED.findall(part) for name in names if name)
        result.update(ALIAS.findall(part))
    return result


def meet(one, other):
    """True if a name of both is more than the same alias twice."""
    return any(one[name] != other[name] or one[name] is None for name in one.keys() & other.keys())


def reads_x11(text):
    """X11's macros have common words for names and spoil what is read after them."""
    return re.search(r"#include <(X11/|gdk/gdkx)", text) is not None


def units_of(entries):
    """Lists of files to check as one, with those first that take the longest."""
    groups = {}
    for entry in entries:
        groups.setdefault(options_of(entry), []).append(entry)
    result = []
    for group in groups.values():
        texts = {entry["file"]: pathlib.Path(entry["file"]).read_text() for entry in group}
        units = []
        for entry in sorted(group, key=lambda e: (reads_x11(texts[e["file"]]), e["file"])):
            names = private_names(texts[entry["file"]])
            files, taken = next(((files, taken) for files, taken in units
                                 if len(files) < TOGETHER and not meet(taken, names)), ([], {}))
            if not files:
                units.append((files, taken))
            files.append(entry)
            taken.update(names)
        result += [files for files, _ in units]
    return sorted(result, key=lambda files: len(files) * len(files[0]["command"]), reverse=True)


def dependencies(build):
    """Object file -> the files it was built from, as ninja recorded them."""
    text = subprocess.run(["ninja", "-C", str(build), "-t", "deps"], capture_output=True, text=True,
                          check=True).stdout
    result, current = {}, None
    for line in text.splitlines():
        if line.startswith("    ") and current is not None:
            current.append(line.strip())
        elif ": #deps" in line:
            current = result.setdefault(line.split(": #deps")[0], [])
    return result


def tidy_unit(tidy, config, entries):
    """Checks the files as one translation unit, built as the first of them is."""
    first = entries[0]
    # What one file calls a variable may be a private name of another; of its own the build tells.
    shadowing = ["--extra-arg=-Wno-shadow"] if len(entries) > 1 else []
    with tempfile.TemporaryDirectory() as folder:
        unit = pathlib.Path(folder, "unit.cpp")
        unit.write_text("".join(f'#include "{entry["file"]}"\n' for entry in entries))
        pathlib.Path(folder, "compile_commands.json").write_text(json.dumps([{
            "directory": first["directory"], "file": str(unit),
            "command": first["command"].replace(first["file"], str(unit))}]))
        run = subprocess.run([tidy, "--quiet", f"--config-file={config}", "-p", folder,
                              "--extra-arg=-Wno-unknown-warning-option", *shadowing, str(unit)],
                             capture_output=True, text=True, check=False)
    return run.returncode, run.stdout + run.stderr


def is_in(file, folders):
    return any(file.is_relative_to(folder) for folder in folders)


def main():
    wanted = [name for name in sys.argv[4:] if not name.startswith("-")]
    unwanted = [name[1:] for name in sys.argv[4:] if name.startswith("-")]
    root, build, tidy = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2]), sys.argv[3]
    if is_other(tidy):
        return NOT_APPLICABLE
    stamps = build / "tidy"
    stamps.mkdir(exist_ok=True)
    depends = dependencies(build)
    config = root / ".clang-tidy"
    checks = config.read_bytes()

    def stamp_of(entry):
        digest = hashlib.sha256(checks + entry["command"].encode())
        for name in sorted({entry["file"], *depends.get(object_of(entry), [])}):
            path = (build / name).resolve()
            if path.is_relative_to(root) and path.exists():
                digest.update(name.encode() + b"\n" + path.read_bytes())
        return stamps / digest.hexdigest()

    def check(entries):
        """What is wrong, or nothing."""
        code, text = tidy_unit(tidy, config, entries)
        if code == 0:
            for entry in entries:
                stamp[entry["file"]].touch()
            return ""
        if len(entries) == 1:
            return text
        named = set(BLAMED.findall(text))
        parts = ([entry for entry in entries if entry["file"] in named],
                 [entry for entry in entries if entry["file"] not in named])
        if not all(parts):
            half = len(entries) // 2
            parts = entries[:half], entries[half:]
        return check(parts[0]) + check(parts[1])

    entries = [entry for command in json.loads((build / "compile_commands.json").read_text())
               for entry in apart(command) if pathlib.Path(entry["file"]).resolve().is_relative_to(root)
               and is_in(within := pathlib.Path(entry["file"]).resolve().relative_to(root), FOLDERS)
               and (not wanted or is_in(within, wanted)) and not is_in(within, unwanted)
               # Objective-C++ is analysed by tools/macos-check, with what macOS declares.
               and not entry["file"].endswith(".mm")]
    if not entries:
        print("found nothing to check")
        return 1
    # Some are part of two programs.
    entries = list({entry["file"]: {**entry, "command": without_headers_ahead(entry["command"])}
                    for entry in entries}.values())
    stamp = {entry["file"]: stamp_of(entry) for entry in entries}
    changed = [entry for entry in entries if not stamp[entry["file"]].exists()]
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        found = "".join(pool.map(check, units_of(changed)))
    print(f"{found}{len(entries)} files checked")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
