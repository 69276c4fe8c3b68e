"""Broken files, files that are not what they say, and texts that are meant for the page."""
import odf_writer
import xlsx_writer
from case import NONE, case
from xlsx_writer import HEAD, MAIN, Sheet, Workbook

PAGE = "texts are never markup"
TEXTS = "names are quoted as the grammar asks"

SCRIPTS = ['<img src=x onerror="window.hostile=1">', "<script>window.hostile=1</script>",
           '"><svg onload="window.hostile=1">', "javascript:window.hostile=1",
           "${window.hostile=1}", "{{constructor.constructor('window.hostile=1')()}}",
           "'+(window.hostile=1)+'", "</script><script>window.hostile=1</script>",
           "\u2028window.hostile=1\u2029", "\\u003cscript\\u003ewindow.hostile=1"]


@case("scripts.fods", guard=PAGE, cells=tuple(f"A{i}" for i in range(1, 11)) + ("B1", "B2"),
      ask=("B1", "A1&A2"), ranges=("A1:B10",))
def texts_that_look_like_markup(path, place):
    rows = [[text] for text in SCRIPTS]
    rows[0].append("=[.A1]&[.A2]&\"<img src=x onerror='window.hostile=1'>\"")
    rows[1].append("=SUM([$'<img src=x onerror=\"window.hostile=1\">'.A1];1)")
    rows[2].append("='<b>x</b>'")
    odf_writer.Document(odf_writer.Table(rows=rows), *[
        odf_writer.Table(text, [["=1+1"]]) for text in (SCRIPTS[0], SCRIPTS[2])]).save_flat(path)


@case('<img src=x onerror="window.hostile=1">.xlsx', guard=PAGE, name="markup-in-names",
      cells=("A1", "A2", "'<svg onload=\"hostile=1\">'!A1", "'<script>hostile=1<\u2215script>'!A1"),
      ask=("SUM('<svg onload=\"hostile=1\">'!A1)",))
def markup_in_names_of_sheets_and_files(path, place):
    Workbook(Sheet("Sheet1", {"A1": "='<svg onload=\"hostile=1\">'!A1",
                              "A2": "=LEN(Name.with\\script)"}),
             Sheet('<svg onload="hostile=1">', {"A1": "=\"<script>hostile=1</script>\""}),
             Sheet("<script>hostile=1<\u2215script>", {"A1": "=1&\"&lt;b&gt;\""}),
             names=[("Name.with\\script", '"<img src=x onerror=\'window.hostile=1\'>"')]).save(path)


@case("quotes '\" & [x] $(touch x) `y`.xlsx", guard=TEXTS, name="quotes",
      cells=("A1", "A2", "'it''s \"q\" & {1}'!A1", "'end tell'!A1", "'a;b,c!d'!A1"),
      ask=("'it''s \"q\" & {1}'!A1", "'a;b,c!d'!A1+1"), gives=(("'a;b,c!d'!A1+1", 2),), ranges=("'it''s \"q\" & {1}'!A1:B2",))
def names_with_quotes_and_words_of_the_script(path, place):
    Workbook(Sheet("Sheet1", {"A1": "='it''s \"q\" & {1}'!A1", "A2": "=SUM('a;b,c!d'!A1:A2)"}),
             Sheet("it's \"q\" & {1}", {"A1": "='end tell'!A1"}),
             Sheet("end tell", {"A1": "=LEN(\"\"\" & (do shell script \"\"id\"\") & \"\"\")"}),
             Sheet("a;b,c!d", {"A1": "=1+1", "A2": "\" & quit & \""})).save(path)


@case("\u202excod.xlsx", guard=TEXTS, name="right-to-left", ranges=("'\u202eabc'!A1:B2",),
      cells=("A1", "A2", "'\u202eabc'!A1", "'\u200bSheet1'!A1", "'a\u0301\u200d\ufeff'!A1"),
      gives=(("'\u202eabc'!A1*2", 2), ("Na\u0301me&N\u00e1me", "12")),
      ask=("'\u202eabc'!A1", "'\u200bSheet1'!A1+Sheet1!A1", "Na\u0301me", "N\u00e1me"))
