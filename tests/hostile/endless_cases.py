"""Workbooks that ask for more work, or more memory, than anything has."""
import odf_writer
import xlsx_writer
from case import NONE, case
from xlsx_writer import HEAD, MAIN, Sheet, Workbook

EXPANSION = "bounds of the expansion of names"
DEADLINE = "deadlines of loops over what a workbook holds"
SIZE = "limits of what is read and answered"
WORK = "bounds of what Calc does in one go"
LAST = "XFD1048576"


def refused(why):
    return {"ok": False, "kind": "transport",
            "message": f"Microsoft Excel got an error: The expression {why}"}


@case("names-8-18.xlsx", guard=EXPANSION, cells=("A1", "A2", "A3"), ask=("N1", "LEN(N1)", "SUM(N1,1)"))
def names_eight_to_the_eighteenth(path, place):
    names = [(f"N{i}_", "+".join([f"N{i + 1}_"] * 8)) for i in range(1, 19)]
    Workbook(Sheet("Sheet1", {"A1": "=N1_", "A2": "=LEN(N1_)+1", "A3": '=IF(1,1,N1_)'}),
             names=[*names, ("N19_", "Sheet1!$B$1"), ("N1", "N1_")]).save(path)


@case("names-8-4.xlsx", guard=EXPANSION, cells=("A1", "A2"), ask=("N1_", "N2_+N3_"))
def names_eight_to_the_fourth(path, place):
    names = [(f"N{i}_", "+".join([f"N{i + 1}_"] * 8)) for i in range(1, 5)]
    Workbook(Sheet("Sheet1", {"A1": "=N1_", "A2": "=LEN(N1_)+1", "B1": 1}),
             names=[*names, ("N5_", "Sheet1!$B$1")]).save(path)


@case("names-wide.xlsx", guard=EXPANSION, cells=("A1", "A2"), ask=("Wide", "LEN(Wide)"))
def names_that_grow_long(path, place):
    """Each short, all together a text of 200 million characters."""
    long = "&".join(["Text_"] * 1000)
    Workbook(Sheet("Sheet1", {"A1": "=LEN(Wide)", "A2": "=Wide"}),
             names=[("Text_", '"' + "x" * 200 + '"'), ("Long_", long),
                    ("Wide", "&".join(["Long_"] * 1000))]).save(path)


@case("names-local.xlsx", guard=EXPANSION, cells=("A1", "Other!A1"), ask=("Other!N1_", "N1_"))
def names_of_sheets_nested(path, place):
    names = [(f"N{i}_", "*".join([f"Other!N{i + 1}_"] * 8), 1) for i in range(1, 19)]
    Workbook(Sheet("Sheet1", {"A1": "=LEN(Other!N1_)"}), Sheet("Other", {"A1": "=N1_"}),
             names=[*names, ("N19_", "1", 1)]).save(path)


@case("names-circle.xlsx", guard=EXPANSION, cells=("A1", "A2", "A3"), ask=("P", "Q", "S", "INDIRECT(\"P\")"))
def names_in_a_circle(path, place):
    Workbook(Sheet("Sheet1", {"A1": "=P", "A2": "=LEN(S)", "A3": "=SUM(Q,P,S)"}),
             names=[("P", "Q+Q"), ("Q", "R_&P"), ("R_", "P*Q"), ("S", "S+S")]).save(path)


@case("names-many.xlsx", guard=DEADLINE, names=20000, cells=("A1", "A2"), ask=("Many_99999", "Nobody"))
def many_names(path, place):
    """As many as the office opens in a few seconds."""
    Workbook(Sheet("Sheet1", {"A1": "=Many_1+Many_20000", "A2": "=LEN(Many_19999)"}),
             names=[(f"Many_{i}", f"Sheet1!$A${i}") for i in range(1, 20001)]).save(path)


