"""What a hostile workbook is to the tests: how it is written, and what is asked of it."""
import dataclasses
import pathlib
from typing import Callable

CASES = []
# Calc and its parsers bear it. That the tests would see a failure is tried with a program of ours that
# ends where it meets the workbook (without_guards.py).
NONE = "no guard of ours"


def add_choice(parser):
    parser.add_argument("--only", action="append")
    parser.add_argument("--without", action="append", default=[])


def chosen(parser, options):
    """The cases that the options of add_choice leave; an unknown one is refused."""
    if unknown := {*options.without, *(options.only or ())} - {case.name for case in CASES}:
        parser.error(f"no such cases: {unknown}")
    return [case for case in CASES if case.name not in options.without
            and (not options.only or case.name in options.only)]


@dataclasses.dataclass(frozen=True)
class Place:
    """Where a workbook may try to reach: a server that must hear nothing, files that nobody may
    open."""
    server: str  # "127.0.0.1:8765"
    bait: pathlib.Path  # a folder with secret.txt, secret.csv and secret.fods

    def url(self, name):
        return f"http://{self.server}/{name}"

    def file(self, name):
        return (self.bait / name).as_uri()


@dataclasses.dataclass(frozen=True)
class Case:
    name: str
    file: str
    write: Callable[[pathlib.Path, Place], None]
    guard: str  # what of Quorin's keeps it harmless, or NONE
    cells: tuple = ("A1",)  # "A1", or "Sheet!A1" as a reference writes it
    ask: tuple = ()  # expressions, beside the formulas of the cells and their parts
    ranges: tuple = ()  # addresses to be read and marked
    gives: tuple = ()  # pairs of an expression and its value, or all of the answer
    names: int | None = None  # so many the map of the workbook has to tell
    loads: bool | None = True  # whether the office opens it; None: it may or may not
    calc_fetches: tuple = ()  # what of the server Calc asks itself for, to show the file


def case(file, *, guard, name=None, **rest):
    """The function below writes the workbook. Its name is the case's."""
    def add(write):
        CASES.append(Case(name or write.__name__.replace("_", "-"), file, write, guard, **rest))
        return write
    return add
