// What stands in cells, as a real office keeps it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/Address.h"
#include "tests/calc/CalcFixture.h"

namespace quorin::host::calc {
namespace {

using Cells = std::vector<CellValue>;

fakes::WorkbookDescription kinds() {
  fakes::WorkbookDescription book{.name = "Kinds.xlsx", .sheets = {}};
  book.sheets.push_back({"Kinds",
                         {
                             {"A1", true},
                             {"A2", false},
                             {"A3", 1.0},
                             {"A4", true, "=1<2"},
                             {"A5", "=1+1"},
                             {"A6", "", "=\"\""},
                             {"A8", "'quoted"},
                             {"A9", "007"},
                             {"C1", 2.0, "{=A3:A3*2}"},
                             {"C3:C4", 1.0, "{=A3:A4*1}"},
                             {"E1", CellError{"#DIV/0!"}, "=1/0"},
                             {"E2", CellError{"#N/A"}, "=NA()"},
                             {"E3", CellError{"#VALUE!"}, "=\"a\"+1"},
                             {"E4", CellError{"#REF!"}, "=INDIRECT(\"nowhere!A1\")"},
                             {"E5", CellError{"#NAME?"}, "=nosuchfunction(1)"},
                             {"E6", CellError{"#NUM!"}, "=SQRT(-1)"},
                             {"E7", CellError{"#NUM!"}, "=10^309"},
                             {"E8", CellError{"#NULL!"}, "=#NULL!"},
                             {"E9", CellError{"#DIV/0!"}, "=2/0"},
                             {"E10", CellError{"#N/A"}, "=MATCH(5,A1:A3,0)"},
                             {"G1", 3.5, "='Ärger & \"Spaß\"'!A1"},
                             {"G2", 7.0, "=SUM('It''s'!A1:B2)"},
                             {"G3", 7.0, "=SUM(('It''s'!A1,'It''s'!A2:B2))"},
                         }});
  book.sheets.push_back({"Ärger & \"Spaß\"", {{"A1", 3.5}}});
  book.sheets.push_back({"It's", {{"A1", 1.0}, {"A2", 2.0}, {"B2", 4.0}}});
  book.sheets.push_back({"Away", {{"A1", 5.0}}, true});
  return book;
}

class CalcCells : public testing::Test {
 protected:
  CalcCells() : book_(SharedOffice::open(kinds())) {}
  RangeRef at(const char* address) const { return {{book_, "Kinds"}, parseA1(address).value()}; }
  Cells values(const char* address) const { return calc().values(at(address)).cells; }
  Cells formulas(const char* address) const {
    return calc().formulas(at(address), ReferenceStyle::a1).cells;
  }
  static CalcSpreadsheet& calc() { return SharedOffice::spreadsheet(); }
  const std::string book_;
};

TEST_F(CalcCells, TellsBooleansFromNumbers) {
  EXPECT_EQ(values("A1:A4"), (Cells{true, false, 1.0, true}));
  EXPECT_EQ(values("A1"), Cells{true});
  EXPECT_EQ(values("A3"), Cells{1.0});
  EXPECT_EQ(formulas("A1:A4"), (Cells{true, false, 1.0, "=1<2"}));
}

TEST_F(CalcCells, TellsTextThatLooksLikeAFormulaFromFormulas) {
  EXPECT_EQ(formulas("A5"), Cells{"=1+1"});
  EXPECT_EQ(values("A5"), Cells{"=1+1"});
  EXPECT_EQ(calc().formulas(at("A5:A6"), ReferenceStyle::r1c1).cells, (Cells{"=1+1", "=\"\""}));
}

TEST_F(CalcCells, TellsEmptyTextsFromBlankCells) {
  EXPECT_EQ(values("A6:A7"), (Cells{"", Blank{}}));
  EXPECT_EQ(formulas("A7"), Cells{Blank{}});
  EXPECT_EQ(values("A8:A9"), (Cells{"'quoted", "007"}));
}

TEST_F(CalcCells, NamesEveryKindOfErrorInEnglish) {
  const Cells expected{CellError{"#DIV/0!"}, CellError{"#N/A"},   CellError{"#VALUE!"},
                       CellError{"#REF!"},   CellError{"#NAME?"}, CellError{"#NUM!"},
                       CellError{"#NUM!"},   CellError{"#NULL!"}, CellError{"#DIV/0!"},
                       CellError{"#N/A"}};
  EXPECT_EQ(values("E1:E10"), expected);  // more than are asked for one by one
  EXPECT_EQ(values("E1:E2"), (Cells{expected[0], expected[1]}));
  EXPECT_EQ(values("E8"), Cells{expected[7]});
}

TEST_F(CalcCells, DisplaysErrorsByTheNamesThatExcelGivesThem) {
  const std::vector<std::string> expected{"#DIV/0!", "#N/A",  "#VALUE!", "#REF!",   "#NAME?",
                                          "#NUM!",   "#NUM!", "#NULL!",  "#DIV/0!", "#N/A"};
  EXPECT_EQ(calc().displayedTexts(at("E1:E10")).cells, expected);
  EXPECT_EQ(calc().displayedTexts(at("E6")).cells, std::vector<std::string>{"#NUM!"});
}

// As a handler does it, which looks at the first column before: all of them are read then.
TEST_F(CalcCells, DisplaysTheSameTextsAfterTheirFirstColumn) {
  calc().handlerBegins({});
  calc().formulas(at("A1:C3"), ReferenceStyle::r1c1);
  EXPECT_EQ(calc().displayedTexts(at("A1:A3")).cells,
            (std::vector<std::string>{"TRUE", "FALSE", "1"}));
  EXPECT_EQ(calc().displayedTexts(at("A1:C3")).cells,
            (std::vector<std::string>{"TRUE", "", "2", "FALSE", "", "", "1", "", "1"}));
  calc().handlerEnds();
}

TEST_F(CalcCells, ReadsArrayFormulasWithoutTheirBraces) {
  EXPECT_EQ(formulas("C1"), Cells{"=A3:A3*2"});
  EXPECT_EQ(formulas("C3:C4"), (Cells{"=A3:A4*1", "=A3:A4*1"}));
}

TEST_F(CalcCells, QuotesSheetNamesAsExcelDoes) {
  EXPECT_EQ(formulas("G1:G3"), (Cells{"='Ärger & \"Spaß\"'!A1", "=SUM('It''s'!A1:B2)",
                                      "=SUM(('It''s'!A1,'It''s'!A2:B2))"}));
  EXPECT_EQ(values("G1:G3"), (Cells{3.5, 7.0, 7.0}));
}

TEST_F(CalcCells, ReadsTextsBeyondWhatTheSheetHolds) {
  const RangeRef block{{book_, "It's"}, parseA1("A1:D4").value()};
  EXPECT_EQ(calc().displayedTexts(block).cells,
            (std::vector<std::string>{"1", "", "", "", "2", "4", "", "", "", "", "", "", "", "", "",
                                      ""}));
  const RangeRef blank{{book_, "It's"}, parseA1("H20:I21").value()};
  EXPECT_EQ(calc().displayedTexts(blank).cells, std::vector<std::string>(4));
}

TEST_F(CalcCells, RefusesMoreCellsThanItCanHandOver) {
  try {
    values("A:Z");
    FAIL() << "it answered";
  } catch (const SpreadsheetError& error) {
    EXPECT_EQ(error.number(), -50);
  }
}

// Calc itself would put the selection on the sheet that happens to be on top.
TEST_F(CalcCells, ReadsAHiddenSheetAndDoesNotGoThere) {
  const RangeRef hidden{{book_, "Away"}, parseA1("A1").value()};
  EXPECT_EQ(calc().values(hidden).cells, Cells{5.0});
  calc().goTo(at("A5"));
  try {
    calc().goTo(hidden);
    ADD_FAILURE() << "went to a hidden sheet";
  } catch (const SpreadsheetError& error) {
    EXPECT_EQ(error.number(), -50);
  }
  EXPECT_EQ(calc().activeCell(), at("A5"));
}

}  // namespace
}  // namespace quorin::host::calc