@case("sheets-many.xlsx", guard=DEADLINE, names=30000, cells=("S1!A1", "S60!A1"), ask=("SUM(S1:S60!A1)", "S60!Own0", "Own499"))
def many_sheets_with_names_of_their_own(path, place):
    """30,000 names of 60 sheets."""
    sheets = [Sheet(f"S{i}", {"A1": "=Own0" if i > 1 else "=SUM(S2:S60!A1)"}) for i in range(1, 61)]
    Workbook(*sheets, names=[(f"Own{k}", f"S{i + 1}!$B${k + 1}", i) for i in range(60)
                             for k in range(500)]).save(path)


@case("long-formulas.xlsx", guard=DEADLINE, cells=("A1", "A2", "A3", "A9"), ranges=("A1:A9",))
def formulas_of_8192_characters(path, place):
    def filled(head, piece, tail):
        return head + piece * ((8192 - len(head) - len(tail)) // len(piece)) + tail
    Workbook(Sheet("Sheet1", {
        "A1": filled("=B1", "+B1", ""), "A2": filled("=SUM(B1", ",B1", ")"),
        "A3": filled("=IF(B1,", "Sheet1!B1&", "1,2)"),
        **{f"A{i}": filled("=1", "+LEN(\"a\")", "") for i in range(4, 10)}})).save(path)


@case("signs.xlsx", guard=DEADLINE, cells=("A1", "A2", "A3", "A4"),
      ask=("-" * 250 + "1", "(" * 120 + "1" + ")" * 120, "Signs", "Round"))
def four_thousand_nested_signs(path, place):
    Workbook(Sheet("Sheet1", {"A1": "=" + "-" * 4000 + "1", "A2": "=" + "(" * 2000 + "1" + ")" * 2000,
                              "A3": "=LEN(Signs)", "A4": "=" + "ABS(" * 1200 + "1" + ")" * 1200}),
             names=[("Signs", "-" * 4000 + "1"), ("Round", "(" * 2000 + "1" + ")" * 2000)]).save(path)


@case("whole-sheet.xlsx", guard=SIZE, cells=("A2", "A3", "B4"), ranges=("A1:XFD1048576", "All", "A:A"),
      ask=("All", "SUM(All)", "ROWS(All)", "COUNTA(A1:XFD1048576)", "All+1", "INDEX(All,1,1)",
           "SUMPRODUCT((All=1)*1)", "A1:XFD1048576"))
def seventeen_billion_cells(path, place):
    Workbook(Sheet("Sheet1", {"A1": 1, "A2": "=ROWS(All)", "A3": "=COLUMNS(All)", "B4": "=LEN(A1)",
                              LAST: 2}), names=[("All", "Sheet1!$A$1:$XFD$1048576")]).save(path)


@case("far-corners.xlsx", guard=DEADLINE, cells=("S1!A1", "S20!A1"), ask=("SUM(S1:S20!XFD1048576)",),
      ranges=("S20!A1:XFD1048576",))
def far_corners(path, place):
    """Of 20 sheets: the office takes 20 MB for each, and 17 s to open 200."""
    Workbook(*[Sheet(f"S{i}", {"A1": f"=S{i % 20 + 1}!XFD1048576+1", LAST: i})
               for i in range(1, 21)]).save(path)


@case("big-arrays.xlsx", guard=SIZE, cells=("A1", "A2", "A3", "A4"),
      gives=(("SUM(LEN(Product))", refused("makes arrays of too many cells")),),
      ask=("ROW(A1:A1048576)", "ROW(1:3000)*COLUMN(A:CZZ)", "REPT(\"x\",32767)&REPT(\"y\",32767)",
           "MMULT(ROW(1:3000)*1,COLUMN(A:CZZ)*1)", "{" + ",".join(["1"] * 120) + "}"))
def big_arrays(path, place):
    Workbook(Sheet("Sheet1", {"A1": "=SUM(ROW(A1:A1048576))", "A2": "=LEN(Product)",
                              "A3": "=SUMPRODUCT((C:C=C:C)*(D:D=D:D))", "A4": '=REPT("x",32767)'}),
             names=[("Product", "MMULT(ROW(Sheet1!$1:$3000)*1,COLUMN(Sheet1!$A:$CZZ)*1)")]).save(path)


@case("work.xlsx", guard=WORK, cells=("A1", "A2", "A3", "A4", "A5", "A6"),
      gives=(("COMBIN(10^12,5*10^11)", refused("counts too far")),
             ("SUM(MUNIT(9000))", refused("makes arrays of too many cells")),
             ("SUM(COUNTIF(C:C,C:C))", refused("looks through too many cells too often")),
             ("SUM(SUMIF(OFFSET(C1,0,0,ROW(1:100000)),1))",
              refused("looks through too many cells too often")),
             ("SUM(IFERROR(DAYS(A1,F:AZ),0))", refused("makes arrays of too many cells")),
             ("COUNT(TEXT(C:C,\"0.0\"))", refused("makes arrays of too many cells")),
             ("NETWORKDAYS(1,B1)", {"ok": False, "kind": "excelError", "message": "#NUM!"})),
      ask=("SUM(SMALL(C1:C4000,ROW(1:4000)))", "SUM(LEN(REPT(\"x\",32767)&ROW(1:90000)))",
           "MINVERSE(MUNIT(2000))", "Slow", "SUM((OFFSET(C1,0,0,9000)=TRANSPOSE(C1:INDEX(C:C,9000)))*1)",
           "SUM(NETWORKDAYS(C1:C4000,2900000))", "ACCRINTM(0.5,5E8,100,1E9)", "SUM(INDEX(A:XFD,0,0)+1)",
           "SUM(RATE(ROW(1:90000),-1,1000))"))
def work_that_nobody_can_end(path, place):
    """Each holds the office up for minutes, or for ever, once it is worked out."""
    Workbook(Sheet("Sheet1", {
        "A1": "=SUM(COUNTIF(C:C,C:C))", "A2": "=CUMIPMT(0.01,1E15,1000,1,1E15,0)",
        "A3": "=LEN(SUBSTITUTE(REPT(\"a\",32767),\"a\",REPT(\"b\",32767)))",
        "A4": "=WORKDAY(1,B1)", "A5": "=SUM(MUNIT(9000))", "A6": "=LEN(Slow)", "B1": 10 ** 15,
        **{f"C{i}": i for i in range(1, 4001)}}), names=[("Slow", "COMBIN(Sheet1!$B$1,500000000000)")]
    ).save(path)


@case("huge-strings.xlsx", guard=SIZE, cells=("A1", "B1", "B2"), ranges=("A1:A400", "A1:B400"),
      ask=("A1&A2&A3&A4", "TEXTJOIN(\"\",TRUE,A1:A399)"))
def huge_strings(path, place):
    """In one of them two writing directions and emoji; the office takes a second for each such."""
    cells = {f"A{i}": "<x&" * 10900 for i in range(1, 401)}
    cells["A400"] = "\u05d0\U0001f600x<" * 6500
    Workbook(Sheet("Sheet1", {**cells, "B1": "=A1&A2", "B2": "=LEN(A400)"})).save(path)


@case("shared-strings.xlsx", guard=SIZE, cells=("A1", "B1"), ranges=("A1:A20000", "A1:B5000"),
      ask=("A1:A20000", "SUM(LEN(A1:A20000))", "COUNTIF(A1:A20000,\"x*\")"))
def one_long_string_in_many_cells(path, place):
    """654 MB of text in a file of 60 kB."""
    sheet = Sheet("Sheet1")
    sheet.raw = "".join(
        f'<row r="{i}" ht="15" customHeight="1"><c r="A{i}" t="s"><v>0</v></c>'
        + ('<c r="B1"><f>LEN(A20000)</f><v>1</v></c>' if i == 1 else "") + "</row>"
        for i in range(1, 20001))
    book = Workbook(sheet)
    book.strings = (f'{HEAD}<sst xmlns="{MAIN}" count="20000" uniqueCount="1"><si><t>'
                    f'{"x" * 32700}</t></si></sst>')
    book.save(path)


@case("dependents.xlsx", guard=DEADLINE, cells=("A1", "C1", "C40000"), ranges=("A1", "B1", "C1:D20000"))
def forty_thousand_dependents(path, place):
    sheet = Sheet("Sheet1")
    sheet.raw = "".join(
        f'<row r="{i}"><c r="C{i}"><f>$A$1+$B$1*{i}</f><v>1</v></c></row>' for i in range(1, 40001))
    Workbook(sheet).save(path)


@case("circle.xlsx", guard=DEADLINE, cells=("A1", "A2", "A3", "B5000"), ask=("A1+A2", "SUM(B1:B5000)"))
def cells_in_a_circle(path, place):
    book = Workbook(Sheet("Sheet1", {"A1": "=A2+1", "A2": "=A3*2", "A3": "=A1",
                                     **{f"B{i}": f"=B{i % 5000 + 1}+1" for i in range(1, 5001)}}))
    book.book_after = '<calcPr calcId="0" iterate="1" iterateCount="32767" iterateDelta="0"/>'
    book.save(path)


@case("conditions.xlsx", guard=DEADLINE, cells=("A1", "B2"), ranges=("A1:XFD1048576", "B2"))
def deep_conditional_formats(path, place):
    sheet = Sheet("Sheet1", {"A1": 1, "B2": "=A1+1"})
    sheet.after = "".join(
        f'<conditionalFormatting sqref="A1:XFD1048576 {"B2:C3 " * 20}"><cfRule type="expression" '
        f'priority="{i}" dxfId="0"><formula>{"-" * 100}SUM($A$1:$Z$9)&gt;{i}</formula></cfRule>'
        "</conditionalFormatting>" for i in range(1, 41))
    Workbook(sheet).save(path)


@case("hidden-lines.xlsx", guard=DEADLINE, cells=("A1", "A99999"), ranges=("A1:A99999", "A5000"),
      ask=("SUBTOTAL(109,A1:A99999)",))
def every_other_row_hidden(path, place):
    sheet = Sheet("Sheet1")
    sheet.raw = "".join(f'<row r="{i}"{" hidden=" + chr(34) + "1" + chr(34) if i % 2 else ""}>'
                        f'<c r="A{i}"><v>{i}</v></c></row>' for i in range(1, 40001)) + (
        '<row r="99999" hidden="1"><c r="A99999"><f>SUBTOTAL(109,A1:A99)</f><v>1</v></c></row>')
    Workbook(sheet).save(path)


@case("merged.xlsx", guard=DEADLINE, cells=("A1", "C2"), ranges=("A1:D5000", "A1"))
def many_merged_cells(path, place):
    sheet = Sheet("Sheet1", {"A1": "=C2", "C2": "=LEN(\"x\")"})
    sheet.after = '<mergeCells count="5001"><mergeCell ref="F1:XFD1048576"/>' + "".join(
        f'<mergeCell ref="A{i}:B{i}"/>' for i in range(1, 5001)) + "</mergeCells>"
    Workbook(sheet).save(path)


@case("forged-marks.fods", guard=DEADLINE, cells=("A1", "B2"), ranges=("A1:B2", "B2"))
def shapes_that_claim_to_be_marks(path, place):
    names = ['="QXZ"="QXZ"', '1 #FF0000 $A$1 ="QXZ"="QXZ"', "QXZ " * 5000, "\u202e\u0000".strip("\0"),
             'quorin 99999999999999999999 -1 $A$1:$XFD$1048576'] * 300
    shapes = "".join(
        f'<draw:rect draw:name="{xlsx_writer.escape(name).replace(chr(34), "&quot;")}" '
        'svg:x="1cm" svg:y="1cm" svg:width="1cm" svg:height="1cm"/>' for name in names)
    odf_writer.Document(odf_writer.Table(
        rows=[["=1+1", 2], [1, "=LEN([.A1])"]],
        before=f"<table:shapes>{shapes}</table:shapes>")).save_flat(path)


@case("tables.xlsx", guard=DEADLINE, cells=("A2", "Z1"), ask=("SUM(Table400[C0])", "Table1[[#All],[C9]]"))
def many_tables(path, place):
    sheet = Sheet("Sheet1", {"A2": "=SUM(Table1[C0])", "Z1": "=COUNTA(Table400)"})
    book = Workbook(sheet)
    for i in range(1, 401):
        book.add_table(i, sheet, f"A{i * 3}:J{i * 3 + 1}", [(f"C{k}", None) for k in range(10)])
    sheet.after = (f'<tableParts count="400">' + sheet.after.replace('<tableParts count="1">', "")
                   .replace("</tableParts>", "") + "</tableParts>")
    book.save(path)


@case("spaces-bomb.xlsx", guard=NONE, cells=("A1",), loads=None)
def a_part_that_inflates(path, place):
    """64 MB of blanks and a formula of the last cell, in a file of 70 kB."""
    book = Workbook(Sheet("Sheet1", {"A1": "=1+1"}))
    head, _, tail = book.sheets[0].xml().partition("</sheetData>")
    parts = book.all_parts()
    parts["xl/worksheets/sheet1.xml"] = [head.encode(), *[b" " * (1 << 20)] * 64,
                                         b"</sheetData>" + tail.encode()]
    xlsx_writer.write_zip(path, sorted(parts.items(), key=lambda part: part[0] != "[Content_Types].xml"))


@case("cells-bomb.ods", guard=NONE, cells=("A1", "B1"), ranges=("A1:AMJ1048576",), loads=None)
def repeated_cells(path, place):
    """A row of formulas repeated a thousand times, in a file of 1 kB; and values behind them."""
    table = odf_writer.Table(rows=[["=1+1"]])
    table.before = ('<table:table-row table:number-rows-repeated="1000"><table:table-cell '
                    'table:number-columns-repeated="50" table:formula="of:=LEN([.AMJ1])" '
                    'office:value-type="float" office:value="1"/></table:table-row>')
    table.in_cell = "<text:p>end</text:p>"
    odf_writer.Document(table).save(path)


@case("laughs.xlsx", guard=NONE, cells=("A1",), loads=None)
def entity_expansion(path, place):
    book = Workbook(Sheet("Sheet1", {"A1": "=1+1"}))
    entities = '<!ENTITY a0 "ha">' + "".join(
        f'<!ENTITY a{i} "{f"&a{i - 1};" * 10}">' for i in range(1, 12))
    book.strings = (f'<?xml version="1.0"?><!DOCTYPE sst [{entities}]><sst xmlns="{MAIN}" count="1" '
                    'uniqueCount="1"><si><t>&a11;</t></si></sst>')
    book.save(path)


@case("laughs.fods", guard=NONE, cells=("A1",), loads=None)
def entity_expansion_in_a_flat_document(path, place):
    document = odf_writer.Document(odf_writer.Table(rows=[["=1+1"], ["LAUGH"]]))
    document.doctype = '<!DOCTYPE x [<!ENTITY a0 "ha">' + "".join(
        f'<!ENTITY a{i} "{f"&a{i - 1};" * 10}">' for i in range(1, 12)) + "]>"
    path.write_text(document.flat().replace("LAUGH", "&a11;"), encoding="utf-8")


@case("entries.xlsx", guard=NONE, cells=("A1",), loads=None)
def twenty_thousand_entries(path, place):
    book = Workbook(Sheet("Sheet1", {"A1": "=1+1"}))
    for i in range(20000):
        book.parts[f"xl/media/../../../{i}.xml"] = (None, b"")
    book.save(path)