def right_to_left_and_zero_width_names(path, place):
    Workbook(Sheet("Sheet1", {"A1": "='\u200bSheet1'!A1+'\u202eabc'!A1", "A2": "=Na\u0301me+N\u00e1me",
                              "A3": "\u202egnirts\u202c \u2066x\u2069\u200b\ufeff\u0085\ufffd"}),
             Sheet("\u202eabc", {"A1": "=1+1"}), Sheet("\u200bSheet1", {"A1": "=2+2"}),
             Sheet("a\u0301\u200d\ufeff", {"A1": "=Sheet1!A3"}),
             names=[("Na\u0301me", "1"), ("N\u00e1me", "2"), ("\u05e9\u05dd", "Sheet1!$A$1")]).save(path)


@case("controls.xlsx", guard=NONE, name="control-characters", loads=None, ranges=("A1:B5",),
      cells=("A1", "A2", "A3"), ask=("LEN(A1)", "A1&A2"))
def control_characters(path, place):
    book = Workbook(Sheet("Sheet1", {"A1": "a\rb\tc\u0085d\u2028e", "A2": "=A1&CHAR(0)&CHAR(7)&CHAR(27)",
                                     "A3": "=CODE(A1)"}), Sheet("a&#10;b".replace("&#10;", "\n")))
    book.sheets[0].cells["B1"] = "_x0000__x001B_[31m_x0007_"
    book.save(path)


@case("long-names.xlsx", guard=NONE, name="long-names", loads=None,
      cells=("A1",), ask=("N" * 255, "SUM(" + "N" * 200 + ")"))
def very_long_names(path, place):
    Workbook(Sheet("Sheet1", {"A1": "=" + "N" * 255}), Sheet("s" * 31, {"A1": "=1"}),
             Sheet("t" * 5000, {"A1": "=1"}),
             names=[("N" * 255, "1"), ("M" * 60000, "2"), ("", "3"), ("A1", "4"), ("R1C1", "5"),
                    ("TRUE", "6"), ("SUM", "7"), ("1", "8"), ("a b", "9"), ("a!b", "10")]).save(path)


@case("styles.fods", guard=NONE, name="cyclic-styles", cells=("A1", "A2"), loads=None)
def cyclic_styles(path, place):
    styles = "".join(f'<style:style style:name="s{i}" style:family="table-cell" '
                     f'style:parent-style-name="s{(i + 1) % 50}"><style:map style:condition="value()>0" '
                     f'style:apply-style-name="s{(i + 7) % 50}"/></style:style>' for i in range(50))
    odf_writer.Document(odf_writer.Table(rows=[["=1+1"], ["=STYLE(\"s1\")+[.A1]"]]),
                        styles=styles).save_flat(path)


@case("styles.xlsx", guard=NONE, name="broken-styles", cells=("A1", "A2"), loads=None)
def broken_styles_and_endless_formats(path, place):
    formats = "".join(f'<numFmt numFmtId="{i}" formatCode="{"[&gt;1]0;" * 400}@"/>'
                      for i in range(164, 264)) + '<numFmt numFmtId="300" formatCode="' + "0" * 99999 + '"/>'
    book = Workbook(Sheet("Sheet1"))
    book.sheets[0].raw = ('<row r="1"><c r="A1" s="999999"><f>1+1</f><v>2</v></c></row><row r="2">'
                          '<c r="A2" s="1"><f>A1+1</f><v>3</v></c></row>')
    book.styles = (f'{HEAD}<styleSheet xmlns="{MAIN}"><numFmts count="101">{formats}</numFmts>'
                   '<cellStyleXfs count="2"><xf xfId="1"/><xf xfId="0"/></cellStyleXfs><cellXfs count="2">'
                   '<xf xfId="77777"/><xf numFmtId="300" xfId="1"/></cellXfs></styleSheet>')
    book.save(path)


