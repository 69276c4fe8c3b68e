"""Writes .xlsx and .xlsm files part by part, well-formed or not, as a test asks for them."""
import re
import zipfile
from xml.sax.saxutils import escape, quoteattr

MAIN = "http://schemas.openxmlformats.org/spreadsheetml/2006/main"
RELATIONS = "http://schemas.openxmlformats.org/officeDocument/2006/relationships"
PACKAGE = "http://schemas.openxmlformats.org/package/2006"
HEAD = '<?xml version="1.0" encoding="UTF-8" standalone="yes"?>\n'
BOOK = "application/vnd.openxmlformats-officedocument.spreadsheetml."
EPOCH = (2024, 1, 1, 0, 0, 0)  # the same bytes whenever it is written


def column_number(letters):
    number = 0
    for letter in letters:
        number = number * 26 + ord(letter) - 64
    return number


def relations(entries):
    """Entries of (id, type, target) or (id, type, target, "External")."""
    out = [HEAD, f'<Relationships xmlns="{PACKAGE}/relationships">']
    for number, kind, target, *mode in entries:
        out.append(f'<Relationship Id="{number}" Type="{kind}" Target={quoteattr(target)}'
                   + (f' TargetMode="{mode[0]}"' if mode else "") + "/>")
    return "".join(out) + "</Relationships>"


class Sheet:
    """Cells by address: a text that begins with "=" is a formula, stored with the value 1."""

    def __init__(self, name="Sheet1", cells=None):
        self.name, self.cells = name, dict(cells or {})
        self.before, self.after = "", ""  # XML before and after the cells, as the schema orders it
        self.raw = None  # all of the cells' XML instead
        self.links = []  # relations of the sheet

    def data(self):
        if self.raw is not None:
            return self.raw
        rows = {}
        for address, value in self.cells.items():
            letters, number = re.fullmatch(r"([A-Z]+)(\d+)", address).groups()
            rows.setdefault(int(number), []).append((column_number(letters), address, value))
        return "".join(f'<row r="{number}">' + "".join(
            self.cell(address, value) for _, address, value in sorted(rows[number], key=str_last))
            + "</row>" for number in sorted(rows))

    @staticmethod
    def cell(address, value):
        if isinstance(value, str) and value.startswith("="):
            return f'<c r="{address}"><f>{escape(value[1:])}</f><v>1</v></c>'
        if isinstance(value, str):
            return (f'<c r="{address}" t="inlineStr"><is><t xml:space="preserve">{escape(value)}'
                    "</t></is></c>")
        return f'<c r="{address}"><v>{value}</v></c>'

    def xml(self):
        return (f'{HEAD}<worksheet xmlns="{MAIN}" xmlns:r="{RELATIONS}">{self.before}<sheetData>'
                f"{self.data()}</sheetData>{self.after}</worksheet>")


def str_last(cell):
    return cell[:2]


