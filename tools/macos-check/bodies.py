"""What the functions of the adapters say: a message of the right type to the right object may still
do the opposite of what the port promises. bodies.tsv names for each such function what its body has
to hold. White space counts once."""
import pathlib
import re

from sourcetext import Source

TABLE = pathlib.Path(__file__).with_name("bodies.tsv")


def rows():
    for line in TABLE.read_text().splitlines():
        if line and not line.startswith("#"):
            place, function, text = line.split("\t")
            yield place, function, text


def bodies(source, function):
    """Of every definition of the function: from its name and parameters to the end of its block."""
    for found in source.find(rf"(?<![\w:]){re.escape(function)}\([^;{{}}]*\)[^;{{}}()]*\{{"):
        yield re.sub(r"\s+", " ", source.block(found.start()))


def body_findings(project):
    for place, function, text in rows():
        path = project / place
        found = list(bodies(Source(path, place), function)) if path.is_file() else []
        if not found:
            yield f"{place}: bodies.tsv expects the function {function}, and there is none"
        elif not any(text in body for body in found):
            yield f"{place}: {function} does not say {text}"
