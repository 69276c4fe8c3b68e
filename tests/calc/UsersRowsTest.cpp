// Shown rows that the user has hidden or made visible himself, and those on the copy of a sheet,
// before they are taken back.
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>

#include "host/Address.h"
#include "tests/calc/CalcRoad.h"
#include "tests/calc/UserHands.h"
#include "tests/calc/XlsxFile.h"
#include "tests/fakes/Eventually.h"
#include "tests/xlsx/ZipArchive.h"

namespace quorin::host::calc {
namespace {

using Array = JSONValue::Array;

class UsersRows : public testing::Test {
 protected:
  static void SetUpTestSuite() { desk = std::make_unique<CalcRoad>(); }
  static void TearDownTestSuite() { desk.reset(); }

  UsersRows() {
    fakes::SheetDescription one{"One", {{"A1", "Kind"}}};
    for (int row = 2; row <= 9; ++row)
      one.cells.push_back({"A" + std::to_string(row), row % 2 == 0 ? "even" : "odd"});
    fakes::writeXlsx({.name = name, .sheets = {one, {"Home", {{"A1", 1.0}}}}}, folder / name);
    road.open(folder / name);
    hands.emplace(road.office().open());
    hands->hideRows(name, "One", "A4:A6");
    ask("select", {Array{"Home!A1"}});
  }
  ~UsersRows() override { hands->close(name); }

  std::string ask(const std::string& verb, Array args = {}) {
    return road.ask(verb, std::move(args));
  }
  void reveal(const std::string& address, const std::string& unhid) {
    const std::string reply = ask("reveal", {Array{address}, 0});
    EXPECT_NE(reply.find("\"unhid\":\"" + unhid + "\""), std::string::npos) << reply;
    ask("select", {Array{"Home!A1"}});
  }
  std::string takeBack() {
    ask("clearMarks");
    EXPECT_FALSE(std::filesystem::exists(road.unhidden().url()));
    return hidden("One");
  }
  // Of the first rows: "4 5 6 ".
  std::string hidden(const std::string& sheet) { return hidden(name, sheet); }
  std::string hidden(const std::string& book, const std::string& sheet) {
    return road.hiddenRows({book, sheet}, Axis::rows);
  }
  // A window that has just opened may come before it once more.
  void bringToFront() {
    const bool done = eventually([&] {
      bool isActive = false;
      road.use([&](CalcSpreadsheet& calc) {
        isActive = calc.activeWorkbook() == name;
        if (!isActive) calc.activateWorkbook(name);
      });
      return isActive;
    });
    EXPECT_TRUE(done);
  }
  // Whoever asks for the marks of a workbook waits until what its user has done was looked at.
  void lookAtMarks() {
    road.use([&](CalcSpreadsheet& calc) {
      calc.formatConditions({{name, "One"}, {{1, 1, 1, 1}}});
    });
  }

