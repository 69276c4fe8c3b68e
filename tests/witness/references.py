"""The cells that a formula names, worked out for one cell at a time. Gives (kind, Box) for each:
kind says how the cells are named. What only a calculation can tell (INDIRECT, OFFSET) is left out."""
import re

from stored import LAST_COLUMN, LAST_ROW, Box, column_number

CELL = r"\$?[A-Za-z]{1,3}\$?[0-9]+(?![\w(.])"
SHAPE = (rf"{CELL}(?::{CELL})?|\$?[A-Za-z]{{1,3}}:\$?[A-Za-z]{{1,3}}(?![\w(.!])"
         r"|\$?[0-9]+:\$?[0-9]+(?![\w(.!])")
PREFIX = r"'(?:[^']|'')+'!|(?:\[[^\]]*\])?[\w.]+(?::[\w.]+)?!"
TOKEN = re.compile(
    rf'(?P<text>"(?:[^"]|"")*")|(?P<error>#(?:REF!|N/A|NAME\?|VALUE!|DIV/0!|NUM!|NULL!))'
    rf"|(?P<prefix>{PREFIX})?(?:(?P<shape>{SHAPE})|(?P<broken>#REF!)|(?P<name>[^\W\d][\w.?\\]*))"
    r"|(?P<number>[0-9]*\.?[0-9]+(?:[eE][+-]?[0-9]+)?)|(?P<blank>\s+)|(?P<sign>.)", re.DOTALL)
PART = re.compile(r"(\$?)([A-Za-z]*)(\$?)([0-9]*)")


def brackets_end(text, start):
    """Behind the bracket that closes the one at `start`; an apostrophe takes the next sign as is."""
    depth, at = 0, start
    while at < len(text):
        if text[at] == "'":
            at += 1
        elif text[at] == "[":
            depth += 1
        elif text[at] == "]":
            depth -= 1
            if depth == 0:
                return at + 1
        at += 1
    return len(text)


