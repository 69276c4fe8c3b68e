"""A copy of an .xlsx file with one more sheet, blank, at the end.

Calc works out parts of a workbook anew when a sheet is inserted while it is open; one that comes
with the file leaves all cells with the values that the file has.
"""
import re
import zipfile

MAIN = "http://schemas.openxmlformats.org/spreadsheetml/2006/main"
OFFICE = "http://schemas.openxmlformats.org/officeDocument/2006/relationships"
KIND = "application/vnd.openxmlformats-officedocument.spreadsheetml.worksheet+xml"


def before_end(text, element, addition):
    """The addition in front of the element's end, in the element's own prefix."""
    end = re.search(rf"</(\w+:)?{element}\s*>", text)
    if end is None:
        raise ValueError(f"no {element}")
    own = addition.replace("<", f"<{end[1] or ''}", 1)
    return text[:end.start()] + own + text[end.start():]


def copy_with_sheet(source, target, sheet):
    with zipfile.ZipFile(source) as old, zipfile.ZipFile(target, "w", zipfile.ZIP_DEFLATED) as new:
        for name in old.namelist():
            data = old.read(name)
            if name == "[Content_Types].xml":
                data = before_end(data.decode(), "Types", '<Override PartName="/xl/worksheets/'
                                  f'sheet-of-parts.xml" ContentType="{KIND}"/>').encode()
            elif name == "xl/_rels/workbook.xml.rels":
                data = before_end(data.decode(), "Relationships", '<Relationship Id="rIdOfParts" '
                                  f'Type="{OFFICE}/worksheet" '
                                  'Target="worksheets/sheet-of-parts.xml"/>').encode()
            elif name == "xl/workbook.xml":
                data = before_end(data.decode(), "sheets", f'<sheet name="{sheet}" sheetId="65000" '
                                  f'xmlns:r="{OFFICE}" r:id="rIdOfParts"/>').encode()
            new.writestr(name, data)
        new.writestr("xl/worksheets/sheet-of-parts.xml",
                     f'<worksheet xmlns="{MAIN}"><sheetData/></worksheet>')
