"""Small mistakes that could be made in a source file, found by its tokens: C++ and AppleScript.

changes(path, text) lists them. A change need not compile; who makes it finds out.
"""
import dataclasses
import re

LONGER = 10  # what a time is multiplied by


@dataclasses.dataclass(frozen=True)
class Change:
    path: str
    line: int
    start: int
    end: int
    old: str
    new: str
    rule: str

    def made_in(self, text):
        return text[:self.start] + self.new + text[self.end:]

    def __str__(self):
        def short(part):
            part = " ".join(part.split())
            return part if len(part) <= 60 else part[:57] + "..."
        new = short(self.new) or "(nothing)"
        return f"{self.path}:{self.line}: {self.rule}: {short(self.old)} -> {new}"


@dataclasses.dataclass(frozen=True)
class Token:
    kind: str
    text: str
    start: int

    @property
    def end(self):
        return self.start + len(self.text)


CPP = re.compile(r"""
    (?P<comment> //[^\n]* | /\*.*?\*/ )
  | (?P<directive> (?<=\n)[ \t]*\#(?:\\\n|[^\n])* | \A\#[^\n]* )
  | (?P<raw> R"(?P<mark>[^(\s]{0,16})\(.*?\)(?P=mark)" )
  | (?P<string> "(?:\\.|[^"\\\n])*" )
  | (?P<char> '(?:\\.|[^'\\\n])+' )
  | (?P<number> \b(?:0x[0-9a-fA-F']+|[0-9][0-9']*(?:\.[0-9]+)?(?:e[+-]?[0-9]+)?)[A-Za-z]* )
  | (?P<word> [A-Za-z_]\w* )
  | (?P<operator> <=>|->|\+\+|--|<<=|>>=|<<|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|::|[^\s\w] )
""", re.S | re.X)

APPLESCRIPT = re.compile(r"""
    (?P<comment> --[^\n]* | \(\*.*?\*\) )
  | (?P<string> "(?:\\.|[^"\\])*" )
  | (?P<number> \b[0-9]+(?:\.[0-9]+)?\b )
  | (?P<word> [A-Za-z_]\w* )
  | (?P<operator> <=|>=|/=|[^\s\w] )
""", re.S | re.X)


def tokens(pattern, text):
    return [Token("raw" if found.lastgroup == "mark" else found.lastgroup, found.group(),
                  found.start()) for found in pattern.finditer(text)]


class Changes:
    def __init__(self, path, text):
        self.path, self.text, self.found = path, text, []

    def put(self, start, end, new, rule):
        old = self.text[start:end]
        if new != old:
            line = self.text.count("\n", 0, start) + 1
            self.found.append(Change(self.path, line, start, end, old, new, rule))

    def replace(self, token, new, rule):
        self.put(token.start, token.end, new, rule)


def changes(path, text):
    found = Changes(path, text)
    (of_applescript if path.endswith(".applescript") else of_cpp)(found, text)
    return found.found


# --- C++ ------------------------------------------------------------------------------------------

COMPARISONS = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "=="}
BINARY = {"&&": "||", "||": "&&", "+": "-", "-": "+", "*": "/", "/": "*", "%": "*", "+=": "-=",
          "-=": "+="}
TIMES = re.compile(r"(\d+)(ms|us|s|min|h)$")
UNITS = {"hours", "minutes", "seconds", "milliseconds", "microseconds"}
# What does not begin a statement that could be left out.
DECLARATIONS = {
    "auto", "case", "class", "const", "constexpr", "default", "do", "else", "enum", "explicit",
    "extern", "for", "friend", "if", "inline", "namespace", "private", "public", "return",
    "static", "static_assert", "struct", "switch", "template", "try", "typedef", "using",
    "virtual", "while"}


def of_cpp(found, text):
    code = [each for each in tokens(CPP, text) if each.kind not in ("comment", "directive")]
    for i, token in enumerate(code):
        around = text[token.start - 1:token.start], text[token.end:token.end + 1]
        spaced = all(each.isspace() for each in around)
        if token.kind == "operator" and spaced and token.text in COMPARISONS:
            found.replace(token, COMPARISONS[token.text], "comparison")
        elif token.kind == "operator" and spaced and token.text in BINARY:
            found.replace(token, BINARY[token.text], "operator")
        elif token.text in ("++", "--"):
            found.replace(token, {"++": "--", "--": "++"}[token.text], "operator")
        elif token.text in ("true", "false"):
            found.replace(token, {"true": "false", "false": "true"}[token.text], "constant")
        elif token.kind == "number":
            of_number(found, token, i >= 2 and code[i - 2].text in UNITS)
        elif token.kind == "string" and code[i - 1].text != "extern":
            found.replace(token, token.text[:-1] + '~"', "text")
        elif token.kind == "raw":
            at = token.text.index("(") + 1
            found.put(token.start + at, token.start + at, "~", "text")
        elif token.kind == "char" and len(token.text) == 3:
            other = "~" if token.text != "'~'" else "x"
            found.replace(token, f"'{other}'", "text")
        elif token.text in ("if", "while") and code[i + 1].text in ("(", "constexpr"):
            of_condition(found, text, code, i + 1)
    of_statements(found, text, code)


