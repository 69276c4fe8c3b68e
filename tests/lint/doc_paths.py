#!/usr/bin/env python3
"""Checks that the documents name files and folders that there are.

usage: doc_paths.py PROJECT_FOLDER

In README.md and docs/*.md each text in backticks that begins with a folder of the project, as
`kit/marks`, `host/Spreadsheet.h` and `app/shell/Panel` (all files of that name) do, must lead
somewhere; "*" stands for any characters. Links to files of the project must, too. What only a build
makes is left out.
"""
import pathlib
import re
import sys

CODE = re.compile(r"`([^`\s]+)`")
LINK = re.compile(r"\]\(([^)#:\s]+)(?:#[^)]*)?\)")
MADE = ("build/", "web/dist", "web/out")


def folders(root):
    return {path.name for path in root.iterdir()
            if path.is_dir() and not path.name.startswith(".")}


def is_there(root, name):
    if name.startswith(MADE):
        return True
    return any(True for pattern in (name.rstrip("/"), name + ".*") for _ in root.glob(pattern))


def findings(root):
    known = folders(root)
    documents = [root / "README.md", *sorted((root / "docs").glob("*.md"))]
    for document in documents:
        place = document.relative_to(root).as_posix()
        for number, line in enumerate(document.read_text().splitlines(), 1):
            for name in CODE.findall(line):
                if "/" in name and name.split("/")[0] in known and not is_there(root, name):
                    yield f"{place}:{number}: there is no {name}"
            for target in LINK.findall(line):
                if not (document.parent / target).exists():
                    yield f"{place}:{number}: the link leads nowhere: {target}"


def main():
    found = list(findings(pathlib.Path(sys.argv[1]).resolve()))
    print("\n".join(found) if found else "every path that a document names is there")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
