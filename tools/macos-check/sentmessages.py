"""The messages that the adapters send to the system's classes, as the program asks for them on a
Mac: app/macos/Selectors.inc, one {class, selector, kind} a line. It is written by `check selectors`
and must be what the sources say."""
import pathlib
import re

from declared import PREFIX, documents, receiver_type

TABLE = pathlib.Path("app/macos/Selectors.inc")
HEAD = "// What the adapters rely on, for the self-test. Written by: tools/macos-check/check selectors\n"


def owner(kind, message):
    """The class that a message goes to, or none where that is ours or nobody's."""
    if kind == "class":
        name = message.get("classType", {}).get("qualType", "")
    else:
        found = re.match(r"(?:__kindof )?(\w+)\s*(?:<.*>)?\s*\*$", receiver_type(message))
        name = found.group(1) if found else ""
    # Sparkle is there only where a release carries it.
    elsewhere = name.startswith((PREFIX, "SPU")) or name in ("", "id", "Class")
    return None if elsewhere else name


def sent(text):
    """The rows of one source's dumps."""
    pending = list(documents(text))
    while pending:
        node = pending.pop()
        if node.get("kind") == "ObjCMessageExpr":
            kind = node.get("receiverKind")
            name = owner(kind, node) if kind in ("class", "instance") else None
            if name:
                yield name, node["selector"], "+" if kind == "class" else "-"
        pending += [child for child in node.get("inner", []) if isinstance(child, dict)]


def written(rows):
    return HEAD + "".join(f'{{"{name}", "{selector}", \'{kind}\'}},\n'
                          for name, selector, kind in sorted(rows))


def findings(project, rows):
    path = project / TABLE
    if not path.exists() or path.read_text() != written(rows):
        yield f"{TABLE} is not what the adapters send: run tools/macos-check/check selectors"
