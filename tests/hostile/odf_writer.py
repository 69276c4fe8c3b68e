"""Writes .ods and .fods files, well-formed or not, as a test asks for them."""
from xml.sax.saxutils import escape, quoteattr

from xlsx_writer import write_zip

TYPE = "application/vnd.oasis.opendocument.spreadsheet"
SPACES = "".join(f' xmlns:{prefix}="urn:oasis:names:tc:opendocument:xmlns:{name}:1.0"' for
                 prefix, name in (("office", "office"), ("table", "table"), ("text", "text"),
                                  ("style", "style"), ("script", "script"), ("draw", "drawing"),
                                  ("svg", "svg-compatible"), ("manifest", "manifest"),
                                  ("fo", "xsl-fo-compatible"), ("number", "datastyle"))
                 ) + (' xmlns:xlink="http://www.w3.org/1999/xlink"'
                      ' xmlns:ooo="http://openoffice.org/2004/office"'
                      ' xmlns:of="urn:oasis:names:tc:opendocument:xmlns:of:1.2"'
                      ' xmlns:dom="http://www.w3.org/2001/xml-events"')
HEAD = '<?xml version="1.0" encoding="UTF-8"?>\n'


def cell(value):
    """A text that begins with "=" is a formula in OpenFormula, stored with the value 1."""
    if isinstance(value, str) and value.startswith("="):
        return (f"<table:table-cell table:formula={quoteattr('of:' + value)} "
                'office:value-type="float" office:value="1"><text:p>1</text:p></table:table-cell>')
    if isinstance(value, str):
        return ('<table:table-cell office:value-type="string"><text:p>' + escape(value)
                + "</text:p></table:table-cell>")
    return f'<table:table-cell office:value-type="float" office:value="{value}"/>'


class Table:
    """Rows of values from A1 on."""

    def __init__(self, name="Sheet1", rows=(), names=(), before="", in_cell=""):
        self.name, self.rows, self.names = name, rows, names
        self.before = before  # XML before the rows
        self.in_cell = in_cell  # XML of a last cell behind the rows

    def xml(self):
        rows = "".join("<table:table-row>" + "".join(cell(value) for value in row)
                       + "</table:table-row>" for row in self.rows)
        if self.in_cell:
            rows += f"<table:table-row><table:table-cell>{self.in_cell}</table:table-cell></table:table-row>"
        return (f"<table:table table:name={quoteattr(self.name)}>{self.before}{rows}"
                + named_expressions(self.names) + "</table:table>")


def named_expressions(names):
    if not names:
        return ""
    return "<table:named-expressions>" + "".join(
        f"<table:named-expression table:name={quoteattr(name)} "
        f"table:base-cell-address=\"$'Sheet1'.$A$1\" table:expression={quoteattr('of:=' + text)}/>"
        for name, text in names) + "</table:named-expressions>"


class Document:
    def __init__(self, *tables, names=(), styles="", before="", after="", scripts="",
                 doctype="", automatic=""):
        self.tables, self.names = tables or (Table(),), names
        self.styles, self.automatic = styles, automatic
        self.before, self.after = before, after  # XML around the tables
        self.scripts, self.doctype = scripts, doctype
        self.parts = {}  # further parts of the package: name to (type, bytes or text)

    def body(self):
        return (f"<office:body><office:spreadsheet>{self.before}"
                + "".join(table.xml() for table in self.tables) + named_expressions(self.names)
                + f"{self.after}</office:spreadsheet></office:body>")

    def flat(self):
        return (f'{HEAD}{self.doctype}<office:document{SPACES} office:version="1.3" '
                f'office:mimetype="{TYPE}">{self.scripts}<office:styles>{self.styles}'
                f"</office:styles><office:automatic-styles>{self.automatic}"
                f"</office:automatic-styles>{self.body()}</office:document>")

    def save_flat(self, path):
        with open(path, "w", encoding="utf-8") as out:
            out.write(self.flat())

    def save(self, path):
        entries = {"content.xml": ("text/xml", (
            f'{HEAD}{self.doctype}<office:document-content{SPACES} office:version="1.3">'
            f"{self.scripts}<office:automatic-styles>{self.automatic}</office:automatic-styles>"
            f"{self.body()}</office:document-content>")),
            "styles.xml": ("text/xml", (
                f'{HEAD}<office:document-styles{SPACES} office:version="1.3"><office:styles>'
                f"{self.styles}</office:styles></office:document-styles>"))}
        entries.update(self.parts)
        manifest = "".join(f'<manifest:file-entry manifest:full-path={quoteattr(name)} '
                           f'manifest:media-type="{kind}"/>'
                           for name, (kind, _) in {"/": (TYPE, ""), **entries}.items())
        write_zip(path, [("mimetype", TYPE),
                         *((name, content) for name, (_, content) in entries.items()
                           if not name.endswith("/")),
                         ("META-INF/manifest.xml",
                          f'{HEAD}<manifest:manifest{SPACES} manifest:version="1.3">{manifest}'
                          "</manifest:manifest>")])
