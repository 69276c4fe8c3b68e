#!/usr/bin/env python3
"""Writes a small project-finance model as an .xlsx workbook, to try Quorin on.

usage: make-sample.py FILE.xlsx

A solar park: inputs, construction, operation, debt, cash flow, a summary. Formulas carry no stored
values, so that the spreadsheet calculates them when it opens the file. Some rows are hidden, and a
few mistakes of the kind that auditors look for are planted; PLANTED names them.
"""
import sys
import zipfile
from xml.sax.saxutils import escape

FIRST_YEAR, YEARS = 2027, 20
FIRST_COLUMN = 5  # E: the first year

PLANTED = """
Operations!J8   a number typed over the formula of the row
Operations!E19  the sum leaves out the last cost row
Operations!M13  the inflation of the year before
Debt!P10        the interest of a fixed cell instead of the opening balance
Cashflow!V14    divides by a debt service that is zero once the loan is repaid
"""

STYLES = ["General", "#,##0", "0.0%", "0.00", "yyyy", "#,##0.00"]  # number formats by style index
NUMBER, PERCENT, RATIO, YEAR, MONEY = 1, 2, 3, 4, 5
HEADING, TITLE = 6, 7


def letters(column):
    text = ""
    while column:
        column, rest = divmod(column - 1, 26)
        text = chr(65 + rest) + text
    return text


def year_columns():
    return [letters(FIRST_COLUMN + i) for i in range(YEARS)]


class Sheet:
    def __init__(self, name, widths):
        self.name, self.widths = name, widths
        self.cells, self.hidden = {}, set()

    def put(self, address, value, style=0):
        self.cells[address] = (value, style)

    def row(self, number, label, unit, formula, style=NUMBER):
        """A row over all years. {c} is the column, {p} the one before it, {f} the first."""
        self.put(f"A{number}", label)
        self.put(f"C{number}", unit)
        columns = year_columns()
        for i, column in enumerate(columns):
            before = letters(FIRST_COLUMN + i - 1)
            self.put(f"{column}{number}", formula.format(c=column, p=before, f=columns[0]), style)

    def timeline(self, title):
        self.put("A1", title, TITLE)
        self.put("C3", "Year", HEADING)
        for i, column in enumerate(year_columns()):
            self.put(f"{column}3",
                     "=First_Year" if i == 0 else f"={letters(FIRST_COLUMN + i - 1)}3+1", HEADING)

    def xml(self):
        rows = {}
        for address, (value, style) in self.cells.items():
            column = address.rstrip("0123456789")
            number = int(address[len(column):])
            position = 0
            for letter in column:
                position = position * 26 + ord(letter) - 64
            rows.setdefault(number, []).append((position, address, value, style))
        out = ['<?xml version="1.0" encoding="UTF-8" standalone="yes"?><worksheet xmlns='
               '"http://schemas.openxmlformats.org/spreadsheetml/2006/main"><cols>']
        for i, width in enumerate(self.widths, 1):
            out.append(f'<col min="{i}" max="{i}" width="{width}" customWidth="1"/>')
        out.append(f'<col min="{len(self.widths) + 1}" max="40" width="11" customWidth="1"/>')
        out.append("</cols><sheetData>")
        for number in sorted(rows):
            hidden = ' hidden="1"' if number in self.hidden else ""
            height = ' ht="21" customHeight="1"' if number == 1 else ""
            out.append(f'<row r="{number}"{height}{hidden}>')
            for _, address, value, style in sorted(rows[number]):
                if isinstance(value, str) and value.startswith("="):
                    out.append(f'<c r="{address}" s="{style}"><f>{escape(value[1:])}</f></c>')
                elif isinstance(value, str):
                    out.append(f'<c r="{address}" s="{style}" t="inlineStr"><is><t>'
                               f"{escape(value)}</t></is></c>")
                else:
                    out.append(f'<c r="{address}" s="{style}"><v>{value!r}</v></c>')
            out.append("</row>")
        out.append("</sheetData></worksheet>")
        return "".join(out)


