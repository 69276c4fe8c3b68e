"""Workbooks as their files keep them: sheets, formulas, names and tables, by the standard library
alone. Slow and plain on purpose; shares nothing with the page, whose answers it is to check."""
import posixpath
import re
import xml.etree.ElementTree as ElementTree
import zipfile
from dataclasses import dataclass, field

LAST_ROW, LAST_COLUMN = 1048576, 16384


@dataclass(frozen=True)
class Box:
    """Cells of a sheet, counted from 1, both ends in it."""
    sheet: str
    top: int
    left: int
    bottom: int
    right: int

    def has(self, row, column):
        return self.top <= row <= self.bottom and self.left <= column <= self.right


@dataclass
class Formula:
    text: str
    # Where the text was written, from which followers of a shared formula are shifted.
    row: int
    column: int
    kind: str = "cell"
    inputs: tuple = ()


@dataclass
class Table:
    box: Box
    columns: list
    headers: int
    totals: int


@dataclass
class Workbook:
    sheets: list = field(default_factory=list)
    # By (sheet, row, column); `places` are those of all cells that hold anything.
    formulas: dict = field(default_factory=dict)
    places: list = field(default_factory=list)
    # By (name in lower case, sheet or None).
    names: dict = field(default_factory=dict)
    tables: dict = field(default_factory=dict)


def column_number(letters):
    number = 0
    for letter in letters.upper():
        number = number * 26 + ord(letter) - 64
    return number


def column_letters(number):
    letters = ""
    while number:
        number, rest = divmod(number - 1, 26)
        letters = chr(65 + rest) + letters
    return letters


def place(address):
    letters, row = re.fullmatch(r"\$?([A-Za-z]+)\$?(\d+)", address).groups()
    return int(row), column_number(letters)


def box(sheet, address):
    first, _, last = address.partition(":")
    top, left = place(first)
    bottom, right = place(last or first)
    return Box(sheet, top, left, bottom, right)


def plain(tag):
    return tag.rsplit("}", 1)[-1]


def attribute(element, name):
    """Whatever namespace it is in."""
    return next((text for key, text in element.attrib.items() if plain(key) == name), None)


def relations(archive, part):
    folder, name = posixpath.split(part)
    listed = f"{folder}/_rels/{name}.rels"
    if listed not in archive.namelist():
        return []
    found = []
    for one in ElementTree.fromstring(archive.read(listed)):
        target = one.get("Target")
        whole = target[1:] if target.startswith("/") else posixpath.normpath(f"{folder}/{target}")
        found.append((one.get("Id"), one.get("Type").rsplit("/", 1)[-1], whole))
    return found


def read(path):
    book = Workbook()
    with zipfile.ZipFile(path) as archive:
        main = next(target for _, kind, target in root_relations(archive)
                    if kind == "officeDocument")
        parts = {number: (kind, target) for number, kind, target in relations(archive, main)}
        order, names = [], []
        for element in ElementTree.fromstring(archive.read(main)).iter():
            if plain(element.tag) == "sheet":
                kind, target = parts[next(text for key, text in element.attrib.items()
                                          if plain(key) == "id")]
                order.append((element.get("name"), kind, target))
            elif plain(element.tag) == "definedName":
                names.append(element)
        for element in names:
            number = element.get("localSheetId")
            sheet = None if number is None else order[int(number)][0]
            book.names[element.get("name").lower(), sheet] = element.text or ""
        for name, kind, target in order:
            if kind != "worksheet":
                continue
            book.sheets.append(name)
            read_sheet(book, archive, name, target)
    return book


def root_relations(archive):
    return [(one.get("Id"), one.get("Type").rsplit("/", 1)[-1], one.get("Target").lstrip("/"))
            for one in ElementTree.fromstring(archive.read("_rels/.rels"))]


def read_sheet(book, archive, name, part):
    for _, kind, target in relations(archive, part):
        if kind == "table":
            read_table(book, archive.read(target), name)
    shared, arrays = {}, []
    for _, cell in ElementTree.iterparse(archive.open(part)):
        if plain(cell.tag) != "c":
            continue
        row, column = place(cell.get("r"))
        for child in cell:
            if plain(child.tag) == "f":
                formula = read_formula(child, row, column, shared)
                if formula and formula.kind != "cell":
                    arrays.append((formula, box(name, child.get("ref"))))
                elif formula:
                    book.formulas[name, row, column] = formula
        if len(cell):
            book.places.append((name, row, column))
        cell.clear()
    # Arrays and data tables belong to all of their cells.
    for formula, area in arrays:
        for row in range(area.top, area.bottom + 1):
            for column in range(area.left, area.right + 1):
                book.formulas[name, row, column] = own_part(formula, area, row, column)


def read_formula(element, row, column, shared):
    kind, text = element.get("t", "normal"), element.text or ""
    if kind == "shared":
        number = element.get("si")
        if text:
            shared[number] = Formula(text, row, column)
        return shared[number]
    if kind == "array":
        return Formula(text, row, column, "array")
    if kind == "dataTable":
        two = element.get("dt2D") in ("1", "true")
        by_row = two or element.get("dtr") in ("1", "true")
        inputs = [element.get("r1")] + ([element.get("r2")] if two else [])
        return Formula("", row, column, "data table", (two, by_row, inputs))
    return Formula(text, row, column) if text else None


def own_part(formula, area, row, column):
    """What a cell of an array or of a data table uses."""
    if formula.kind == "array":
        # Every cell has the text as it stands, so nothing is shifted.
        return Formula(formula.text, row, column, "array")
    two, by_row, inputs = formula.inputs
    head, side = area.top - 1, area.left - 1
    across, down = (head, column), (row, side)
    corner = (head, side) if two else (row, side) if by_row else (head, column)
    values = (across, down) if two else (across,) if by_row else (down,)
    used = [corner, *values, *map(place, inputs)]
    text = ",".join(f"{column_letters(c)}{r}" for r, c in used)
    return Formula(text, row, column, "data table")


def read_table(book, text, sheet):
    root = ElementTree.fromstring(text)
    columns = [one.get("name") for one in root.iter() if plain(one.tag) == "tableColumn"]
    headers = int(root.get("headerRowCount", "1"))
    totals = int(root.get("totalsRowCount", "0"))
    found = Table(box(sheet, root.get("ref")), columns, headers, totals)
    for name in {root.get("name"), root.get("displayName")} - {None}:
        book.tables[name.lower()] = found