class Workbook:
    def __init__(self, *sheets, names=()):
        """Names: (name, formula) or (name, formula, index of the sheet that owns it)."""
        self.sheets = list(sheets) or [Sheet()]
        self.names = list(names)
        self.styles = None  # XML of the styles part
        self.strings = None  # XML of the shared strings part
        self.book_after = ""  # XML behind the names
        self.book_before = ""  # XML before the sheets
        self.book_links = []  # relations of the workbook
        self.parts = {}  # further parts: name to (content type, bytes or text)
        self.replaced = {}  # parts to be written otherwise, or (None) not at all
        self.kind = "sheet.main+xml"

    def add_table(self, number, sheet, area, columns):
        """Columns: (name, calculated formula or None)."""
        named = "".join(
            f'<tableColumn id="{i}" name={quoteattr(name)}'
            + (f"><calculatedColumnFormula>{escape(formula)}</calculatedColumnFormula>"
               "</tableColumn>" if formula else "/>")
            for i, (name, formula) in enumerate(columns, 1))
        self.parts[f"xl/tables/table{number}.xml"] = (
            BOOK + "table+xml",
            f'{HEAD}<table xmlns="{MAIN}" id="{number}" name="Table{number}" '
            f'displayName="Table{number}" ref="{area}" totalsRowShown="0"><autoFilter ref="{area}"/>'
            f'<tableColumns count="{len(columns)}">{named}</tableColumns></table>')
        sheet.links.append((f"rIdT{number}", f"{RELATIONS}/table", f"../tables/table{number}.xml"))
        sheet.after += f'<tableParts count="1"><tablePart r:id="rIdT{number}"/></tableParts>'

    def add_external_book(self, number, target, xml=None):
        """What formulas call [number]."""
        part = f"xl/externalLinks/externalLink{number}.xml"
        self.parts[part] = (
            BOOK + "externalLink+xml",
            xml or f'{HEAD}<externalLink xmlns="{MAIN}"><externalBook xmlns:r="{RELATIONS}" '
            'r:id="rId1"><sheetNames><sheetName val="Sheet1"/></sheetNames></externalBook>'
            "</externalLink>")
        if xml is None:
            self.parts[f"xl/externalLinks/_rels/externalLink{number}.xml.rels"] = (
                None, relations([("rId1", f"{RELATIONS}/externalLinkPath", target, "External")]))
        self.book_links.append((f"rIdE{number}", f"{RELATIONS}/externalLink",
                                f"externalLinks/externalLink{number}.xml"))
        self.book_after += (f'<externalReferences><externalReference r:id="rIdE{number}"/>'
                            "</externalReferences>")

    def workbook_xml(self):
        sheets = "".join(f'<sheet name={quoteattr(sheet.name)} sheetId="{i}" r:id="rId{i}"/>'
                         for i, sheet in enumerate(self.sheets, 1))
        names = "".join(
            f"<definedName name={quoteattr(name)}"
            + (f' localSheetId="{owner[0]}"' if owner else "") + f">{escape(formula)}</definedName>"
            for name, formula, *owner in self.names)
        external, calculation = self.book_after, ""
        if not external.startswith("<externalReferences>"):
            external, calculation = "", self.book_after
        return (f'{HEAD}<workbook xmlns="{MAIN}" xmlns:r="{RELATIONS}">{self.book_before}'
                f"<sheets>{sheets}</sheets>{external}"
                + (f"<definedNames>{names}</definedNames>" if names else "")
                + f"{calculation}</workbook>")

    def all_parts(self):
        parts = {}
        types = [f'<Override PartName="/xl/workbook.xml" ContentType="{self.main_type()}"/>']
        links = list(self.book_links)
        for i, sheet in enumerate(self.sheets, 1):
            part = f"xl/worksheets/sheet{i}.xml"
            parts[part] = sheet.xml()
            types.append(f'<Override PartName="/{part}" ContentType="{BOOK}worksheet+xml"/>')
            links.append((f"rId{i}", f"{RELATIONS}/worksheet", f"worksheets/sheet{i}.xml"))
            if sheet.links:
                parts[f"xl/worksheets/_rels/sheet{i}.xml.rels"] = relations(sheet.links)
        for name, xml in (("styles", self.styles), ("sharedStrings", self.strings)):
            if xml is not None:
                parts[f"xl/{name}.xml"] = xml
                types.append(f'<Override PartName="/xl/{name}.xml" ContentType="{BOOK}{name}+xml"/>')
                links.append((f"rIdX{name}", f"{RELATIONS}/{name}", f"{name}.xml"))
        for name, (content_type, content) in self.parts.items():
            parts[name] = content
            if content_type:
                types.append(f'<Override PartName="/{name}" ContentType="{content_type}"/>')
        parts["xl/workbook.xml"] = self.workbook_xml()
        parts["xl/_rels/workbook.xml.rels"] = relations(links)
        parts["_rels/.rels"] = relations([("rId1", f"{RELATIONS}/officeDocument",
                                           "xl/workbook.xml")])
        parts["[Content_Types].xml"] = (
            f'{HEAD}<Types xmlns="{PACKAGE}/content-types"><Default Extension="rels" ContentType='
            '"application/vnd.openxmlformats-package.relationships+xml"/><Default Extension="xml" '
            'ContentType="application/xml"/>' + "".join(types) + "</Types>")
        parts.update(self.replaced)
        return {name: content for name, content in parts.items() if content is not None}

    def main_type(self):
        if self.kind.startswith("application/"):
            return self.kind
        return BOOK + self.kind

    def save(self, path):
        write_zip(path, sorted(self.all_parts().items(), key=lambda part: part[0] != CONTENTS))


CONTENTS = "[Content_Types].xml"


def write_zip(path, parts):
    """Parts in their order: name and text, bytes or an iterable of bytes."""
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED, compresslevel=6) as archive:
        for name, content in parts:
            entry = zipfile.ZipInfo(name, EPOCH)
            entry.compress_type = (zipfile.ZIP_STORED if name == "mimetype"
                                   else zipfile.ZIP_DEFLATED)
            with archive.open(entry, "w") as out:
                if isinstance(content, str):
                    content = content.encode()
                for piece in [content] if isinstance(content, bytes) else content:
                    out.write(piece)
