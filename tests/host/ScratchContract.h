// The contract of the port Spreadsheet on workbooks of our own. Used as SpreadsheetContract.h is,
// over the same workbook.
#pragma once

#include "tests/host/SpreadsheetContract.h"

namespace quorin::fakes {

class ScratchContract : public SpreadsheetContract {
 protected:
  void SetUp() override {
    SpreadsheetContract::SetUp();
    sheets().goTo(on(odd(), "B2:C3"));
    before_ = sheets().workbooks();
    scratch_ = sheets().makeWorkbook();
  }
  void TearDown() override {
    const auto open = sheets().workbooks();
    if (std::find(open.begin(), open.end(), scratch_) != open.end())
      sheets().closeWorkbook(scratch_);
  }

  host::RangeRef cell(const char* address) {
    return on({scratch_, sheets().worksheets(scratch_).front()}, address);
  }
  host::CellValue value(const char* address) {
    return sheets().values(cell(address)).cells.front();
  }

  std::vector<std::string> before_;
  std::string scratch_;
};

TEST_P(ScratchContract, ListsItUntilItIsClosed) {
  EXPECT_THAT(before_, ::testing::Not(::testing::Contains(scratch_)));
  EXPECT_THAT(sheets().workbooks(), ::testing::Contains(scratch_));
  EXPECT_EQ(sheets().worksheets(scratch_).size(), 1U);
  EXPECT_EQ(sheets().usedRange(cell("A1").sheet), cell("A1"));
  sheets().closeWorkbook(scratch_);
  EXPECT_EQ(sheets().workbooks(), before_);
}

TEST_P(ScratchContract, IsActiveUntilAnotherIs) {
  EXPECT_EQ(sheets().activeWorkbook(), scratch_);
  sheets().activateWorkbook(book_);
  EXPECT_EQ(sheets().activeWorkbook(), book_);
  EXPECT_EQ(sheets().selection(), on(odd(), "B2:C3"));
}

TEST_P(ScratchContract, GivesTheUsersWorkbookBackWhenItCloses) {
  sheets().closeWorkbook(scratch_);
  EXPECT_EQ(sheets().activeWorkbook(), book_);
  EXPECT_EQ(sheets().selection(), on(odd(), "B2:C3"));
}

TEST_P(ScratchContract, TakesFormulasThatBuildOnEachOther) {
  sheets().setFormula(cell("A1"), "=1+2");
  sheets().setFormula(cell("A2"), "=A1*2");
  sheets().setFormula(cell("A3"), "=IF(A2>5,\"big\",\"small\")");
  sheets().setFormula(cell("A4"), "=1/0");
  EXPECT_EQ(value("A2"), host::CellValue(6.0));
  EXPECT_EQ(value("A3"), host::CellValue("big"));
  EXPECT_EQ(value("A4"), host::CellValue(host::CellError{"#DIV/0!"}));
  EXPECT_EQ(sheets().formulas(cell("A2"), host::ReferenceStyle::a1).cells.front(),
            host::CellValue("=A1*2"));
  EXPECT_EQ(sheets().usedRange(cell("A1").sheet), cell("A1:A4"));
}

TEST_P(ScratchContract, SpillsResultsOfSeveralCells) {
  sheets().setFormula(cell("A1"), "={1,2;3,4}");
  EXPECT_EQ(value("B2"), host::CellValue(4.0));
  EXPECT_EQ(sheets().usedRange(cell("A1").sheet), cell("A1:B2"));
}

TEST_P(ScratchContract, ReachesTheUsersWorkbook) {
  sheets().setFormula(cell("A1"), "=[" + book_ + "]Data!B2+1");
  EXPECT_EQ(value("A1"), host::CellValue(2.5));
  sheets().setFormula(cell("A2"), "='[" + book_ + "]It''s a test'!A1*2");
  EXPECT_EQ(value("A2"), host::CellValue(5.0));
}

TEST_P(ScratchContract, LeavesTheUsersWorkbooksAlone) {
  EXPECT_EQ(errorOf([&] { sheets().setFormula(on(data(), "J9"), "=1"); }), -10006);
  EXPECT_EQ(sheets().values(on(data(), "J9")).cells.front(), host::CellValue(host::Blank()));
  EXPECT_EQ(errorOf([&] { sheets().closeWorkbook(book_); }), -10006);
  EXPECT_EQ(errorOf([&] { sheets().closeWorkbook("No such book.xlsx"); }), -1728);
  EXPECT_THAT(sheets().workbooks(), ::testing::Contains(book_));
}

}  // namespace quorin::fakes
