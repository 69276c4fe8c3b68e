// Highlights, all the way.
#include "tests/kit/road/RoadFixture.h"

namespace quorin {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

class MarksRoad : public RoadFixture {
 protected:
  MarksRoad() { memory_->open(fakes::knownWorkbook()); }

  std::string mark(const std::vector<std::string>& addrs) {
    return ask("markCells", {texts(addrs), Array{255, 0, 0}});
  }
};

TEST_F(MarksRoad, PaintsOneConditionAndTakesItBack) {
  EXPECT_EQ(mark({"A1", "B2:C3"}), R"({"applied":2,"shadowed":false})");
  const auto painted = conditions("Known.xlsx", "Data", true);
  ASSERT_THAT(painted, SizeIs(1));
  EXPECT_EQ(host::addressText(painted[0].areas), "$A$1,$B$2:$C$3");
  EXPECT_EQ(painted[0].fill, (host::Color{255, 0, 0}));
  EXPECT_EQ(ask("clearMarks"), R"({"removed":2})");
  EXPECT_EQ(marked("Known.xlsx", "Data"), "");
  EXPECT_FALSE(std::filesystem::exists(store_.url()));
}

TEST_F(MarksRoad, MovesToOtherCells) {
  mark({"A1", "B2"});
  EXPECT_EQ(mark({"C3", "C5", "C7"}), R"({"applied":3,"moved":true,"shadowed":false})");
  EXPECT_EQ(marked("Known.xlsx", "Data"), "$C$3,$C$5,$C$7");
  EXPECT_EQ(store_.load()[0].single, true);
  ask("clearMarks");
  EXPECT_EQ(marked("Known.xlsx", "Data"), "");
}

TEST_F(MarksRoad, PaintsAnewWhereExcelDoesNotMove) {
  for (const bool silently : {true, false}) {
    excel_->quirks.ignoresMoves = silently;
    excel_->quirks.refusesToMoveConditions = !silently;
    mark({"A1", "B2"});
    EXPECT_EQ(mark({"C3"}), R"({"applied":1,"shadowed":false})");
    EXPECT_EQ(marked("Known.xlsx", "Data"), "$C$3");
    ask("clearMarks");
    EXPECT_EQ(marked("Known.xlsx", "Data"), "");
  }
}

TEST_F(MarksRoad, PaintsOnSeveralSheets) {
  EXPECT_EQ(mark({"Blank!A1", "'It''s a test'!B2", "C3"}), R"({"applied":3,"shadowed":false})");
  EXPECT_EQ(marked("Known.xlsx", "Blank"), "$A$1,$C$3");
  EXPECT_EQ(marked("Known.xlsx", "It's a test"), "$B$2");
  EXPECT_EQ(marked("Known.xlsx", "Data"), "");
  EXPECT_EQ(ask("clearMarks"), R"({"removed":3})");
  EXPECT_EQ(marked("Known.xlsx", "Blank") + marked("Known.xlsx", "It's a test"), "");
}

TEST_F(MarksRoad, PaintsTwoHundredScatteredCells) {
  std::vector<std::string> cells;
  for (int i = 0; i < 250; ++i)
    cells.push_back(host::columnLetters(1 + i * 7 % 50) + std::to_string(1 + i * 3));
  EXPECT_EQ(mark(cells), R"({"applied":200,"shadowed":false})");
  EXPECT_THAT(conditions("Known.xlsx", "Data", true), SizeIs(5));
  EXPECT_EQ(ask("clearMarks"), R"({"removed":200})");
  EXPECT_EQ(marked("Known.xlsx", "Data"), "");
}

TEST_F(MarksRoad, TakesANameBackWhileAnotherWorkbookIsInFront) {
  for (const bool knowsNameToo : {false, true}) {
    fakes::WorkbookDescription named{.name = "Named.xlsx", .sheets = {{"One", {}}, {"Two", {}}}};
    named.names.push_back({"Target", "=Two!$B$2"});
    memory_->open(named);
    EXPECT_EQ(mark({"Target", "A1"}), R"({"applied":2,"shadowed":false})");
    EXPECT_EQ(marked("Named.xlsx", "Two"), "$B$2");
    fakes::WorkbookDescription other{.name = "Other.xlsx", .sheets = {{"Two", {}}}};
    if (knowsNameToo) other.names.push_back({"Target", "=Two!$C$3"});
    memory_->open(other);
    EXPECT_EQ(ask("clearMarks"), R"({"removed":2})");
    EXPECT_EQ(marked("Named.xlsx", "One") + marked("Named.xlsx", "Two"), "");
    EXPECT_FALSE(std::filesystem::exists(store_.url()));
    memory_->close("Other.xlsx");
    memory_->close("Named.xlsx");
  }
}

// Of the questions only the first, which workbooks there are, is answered so where there is none.
TEST_F(MarksRoad, TakesNothingForAWorkbookThatIsGoneButWhatTheListsTell) {
  constexpr int mostEvents = 60;
  int refused = 0;
  for (int event = 2; event < mostEvents; ++event) {
    memory_->close("Known.xlsx");
    memory_->open(fakes::knownWorkbook());
    store_.clear();
    mark({"A1", "B2"});
    excel_->forget();
    excel_->failAt(event, {-1728, "Can't get object.", {}});
    const bool failed = ask("clearMarks").starts_with("failed");
    excel_->forget();
    refused += failed ? 1 : 0;
    EXPECT_EQ(failed, std::filesystem::exists(store_.url())) << event;
  }
  EXPECT_GT(refused, 2);
  EXPECT_THAT(log_.lines(), Each(Not(HasSubstr("stale"))));
  memory_->close("Known.xlsx");
  memory_->open({.name = "Other.xlsx", .sheets = {{"Data", {}}}});
  EXPECT_EQ(ask("clearMarks"), R"({"removed":0})");
}

TEST_F(MarksRoad, TakesStackedHighlightsBackToo) {
  mark({"A1"});
  EXPECT_EQ(mark({"A1"}), R"({"applied":1,"shadowed":false})");
  EXPECT_THAT(conditions("Known.xlsx", "Data", true), SizeIs(2));
  ask("clearMarks");
  EXPECT_EQ(marked("Known.xlsx", "Data"), "");
}

TEST_F(MarksRoad, ComesBeforeRulesOfTheUsersAndLeavesThemAlone) {
  memory_->open(fakes::ruledWorkbook());
  const auto before = conditions("Ruled.xlsx", "Rules", false);
  ASSERT_THAT(before, SizeIs(3));
  mark({"F1"});
  EXPECT_EQ(mark({"B2"}), R"({"applied":1,"shadowed":true})") << "a move is declined here";
  EXPECT_THAT(log_.lines(), testing::Contains("HIGHLIGHT move declined result=[0,1]; clear+apply"));
  const auto painted = conditions("Ruled.xlsx", "Rules", true);
  ASSERT_THAT(painted, SizeIs(1));
  EXPECT_EQ(painted[0].priority, 1);
  ask("clearMarks");
  EXPECT_EQ(conditions("Ruled.xlsx", "Rules", false), before);
  EXPECT_EQ(marked("Ruled.xlsx", "Rules"), "");
}

TEST_F(MarksRoad, ForgetsAWorkbookThatWasClosed) {
  memory_->open(fakes::ruledWorkbook());
  mark({"F1"});
  memory_->close("Ruled.xlsx");
  EXPECT_EQ(ask("clearMarks"), R"({"removed":0})");
  EXPECT_FALSE(std::filesystem::exists(store_.url()));
}

TEST_F(MarksRoad, PassesAddressesOverThatAreNoMore) {
  store_.recordApplied({{"Known.xlsx", "Data", {"NoSuchName", "A1"}, Colour{1, 2, 3}}});
  memory_->addFormatCondition(on("Known.xlsx", "Data", "A1"), sentinel);
  EXPECT_EQ(ask("clearMarks"), R"({"removed":2})");
  EXPECT_EQ(marked("Known.xlsx", "Data"), "");
}

// Its name was deleted; it may have stood for cells of any sheet.
TEST_F(MarksRoad, TakesBackWhatANameStoodForThatIsNoMore) {
  store_.recordApplied({{"Known.xlsx", "Data", {"NoSuchName", "A1"}, Colour{1, 2, 3}}});
  for (const char* const sheet : {"Data", "Blank"})
    memory_->addFormatCondition(on("Known.xlsx", sheet, "A1:C3"), sentinel);
  EXPECT_EQ(ask("clearMarks"), R"({"removed":2})");
  EXPECT_EQ(marked("Known.xlsx", "Data") + marked("Known.xlsx", "Blank"), "");
}

TEST_F(MarksRoad, TakesHighlightsBackThatTheUserHasCarriedAway) {
  mark({"Data!B2"});
  memory_->userInsertsRows({"Known.xlsx", "Data"}, 1, 3);
  memory_->userCopiesSheet({"Known.xlsx", "Data"}, "Copy");
  memory_->userRenamesSheet({"Known.xlsx", "Data"}, "Figures");
  EXPECT_EQ(marked("Known.xlsx", "Figures") + marked("Known.xlsx", "Copy"), "$B$5$B$5");
  EXPECT_EQ(ask("clearMarks"), R"({"removed":0})");
  EXPECT_EQ(marked("Known.xlsx", "Figures") + marked("Known.xlsx", "Copy"), "");

  mark({"Figures!B2"});
  memory_->userSavesAs("Known.xlsx", "Other.xlsx");
  EXPECT_EQ(ask("clearMarks"), R"({"removed":0})");
  EXPECT_EQ(marked("Other.xlsx", "Figures"), "");
  EXPECT_FALSE(std::filesystem::exists(store_.url()));
}

TEST_F(MarksRoad, TakesHighlightsBackThatRowsHaveMoved) {
  memory_->addFormatCondition(on("Known.xlsx", "Data", "A1:Z99"), "=$B$2>1");
  mark({"Data!B2", "Data!B9", "Data!D20:D24"});
  memory_->userInsertsRows({"Known.xlsx", "Data"}, 5, 3);
  EXPECT_EQ(marked("Known.xlsx", "Data"), "$B$2,$B$12,$D$23:$D$27");
  EXPECT_EQ(ask("clearMarks"), R"({"removed":3})");
  EXPECT_EQ(marked("Known.xlsx", "Data"), "");

  mark({"Data!B9"});
  memory_->userDeletesRows({"Known.xlsx", "Data"}, 3, 1);
  EXPECT_EQ(marked("Known.xlsx", "Data"), "$B$8");
  EXPECT_EQ(ask("clearMarks"), R"({"removed":1})");
  EXPECT_EQ(marked("Known.xlsx", "Data"), "");
  EXPECT_THAT(log_.lines(),
              testing::Contains("HIGHLIGHT clear found none of addrs=1 sheet=Data; on "
                                "the whole sheet deleted=1"));

  mark({"Data!D20:D24"});
  memory_->userInsertsRows({"Known.xlsx", "Data"}, 22, 2);
  EXPECT_EQ(marked("Known.xlsx", "Data"), "$D$20:$D$26") << "it has grown";
  bridge_.clearMarksForTerminate();
  EXPECT_EQ(marked("Known.xlsx", "Data"), "");
  EXPECT_THAT(conditions("Known.xlsx", "Data", false), SizeIs(1)) << "the user's";
}

// Named as Excel names them.
TEST_F(MarksRoad, TakesHighlightsBackFromTheCopiesOfTheirSheet) {
  const std::string longName(31, 'x'), shortened = std::string(27, 'x') + " (2)";
  memory_->open({.name = "Other.xlsx", .sheets = {{"Home", {}}}});
  memory_->activateWorkbook("Known.xlsx");
  memory_->userCopiesSheet({"Known.xlsx", "Data"}, longName);
  mark({"Data!B2", "Data!D4:D5", longName + "!C3"});
  memory_->userCopiesSheet({"Known.xlsx", "Data"}, "Data (2)");
  memory_->userCopiesSheetTo({"Known.xlsx", "Data"}, {"Other.xlsx", "Data"});
  memory_->userCopiesSheetTo({"Known.xlsx", longName}, {"Other.xlsx", shortened});
  memory_->addFormatCondition(on("Other.xlsx", "Data", "B2"), "=$B$2>1");
  EXPECT_EQ(ask("clearMarks"), R"({"removed":3})");
  EXPECT_EQ(marked("Known.xlsx", "Data (2)") + marked("Other.xlsx", "Data") +
                marked("Other.xlsx", shortened),
            "");
  EXPECT_THAT(conditions("Other.xlsx", "Data", false), SizeIs(1)) << "the user's";
}

// The sheet is gone from where it was recorded.
TEST_F(MarksRoad, TakesHighlightsBackFromASheetThatWasMovedToAnotherWorkbook) {
  memory_->open({.name = "Other.xlsx", .sheets = {{"Home", {}}}});
  memory_->activateWorkbook("Known.xlsx");
  mark({"Data!B2"});
  memory_->userCopiesSheetTo({"Known.xlsx", "Data"}, {"Other.xlsx", "Data"});
  memory_->userDeletesSheet({"Known.xlsx", "Data"});
  EXPECT_EQ(ask("clearMarks"), R"({"removed":0})");
  EXPECT_EQ(marked("Other.xlsx", "Data"), "");
  EXPECT_FALSE(std::filesystem::exists(store_.url()));
}

TEST_F(MarksRoad, SaysWhatItCannotBind) {
  EXPECT_THAT(mark({"NoSuchName"}), HasSubstr("range does not exist: NoSuchName"));
  EXPECT_THAT(store_.load(), SizeIs(1)) << "recorded first";
  EXPECT_EQ(ask("clearMarks"), R"({"removed":1})");
}

TEST_F(MarksRoad, TakesBackWhatAnEarlierRunLeft) {
  memory_->addFormatCondition(on("Known.xlsx", "Data", "A1:B2"), sentinel);
  store_.recordApplied({{"Known.xlsx", "Data", {"A1:B2"}, Colour{1, 2, 3}}});
  bridge_.restoreStranded();
  EXPECT_EQ(marked("Known.xlsx", "Data"), "");
  EXPECT_THAT(log_.lines(), ElementsAre("HIGHLIGHT clear sheet=Data addrs=1 deleted=1",
                                        "RESTORE recorded=1 \u2192 {\"removed\":1}"));
}

TEST_F(MarksRoad, TakesEverythingBackAtTheEnd) {
  mark({"A1", "Blank!B2"});
  bridge_.clearMarksForTerminate();
  EXPECT_EQ(marked("Known.xlsx", "Data") + marked("Known.xlsx", "Blank"), "");
  EXPECT_THAT(store_.load(), IsEmpty());
  EXPECT_THAT(mark({"A1"}), HasSubstr("Quorin is quitting"));
  EXPECT_EQ(marked("Known.xlsx", "Data"), "");
}

}  // namespace
}  // namespace quorin
