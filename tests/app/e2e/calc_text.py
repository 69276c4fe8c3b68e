"""Excel's formulas in Calc's own grammar: what value_client.py writes into cells.

A small translator of its own, which leaves alone what it does not know. The names of LET are put in
by hand, for Calc has no LET.
"""
import dataclasses
import re

WORDS = re.compile(r"""
    (?P<text>"(?:[^"]|"")*")
  | (?P<array>\{[^{}]*\})
  | (?P<error>\#(?:NULL!|DIV/0!|VALUE!|REF!|NAME\?|NUM!|N/A))
  | (?P<quoted>'(?:[^']|'')+'!)
  | (?P<sheet>[^\W\d][\w.]*!)
  | (?P<columns>(?:[^\W\d][\w.]*)?\[(?:[^\[\]]|\[[^\[\]]*\])*\])
  | (?P<call>[^\W\d][\w.]*\()
  | (?P<cell>\$?[A-Z]{1,3}\$?\d+(?![\w(.])|\$?[A-Z]{1,3}:\$?[A-Z]{1,3}(?![\w(])|\$?\d+:\$?\d+(?!\w))
  | (?P<name>[^\W\d][\w.]*)
  | (?P<number>\d+\.?\d*(?:E[+-]?\d+)?|\.\d+(?:E[+-]?\d+)?)
  | (?P<comma>,)
  | (?P<other>.)
""", re.VERBOSE | re.DOTALL | re.IGNORECASE)
# Counted from the sheet or the row in which they stand.
OF_THE_PLACE = re.compile(r"\bINDIRECT\(|#This Row", re.IGNORECASE)


class Unknown(Exception):
    """What this translator does not know."""


@dataclasses.dataclass
class Home:
    """The cell of a formula, and what Calc tells of it."""
    sheet: str
    names: set = dataclasses.field(default_factory=set)  # the sheet's own, in small letters
    table: str = ""  # in which it stands
    tables: set = dataclasses.field(default_factory=set)  # the workbook's, in small letters
    functions: dict = dataclasses.field(default_factory=dict)  # its names of Excel's functions


def words(text):
    return [(match.lastgroup, match.group(), match.start()) for match in WORDS.finditer(text)]


def plain(word):
    """A name or a call without the marks of a newer Excel, in small letters."""
    return re.sub(r"^(?:_xlfn\.|_xlws\.|_xlpm\.)+", "", word.lower()).rstrip("(")


def opens(kind, word):
    return kind == "call" or word == "("


def parted(tokens):
    """The words between the commas that stand in no further bracket."""
    found, depth = [[]], 0
    for kind, word, at in tokens:
        depth += opens(kind, word) - (word == ")")
        if kind == "comma" and depth == 0:
            found.append([])
        else:
            found[-1].append((kind, word, at))
    return found


def end_of_call(tokens, at):
    """Where the bracket stands that closes the call whose first argument begins there."""
    depth = 1
    while at < len(tokens):
        kind, word, _ = tokens[at]
        depth += opens(kind, word) - (word == ")")
        if depth == 0:
            return at
        at += 1
    raise Unknown


def scope_at(formula, start):
    """What the names of LET stand for to the part that begins there."""
    before = [token for token in words(formula) if token[2] < start]
    unclosed, scope = [], {}
    for i, (kind, word, _) in enumerate(before):
        if word == ")":
            unclosed.pop()
        elif opens(kind, word):
            unclosed.append(i)
    for i in unclosed:
        if plain(before[i][1]) == "let":
            bind_all(scope, parted(before[i + 1:])[:-1])
    return scope


def bind_all(scope, parts):
    for name, value in zip(parts[::2], parts[1::2]):
        scope[plain("".join(word for _, word, _ in name).strip())] = without_let(value, scope)


def without_let(tokens, scope):
    """The text with what its names stand for in their place."""
    result, at = [], 0
    while at < len(tokens):
        kind, word, _ = tokens[at]
        at += 1
        if kind == "call" and (plain(word) == "lambda" or plain(word) in scope):
            raise Unknown
        if kind == "call" and plain(word) == "let":
            end = end_of_call(tokens, at)
            parts = parted(tokens[at:end])
            at = end + 1
            inner = dict(scope)
            bind_all(inner, parts[:-1])
            result.append(f"({without_let(parts[-1], inner)})")
        elif kind == "name" and plain(word) in scope:
            result.append(f"({scope[plain(word)]})")
        else:
            result.append(word)
    return "".join(result)


def table_part(word, home):
    """Sales[@Net] as Sales[[#This Row];[Net]], Sales[#All] as Sales[[#All]]."""
    table, items = word[:word.index("[")] or home.table, word[word.index("["):]
    if not table:
        raise Unknown
    row = re.fullmatch(r"\[@(?:\[(.*)\]|(.*))\]", items, re.DOTALL)
    if row:
        column = row[1] if row[1] is not None else row[2]
        items = f"[[#This Row];[{column}]]" if column else "[[#This Row]]"
    elif items.startswith("[#"):
        items = f"[{items}]"
    return table + re.sub(r"\]\s*,\s*\[", "];[", items)


def translated(text, home, scope=None):
    """A part of a formula as Calc's own grammar has it, its references with their sheet."""
    own = "$'" + home.sheet.replace("'", "''") + "'."
    result, prefix, before = [], None, ""
    tokens = words(without_let(words(text), scope or {}))
    for i, (kind, word, at) in enumerate(tokens):
        following = tokens[i + 1] if i + 1 < len(tokens) else ("", "", 0)
        if kind in ("quoted", "sheet"):
            name = word[1:-2] if kind == "quoted" else word[:-1]
            if "[" in name or ":" in name:
                raise Unknown
            prefix = f"$'{name}'."
            continue
        if kind == "array":
            word = re.sub(r'"(?:[^"]|"")*"|[,;]',
                          lambda one: {",": ";", ";": "|"}.get(one[0], one[0]), word)
        elif kind == "comma":
            word = ";"
        elif kind == "error":
            prefix = None  # 'Sheet'!#REF!
        elif kind == "columns":
            if following[0] in ("sheet", "name", "number"):
                raise Unknown  # [Book.xlsx]Sheet!A1
            word = table_part(word, home)
        elif kind == "call":
            word = re.sub(r"^(?:_xlfn\.|_xlws\.)+", "", word, flags=re.IGNORECASE)
            word = home.functions.get(word[:-1].upper(), word[:-1]) + "("
        elif kind == "name" and prefix is None and word.lower() in home.names:
            word = own + word
        elif kind == "name" and prefix is None and word.lower() in home.tables:
            word += "[]"  # in Calc the name alone stands for the header, too
        elif kind == "other" and word in "[]@!#":
            raise Unknown
        elif kind == "other" and word == " " and before in ("cell", "name"):
            if following[0] in ("cell", "name", "quoted", "sheet", "call") or following[1] == "(":
                raise Unknown  # an intersection
        if kind == "cell" and prefix is None and before != "colon":
            word = own + word
        elif prefix is not None:
            word = prefix + word
        prefix = None
        before = "colon" if word == ":" else kind
        result.append(word)
    return "".join(result)