  static inline std::unique_ptr<CalcRoad> desk;
  static inline int books = 0;
  std::string name = "Users" + std::to_string(++books) + ".xlsx";
  TemporaryFolder folder;
  CalcRoad& road = *desk;
  std::optional<UserHands> hands;
};

// A filter shows every row that it finds, whoever had hidden it.
TEST_F(UsersRows, StayVisibleWhereTheUsersFilterShowsThem) {
  reveal("One!A4:A6", "rows 4\u20136");
  hands->filter(name, "One", "A1:A9", 0, "odd");
  EXPECT_EQ(hidden("One"), "2 4 6 8 ");
  EXPECT_EQ(takeBack(), "2 4 6 8 ");
  hands->endFilter(name, "One", "A1:A9");
  EXPECT_EQ(hidden("One"), "");
}

TEST_F(UsersRows, StayVisibleAfterTheUsersFilter) {
  reveal("One!A4:A6", "rows 4\u20136");
  hands->filter(name, "One", "A1:A9", 0, "odd");
  lookAtMarks();
  hands->endFilter(name, "One", "A1:A9");
  EXPECT_EQ(hidden("One"), "");
  EXPECT_EQ(takeBack(), "");
}

// The header is not filtered.
TEST_F(UsersRows, AreHiddenAgainBesideTheUsersFilter) {
  reveal("One!A5", "row 5");
  hands->filter(name, "One", "A5:A9", 0, "even");
  EXPECT_EQ(hidden("One"), "4 7 9 ");
  EXPECT_EQ(takeBack(), "4 5 7 9 ");
}

TEST_F(UsersRows, AreTheUsersOnceHeHasHiddenThem) {
  reveal("One!A4:A6", "rows 4\u20136");
  hands->groupRows(name, "One", "A3:A7");
  hands->collapseRows(name, "One", "A3:A7");
  lookAtMarks();
  hands->expandRows(name, "One", "A3:A7");
  EXPECT_EQ(hidden("One"), "");
  EXPECT_EQ(takeBack(), "");
}

// Shown one after the other: each stands beside the others.
TEST_F(UsersRows, StayVisibleInAGroupThatTheUserOpens) {
  hands->showRows(name, "One", "A4:A6");
  hands->groupRows(name, "One", "A3:A7");
  hands->collapseRows(name, "One", "A3:A7");
  ask("reveal", {Array{"One!A5"}, 0});
  ask("select", {Array{"One!A5"}});  // keeps it shown for the next
  reveal("One!A3:A4", "rows 3\u20134");
  EXPECT_EQ(hidden("One"), "6 7 ");
  hands->expandRows(name, "One", "A3:A7");
  EXPECT_EQ(takeBack(), "");
}

// There is nothing to be seen of that but the button of the group.
TEST_F(UsersRows, AreHiddenAgainWhereAllOfAGroupWasShownBeforeTheUserOpensIt) {
  hands->showRows(name, "One", "A4:A6");
  hands->groupRows(name, "One", "A4:A5");
  hands->collapseRows(name, "One", "A4:A5");
  reveal("One!A4:A5", "rows 4\u20135");
  hands->expandRows(name, "One", "A4:A5");
  EXPECT_EQ(takeBack(), "4 5 ");
}

// Opening a group shows its rows and no others.
TEST_F(UsersRows, AreHiddenAgainRightBesideAGroupThatTheUserOpens) {
  hands->groupRows(name, "One", "A7:A8");
  hands->collapseRows(name, "One", "A7:A8");
  reveal("One!A6", "row 6");
  hands->expandRows(name, "One", "A7:A8");
  EXPECT_EQ(hidden("One"), "4 5 ");
  EXPECT_EQ(takeBack(), "4 5 6 ");
}

TEST_F(UsersRows, AreHiddenAgainBesideAGroupThatTheUserCloses) {
  hands->groupRows(name, "One", "A7:A8");
  reveal("One!A4:A6", "rows 4\u20136");
  hands->collapseRows(name, "One", "A7:A8");
  EXPECT_EQ(takeBack(), "4 5 6 7 8 ");
  hands->expandRows(name, "One", "A7:A8");
  EXPECT_EQ(hidden("One"), "4 5 6 ");
}

// The rows beside the group tell nothing of it, and hide what tells.
TEST_F(UsersRows, AreHiddenAgainInAGroupWithOtherHiddenRowsRightBesideThem) {
  hands->groupRows(name, "One", "A7:A8");
  hands->collapseRows(name, "One", "A7:A8");
  reveal("One!A7", "row 7");
  hands->expandRows(name, "One", "A7:A8");
  EXPECT_EQ(hidden("One"), "4 5 6 ");
  EXPECT_EQ(takeBack(), "4 5 6 7 ");
}

// As where he ends it: a filter that is no more hides nothing.
TEST_F(UsersRows, StayVisibleWhereTheUserUndoesTheFilterThatHidThem) {
  hands->filter(name, "One", "A1:A9", 0, "odd");
  reveal("One!A2", "row 2");
  hands->undo(name);
  EXPECT_EQ(hidden("One"), "4 5 6 ");
  EXPECT_EQ(takeBack(), "4 5 6 ");
  hands->redo(name);
  EXPECT_EQ(hidden("One"), "2 4 6 8 ");
}

// Then they are as we have left them.
TEST_F(UsersRows, AreHiddenAgainWhereTheUserUndoesAFilterOverThem) {
  reveal("One!A4:A6", "rows 4\u20136");
  hands->filter(name, "One", "A1:A9", 0, "odd");
  lookAtMarks();
  hands->undo(name);
  EXPECT_EQ(hidden("One"), "");
  EXPECT_EQ(takeBack(), "4 5 6 ");
  hands->redo(name);
  EXPECT_EQ(hidden("One"), "2 4 6 8 ");
}

TEST_F(UsersRows, AreHiddenAgainWhereTheUserUndoesSeveralSteps) {
  reveal("One!A4:A6", "rows 4\u20136");
  hands->enter(name, "One", "C1", "before");
  hands->filter(name, "One", "A1:A9", 0, "odd");
  lookAtMarks();
  hands->enterTogether(name, "One", "C2:C3", "one step");
  hands->endFilter(name, "One", "A1:A9");
  lookAtMarks();
  for (int step = 1; step <= 3; ++step) hands->undo(name);
  EXPECT_EQ(hidden("One"), "");
  EXPECT_EQ(takeBack(), "4 5 6 ");
}

TEST_F(UsersRows, StayVisibleWhereTheUserHasUndoneLessThanTheFilterOverThem) {
  reveal("One!A4:A6", "rows 4\u20136");
  hands->filter(name, "One", "A1:A9", 0, "odd");
  lookAtMarks();
  hands->endFilter(name, "One", "A1:A9");
  hands->enterTogether(name, "One", "C2:C3", "one step");
  hands->undo(name);
  EXPECT_EQ(takeBack(), "");
}

// Calc keeps a hundred steps.
TEST_F(UsersRows, StayVisibleAfterTheUsersFilterWhenTheUndoListIsFull) {
  for (int step = 1; step <= 101; ++step) hands->enter(name, "One", "C1", std::to_string(step));
  reveal("One!A4:A6", "rows 4\u20136");
  hands->filter(name, "One", "A1:A9", 0, "odd");
  lookAtMarks();
  hands->endFilter(name, "One", "A1:A9");
  hands->enter(name, "One", "C1", "once more");
  hands->undo(name);
  EXPECT_EQ(takeBack(), "");
}

// The rows are not seen when they are taken back, and then they are, with no record left.
TEST_F(UsersRows, AreHiddenAgainWhereTheUserUndoesAFilterAfterTheyWereTakenBack) {
  reveal("One!A4:A6", "rows 4\u20136");
  hands->filter(name, "One", "A1:A9", 0, "odd");
  EXPECT_EQ(takeBack(), "2 4 6 8 ");
  EXPECT_TRUE(hands->shapes(name, "One").empty());
  hands->undo(name);
  EXPECT_TRUE(eventually([&] { return hidden("One") == "4 5 6 "; })) << hidden("One");
}

// The filter is undone under what was shown of its rows as well.
TEST_F(UsersRows, AreHiddenAgainWhereTheUserUndoesAFilterUnderThemToo) {
  reveal("One!A4:A6", "rows 4\u20136");
  hands->filter(name, "One", "A1:A9", 0, "odd");
  reveal("One!A4", "row 4");
  hands->undo(name);
  EXPECT_EQ(takeBack(), "4 5 6 ");
}

TEST_F(UsersRows, StayVisibleInAWorkbookThatWasOpenedAnew) {
  reveal("One!A4:A6", "rows 4\u20136");
  hands->save(name);
  hands->close(name);
  road.open(folder / name);
  EXPECT_EQ(hidden("One"), "4 5 6 ");
  hands->showRows(name, "One", "A4:A6");
  EXPECT_EQ(takeBack(), "");
}

TEST_F(UsersRows, AreHiddenOnTheCopyOfTheirSheetAtOnce) {
  hands->hideColumns(name, "One", "C1:D1");
  reveal("One!A5:C5", "row 5, column C");
  hands->insertRows(name, "One", 2, 1);
  hands->setModified(name, false);
  hands->copySheet(name, "One", "Copy");
  EXPECT_TRUE(eventually([&] { return hidden("Copy") == "5 6 7 "; })) << hidden("Copy");
  EXPECT_TRUE(eventually([&] { return hands->shapes(name, "Copy").empty(); }));
  EXPECT_EQ(hidden("One"), "5 7 ") << "still shown";
  EXPECT_EQ(takeBack(), "5 6 7 ");
  EXPECT_TRUE(hands->shapes(name, "One").empty());
}

// An office may give the shapes on a copy names of their own.
TEST_F(UsersRows, AreHiddenWhereTheNoteHasGotAnotherName) {
  reveal("One!A5", "row 5");
  hands->draw(name, "Home", hands->shapes(name, "One").at(0) + " 1");
  hands->copySheet(name, "Home", "Copy");
  EXPECT_TRUE(eventually([&] { return hidden("Copy") == "5 "; })) << hidden("Copy");
  EXPECT_EQ(hidden("One"), "4 6 ");
  EXPECT_EQ(takeBack(), "4 5 6 ");
}

TEST_F(UsersRows, AreHiddenOnTheCopyInAnotherWorkbookBeforeTheyAreTakenBack) {
  const std::string other = "Other.xlsx";
  fakes::writeXlsx({.name = other, .sheets = {{"Home", {{"A1", 1.0}}}}}, folder / other);
  road.open(folder / other);
  bringToFront();
  reveal("One!A5", "row 5");
  hands->copySheetTo(name, "One", other);
  EXPECT_EQ(takeBack(), "4 5 6 ");
  EXPECT_EQ(hidden(other, "One"), "4 5 6 ");
  EXPECT_TRUE(hands->shapes(other, "One").empty());
  hands->close(other);
}

TEST_F(UsersRows, LeaveNothingOfOursInTheFile) {
  reveal("One!A5", "row 5");
  ASSERT_EQ(hands->shapes(name, "One").size(), 1U);
  hands->save(name);
  ASSERT_EQ(hands->shapes(name, "One").size(), 1U) << "but in the office";
  const xlsx::ZipArchive file(folder / name);
  for (const std::string& part : file.names()) EXPECT_EQ(part.find("drawing"), std::string::npos);
  EXPECT_EQ(takeBack(), "4 5 6 ");
  EXPECT_TRUE(hands->shapes(name, "One").empty());
}

}  // namespace
}  // namespace quorin::host::calc