def model():
    names = {}
    inputs = Sheet("Inputs", [34, 3, 12, 14])
    inputs.put("A1", "Halden Solar Park: inputs", TITLE)

    def assume(row, label, unit, value, style, name):
        inputs.put(f"A{row}", label)
        inputs.put(f"C{row}", unit)
        inputs.put(f"D{row}", value, style)
        names[name] = f"Inputs!$D${row}"

    inputs.put("A3", "General", HEADING)
    assume(4, "First year of operation", "year", FIRST_YEAR, 0, "First_Year")
    assume(5, "Inflation", "per year", 0.021, PERCENT, "Inflation")
    assume(6, "Tax rate", "", 0.22, PERCENT, "Tax_Rate")
    assume(7, "Discount rate", "", 0.065, PERCENT, "Discount_Rate")
    inputs.put("A9", "Plant", HEADING)
    assume(10, "Capacity", "MWp", 48.5, RATIO, "Capacity")
    assume(11, "Full-load hours", "h per year", 1065, NUMBER, "Full_Load_Hours")
    assume(12, "Degradation", "per year", 0.004, PERCENT, "Degradation")
    assume(13, "Availability", "", 0.985, PERCENT, "Availability")
    inputs.put("A15", "Revenue", HEADING)
    assume(16, "Contract price", "EUR per MWh", 74.2, MONEY, "Contract_Price")
    assume(17, "Length of contract", "years", 12, NUMBER, "Contract_Years")
    assume(18, "Market price", "EUR per MWh", 58.5, MONEY, "Market_Price")
    inputs.put("A20", "Costs", HEADING)
    assume(21, "Modules", "EUR per kWp", 215, NUMBER, "Cost_Modules")
    assume(22, "Balance of system", "EUR per kWp", 265, NUMBER, "Cost_BOS")
    assume(23, "Grid connection", "EUR", 3900000, NUMBER, "Cost_Grid")
    assume(24, "Development", "EUR", 1450000, NUMBER, "Cost_Development")
    assume(25, "Operation and maintenance", "EUR per kWp", 7.8, MONEY, "Cost_OM")
    assume(26, "Lease", "EUR per year", 118000, NUMBER, "Cost_Lease")
    assume(27, "Insurance", "EUR per year", 96000, NUMBER, "Cost_Insurance")
    assume(28, "Balancing", "EUR per MWh", 2.1, MONEY, "Cost_Balancing")
    inputs.put("A30", "Financing", HEADING)
    assume(31, "Share of debt", "", 0.72, PERCENT, "Debt_Share")
    assume(32, "Interest", "per year", 0.0485, PERCENT, "Interest_Rate")
    assume(33, "Tenor", "years", 15, NUMBER, "Tenor")

    construction = Sheet("Construction", [34, 3, 12, 16])
    construction.put("A1", "Construction costs", TITLE)
    for row, label, formula in ((4, "Modules", "=Capacity*1000*Cost_Modules"),
                                (5, "Balance of system", "=Capacity*1000*Cost_BOS"),
                                (6, "Grid connection", "=Cost_Grid"),
                                (7, "Development", "=Cost_Development"),
                                (8, "Contingency", "=5%*SUM(D4:D7)")):
        construction.put(f"A{row}", label)
        construction.put(f"C{row}", "EUR")
        construction.put(f"D{row}", formula, NUMBER)
    construction.put("A9", "Total", HEADING)
    construction.put("D9", "=SUM(D4:D8)", NUMBER)
    construction.put("A10", "Per kWp")
    construction.put("D10", "=D9/(Capacity*1000)", NUMBER)
    names["Total_Capex"] = "Construction!$D$9"

    operations = Sheet("Operations", [34, 3, 12, 3])
    operations.timeline("Operation")
    operations.row(4, "Year of operation", "", "={c}3-First_Year+1", NUMBER)
    operations.row(5, "Index", "", "=(1+Inflation)^({c}4-1)", RATIO)
    operations.row(6, "Degradation factor", "", "=(1-Degradation)^({c}4-1)", RATIO)
    operations.row(7, "Under contract", "", "=IF({c}4<=Contract_Years,1,0)", NUMBER)
    operations.hidden = {5, 6, 7}
    operations.row(8, "Production", "MWh",
                   "=Capacity*Full_Load_Hours*Availability*{c}6")
    operations.put("J8", 49850, NUMBER)
    operations.row(9, "Price", "EUR per MWh", "=IF({c}7=1,Contract_Price,Market_Price*{c}5)", MONEY)
    operations.row(10, "Revenue", "EUR", "={c}8*{c}9")
    operations.put("A12", "Costs", HEADING)
    operations.row(13, "Operation and maintenance", "EUR", "=Capacity*1000*Cost_OM*{c}5")
    operations.put("M13", "=Capacity*1000*Cost_OM*L5", NUMBER)
    operations.row(14, "Lease", "EUR", "=Cost_Lease*{c}5")
    operations.row(15, "Insurance", "EUR", "=Cost_Insurance*{c}5")
    operations.row(16, "Balancing", "EUR", "={c}8*Cost_Balancing")
    operations.row(19, "Operating costs", "EUR", "=SUM({c}13:{c}16)")
    operations.put("E19", "=SUM(E13:E15)", NUMBER)
    operations.row(20, "EBITDA", "EUR", "={c}10-{c}19")

    debt = Sheet("Debt", [34, 3, 12, 3])
    debt.timeline("Debt")
    debt.put("A5", "Loan")
    debt.put("C5", "EUR")
    debt.put("D5", "=Total_Capex*Debt_Share", NUMBER)
    names["Loan"] = "Debt!$D$5"
    debt.row(7, "Repayment period", "", "=IF(Operations!{c}4<=Tenor,1,0)")
    debt.row(8, "Opening balance", "EUR", "={p}12")
    debt.put(f"{letters(FIRST_COLUMN)}8", "=Loan", NUMBER)
    debt.row(9, "Annuity", "EUR", "=PMT(Interest_Rate,Tenor,-Loan)*{c}7")
    debt.row(10, "Interest", "EUR", "={c}8*Interest_Rate")
    debt.put("P10", "=$O$8*Interest_Rate", NUMBER)
    debt.row(11, "Repayment", "EUR", "={c}9-{c}10*{c}7")
    debt.row(12, "Closing balance", "EUR", "={c}8-{c}11")
    debt.hidden = {7}

    cash = Sheet("Cashflow", [34, 3, 12, 16])
    cash.timeline("Cash flow")
    cash.row(4, "EBITDA", "EUR", "=Operations!{c}20")
    cash.row(5, "Depreciation", "EUR", "=Total_Capex/20")
    cash.row(6, "Interest", "EUR", "=Debt!{c}10")
    cash.row(7, "Profit before tax", "EUR", "={c}4-{c}5-{c}6")
    cash.row(8, "Tax", "EUR", "=MAX(0,{c}7)*Tax_Rate")
    cash.row(10, "Cash flow before debt", "EUR", "={c}4-{c}8")
    cash.row(11, "Debt service", "EUR", "=Debt!{c}9")
    cash.row(12, "Cash flow to equity", "EUR", "={c}10-{c}11")
    cash.put("D12", "=-(Total_Capex-Loan)", NUMBER)
    cash.row(14, "Cover ratio", "", "=IF({c}11=0,\"\",{c}10/{c}11)", RATIO)
    cash.put("V14", "=V10/V11", RATIO)

    last = year_columns()[-1]
    summary = Sheet("Summary", [34, 3, 12, 16])
    summary.put("A1", "Halden Solar Park: summary", TITLE)
    for row, label, unit, formula, style in (
            (3, "Construction costs", "EUR", "=Total_Capex", NUMBER),
            (4, "Loan", "EUR", "=Loan", NUMBER),
            (5, "Equity", "EUR", "=Total_Capex-Loan", NUMBER),
            (7, "Revenue over all years", "EUR", f"=SUM(Operations!E10:{last}10)", NUMBER),
            (8, "Operating costs over all years", "EUR", f"=SUM(Operations!E19:{last}19)", NUMBER),
            (9, "Average cover ratio", "", "=AVERAGE(Cashflow!E14:S14)", RATIO),
            (10, "Lowest cover ratio", "", "=MIN(Cashflow!E14:S14)", RATIO),
            (12, "Return on equity", "", f"=IRR(Cashflow!D12:{last}12)", PERCENT),
            (13, "Value of equity", "EUR",
             f"=NPV(Discount_Rate,Cashflow!E12:{last}12)+Cashflow!D12", NUMBER),
            (14, "Verdict", "", '=IF(D12>Discount_Rate,"Go","Look again")', 0)):
        summary.put(f"A{row}", label)
        summary.put(f"C{row}", unit)
        summary.put(f"D{row}", formula, style)
    names["Equity_IRR"] = "Summary!$D$12"
    return [summary, inputs, construction, operations, debt, cash], names


