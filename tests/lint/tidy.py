#!/usr/bin/env python3
"""Runs clang-tidy's allow-list over the project's own sources (tests and benchmarks left out).

usage: tidy.py PROJECT_FOLDER BUILD_FOLDER CLANG_TIDY

The headers that sources share are most of the work, so files of one target are checked as one
unit. Where that finds something, or their private names clash, each half is checked by itself.
Files are checked again only when one of them, a project header that they depend on, or the list
of checks has changed: what passed is remembered in BUILD_FOLDER/tidy.
"""
import concurrent.futures
import hashlib
import itertools
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

FOLDERS = ("kit", "script", "host", "app", "tools")
TOGETHER = 8


def object_of(entry):
    """The object file that a compile command makes."""
    return re.search(r" -o (\S+)", entry["command"])[1]


def target_of(entry):
    return object_of(entry).split("CMakeFiles/")[1].split("/")[0]


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
    with tempfile.TemporaryDirectory() as folder:
        unit = pathlib.Path(folder, "unit.cpp")
        unit.write_text("".join(f'#include "{entry["file"]}"\n' for entry in entries))
        pathlib.Path(folder, "compile_commands.json").write_text(json.dumps([{
            "directory": first["directory"], "file": str(unit),
            "command": first["command"].replace(first["file"], str(unit))}]))
        run = subprocess.run([tidy, "--quiet", f"--config-file={config}", "-p", folder,
                              "--extra-arg=-Wno-unknown-warning-option", str(unit)],
                             capture_output=True, text=True, check=False)
    return run.returncode, run.stdout + run.stderr


def main():
    root, build, tidy = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2]), sys.argv[3]
    stamps = build / "tidy"
    stamps.mkdir(exist_ok=True)
    depends = dependencies(build)
    config = root / ".clang-tidy"
    checks = config.read_bytes()

    def key_of(entries):
        digest = hashlib.sha256(checks + entries[0]["command"].encode())
        names = {name for entry in entries
                 for name in (entry["file"], *depends.get(object_of(entry), []))}
        for name in sorted(names):
            path = (build / name).resolve()
            if path.is_relative_to(root) and path.exists():
                digest.update(name.encode() + b"\n" + path.read_bytes())
        return digest.hexdigest()

    def check(entries):
        """What is wrong, or nothing."""
        stamp = stamps / key_of(entries)
        if stamp.exists():
            return ""
        code, text = tidy_unit(tidy, config, entries)
        if code != 0 and len(entries) > 1:
            half = len(entries) // 2
            text = check(entries[:half]) + check(entries[half:])
        elif code == 0:
            text = ""
        if not text:
            stamp.touch()
        return text

    entries = [entry for entry in json.loads((build / "compile_commands.json").read_text())
               if pathlib.Path(entry["file"]).resolve().is_relative_to(root)
               and pathlib.Path(entry["file"]).resolve().relative_to(root).parts[0] in FOLDERS]
    if not entries:
        print("found nothing to check")
        return 1
    units = []
    for _, files in itertools.groupby(sorted(entries, key=target_of), key=target_of):
        files = list(files)
        units += [files[at:at + TOGETHER] for at in range(0, len(files), TOGETHER)]
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        found = "".join(pool.map(check, units))
    print(f"{found}{len(entries)} files checked")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