def of_number(found, token, is_time):
    time = TIMES.match(token.text)
    if time:
        found.replace(token, str(int(time[1]) * LONGER) + time[2], "time")
    elif re.fullmatch(r"[0-9]+[uUlL]*", token.text):
        digits = token.text.rstrip("uUlL")
        if re.match(r"0\d", digits):
            more = f"0{int(digits, 8) + 1:o}"
        else:
            more = int(digits) * LONGER if is_time and int(digits) else int(digits) + 1
        found.replace(token, str(more) + token.text[len(digits):], "time" if is_time else "number")


def closing(code, i):
    """The index of what closes the bracket code[i], or None."""
    pairs = {"(": ")", "{": "}", "[": "]"}
    deep = 0
    for j in range(i, len(code)):
        if code[j].text in pairs and code[j].kind == "operator":
            deep += 1
        elif code[j].text in pairs.values() and code[j].kind == "operator":
            deep -= 1
            if deep == 0:
                return j
    return None


def of_condition(found, text, code, i):
    if code[i].text != "(":
        return
    end = closing(code, i)
    if end is None or any(each.text == ";" for each in code[i:end]):
        return
    inside = text[code[i].end:code[end].start]
    if re.match(r"(const|auto)\b", inside):
        return  # a declaration
    found.put(code[i].end, code[end].start, f"!({inside})", "condition")


def of_statements(found, text, code):
    """Calls and assignments that stand alone."""
    for i, token in enumerate(code):
        before = code[i - 1].text if i else ""
        if before not in (";", "{", "}", ")", "else") or token.kind != "word":
            continue
        if token.text in DECLARATIONS:
            continue
        j = i
        while j < len(code) and code[j].text not in (";", "{", "}"):
            if code[j].text in ("(", "["):
                end = closing(code, j)
                if end is None:
                    break
                j = end
            j += 1
        if j >= len(code) or code[j].text != ";":
            continue
        if before == ")" and not after_control(code, i - 1):
            continue
        if is_declaration(code[i:j]):
            continue
        found.put(token.start, code[j].end, ";", "statement left out")


def after_control(code, i):
    """True if the bracket code[i] closes that of an if, a for or a while."""
    deep = 0
    for j in range(i, -1, -1):
        deep += {")": 1, "(": -1}.get(code[j].text, 0)
        if deep == 0:
            return j > 0 and code[j - 1].text in ("if", "for", "while", "constexpr")
    return False


def is_declaration(statement):
    """`Type name ...`: two words with nothing but *, &, :: and <...> between."""
    deep, last = 0, None
    for token in statement:
        if token.text == "<":
            deep += 1
        elif token.text == ">":
            deep -= 1
        elif deep == 0:
            if token.kind == "word":
                if last == "word" or last in ("*", "&", ">"):
                    return True
                last = "word"
            elif token.text in ("*", "&", "::"):
                last = token.text
            else:
                return False
        if token.text == ">":
            last = ">"
    return False


# --- AppleScript ----------------------------------------------------------------------------------

PHRASES = [  # each (what stands there, what is put there), the first that fits a place
    ("does not contain", "contains"), ("is not", "is"), ("is", "is not"),
    ("contains", "does not contain"), ("starts with", "ends with"), ("and", "or"), ("or", "and"),
    ("true", "false"), ("false", "true"), ("considering case", "considering diacriticals"),
    ("goto reference", "select"), ("div", "mod"), ("mod", "div"), ("exit repeat", "")]
STATEMENTS = re.compile(
    r"[ \t]+(?:(?:set|return|error|goto|select|activate|delete|close|make|modify|my)\b"
    r"|if .* then \w)[^\n]*")


def of_applescript(found, text):
    code = tokens(APPLESCRIPT, text)
    taken = set()
    bare = "".join(c if c == "\n" else " " for c in text)
    for token in code:
        if token.kind not in ("comment", "string"):
            bare = bare[:token.start] + token.text + bare[token.end:]
    for phrase, other in PHRASES:
        for each in re.finditer(r"\b%s\b" % phrase, bare):
            if not taken & set(range(each.start(), each.end())):
                taken.update(range(each.start(), each.end()))
                found.put(each.start(), each.end(), other, "words")
    for i, token in enumerate(code):
        if token.kind == "operator" and token.text in {**COMPARISONS, "+": "-", "-": "+", "*": "+"}:
            spaced = text[token.start - 1].isspace() and text[token.end].isspace()
            if spaced and token.text in COMPARISONS:
                found.replace(token, COMPARISONS[token.text], "comparison")
            elif spaced:
                found.replace(token, {"+": "-", "-": "+", "*": "+"}[token.text], "operator")
        elif token.kind == "number" and "." not in token.text:
            is_time = [each.text for each in code[max(0, i - 3):i]] == ["with", "timeout", "of"]
            more = int(token.text) * LONGER if is_time else int(token.text) + 1
            found.replace(token, str(more), "time" if is_time else "number")
        elif token.kind == "string" and code[i - 1].text != "application":
            found.replace(token, token.text[:-1] + '~"', "text")
    for each in re.finditer(r"\bif (.*?) then\b", bare):
        inside = text[each.start(1):each.end(1)]
        found.put(each.start(1), each.end(1), f"not ({inside})", "condition")
    for each in re.finditer(r"^%s$" % STATEMENTS.pattern, text, re.M):
        found.put(each.start(), each.end(), "", "statement left out")