def styles_xml():
    formats = "".join(f'<numFmt numFmtId="{164 + i}" formatCode="{escape(code)}"/>'
                      for i, code in enumerate(STYLES))
    xfs = "".join(f'<xf numFmtId="{164 + i}" fontId="0" fillId="0" borderId="0" xfId="0" '
                  'applyNumberFormat="1"/>' for i in range(len(STYLES)))
    xfs += '<xf numFmtId="0" fontId="1" fillId="0" borderId="0" xfId="0" applyFont="1"/>'
    xfs += '<xf numFmtId="0" fontId="2" fillId="0" borderId="0" xfId="0" applyFont="1"/>'
    return ('<?xml version="1.0" encoding="UTF-8" standalone="yes"?><styleSheet xmlns='
            '"http://schemas.openxmlformats.org/spreadsheetml/2006/main">'
            f'<numFmts count="{len(STYLES)}">{formats}</numFmts>'
            '<fonts count="3"><font><sz val="10"/><name val="Liberation Sans"/></font>'
            '<font><b/><sz val="10"/><name val="Liberation Sans"/></font>'
            '<font><b/><sz val="14"/><name val="Liberation Sans"/></font></fonts>'
            '<fills count="2"><fill><patternFill patternType="none"/></fill>'
            '<fill><patternFill patternType="gray125"/></fill></fills>'
            '<borders count="1"><border/></borders>'
            '<cellStyleXfs count="1"><xf/></cellStyleXfs>'
            f'<cellXfs count="{len(STYLES) + 2}">{xfs}</cellXfs></styleSheet>')


