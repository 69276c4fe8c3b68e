// Expressions in a real office, where the known workbook of the contract does not reach.
#include <fstream>
#include <gtest/gtest.h>

#include "host/Address.h"
#include "tests/calc/CalcFixture.h"
#include "tests/fakes/TemporaryFolder.h"

namespace quorin::host::calc {
namespace {

constexpr const char* guardedBook = R"(<?xml version="1.0" encoding="UTF-8"?>
<office:document xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0"
 xmlns:table="urn:oasis:names:tc:opendocument:xmlns:table:1.0"
 xmlns:text="urn:oasis:names:tc:opendocument:xmlns:text:1.0"
 xmlns:of="urn:oasis:names:tc:opendocument:xmlns:of:1.2" office:version="1.3"
 office:mimetype="application/vnd.oasis.opendocument.spreadsheet"><office:body><office:spreadsheet>
<table:table table:name="It's locked" table:protected="true">
<table:table-row><table:table-cell office:value-type="float" office:value="2"/></table:table-row>
<table:table-row><table:table-cell office:value-type="float" office:value="3"/></table:table-row>
</table:table><table:table table:name="Open">
<table:table-row><table:table-cell office:value-type="float" office:value="7"/></table:table-row>
</table:table></office:spreadsheet></office:body></office:document>)";

constexpr const char* tableBook = R"(<?xml version="1.0" encoding="UTF-8"?>
<office:document xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0"
 xmlns:table="urn:oasis:names:tc:opendocument:xmlns:table:1.0"
 xmlns:text="urn:oasis:names:tc:opendocument:xmlns:text:1.0" office:version="1.3"
 office:mimetype="application/vnd.oasis.opendocument.spreadsheet"><office:body><office:spreadsheet>
<table:table table:name="Data">
<table:table-row><table:table-cell office:value-type="string"><text:p>Year</text:p></table:table-cell>
<table:table-cell office:value-type="string"><text:p>2007</text:p></table:table-cell></table:table-row>
<table:table-row><table:table-cell office:value-type="float" office:value="1"/>
<table:table-cell office:value-type="float" office:value="20"/></table:table-row>
<table:table-row><table:table-cell office:value-type="float" office:value="2"/>
<table:table-cell office:value-type="float" office:value="30"/></table:table-row>
</table:table><table:table table:name="Other">
<table:table-row><table:table-cell office:value-type="float" office:value="7"/></table:table-row>
</table:table>
<table:database-ranges><table:database-range table:name="Sales.North"
 table:target-range-address="Data.A1:Data.B3" table:contains-header="true"/></table:database-ranges>
<table:named-expressions><table:named-range table:name="Unit.TWh"
 table:base-cell-address="$Data.$A$1" table:cell-range-address="$Data.$B$2"/></table:named-expressions>
</office:spreadsheet></office:body></office:document>)";

// More filled cells than anybody would copy to answer a question.
std::string sumsBook() {
  const std::string number = "<table:table-cell office:value-type=\"float\" office:value=\"";
  std::string rows;
  const auto row = [&](const char* attributes, const std::string& cell) {
    rows += "<table:table-row" + std::string(attributes) + ">" + cell + "</table:table-row>\n";
  };
  row("", number +
              "1\"/><table:table-cell/><table:table-cell table:formula=\"of:=1&gt;0\" "
              "office:value-type=\"boolean\" "
              "office:boolean-value=\"true\"/>");
  row(" table:visibility=\"collapse\"", number + "2\"/>");
  row(" table:visibility=\"filter\"", number + "4\"/>");
  row("",
      "<table:table-cell table:formula=\"of:=SUBTOTAL(9;[.A1:.A3])\" office:value-type=\"float\" "
      "office:value=\"3\"/>");
  row("",
      "<table:table-cell table:formula=\"of:=[.A1]*8\" office:value-type=\"float\" "
      "office:value=\"8\"/>");
  row(" table:number-rows-repeated=\"1500\"", number + "0\"/>");
  std::string book = guardedBook;
  const std::string last = "</office:spreadsheet>";
  return book.insert(book.find(last),
                     "<table:table table:name=\"Sums\">" + rows + "</table:table>");
}

