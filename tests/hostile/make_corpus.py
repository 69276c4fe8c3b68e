#!/usr/bin/env python3
"""Writes the hostile workbooks, each into a folder of its own.

usage: make_corpus.py FOLDER [HOST:PORT] [BAIT]

They try to reach the server and the files of the folder BAIT, which this makes too.
"""
import pathlib
import sys

import endless_cases  # noqa: F401
import odd_cases  # noqa: F401
import odf_writer
import reaching_cases  # noqa: F401
import xlsx_writer
from case import CASES, Place

BAIT = {"secret.txt": "nobody may read this", "secret.csv": "nobody,may,read,this\n"}


def make_bait(folder):
    folder.mkdir(parents=True, exist_ok=True)
    for name, text in BAIT.items():
        (folder / name).write_text(text)
    odf_writer.Document(odf_writer.Table(rows=[["nobody may read this", 1], [2, 3]])).save_flat(
        folder / "secret.fods")


def make_ordinary(path):
    """A workbook of nobody's making, for what has to work after each of the others."""
    xlsx_writer.Workbook(
        xlsx_writer.Sheet("Sheet1", {"A1": 2, "A2": 3, "B1": "=SUM(A1:A2)*Factor"}),
        names=[("Factor", "Sheet1!$A$2")]).save(path)


def make_corpus(folder, place):
    """The path of each case's workbook."""
    paths = {}
    for case in CASES:
        path = folder / case.name / case.file
        path.parent.mkdir(parents=True, exist_ok=True)
        case.write(path, place)
        paths[case.name] = path
    return paths


def main():
    folder, server, bait = (sys.argv[1:] + ["127.0.0.1:8765", "bait"][len(sys.argv) - 2:])[:3]
    bait = pathlib.Path(bait).absolute()
    make_bait(bait)
    for name, path in make_corpus(pathlib.Path(folder), Place(server, bait)).items():
        print(f"{name}\t{path}\t{path.stat().st_size}")


if __name__ == "__main__":
    main()
