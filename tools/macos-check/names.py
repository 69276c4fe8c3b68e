"""Names that compilers take for any text: each must stand, letter for letter, where names.tsv
says. White space counts once."""
import pathlib
import re

from sourcetext import without_comments

TABLE = pathlib.Path(__file__).with_name("names.tsv")
SUFFIXES = (".h", ".cpp", ".mm")


def rows():
    for line in TABLE.read_text().splitlines():
        if line and not line.startswith("#"):
            place, text, why = line.split("\t")
            yield place, text, why


def name_findings(project):
    for place, text, why in rows():
        folder = project / place
        files = [folder] if folder.is_file() else [
            path for path in folder.rglob("*") if path.suffix in SUFFIXES]
        if not files:
            yield f"{place}: names.tsv expects {text} there, and there is no source"
        elif not any(text in re.sub(r"\s+", " ", without_comments(path.read_text()))
                     for path in files):
            yield f"{place}: {text} stands nowhere: {why}"
