#!/usr/bin/env python3
"""Runs clang-tidy's allow-list over the project's own sources (tests and benchmarks left out).

usage: tidy.py PROJECT_FOLDER BUILD_FOLDER CLANG_TIDY

A file is checked again only when it, a project header that its object depends on, or the list of
checks has changed: what passed is remembered in BUILD_FOLDER/tidy.
"""
import concurrent.futures
import hashlib
import json
import os
import pathlib
import subprocess
import sys

FOLDERS = ("kit", "script", "host", "app", "tools")


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


def main():
    root, build, tidy = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2]), sys.argv[3]
    stamps = build / "tidy"
    stamps.mkdir(exist_ok=True)
    depends = dependencies(build)
    checks = (root / ".clang-tidy").read_bytes()

    def key_of(entry):
        digest = hashlib.sha256(checks + entry["command"].encode())
        for name in sorted({entry["file"], *depends.get(entry.get("output", ""), [])}):
            path = (build / name).resolve()
            if path.is_relative_to(root) and path.exists():
                digest.update(path.read_bytes())
        return digest.hexdigest()

    def check(entry):
        stamp = stamps / key_of(entry)
        if stamp.exists():
            return 0, ""
        run = subprocess.run([tidy, "--quiet", "-p", str(build),
                              "--extra-arg=-Wno-unknown-warning-option", entry["file"]],
                             capture_output=True, text=True, check=False)
        if run.returncode == 0:
            stamp.touch()
        return run.returncode, run.stdout + run.stderr

    entries = [entry for entry in json.loads((build / "compile_commands.json").read_text())
               if pathlib.Path(entry["file"]).resolve().is_relative_to(root)
               and pathlib.Path(entry["file"]).resolve().relative_to(root).parts[0] in FOLDERS]
    if not entries:
        print("found nothing to check")
        return 1
    status = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for code, text in pool.map(check, entries):
            if code != 0:
                print(text)
                status = 1
    print(f"{len(entries)} files checked")
    return status


if __name__ == "__main__":
    sys.exit(main())
