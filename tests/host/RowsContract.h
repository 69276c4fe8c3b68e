// The contract of the port Spreadsheet on names, hidden rows and columns and what the window shows.
// Used as SpreadsheetContract.h is, over the same workbook.
#pragma once

#include "tests/host/SpreadsheetContract.h"

namespace quorin::fakes {

class RowsContract : public SpreadsheetContract {
 protected:
  using Axis = host::Axis;

  void TearDown() override {
    sheets().setHidden(on(data(), "1:200"), Axis::rows, false);
    sheets().setHidden(on(data(), "A:Z"), Axis::columns, false);
  }
};

TEST_P(RowsContract, ListsTheNamesWithWhatTheyReferTo) {
  EXPECT_THAT(sheets().definedNames(book_),
              ::testing::UnorderedElementsAre(
                  host::DefinedName{"Prices", "", "=Data!$B$2:$B$3"},
                  host::DefinedName{"Spot", "", "=Data!$A$1"},
                  host::DefinedName{"Spot", "It's a test", "='It''s a test'!$B$2"},
                  host::DefinedName{"Factor", "", "=0.2"}));
  EXPECT_EQ(errorOf([&] { sheets().definedNames("No such book.xlsx"); }), -1728);
}

TEST_P(RowsContract, HidesAndShowsRows) {
  EXPECT_EQ(sheets().hidden(on(data(), "3:9"), Axis::rows), false);
  sheets().setHidden(on(data(), "3:5,8:8"), Axis::rows, true);
  EXPECT_EQ(sheets().hidden(on(data(), "3:5"), Axis::rows), true);
  EXPECT_EQ(sheets().hidden(on(data(), "B4:C5"), Axis::rows), true);
  EXPECT_EQ(sheets().hidden(on(data(), "3:6"), Axis::rows), std::nullopt);
  EXPECT_EQ(sheets().hidden(on(data(), "6:7"), Axis::rows), false);
  EXPECT_EQ(sheets().hidden(on(data(), "8:8"), Axis::columns), false);
  sheets().setHidden(on(data(), "4:4"), Axis::rows, false);
  EXPECT_EQ(sheets().hidden(on(data(), "3:5"), Axis::rows), std::nullopt);
  EXPECT_EQ(sheets().hidden(on(data(), "4:4"), Axis::rows), false);
}

TEST_P(RowsContract, HidesAndShowsColumns) {
  sheets().setHidden(on(data(), "B:C"), Axis::columns, true);
  EXPECT_EQ(sheets().hidden(on(data(), "B2:C2"), Axis::columns), true);
  EXPECT_EQ(sheets().hidden(on(data(), "A:B"), Axis::columns), std::nullopt);
  EXPECT_EQ(sheets().hidden(on(odd(), "B:C"), Axis::columns), false);
  sheets().setHidden(on(data(), "B:C"), Axis::columns, false);
  EXPECT_EQ(sheets().hidden(on(data(), "A:C"), Axis::columns), false);
}

TEST_P(RowsContract, CutsHiddenRowsOutOfARange) {
  EXPECT_EQ(sheets().visibleCells(on(data(), "A1:D9")), on(data(), "A1:D9"));
  sheets().setHidden(on(data(), "3:5"), Axis::rows, true);
  sheets().setHidden(on(data(), "B:B"), Axis::columns, true);
  EXPECT_EQ(sheets().visibleCells(on(data(), "A1:D9")), on(data(), "A1:A2,C1:D2,A6:A9,C6:D9"));
  EXPECT_EQ(sheets().visibleCells(on(data(), "A4:D4")), std::nullopt);
  EXPECT_EQ(sheets().visibleCells(on(data(), "B2")), std::nullopt);
  EXPECT_EQ(sheets().visibleCells(on(data(), "A2:A3")), on(data(), "A2"));
}

TEST_P(RowsContract, ShowsThePartOfTheSheetThatItScrolledTo) {
  sheets().activateSheet(data());
  sheets().scrollTo(on(data(), "C40"));
  const auto shown = sheets().visibleRange();
  ASSERT_TRUE(shown);
  EXPECT_EQ(shown->sheet, data());
  EXPECT_EQ(shown->areas.front().firstRow, 40);
  EXPECT_EQ(shown->areas.front().firstColumn, 3);
  EXPECT_GE(shown->areas.front().lastRow, 40);
  sheets().scrollTo(on(data(), "A1"));
  EXPECT_EQ(sheets().visibleRange().value_or(host::RangeRef()).areas.front().firstRow, 1);
}

TEST_P(RowsContract, RefusesRowsOfSheetsThatAreNotThere) {
  const host::SheetRef nowhere{book_, "Nowhere"};
  EXPECT_EQ(errorOf([&] { sheets().hidden(on(nowhere, "3:3"), Axis::rows); }), -1728);
  EXPECT_EQ(errorOf([&] { sheets().setHidden(on(nowhere, "3:3"), Axis::rows, true); }), -1728);
  EXPECT_EQ(errorOf([&] { sheets().visibleCells(on(nowhere, "A1")); }), -1728);
}

}  // namespace quorin::fakes
