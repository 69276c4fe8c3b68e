"""What a page would ask of a workbook, and more."""
import re

LONGEST = 255  # characters of an expression
CALL = re.compile(r"[A-Za-z_][A-Za-z0-9_.]*\(")
NAME = re.compile(r"[A-Za-z_\\][A-Za-z0-9_.\\]*")


def parts_of(formula):
    """Calls and names in a formula's text, the longest first."""
    found = []
    for start in CALL.finditer(formula):
        depth = 0
        for end in range(start.end() - 1, len(formula)):
            depth += {"(": 1, ")": -1}.get(formula[end], 0)
            if depth == 0:
                found.append(formula[start.start():end + 1])
                break
    found += NAME.findall(re.sub(r'"[^"]*"', "", formula))
    unique = list(dict.fromkeys(found))
    return sorted(unique, key=len, reverse=True)


def expressions(formula, most=8):
    """The formula itself and some of its parts, as `evaluate` takes them."""
    if not formula.startswith("="):
        return []
    short = [one for one in [formula[1:], *parts_of(formula[1:])] if len(one) <= LONGEST]
    return list(dict.fromkeys(short))[:most]


def walk(case, sheets, ask):
    """`ask` puts one request and gives its payload, or None."""
    ask("probe")
    ask("workbookMap")
    for cell in case.cells:
        place = cell if "!" in cell else f"'{sheets[0]}'!{cell}".replace("''", "'")
        ask("activate", place)
        ask("pollCell")
        formula = (ask("readCell") or {}).get("formula") or ""
        asked = expressions(formula if isinstance(formula, str) else "")
        for one in asked:
            ask("evaluate", one)
        if asked and len(asked[0]) < LONGEST - 1:
            ask("deepEval", [asked[0]])
        ask("readRange", place)
        for style in ("a1", "r1c1"):
            ask("readFormulas", place, style)
        ask("dependents", place)
        ask("reveal", [place])
    for one in case.ask:
        ask("evaluate", one)
        ask("deepEval", [one])
    for one in case.ranges:
        ask("select", [one])
        ask("readRange", one)
        ask("readFormulas", one, "r1c1", True)
        ask("dependents", one)
        ask("markCells", [one], [255, 200, 0])
        ask("reveal", [one])
    ask("markCells", list(case.cells), [255, 200, 0])
    ask("clearMarks")
