// What a workbook of more cells than can be fetched is asked all the same, through the verbs.
#include <fstream>

#include "tests/calc/CalcReads.h"

namespace quorin::host::calc {
namespace {

using testing::HasSubstr;

constexpr const char* beginning = R"(<?xml version="1.0" encoding="UTF-8"?>
<office:document xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0"
 xmlns:table="urn:oasis:names:tc:opendocument:xmlns:table:1.0"
 xmlns:text="urn:oasis:names:tc:opendocument:xmlns:text:1.0"
 xmlns:style="urn:oasis:names:tc:opendocument:xmlns:style:1.0"
 xmlns:number="urn:oasis:names:tc:opendocument:xmlns:datastyle:1.0"
 xmlns:fo="urn:oasis:names:tc:opendocument:xmlns:xsl-fo-compatible:1.0"
 xmlns:of="urn:oasis:names:tc:opendocument:xmlns:of:1.2" office:version="1.3"
 office:mimetype="application/vnd.oasis.opendocument.spreadsheet">
<office:automatic-styles>
<style:style style:name="wide" style:family="table-column"><style:table-column-properties style:column-width="9cm"/></style:style>
<style:style style:name="narrow" style:family="table-column"><style:table-column-properties style:column-width="2cm"/></style:style>
<number:number-style style:name="plus"><number:number number:decimal-places="3" number:min-decimal-places="3" number:min-integer-digits="1"/></number:number-style>
<number:number-style style:name="signed"><style:text-properties fo:color="#ff0000"/><number:text>(</number:text>
<number:number number:decimal-places="2" number:min-decimal-places="2" number:min-integer-digits="1" number:grouping="true"/><number:text>)</number:text>
<style:map style:condition="value()&gt;=0" style:apply-style-name="signedP0"/></number:number-style>
<number:number-style style:name="signedP0" style:volatile="true"><number:text>(</number:text><number:number number:decimal-places="2" number:min-decimal-places="2" number:min-integer-digits="1" number:grouping="true"/><number:text>)</number:text></number:number-style>
<style:style style:name="thousandths" style:family="table-cell" style:data-style-name="plus"/>
<style:style style:name="money" style:family="table-cell" style:data-style-name="signed"/>
<style:style style:name="middle" style:family="table-cell"><style:table-cell-properties style:cell-protect="none"/>
<style:paragraph-properties fo:text-align="center"/></style:style>
</office:automatic-styles><office:body><office:spreadsheet>
)";

std::string cell(const std::string& content, const std::string& more = {}) {
  const bool number = content.find_first_not_of("0123456789") == std::string::npos;
  return "<table:table-cell " + more +
         (number ? " office:value-type=\"float\" office:value=\"" + content + "\"/>"
                 : " office:value-type=\"string\"><text:p>" + content +
                       "</text:p></table:table-cell>");
}
std::string row(const std::string& cells, int times = 1) {
  return "<table:table-row table:number-rows-repeated=\"" + std::to_string(times) + "\">" + cells +
         "</table:table-row>\n";
}
std::string ones(int count) {
  return cell("1", "table:number-columns-repeated=\"" + std::to_string(count) + "\"");
}

constexpr std::array<const char*, 6> kinds{"width",       "format", "color",
                                           "parentheses", "prefix", "protect"};

// What each kind of CELL is of A1 to C1, in cells of the sheet itself.
std::string looks() {
  std::string rows =
      row(cell("1", "table:style-name=\"thousandths\"") + cell("2", "table:style-name=\"money\"") +
          cell("text", "table:style-name=\"middle\""));
  for (const char* kind : kinds) {
    std::string cells;
    for (const char column : {'A', 'B', 'C'}) {
      cells += "<table:table-cell table:formula=\"of:=CELL(&quot;" + std::string(kind) +
               "&quot;;[." + column + "1])\"/>";
    }
    rows += row(cells);
  }
  return "<table:table table:name=\"Looks\"><table:table-column table:style-name=\"wide\"/>"
         "<table:table-column table:style-name=\"narrow\"/>" +
         rows + "</table:table>";
}

// 45,000 rows of 26 filled cells: ones but for E5 and E45000, and the first column's keys.
std::string big() {
  return "<table:table table:name=\"Big\">" +
         row(cell("key") + cell("h", "table:number-columns-repeated=\"25\"")) +
         row(cell("k") + ones(25), 3) + row(cell("five") + ones(3) + cell("55") + ones(21)) +
         row(cell("k") + ones(25), 44'994) + row(cell("last") + ones(3) + cell("7") + ones(21)) +
         "</table:table>";
}

class CalcLarge : public CalcReads {
 protected:
  static void SetUpTestSuite() {
    CalcReads::SetUpTestSuite();
    std::ofstream(*folder / "Large.fods")
        << beginning << looks() << big()
        << "<table:named-expressions><table:named-range table:name=\"All\" "
           "table:base-cell-address=\"$Big.$A$1\" "
           "table:cell-range-address=\"$Big.$A$1:.$Z$45000\"/>"
           "</table:named-expressions></office:spreadsheet></office:body></office:document>";
    road->open(*folder / "Large.fods");
  }
  static void TearDownTestSuite() {
    hands->close("Large.fods");
    CalcReads::TearDownTestSuite();
  }
  void SetUp() override {
    road->use([](CalcSpreadsheet& calc) {
      calc.activateWorkbook("Large.fods");
      calc.activateSheet({"Large.fods", "Looks"});
    });
  }
  static std::string value(const std::string& told) {
    return R"({"ok":true,"value":)" + told + "}";
  }
};

TEST_F(CalcLarge, TellsHowCellsLookWhateverElseThereIs) {
  const std::string read = ask("readRange", {"A2:C7"});
  // Widths depend on the fonts there are; of the rest Calc's help says what it is.
  EXPECT_THAT(read, HasSubstr(R"x(["F3",",2-()","F0"],[0,1,0],[0,1,0],)x"));
  const Bridge::Reply reply = road->bridge().dispatch("readRange", {"A2:C7"});
  const Array& rows = *reply.payload.member("values")->array();
  const auto shown = [&rows](std::size_t kind, std::size_t column) {
    const std::string text = Marshal::encode(rows.at(kind).array()->at(column));
    return text == R"("\u0000")" ? R"("")" : text;  // Calc's own cell holds a NUL for no prefix
  };
  EXPECT_GT(*rows.at(0).array()->at(0).number(), 3 * *rows.at(0).array()->at(1).number());
  for (std::size_t kind = 0; kind < kinds.size(); ++kind) {
    const std::string call = "CELL(\"" + std::string(kinds[kind]) + "\",";
    for (const std::size_t column : {0U, 1U, 2U}) {
      const std::string address = std::string(1, static_cast<char>('A' + column)) + "1";
      SCOPED_TRACE(call + address);
      EXPECT_EQ(evaluate(call + address + ")"), value(shown(kind, column)));
      EXPECT_EQ(evaluate(call + address + ":C9)"), value(shown(kind, column)));  // its first cell
      EXPECT_EQ(deep({call + "[Large.fods]Looks!" + address + ")"}), value(shown(kind, column)));
    }
    EXPECT_EQ(evaluate(call + "INDEX(Big!A:Z,1,1):Big!B9)"), evaluate(call + "Big!A1)"));
    EXPECT_EQ(evaluate(call + "INDEX(A1:C1,1,2))"), value(shown(kind, 1)));
    EXPECT_EQ(evaluate(call + "OFFSET(A1,0,LEN(\"ab\")))"), value(shown(kind, 2)));
    EXPECT_EQ(evaluate("CELL(LOWER(\"" + std::string(kinds[kind]) + "\"),B1)"),
              value(shown(kind, 1)));
  }
  EXPECT_EQ(evaluate("IF(CELL(\"protect\",C1)=0,\"open \"&CELL(\"format\",A1),\"\")"),
            value("\"open F3\""));
  EXPECT_EQ(evaluate("CELL(\"row\",C4:D9)+CELL(\"col\",C4:D9)"), value("7"));
}

TEST_F(CalcLarge, FetchesOnlyWhatACallTakes) {
  EXPECT_EQ(evaluate("INDEX(Big!A:Z,5,5)*1"), value("55"));
  EXPECT_EQ(evaluate("SUM(INDEX(Big!A:Z,0,5))"), value("45059"));
  EXPECT_EQ(evaluate("VLOOKUP(\"last\",Big!A:Z,5,FALSE)"), value("7"));
  EXPECT_EQ(evaluate("VLOOKUP(\"five\",All,5,0)+INDEX(All,45000,5)"), value("62"));
  EXPECT_EQ(evaluate("HLOOKUP(\"h\",Big!A:Z,5,FALSE)"), value("1"));
  EXPECT_EQ(evaluate("OFFSET(Big!A1,4,4)*2"), value("110"));
  EXPECT_EQ(evaluate("ROWS(Big!A:Z)+COLUMNS(All)"), value("1048602"));
  EXPECT_EQ(deep({"INDEX([Large.fods]Big!A:Z,5,5)", "A1+1"}), value("56"));
}

TEST_F(CalcLarge, AsksWhatACallTakesWhereThatIsCalculated) {
  EXPECT_EQ(evaluate("INDEX(Big!A:Z,MATCH(\"last\",Big!A:A,0),MATCH(\"five\",{\"a\",\"b\",\"c\","
                     "\"d\",\"five\"},0))"),
            value("7"));
  EXPECT_EQ(evaluate("VLOOKUP(\"last\",All,COLUMN(E1),FALSE)"), value("7"));
  EXPECT_EQ(evaluate("SUM(OFFSET(Big!A1,0,4,COUNTA(Big!A:A),1))"), value("45059"));
  EXPECT_EQ(evaluate("IFERROR(INDEX(All,MATCH(\"none\",Big!A:A,0),5),\"none\")"),
            value("\"none\""));
}

// Where Calc's queries, and its COUNTA, tell cells of the last column that it has.
TEST_F(CalcLarge, FindsNothingBehindTheLastColumn) {
  EXPECT_EQ(evaluate("COUNTA(Big!AB1:BZ5000)"), value("0"));
  EXPECT_EQ(evaluate("COUNTA(Big!A1:B5)&\"|\"&COUNTA(Big!AB1:BZ5)"), value("\"10|0\""));
  EXPECT_EQ(evaluate("COUNTA(Big!A1:B5)&\"|\"&COUNTA(Big!AB1:BZ5000)"), value("\"10|0\""));
  EXPECT_EQ(evaluate("SUBTOTAL(3,Looks!D1:F7)"), value("0"));  // beside a column of formulas
  EXPECT_EQ(deep({"COUNTA([Large.fods]Big!AB1:BZ5000)"}), value("0"));
  EXPECT_EQ(ask("dependents", {"Looks!E1:F3"}), R"("")");
  EXPECT_EQ(ask("readFormulas", {"Looks!E2:F3", "a1", true}),
            R"({"cols":2,"formulas":[["",""],["",""]],"rows":2,"values":[]})");
}

TEST_F(CalcLarge, WorksOutSumsOfManyCellsAndRefusesMore) {
  EXPECT_EQ(evaluate("SUM(Big!A1:Z20000)"), value("500029"));
  EXPECT_EQ(evaluate("SUM(Big!A:Z)"),
            R"({"kind":"transport","message":"Microsoft Excel got an error: )"
            R"(The expression looks at too many cells","ok":false})");
}

}  // namespace
}  // namespace quorin::host::calc