@case("types.xlsx", guard=NONE, name="mismatched-types", loads=None, ranges=("A1:J3",),
      cells=("A1", "B1", "C1", "D1", "E1", "F1", "G1"), ask=("A1+B1", "SUM(A1:J1)"))
def mismatched_types(path, place):
    book = Workbook(Sheet("Sheet1"))
    cells = ['<c r="A1" t="s"><v>99999999</v></c>', '<c r="B1" t="b"><v>maybe</v></c>',
             '<c r="C1" t="n"><v>one</v></c>', '<c r="D1" t="e"><v>#NOTHING!</v></c>',
             '<c r="E1" t="d"><v>32.13.-1</v></c>', '<c r="F1" t="zzz"><f t="shared" si="9"/></c>',
             '<c r="G1"><f t="array" ref="A1:XFD1048576">1</f><v>1e999</v></c>', '<c r="A0"><v>1</v></c>',
             '<c r="ZZZZ99999999"><v>1</v></c>', '<c r="G1"><v>-nan</v></c>', "<c><v>7</v></c>",
             '<c r="H1" t="str"><f>1/0</f><v>text</v></c>', '<c r="I1" t="b"><f>"x"</f><v>7</v></c>']
    book.sheets[0].raw = f'<row r="1">{"".join(cells)}</row><row r="-1"/><row r="1"/>'
    book.save(path)


@case("broken.xlsx", guard=NONE, name="broken-xml", loads=None)
def broken_xml(path, place):
    book = Workbook(Sheet("Sheet1", {"A1": "=1+1"}))
    book.replaced["xl/worksheets/sheet1.xml"] = book.sheets[0].xml()[:-40] + "<row><c <<<&&&"
    book.save(path)


@case("deep.fods", guard=NONE, name="deep-xml", loads=None)
def deep_xml(path, place):
    document = odf_writer.Document(odf_writer.Table(rows=[["=1+1"], ["DEEP"]]))
    path.write_text(document.flat().replace("DEEP", "<text:span>" * 20000 + "</text:span>" * 20000),
                    encoding="utf-8")


@case("truncated.xlsx", guard=NONE, name="truncated", loads=None)
def a_truncated_package(path, place):
    Workbook(Sheet("Sheet1", {f"A{i}": f"=1+{i}" for i in range(1, 200)})).save(path)
    path.write_bytes(path.read_bytes()[:-300])


@case("empty.xlsx", guard=NONE, name="empty", loads=None)
def an_empty_file(path, place):
    path.write_bytes(b"")


@case("folder.ods", guard=NONE, name="other-contents", loads=None)
def a_text_document_that_calls_itself_a_workbook(path, place):
    xlsx_writer.write_zip(path, [
        ("mimetype", "application/vnd.oasis.opendocument.text"),
        ("content.xml", f"{HEAD}<office:document-content{odf_writer.SPACES}><office:body>"
         "<office:text><text:p>no cells</text:p></office:text></office:body>"
         "</office:document-content>")])


@case("upwards.ods", guard=NONE, name="upwards", loads=None)
def parts_with_paths_upwards(path, place):
    document = odf_writer.Document(odf_writer.Table(rows=[["=1+1"]]))
    document.parts = {f"../../../../../../../..{place.bait}/written": ("text/xml", "x"),
                      f"{place.bait}/absolute": ("text/xml", "x"),
                      "Pictures/../../bait/x.png": ("image/png", "x")}
    document.save(path)


@case("same.xlsx", guard=NONE, name="same-names", cells=("A1", "A2"), loads=None,
      ask=("Twice", "twice", "TWICE", "Sheet1!Twice"))
def names_that_are_the_same(path, place):
    Workbook(Sheet("Sheet1", {"A1": "=Twice", "A2": "=SUM(Twice,TWICE)"}), Sheet("SHEET1"),
             Sheet("Sheet1"), names=[("Twice", "1"), ("TWICE", "2"), ("twice", "Twice"), ("Twice", "3", 0)]
             ).save(path)
