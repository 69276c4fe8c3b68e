"""Sources as the textual rules see them: comments blanked, line numbers and strings kept."""
import re

TOKEN = re.compile(r'//[^\n]*|/\*.*?\*/|@?"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])*\'', re.S)


def without_comments(text):
    def blank(match):
        token = match.group()
        return re.sub(r"[^\n]", " ", token) if token.startswith("/") else token
    return TOKEN.sub(blank, text)


class Source:
    def __init__(self, path, name):
        self.name = str(name)
        self.path = path
        self.raw = path.read_text()
        self.text = without_comments(self.raw)

    def line(self, position):
        return self.text.count("\n", 0, position) + 1

    def at(self, position, message):
        return f"{self.name}:{self.line(position)}: {message}"

    def find(self, pattern, flags=re.S):
        return re.finditer(pattern, self.text, flags)

    def has(self, pattern):
        return re.search(pattern, self.text, re.S) is not None

    def statement(self, position):
        """The text between the ends of statements and blocks round a position."""
        start = max(self.text.rfind(mark, 0, position) for mark in ";{}")
        ends = [end for end in (self.text.find(mark, position) for mark in ";{}") if end >= 0]
        return self.text[start + 1:min(ends, default=len(self.text))].strip()

    def block(self, position):
        """The text from the first brace after a position to the one that closes it."""
        start = self.text.find("{", position)
        if start < 0:
            return ""
        depth = 0
        for at in range(start, len(self.text)):
            depth += {"{": 1, "}": -1}.get(self.text[at], 0)
            if depth == 0:
                return self.text[start:at + 1]
        return self.text[start:]

    def classes(self):
        """Name, superclass and the text of every @interface and @implementation."""
        for found in self.find(r"@(interface|implementation)\s+(\w+)(?:\s*:\s*(\w+))?(.*?)@end"):
            yield found.group(1), found.group(2), found.group(3), found.group(4), found.start()

    def methods(self):
        """Every Objective-C method of the file with a body: its start and the body."""
        for found in self.find(r"^[-+] \([^;{]*\{", re.S | re.M):
            yield found.start(), self.block(found.start())


def balanced(text, start, opening="(", closing=")"):
    """The text inside the bracket that opens at or after `start`."""
    begin = text.find(opening, start)
    depth = 0
    for at in range(begin, len(text)):
        depth += {opening: 1, closing: -1}.get(text[at], 0)
        if depth == 0:
            return text[begin + 1:at]
    return text[begin + 1:]


def arguments(text, start):
    """The arguments of the C call whose name begins at `start`."""
    found, depth, current = [], 0, ""
    for letter in balanced(text, start):
        depth += {"(": 1, "[": 1, "{": 1, ")": -1, "]": -1, "}": -1}.get(letter, 0)
        if letter == "," and depth == 0:
            found.append(current.strip())
            current = ""
        else:
            current += letter
    return found + [current.strip()]
