// Revealing and hiding again, all the way. The window shows 30 rows and 12 columns.
#include "tests/kit/road/RoadFixture.h"

namespace quorin {
namespace {

using host::Axis;
using testing::SizeIs;

class RevealRoad : public RoadFixture {
 protected:
  RevealRoad() { memory_->open(fakes::knownWorkbook()); }

  std::string reveal(const std::string& addr) { return ask("reveal", {texts({addr}), 0}); }
  void hide(const std::string& address, Axis axis) {
    memory_->setHidden(on("Known.xlsx", "Data", address), axis, true);
  }
  // True if they are hidden; "some" for some.
  std::string hidden(const std::string& address, Axis axis) {
    const auto all = memory_->hidden(on("Known.xlsx", "Data", address), axis);
    return !all ? "some" : *all ? "all" : "none";
  }
};

TEST_F(RevealRoad, LeavesAloneWhatIsInView) {
  EXPECT_EQ(reveal("B2"), R"({"revealed":false})");
}

TEST_F(RevealRoad, ScrollsWithAMargin) {
  EXPECT_EQ(reveal("T60"), R"({"activated":false,"revealed":true})");
  EXPECT_EQ(host::addressText(memory_->visibleRange()->areas), "$R$57:$AC$86");
  EXPECT_EQ(reveal("A1"), R"({"activated":false,"revealed":true})");
  EXPECT_EQ(memory_->visibleRange()->areas[0].firstRow, 1);
}

TEST_F(RevealRoad, GoesToAnotherSheetWithoutSelecting) {
  std::string landed;
  bridge_.setOnActivatedCell([&](const BridgeShapes::CellPlace& cell) {
    landed = cell.book + "|" + cell.sheet + "|" + cell.address;
  });
  EXPECT_EQ(reveal("Blank!C40"), R"({"activated":true,"revealed":true})");
  EXPECT_EQ(landed, "Known.xlsx|Blank|$A$1");
  EXPECT_EQ(memory_->activeSheet()->sheet, "Blank");
}

TEST_F(RevealRoad, UnhidesAndHidesAgain) {
  hide("12:14", Axis::rows);
  hide("C:C", Axis::columns);
  EXPECT_EQ(reveal("C12:C14"), "{\"revealed\":false,\"unhid\":\"rows 12\u201314, column C\"}");
  EXPECT_EQ(hidden("12:14", Axis::rows), "none");
  EXPECT_EQ(hidden("C:C", Axis::columns), "none");
  EXPECT_EQ(reveal("C13"), R"({"revealed":false})");
  EXPECT_EQ(hidden("12:14", Axis::rows), "none") << "still shown for the target";
  ask("clearMarks");
  EXPECT_EQ(hidden("12:14", Axis::rows), "all");
  EXPECT_EQ(hidden("C:C", Axis::columns), "all");
  EXPECT_FALSE(std::filesystem::exists(unhide_.url()));
}

TEST_F(RevealRoad, UnhidesOnlyWhatIsHidden) {
  hide("3:4", Axis::rows);
  hide("6:6", Axis::rows);
  EXPECT_EQ(reveal("A1:A9"), "{\"revealed\":false,\"unhid\":\"rows 3\u20134, row 6\"}");
  ask("clearMarks");
  EXPECT_EQ(hidden("3:4", Axis::rows), "all");
  EXPECT_EQ(hidden("5:5", Axis::rows), "none");
  EXPECT_EQ(hidden("6:6", Axis::rows), "all");
}

TEST_F(RevealRoad, NeverHidesColumnsThatWereShown) {
  hide("5:5", Axis::rows);
  EXPECT_EQ(reveal("A5:D5"), R"({"revealed":false,"unhid":"row 5"})");
  ask("clearMarks");
  EXPECT_EQ(hidden("5:5", Axis::rows), "all");
  EXPECT_EQ(hidden("A:D", Axis::columns), "none");
}

// All rows of the target and some of its columns, and the other way round.
TEST_F(RevealRoad, ShowsRowsAndColumnsOfOneTargetAtOnce) {
  hide("5:6", Axis::rows);
  hide("C:C", Axis::columns);
  EXPECT_EQ(reveal("B5:D6"), "{\"revealed\":false,\"unhid\":\"rows 5\u20136, column C\"}");
  EXPECT_EQ(hidden("5:6", Axis::rows), "none");
  EXPECT_EQ(hidden("C:C", Axis::columns), "none");
  ask("clearMarks");
  EXPECT_EQ(reveal("C4:C8"), "{\"revealed\":false,\"unhid\":\"rows 5\u20136, column C\"}");
  EXPECT_EQ(hidden("5:6", Axis::rows), "none");
  ask("clearMarks");
  EXPECT_EQ(hidden("5:6", Axis::rows), "all");
  EXPECT_EQ(hidden("4:4", Axis::rows), "none");
  EXPECT_EQ(hidden("7:8", Axis::rows), "none");
  EXPECT_EQ(hidden("C:C", Axis::columns), "all");
  EXPECT_EQ(hidden("B:B", Axis::columns), "none");
  EXPECT_EQ(hidden("D:D", Axis::columns), "none");
}

TEST_F(RevealRoad, KnowsItsSheetInCapitalsToo) {
  hide("5:5", Axis::rows);
  reveal("B5");
  EXPECT_EQ(reveal("DATA!A5:C9"), R"({"activated":true,"revealed":true})");
  EXPECT_EQ(hidden("5:5", Axis::rows), "none") << "hidden again, though it is asked for";
  hide("9:9", Axis::rows);
  EXPECT_THAT(reveal("data!A5:C9"), testing::HasSubstr("\"unhid\":\"row 9\""));
  EXPECT_THAT(unhide_.load(), SizeIs(1));
  ask("clearMarks");
  EXPECT_EQ(hidden("5:5", Axis::rows), "all");
  EXPECT_EQ(hidden("9:9", Axis::rows), "all");
}

TEST_F(RevealRoad, TouchesNoSheetForANameOfAnother) {
  memory_->setHidden(on("Known.xlsx", "Blank", "2:2"), Axis::rows, true);
  hide("3:3", Axis::rows);
  memory_->activateSheet({"Known.xlsx", "Blank"});
  EXPECT_EQ(reveal("Prices"), R"({"reason":"unbound","revealed":false})");
  EXPECT_EQ(memory_->hidden(on("Known.xlsx", "Blank", "2:2"), Axis::rows), true);
  ask("clearMarks");
  EXPECT_EQ(memory_->hidden(on("Known.xlsx", "Blank", "3:3"), Axis::rows), false);
  memory_->activateSheet({"Known.xlsx", "Data"});
  EXPECT_EQ(reveal("Prices"), R"({"revealed":false,"unhid":"row 3"})");
}

TEST_F(RevealRoad, NeverUnhidesMoreThan200RowsOfASheetAltogether) {
  memory_->goTo(on("Known.xlsx", "Data", "B400"));
  hide("1:300", Axis::rows);
  EXPECT_THAT(reveal("A1:A150"), testing::HasSubstr("rows 1\u2013150"));
  EXPECT_EQ(reveal("A150:A201").find("unhid"), std::string::npos);
  EXPECT_EQ(hidden("151:300", Axis::rows), "all");
  EXPECT_THAT(reveal("A150:A200"), testing::HasSubstr("rows 151\u2013200"));
  ask("clearMarks");
  EXPECT_EQ(hidden("1:300", Axis::rows), "all");
}

// One that a defect or a hand has made so: it would hide the sheet, and take minutes.
TEST_F(RevealRoad, DropsARecordThatIsTooWide) {
  unhide_.record({{"Known.xlsx", "Data", {{2, 40000}}, {{3, 3}}}});
  ask("clearMarks");
  EXPECT_EQ(hidden("2:40000", Axis::rows), "none");
  EXPECT_EQ(hidden("C:C", Axis::columns), "all");
  EXPECT_FALSE(std::filesystem::exists(unhide_.url()));
}

TEST_F(RevealRoad, HidesAgainWhenAnotherCellIsRevealed) {
  hide("5:5", Axis::rows);
  hide("9:9", Axis::rows);
  reveal("B5");
  EXPECT_EQ(reveal("B9"), R"({"revealed":false,"unhid":"row 9"})");
  EXPECT_EQ(hidden("5:5", Axis::rows), "all");
  EXPECT_EQ(hidden("9:9", Axis::rows), "none");
  EXPECT_THAT(unhide_.load(), SizeIs(1));
}

TEST_F(RevealRoad, LeavesTheActiveCellInViewUntilTheEnd) {
  hide("5:5", Axis::rows);
  reveal("B5");
  memory_->goTo(on("Known.xlsx", "Data", "B5"));
  ask("clearMarks");
  EXPECT_EQ(hidden("5:5", Axis::rows), "none");
  bridge_.clearMarksForTerminate();
  EXPECT_EQ(hidden("5:5", Axis::rows), "all");
  EXPECT_FALSE(std::filesystem::exists(unhide_.url()));
}

TEST_F(RevealRoad, DoesNotUnhideMoreThan200Rows) {
  hide("100:300", Axis::rows);
  EXPECT_EQ(reveal("A100:A300"), R"({"activated":false,"revealed":true})");
  EXPECT_EQ(hidden("100:300", Axis::rows), "all");
  EXPECT_EQ(reveal("A101:A300"), "{\"revealed\":false,\"unhid\":\"rows 101\u2013300\"}");
  EXPECT_EQ(hidden("101:300", Axis::rows), "none");
}

TEST_F(RevealRoad, RefusesWhatDoesNotBind) {
  EXPECT_EQ(reveal("NoSuchName"), R"({"reason":"unbound","revealed":false})");
  EXPECT_EQ(reveal("Nowhere!A1"), R"({"reason":"unbound","revealed":false})");
}

TEST_F(RevealRoad, HidesAgainWhatAnEarlierRunUnhid) {
  unhide_.record({{"Known.xlsx", "Data", {{5, 6}}, {{3, 3}}}, {"Gone.xlsx", "S", {{1, 1}}, {}}});
  bridge_.restoreStranded();
  EXPECT_EQ(hidden("5:6", Axis::rows), "all");
  EXPECT_EQ(hidden("C:C", Axis::columns), "all");
  EXPECT_FALSE(std::filesystem::exists(unhide_.url()));
}

}  // namespace
}  // namespace quorin