class CalcEvaluation : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    static const TemporaryFolder folder;
    std::ofstream(folder / "Guarded.fods") << guardedBook;
    std::ofstream(folder / "Table.fods") << tableBook;
    std::ofstream(folder / "Sums.fods") << sumsBook();
    for (const char* book : {"Guarded.fods", "Table.fods", "Sums.fods"}) {
      calc().openWorkbook((folder / book).string());
    }
  }
  static CalcSpreadsheet& calc() { return SharedOffice::spreadsheet(); }
  const SheetRef locked{"Guarded.fods", "It's locked"}, open{"Guarded.fods", "Open"};
};

TEST_F(CalcEvaluation, WorksOnProtectedSheets) {
  EXPECT_EQ(calc().evaluate("A1*A2+ROW(A2)", locked), Evaluation(CellValue(8.0)));
  EXPECT_EQ(calc().evaluate("A1*Open!A1", locked), Evaluation(CellValue(14.0)));
  EXPECT_EQ(calc().evaluate("A1*2", open), Evaluation(CellValue(14.0)));
}

TEST_F(CalcEvaluation, GivesArraysOfEveryKindOfValue) {
  const RangeRef cells{locked, parseA1("A1:A2").value()};
  EXPECT_EQ(calc().evaluate("A1:A2>2", locked), Evaluation(Grid<CellValue>{2, 1, {false, true}}));
  EXPECT_EQ(calc().evaluate("IF(A1:A2>2,\"big\",1/0)", locked),
            Evaluation(Grid<CellValue>{2, 1, {CellError{"#DIV/0!"}, "big"}}));
  EXPECT_EQ(calc().evaluate("SUM((A1:A2>2)*A1:A2)", locked), Evaluation(CellValue(3.0)));
  EXPECT_EQ(calc().evaluate("(A1:A2)", locked), Evaluation(cells));
}

TEST_F(CalcEvaluation, FindsTablesThatTextNames) {
  const SheetRef beside{"Table.fods", "Other"};
  EXPECT_EQ(calc().evaluate("SUM(INDIRECT(\"Sales.North[\"&2000+A1&\"]\"))", beside),
            Evaluation(CellValue(50.0)));
  EXPECT_EQ(calc().evaluate("INDEX(INDIRECT(\"Sales.North[Year]\"),2)*1", beside),
            Evaluation(CellValue(2.0)));
  // A workbook that is not Excel's reads text in Calc's own way.
  EXPECT_EQ(calc().evaluate("INDIRECT(\"Data.A2\")+1", beside), Evaluation(CellValue(2.0)));
  for (const std::string text : {"Data!A2", "Unit.TWh", "Sales.North", "$Data.$A$3"}) {
    EXPECT_EQ(calc().evaluate("SUM(INDIRECT(\"" + text + "\"))", beside),
              calc().evaluate("SUM(INDIRECT(\"" + text + "\",1))", beside))
        << text;
  }
}

TEST_F(CalcEvaluation, FindsThePartsOfATable) {
  const SheetRef beside{"Table.fods", "Other"}, data{"Table.fods", "Data"};
  EXPECT_EQ(calc().named(beside, "sales.north[2007]"), (RangeRef{data, parseA1("B2:B3").value()}));
  EXPECT_EQ(calc().named(beside, "Sales.North[[#All],[Year]:[2007]]"),
            (RangeRef{data, parseA1("A1:B3").value()}));
  EXPECT_EQ(calc().named(beside, "Sales.North[2008]"), std::nullopt);
  EXPECT_EQ(calc().named(beside, "Sales.North[@Year]"), std::nullopt);
  EXPECT_EQ(calc().named(beside, "Sales.North[2007]+1"), std::nullopt);
  EXPECT_EQ(calc().named(beside, "Sales.South[2007]"), std::nullopt);
}