class References:
    def __init__(self, book):
        self.book = book
        self.known = {sheet.lower(): sheet for sheet in book.sheets}

    def of(self, sheet, row, column):
        """Of the formula in this cell."""
        formula = self.book.formulas[sheet, row, column]
        shift = row - formula.row, column - formula.column
        kind = "cells" if formula.kind == "cell" else formula.kind
        return list(self.named(formula.text, sheet, (row, column), shift, kind, ()))

    def named(self, text, sheet, cell, shift, kind, within):
        """`within`: the names that are being looked up, so that circles end."""
        operand, operator, at = None, "", 0
        found = []
        while at < len(text):
            token = TOKEN.match(text, at)
            at = token.end()
            if token["blank"]:
                operator = operator or (" " if operand is not None else "")
                continue
            if token["sign"] == ":" and operand is not None:
                operator = ":"
                continue
            here = None
            if token["shape"]:
                here = self.shape(token["prefix"], token["shape"], sheet, shift, kind)
            elif token["name"]:
                here, at = self.word(token, text, at, sheet, cell, kind, within)
            if here is not None and operand and operator in (":", " ") and len(here) == 1:
                here = self.together(operator, operand, here, found)
            elif operand:
                found += operand
            operand, operator = here, ""
        return found + (operand or [])

    @staticmethod
    def together(operator, one, other, found):
        (kind, a), (_, b) = one[-1], other[0]
        if a.sheet != b.sheet or len(one) != 1:
            found += one
            return other
        if operator == ":":
            return [(kind, Box(a.sheet, min(a.top, b.top), min(a.left, b.left),
                               max(a.bottom, b.bottom), max(a.right, b.right)))]
        both = Box(a.sheet, max(a.top, b.top), max(a.left, b.left),
                   min(a.bottom, b.bottom), min(a.right, b.right))
        return [(kind, both)] if both.top <= both.bottom and both.left <= both.right else []

    def sheets(self, prefix, sheet):
        """Which the prefix means: none where they are not in this workbook."""
        if not prefix:
            return [sheet]
        name = prefix[:-1]
        if name.startswith("'"):
            name = name[1:-1].replace("''", "'")
        name = name.removeprefix("[0]")
        if "[" in name:
            return []
        first, _, last = name.partition(":")
        ends = [self.known.get(one.lower()) for one in (first, last or first)]
        if None in ends:
            return []
        low, high = sorted(self.book.sheets.index(one) for one in ends)
        return self.book.sheets[low:high + 1]

    def shape(self, prefix, text, sheet, shift, kind):
        ends = [PART.fullmatch(one).groups() for one in text.split(":")]
        rows, columns = [], []
        for column_fixed, letters, row_fixed, digits in ends:
            if letters:
                number = column_number(letters)
                columns.append(number if column_fixed else number + shift[1])
            if digits:
                # "$5:$7" has its sign where that of a column would be.
                fixed = row_fixed or (column_fixed and not letters)
                rows.append(int(digits) if fixed else int(digits) + shift[0])
        # What goes over the edge comes in again on the other side.
        rows = [(one - 1) % LAST_ROW + 1 for one in rows] or [1, LAST_ROW]
        columns = [(one - 1) % LAST_COLUMN + 1 for one in columns] or [1, LAST_COLUMN]
        sheets = self.sheets(prefix, sheet)
        kind = "sheets" if len(sheets) > 1 else kind
        return [(kind, Box(one, min(rows), min(columns), max(rows), max(columns)))
                for one in sheets]

    def word(self, token, text, at, sheet, cell, kind, within):
        name = token["name"]
        if text[at:at + 1] == "[":
            end = brackets_end(text, at)
            own = self.book.tables.get(name.lower())
            return (self.columns(own, text[at + 1:end - 1], cell) if own else []), end
        home = sheet
        if token["prefix"]:
            home = next(iter(self.sheets(token["prefix"], sheet)), None)
            if home is None and "[" in token["prefix"].replace("[0]", ""):
                return [], at
        found = self.name(name, home or sheet, cell, within)
        if found is None and not token["prefix"] and name.lower() in self.book.tables:
            return self.columns(self.book.tables[name.lower()], "", cell), at
        return found if found is not None else None, at

    def name(self, name, sheet, cell, within):
        names = self.book.names
        key = (name.lower(), sheet) if (name.lower(), sheet) in names else (name.lower(), None)
        if key not in names or name.lower().startswith("_xl") or key in within:
            return None
        text = names[key]
        # Written as seen from A1; what moves with the cell is of another kind.
        seen = (cell[0] - 1, cell[1] - 1)
        still = self.named(text, sheet, cell, (0, 0), "name", within + (key,))
        moved = self.named(text, sheet, cell, seen, "name", within + (key,))
        return [("relative name" if a != b and cell != (1, 1) else b[0], b[1])
                for a, b in zip(still, moved)]

    def columns(self, table, inner, cell):
        area, data = table.box, [table.box.top + table.headers, table.box.bottom - table.totals]
        items = [one.lower() for one in re.findall(r"#(All|Data|Headers|Totals|This Row)", inner,
                                                   re.IGNORECASE)]
        rest = re.sub(r"\[?#(?:All|Data|Headers|Totals|This Row)\]?\s*,?\s*", "", inner,
                      flags=re.IGNORECASE).strip()
        if rest.startswith("@"):
            items, rest = ["this row"], rest[1:]
        between = re.fullmatch(r"\[((?:[^\[\]']|'.)*)\]\s*:\s*\[((?:[^\[\]']|'.)*)\]", rest)
        ends = between.groups() if between else (rest.strip("[]"),) * 2 if rest else None
        left, right = area.left, area.right
        if ends:
            spelled = [re.sub(r"\s+", " ", one).lower() for one in table.columns]
            try:
                numbers = [spelled.index(re.sub(r"\s+", " ", re.sub(r"'(.)", r"\1", one)).lower())
                           for one in ends]
            except ValueError:
                return []
            left, right = area.left + min(numbers), area.left + max(numbers)
        rows = []
        for item in items or ["data"]:
            rows += {"all": [area.top, area.bottom], "data": data,
                     "headers": [area.top, area.top + table.headers - 1],
                     "totals": [area.bottom - table.totals + 1, area.bottom],
                     "this row": [cell[0], cell[0]]}[item]
        return [("table", Box(area.sheet, min(rows), left, max(rows), right))]