def write(path):
    sheets, names = model()
    main = "http://schemas.openxmlformats.org/spreadsheetml/2006/main"
    relation = "http://schemas.openxmlformats.org/officeDocument/2006/relationships"
    package = "http://schemas.openxmlformats.org/package/2006"
    kind = "application/vnd.openxmlformats-officedocument.spreadsheetml"
    head = '<?xml version="1.0" encoding="UTF-8" standalone="yes"?>'
    numbers = range(1, len(sheets) + 1)
    parts = {
        "[Content_Types].xml":
            f'{head}<Types xmlns="{package}/content-types">'
            '<Default Extension="rels" ContentType='
            '"application/vnd.openxmlformats-package.relationships+xml"/>'
            '<Default Extension="xml" ContentType="application/xml"/>'
            f'<Override PartName="/xl/workbook.xml" ContentType="{kind}.sheet.main+xml"/>'
            f'<Override PartName="/xl/styles.xml" ContentType="{kind}.styles+xml"/>' +
            "".join(f'<Override PartName="/xl/worksheets/sheet{i}.xml" '
                    f'ContentType="{kind}.worksheet+xml"/>' for i in numbers) + "</Types>",
        "_rels/.rels":
            f'{head}<Relationships xmlns="{package}/relationships"><Relationship Id="r1" '
            f'Type="{relation}/officeDocument" Target="xl/workbook.xml"/></Relationships>',
        "xl/_rels/workbook.xml.rels":
            f'{head}<Relationships xmlns="{package}/relationships">' +
            "".join(f'<Relationship Id="r{i}" Type="{relation}/worksheet" '
                    f'Target="worksheets/sheet{i}.xml"/>' for i in numbers) +
            f'<Relationship Id="r{len(sheets) + 1}" Type="{relation}/styles" '
            'Target="styles.xml"/></Relationships>',
        "xl/workbook.xml":
            f'{head}<workbook xmlns="{main}" xmlns:r="{relation}"><sheets>' +
            "".join(f'<sheet name="{escape(sheet.name)}" sheetId="{i}" r:id="r{i}"/>'
                    for i, sheet in enumerate(sheets, 1)) + "</sheets><definedNames>" +
            "".join(f'<definedName name="{name}">{names[name]}</definedName>'
                    for name in sorted(names)) + "</definedNames></workbook>",
        "xl/styles.xml": styles_xml(),
    }
    for i, sheet in enumerate(sheets, 1):
        parts[f"xl/worksheets/sheet{i}.xml"] = sheet.xml()
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as archive:
        for name, text in parts.items():
            # The same bytes each time.
            archive.writestr(zipfile.ZipInfo(name, (2026, 1, 1, 0, 0, 0)), text,
                             zipfile.ZIP_DEFLATED)


if __name__ == "__main__":
    if len(sys.argv) != 2 or sys.argv[1].startswith("-"):
        print(__doc__.strip(), file=sys.stderr)
        sys.exit(2)
    write(sys.argv[1])
