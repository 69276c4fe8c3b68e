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
 xmlns:text="urn:oasis:names:tc:opendocument:xmlns:text:1.0" office:version="1.3"
 office:mimetype="application/vnd.oasis.opendocument.spreadsheet"><office:body><office:spreadsheet>
<table:table table:name="It's locked" table:protected="true">
<table:table-row><table:table-cell office:value-type="float" office:value="2"/></table:table-row>
<table:table-row><table:table-cell office:value-type="float" office:value="3"/></table:table-row>
</table:table><table:table table:name="Open">
<table:table-row><table:table-cell office:value-type="float" office:value="7"/></table:table-row>
</table:table></office:spreadsheet></office:body></office:document>)";

class CalcEvaluation : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    static const TemporaryFolder folder;
    std::ofstream(folder / "Guarded.fods") << guardedBook;
    calc().openWorkbook((folder / "Guarded.fods").string());
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

TEST_F(CalcEvaluation, NumbersErrorsAsExcelDoes) {
  EXPECT_EQ(calc().evaluate("SQRT(-1)", open), Evaluation(CellValue(CellError{"#NUM!"})));
  EXPECT_EQ(calc().evaluate("ERROR.TYPE(SQRT(-1))", open), Evaluation(CellValue(6.0)));
  EXPECT_EQ(calc().evaluate("ERROR.TYPE(#NULL!)", open), Evaluation(CellValue(1.0)));
  EXPECT_EQ(calc().evaluate("ERROR.TYPE(1)", open), Evaluation(CellValue(CellError{"#N/A"})));
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