// With the second argument Calc has to find the cells, among all that the workbook holds.
TEST_F(CalcEvaluation, FindsCellsThatTextNames) {
  const std::string book = SharedOffice::open(
      {.name = "Names.xlsx",
       .sheets = {{"Data", {{"A1", 20.0}, {"A2", 2007.0}}}, {"Other", {{"A1", 7.0}, {"B1", "A1"}}}},
       .names = {{"Unit.TWh", "=Data!$A$1"}, {"this.Year", "=Data!$A$2", "Data"}},
       .savedByExcel = true});
  const SheetRef other{book, "Other"};
  const auto valueOf = [&](const std::string& expression) {
    return calc().evaluate(expression, other);
  };
  for (const std::string second : {"", ",TRUE"}) {
    EXPECT_EQ(valueOf("INDIRECT(\"Unit\"&\".TWh\"" + second + ")*A1"),
              Evaluation(CellValue(140.0)));
    EXPECT_EQ(valueOf("INDIRECT(\"Data!this.Year\"" + second + ")+1"),
              Evaluation(CellValue(2008.0)));
    for (const std::string nothing :
         {"Unit.Wales", "Nowhere!A1", "Data!rate", "Sales[Net]", "", "A1 is", "1/2"}) {
      EXPECT_EQ(valueOf("MATCH(7,INDIRECT(\"" + nothing + "\"" + second + "),0)"),
                Evaluation(CellValue(CellError{"#REF!"})))
          << nothing;
    }
    EXPECT_EQ(valueOf("INDIRECT(\"Data!\"&INDIRECT(\"B\"&1)" + second + ")*2"),
              Evaluation(CellValue(40.0)));
    EXPECT_EQ(valueOf("SUM(INDIRECT(\"Data!A1:A2\"" + second + "))"),
              Evaluation(CellValue(2027.0)));
    EXPECT_EQ(valueOf("ROWS(INDIRECT(\"1:\"&A1" + second + "))"), Evaluation(CellValue(7.0)));
    EXPECT_EQ(valueOf("INDIRECT(1/0" + second + ")*2"),
              Evaluation(CellValue(CellError{"#DIV/0!"})));
    EXPECT_EQ(valueOf("SUM(INDIRECT({\"A1\",\"Data!A1\"}" + second + "))"),
              valueOf("SUM(INDIRECT({\"A1\",\"Data!A1\"},1))"));
  }
  EXPECT_EQ(valueOf("INDIRECT(B1)+1"), Evaluation(CellValue(8.0)));
  EXPECT_EQ(valueOf("INDIRECT(B1:B2)+1"), valueOf("INDIRECT(B1:B2,TRUE)+1"));
}

TEST_F(CalcEvaluation, NumbersErrorsAsExcelDoes) {
  EXPECT_EQ(calc().evaluate("SQRT(-1)", open), Evaluation(CellValue(CellError{"#NUM!"})));
  EXPECT_EQ(calc().evaluate("ERROR.TYPE(SQRT(-1))", open), Evaluation(CellValue(6.0)));
  EXPECT_EQ(calc().evaluate("MATCH(1,INDIRECT(\"nope\"),0)", open),
            Evaluation(CellValue(CellError{"#REF!"})));
  EXPECT_EQ(calc().evaluate("ERROR.TYPE(MATCH(1,INDIRECT(\"nope\"),0))", open),
            Evaluation(CellValue(4.0)));
  EXPECT_EQ(calc().evaluate("IFERROR(1/0,\"e\"&ERROR.TYPE(ERROR.TYPE(A1/0)/0))", open),
            Evaluation(CellValue("e2")));
  EXPECT_EQ(calc().evaluate("ERROR.TYPE(#NULL!)", open), Evaluation(CellValue(1.0)));
  EXPECT_EQ(calc().evaluate("ERROR.TYPE(1)", open), Evaluation(CellValue(CellError{"#N/A"})));
}

TEST_F(CalcEvaluation, LeavesOutWhatSubtotalsLeaveOut) {
  const SheetRef sums{"Sums.fods", "Sums"}, beside{"Sums.fods", "Open"};
  EXPECT_EQ(calc().evaluate("SUBTOTAL(9,A1:A5)", sums), Evaluation(CellValue(11.0)));
  EXPECT_EQ(calc().evaluate("SUBTOTAL(109,A1:A5)", sums), Evaluation(CellValue(9.0)));
  EXPECT_EQ(calc().evaluate("SUBTOTAL(109,Sums!A:A)*2", beside), Evaluation(CellValue(18.0)));
  EXPECT_EQ(calc().evaluate("AGGREGATE(9,5,A1:A5)", sums), Evaluation(CellValue(12.0)));
  EXPECT_EQ(calc().evaluate("SUBTOTAL(9,INDIRECT(\"A1:A5\"))", sums), Evaluation(CellValue(11.0)));
  EXPECT_EQ(calc().evaluate("SUM(A1:A5)", sums), Evaluation(CellValue(18.0)));
  EXPECT_EQ(calc().evaluate("SUBTOTAL(109,A1:A5)", {"Guarded.fods", "It's locked"}),
            Evaluation(CellValue(5.0)));
}

