// qx_revealread, qx_unhide and qx_revealscroll.
#include "tests/kit/scripts/LibraryFixture.h"

namespace quorin {
namespace {

class RevealHandlers : public LibraryFixture {
 protected:
  void hide(const char* address, host::Axis axis) { memory_->setHidden(on(address), axis, true); }
  static host::RangeRef on(const char* address) {
    return {{"Known.xlsx", "Data"}, host::parseA1(address).value()};
  }
  std::string read(const char* address) {
    return run("qx_revealread", {address, "Data", "Known.xlsx"});
  }
  std::string shown() { return host::addressText(memory_->visibleRange().value().areas); }
};

TEST_F(RevealHandlers, ReadGivesTargetViewAndWhatIsHidden) {
  memory_->program.windowRows = 20;
  memory_->program.windowColumns = 8;
  memory_->scrollTo(on("C5"));
  EXPECT_EQ(read("B7:C9"), R"j([7,2,3,2,"Data",5,3,20,8,false,false,"$B$7:$C$9"])j");
  hide("8:8", host::Axis::rows);
  hide("C:C", host::Axis::columns);
  EXPECT_EQ(read("B7:C9"), R"j([7,2,3,2,"Data",5,3,21,9,null,null,"$B$7,$B$9"])j");
  EXPECT_EQ(read("C8"), R"j([8,3,1,1,"Data",5,3,21,9,true,true,""])j");
}

TEST_F(RevealHandlers, ReadNamesTheActiveSheetNotTheTargets) {
  select("Blank", "A1");
  EXPECT_THAT(read("B7"), testing::StartsWith(R"j([7,2,1,1,"Blank",)j"));
}

TEST_F(RevealHandlers, ReadFindsNamesBehindAddresses) {
  EXPECT_THAT(read("Prices"), testing::StartsWith("[2,2,2,1,"));
  EXPECT_EQ(read("Factor"), "error -1728 range does not exist: Factor");
  EXPECT_EQ(read("XFE1"), "error -1728 range does not exist: XFE1");
}

TEST_F(RevealHandlers, ReadRefusesANameOfCellsOnAnotherSheet) {
  EXPECT_EQ(run("qx_revealread", {"Prices", "Blank", "Known.xlsx"}),
            "error -1728 range is on another sheet: Prices");
  EXPECT_THAT(run("qx_revealread", {"Prices", "DATA", "Known.xlsx"}),
              testing::StartsWith("[2,2,2,1,"));
}

TEST_F(RevealHandlers, ReadTellsRowsBesideHiddenColumnsAndColumnsBesideHiddenRows) {
  hide("B:C", host::Axis::columns);
  hide("8:8", host::Axis::rows);
  EXPECT_THAT(read("B7:C9"),
              testing::EndsWith(R"j(,null,true,"$A$7,$D$7:$XFD$7,$A$9,$D$9:$XFD$9"])j"));
  hide("7:9", host::Axis::rows);
  EXPECT_THAT(read("A7:D9"), testing::EndsWith(R"j(,true,null,"$A$1:$A$6,$D$1:$D$6,)j"
                                               R"j($A$10:$A$1048576,$D$10:$D$1048576"])j"));
  EXPECT_THAT(read("B7:C9"), testing::EndsWith(R"j(,true,true,""])j"));
}

TEST_F(RevealHandlers, ReadGivesTheWholeAddressOfManyVisibleParts) {
  excel_->quirks.cutsLongAddresses = true;
  std::string parts;
  for (int row = 1; row <= 99; row += 2) {
    hide((std::to_string(row + 1) + ":" + std::to_string(row + 1)).c_str(), host::Axis::rows);
    parts += (row > 1 ? ",$A$" : "$A$") + std::to_string(row);
  }
  EXPECT_THAT(read("A1:A99"), testing::EndsWith(",null,false,\"" + parts + "\"]"));
}

TEST_F(RevealHandlers, ReadTellsABusyExcelFromNothingVisible) {
  memory_->script.atEvery("visibleCells", {.number = -10000, .message = "Busy."});
  EXPECT_THAT(read("B7"), testing::StartsWith("error -10000 "));
}

TEST_F(RevealHandlers, UnhideSetsEachRowAndColumnOfTheRuns) {
  hide("3:9", host::Axis::rows);
  hide("Z:AB", host::Axis::columns);
  const JSONValue rows = texts({texts({4, 5}), texts({9, 9})}), columns = texts({texts({27, 28})});
  EXPECT_EQ(run("qx_unhide", {"Data", "Known.xlsx", rows, columns, false}), "5");
  EXPECT_EQ(memory_->visibleCells(on("A3:A9")), on("A4:A5,A9"));
  EXPECT_EQ(memory_->visibleCells(on("Z1:AB1")), on("AA1:AB1"));
  EXPECT_EQ(run("qx_unhide", {"Data", "Known.xlsx", rows, columns, true}), "5");
  EXPECT_EQ(memory_->visibleCells(on("A3:A9")), std::nullopt);
}

TEST_F(RevealHandlers, ScrollPutsTheCellAtTheTopLeft) {
  select("Data", "B4:C4");
  EXPECT_EQ(run("qx_revealscroll", {40, 3, "Data", "Known.xlsx", false}),
            R"j(["Known.xlsx","Data","$B$4"])j");
  EXPECT_THAT(shown(), testing::StartsWith("$C$40:"));
  EXPECT_EQ(memory_->selection(), on("B4:C4"));
}

TEST_F(RevealHandlers, ScrollChangesTheSheetWhenItShall) {
  select("Blank", "D4");
  EXPECT_EQ(run("qx_revealscroll", {7, 2, "Data", "Known.xlsx", true}),
            R"j(["Known.xlsx","Data","$A$1"])j");
  EXPECT_THAT(shown(), testing::StartsWith("$B$7:"));
  EXPECT_EQ(run("qx_revealscroll", {7, 2, "Nowhere", "Known.xlsx", true}),
            "error -1728 sheet not found: Nowhere");
  EXPECT_EQ(run("qx_revealscroll", {7, 2, "Data", "Other.xlsx", true}),
            "error -1728 workbook not open: Other.xlsx");
}

}  // namespace
}  // namespace quorin