TEST_F(CalcEvaluation, NoticesThatRowsAreShownOrHidden) {
  const SheetRef sums{"Sums.fods", "Sums"};
  const RangeRef second{sums, parseA1("A2").value()};
  calc().evaluate("SUBTOTAL(109,A1:A5)", sums);
  calc().setHidden(second, Axis::rows, false);
  EXPECT_EQ(calc().evaluate("SUBTOTAL(109,A1:A5)", sums), Evaluation(CellValue(11.0)));
  calc().setHidden(second, Axis::rows, true);
  EXPECT_EQ(calc().evaluate("SUBTOTAL(109,A1:A5)", sums), Evaluation(CellValue(9.0)));
}

TEST_F(CalcEvaluation, TellsFormulasFromConstants) {
  const SheetRef sums{"Sums.fods", "Sums"};
  EXPECT_EQ(calc().evaluate("ISFORMULA(A1)", sums), Evaluation(CellValue(false)));
  EXPECT_EQ(calc().evaluate("SUMPRODUCT(ISFORMULA(A1:A9)*A1:A9)", sums),
            Evaluation(CellValue(11.0)));
}

TEST_F(CalcEvaluation, NamesTruthThatIsJoinedToText) {
  const SheetRef sums{"Sums.fods", "Sums"};
  EXPECT_EQ(calc().evaluate("\"x\"&(A1>2)&(A1<2)&C1&A1", sums),
            Evaluation(CellValue("xFALSETRUETRUE1")));
  EXPECT_EQ(calc().evaluate("(A1:A2>1)&\"!\"", sums),
            Evaluation(Grid<CellValue>{2, 1, {"FALSE!", "TRUE!"}}));
  EXPECT_EQ(calc().evaluate("D1&\"\"&ISBLANK(D1)", sums), Evaluation(CellValue("TRUE")));
}

TEST_F(CalcEvaluation, TellsWhatStandsInCellsAndWhere) {
  const SheetRef sums{"Sums.fods", "Sums"}, beside{"Sums.fods", "Open"};
  EXPECT_EQ(calc().evaluate("FORMULATEXT(A4)", sums), Evaluation(CellValue("=SUBTOTAL(9,A1:A3)")));
  EXPECT_EQ(calc().evaluate("FORMULATEXT(A1)", sums), Evaluation(CellValue(CellError{"#N/A"})));
  EXPECT_EQ(calc().evaluate("CELL(\"address\",INDEX(A1:A9,3))", sums),
            Evaluation(CellValue("$A$3")));
  EXPECT_EQ(calc().evaluate("CELL(\"address\",Sums!A3)", beside),
            Evaluation(CellValue("Sums!$A$3")));
  EXPECT_EQ(calc().evaluate("CELL(\"row\",A3)+CELL(\"contents\",A3)", sums),
            Evaluation(CellValue(7.0)));
  const Evaluation file = calc().evaluate("CELL(\"filename\",A1)", sums);
  EXPECT_TRUE(std::get<std::string>(std::get<CellValue>(file)).ends_with("/[Sums.fods]Sums"));
  EXPECT_EQ(calc().evaluate("SHEET()*10+SHEETS()", sums), Evaluation(CellValue(33.0)));
  for (const char* untold : {"CELL(\"row\")", "FORMULATEXT(A1:A2000)"}) {
    EXPECT_THROW(calc().evaluate(untold, sums), SpreadsheetError) << untold;
  }
}

TEST_F(CalcEvaluation, LeavesOutHiddenRowsInAChain) {
  const std::string scratch = calc().makeWorkbook();
  const SheetRef sheet{scratch, calc().worksheets(scratch).front()};
  calc().setFormula({sheet, parseA1("A1").value()}, "=SUBTOTAL(109,[Sums.fods]Sums!A1:A5)");
  calc().setFormula({sheet, parseA1("A2").value()}, "=SUBTOTAL(9,A1:A1)+A1");
  const Grid<CellValue> values = calc().values({sheet, parseA1("A1:A2").value()});
  calc().closeWorkbook(scratch);
  EXPECT_EQ(values, (Grid<CellValue>{2, 1, {9.0, 9.0}}));
}

TEST_F(CalcEvaluation, ShowsNoWorkbookOfItsOwn) {
  const auto before = calc().workbooks();
  calc().evaluate("A1+1", open);
  EXPECT_EQ(calc().workbooks(), before);
  EXPECT_EQ(calc().worksheets("Guarded.fods"), (std::vector<std::string>{"It's locked", "Open"}));
  EXPECT_EQ(calc().usedRange(open)->areas, parseA1("A1").value());
}

}  // namespace
}  // namespace quorin::host::calc
