// Shown lines that the user's edits move before they are taken back.
#include <algorithm>
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>

#include "host/Address.h"
#include "tests/calc/CalcRoad.h"
#include "tests/calc/KeeperProcess.h"
#include "tests/calc/UserHands.h"
#include "tests/calc/XlsxFile.h"
#include "tests/fakes/Eventually.h"

namespace quorin::host::calc {
namespace {

using Array = JSONValue::Array;

class MovedRows : public testing::Test {
 protected:
  static void SetUpTestSuite() { desk = std::make_unique<CalcRoad>(); }
  static void TearDownTestSuite() { desk.reset(); }

  MovedRows() {
    fakes::SheetDescription one{"One", {}};
    for (int row = 1; row <= 9; ++row) {
      one.cells.push_back({"A" + std::to_string(row), row * 11.0});
      one.cells.push_back({columnLetters(row) + "12", row * 13.0});
    }
    fakes::writeXlsx({.name = name, .sheets = {one, {"Home", {{"A1", 1.0}}}}}, folder / name);
    road.open(folder / name);
    hands.emplace(road.office().open());
    hands->hideRows(name, "One", "A5:A7");
    hands->hideColumns(name, "One", "C1:D1");
    ask("select", {Array{"Home!A1"}});
    EXPECT_NE(ask("reveal", {Array{"One!C5:D7"}, 0}).find("rows 5"), std::string::npos);
    ask("select", {Array{"Home!A1"}});
  }

  std::string ask(const std::string& verb, Array args = {}) {
    return road.ask(verb, std::move(args));
  }
  // Of the first rows and columns: "5 6 7 C D".
  std::string hiddenRows(const std::string& sheet) {
    return road.hiddenRows({name, sheet}, Axis::rows) +
           road.hiddenRows({name, sheet}, Axis::columns);
  }
  bool hasLogged(const std::string& line) {
    const auto lines = road.log();
    return std::find(lines.begin(), lines.end(), line) != lines.end();
  }
  void expectNoRecord() {
    EXPECT_FALSE(std::filesystem::exists(road.unhidden().url()));
    EXPECT_FALSE(std::filesystem::exists(road.traces().url()));
  }
  void reopen() {
    hands->close(name);
    road.open(folder / name);
    ask("select", {Array{"Home!A1"}});
  }
  // As the file would be, in another office, had it been saved with the lines visible, which the
  // marks keeper prevents.
  void reopenWithAllVisible() {
    hands->save(name);
    reopen();
    hands->forgetShownRows();
    hands->showRows(name, "One", "A1:A20");
    hands->showRows(name, "Home", "A1:A20");
    hands->showColumns(name, "One", "A1:J1");
  }

  ~MovedRows() override { hands->close(name); }

  static inline std::unique_ptr<CalcRoad> desk;
  static inline int books = 0;
  std::string name = "Moved" + std::to_string(++books) + ".xlsx";
  TemporaryFolder folder;
  CalcRoad& road = *desk;
  std::optional<UserHands> hands;
};

TEST_F(MovedRows, AreHiddenAgainWhereRowsWereInsertedAbove) {
  hands->insertRows(name, "One", 2, 3);
  EXPECT_EQ(hiddenRows("One"), "");
  const std::string before = hands->stateOf(name);
  ask("clearMarks");
  EXPECT_EQ(hiddenRows("One"), "8 9 10 C D ");
  EXPECT_EQ(hands->stateOf(name), before);
  expectNoRecord();
}

TEST_F(MovedRows, StayVisibleWhereTheyAreDeletedAndTheLogSaysSo) {
  hands->removeRows(name, "One", 6, 1);
  ask("clearMarks");
  EXPECT_EQ(hiddenRows("One"), "5 6 C D ");
  EXPECT_TRUE(hasLogged("UNHIDE no longer told apart, stays visible: rows 6-6 sheet=One"));
  expectNoRecord();
}

TEST_F(MovedRows, AreHiddenAgainOnASheetThatHasAnotherName) {
  hands->renameSheet(name, "One", "Uno");
  ask("clearMarks");
  EXPECT_EQ(hiddenRows("Uno"), "5 6 7 C D ");
  EXPECT_TRUE(hasLogged("UNHIDE restore stale book=" + name + " sheet=One"));
  expectNoRecord();
}

// The office then takes its ranges of their cells for some of another sheet.
TEST_F(MovedRows, HideNothingOfTheNextSheetWhereTheirsIsDeleted) {
  hands->deleteSheet(name, "One");
  ask("clearMarks");
  EXPECT_EQ(hiddenRows("Home"), "");
  EXPECT_FALSE(std::filesystem::exists(road.unhidden().url()));
  EXPECT_NE(ask("reveal", {Array{"Home!T90"}, 0}).find("true"), std::string::npos);
}

TEST_F(MovedRows, AreHiddenAgainOnARenamedSheetOnceTheUserHasLeftThem) {
  ask("select", {Array{"One!C6"}});
  hands->renameSheet(name, "One", "Uno");
  ask("clearMarks");
  EXPECT_EQ(hiddenRows("Uno"), "5 7 D ") << "the user's cell is in the others";
  ask("select", {Array{"Home!A1"}});
  EXPECT_EQ(hiddenRows("Uno"), "5 6 7 C D ");
  expectNoRecord();
}

TEST_F(MovedRows, ComeIntoNoFileAsVisible) {
  hands->setModified(name, false);
  const std::string before = hands->stateOf(name);
  hands->save(name);
  EXPECT_EQ(hiddenRows("One"), "") << "still shown";
  EXPECT_EQ(hands->stateOf(name), before);
  reopen();
  EXPECT_EQ(hiddenRows("One"), "5 6 7 C D ");
  ask("clearMarks");
  EXPECT_EQ(hiddenRows("One"), "5 6 7 C D ");
  expectNoRecord();
}

TEST_F(MovedRows, StayVisibleWhereTheUserHasMadeThemSo) {
  ask("clearMarks");
  hands->groupRows(name, "Home", "A3:A6");
  hands->collapseRows(name, "Home", "A3:A6");
  hands->filter(name, "One", "A1:B4", 0, "22");
  ask("reveal", {Array{"Home!A4"}, 0});
  ask("select", {Array{"Home!A4"}});  // keeps it shown for the next
  ask("reveal", {Array{"One!A3"}, 0});
  EXPECT_EQ(hiddenRows("Home"), "3 5 6 ");
  EXPECT_EQ(hiddenRows("One"), "4 5 6 7 C D ");
  hands->expandRows(name, "Home", "A3:A6");
  hands->endFilter(name, "One", "A1:B4");
  ask("select", {Array{"Home!J20"}});
  ask("clearMarks");
  EXPECT_EQ(hiddenRows("Home"), "");
  EXPECT_EQ(hiddenRows("One"), "5 6 7 C D ");
  EXPECT_TRUE(hasLogged("UNHIDE made visible by the user, stays visible: rows 4-4 sheet=Home"));
  expectNoRecord();
}

// Beside them, by a later reveal and not by the user.
TEST_F(MovedRows, AreHiddenAgainWithNeighboursThatWereShownLater) {
  ask("clearMarks");
  ask("reveal", {Array{"One!A6"}, 0});
  ask("reveal", {Array{"One!A5:A7"}, 0});
  EXPECT_EQ(hiddenRows("One"), "C D ");
  ask("clearMarks");
  EXPECT_EQ(hiddenRows("One"), "5 6 7 C D ");
  expectNoRecord();
}

// Whoever asked for them is gone; what it could not hide is hidden by the marks keeper, and what
// the user shows afterwards is not hidden by the record that is left.
TEST_F(MovedRows, AreHiddenByTheKeeperOfWhoIsGone) {
  ask("clearMarks");
  CalcSpreadsheet next(road.sharedOffice());
  {
    CalcSpreadsheet gone(road.sharedOffice());
    gone.setHidden({{name, "One"}, {{5, 1, 6, maxColumn}}}, Axis::rows, false);
    EXPECT_EQ(hiddenRows("One"), "7 C D ");
  }
  EXPECT_TRUE(eventually([&] { return hiddenRows("One") == "5 6 7 C D "; }));
  hands->showRows(name, "One", "A5:A5");
  for (const int row : {5, 6})
    next.setHidden({{name, "One"}, {{row, 1, row, maxColumn}}}, Axis::rows, true);
  EXPECT_EQ(hiddenRows("One"), "6 7 C D ");
}

// Nobody asks for anything after its death, but a new one is there for the next save.
TEST_F(MovedRows, ComeIntoNoFileAfterTheirKeeperWasKilled) {
  const pid_t first = keeper();
  ASSERT_GT(first, 0);
  ::kill(first, SIGKILL);
  ASSERT_TRUE(eventually([&] { return hasNewKeeperAfter(first); }));
  road.use([](CalcSpreadsheet&) {});  // the new one has found them
  hands->save(name);
  EXPECT_EQ(hiddenRows("One"), "") << "still shown";
  reopen();
  EXPECT_EQ(hiddenRows("One"), "5 6 7 C D ");
  ask("clearMarks");
  expectNoRecord();
}

// They would come into the next file. Rows that were never shown for want of a keeper are recorded
// all the same, and the user's when he shows them.
TEST_F(MovedRows, AreHiddenAtOnceAndNoMoreAreShownWhereNoKeeperCanBeHad) {
  ask("markCells", {Array{"Home!A1"}, Array{255, 0, 0}});  // takes them back
  ask("reveal", {Array{"One!C5:D7"}, 0});
  ask("select", {Array{"Home!A1"}});
  ASSERT_EQ(hiddenRows("One"), "");
  {
    const NoNewKeeper none;
    ASSERT_GT(keeper(), 0);
    ::kill(keeper(), SIGKILL);
    EXPECT_TRUE(eventually([&] { return hiddenRows("One") == "5 6 7 C D "; }));
    EXPECT_TRUE(eventually([&] { return hands->shapes(name, "Home").empty(); }));
    const std::string reply = ask("reveal", {Array{"One!A6"}, 0});
    EXPECT_NE(reply.find("failed "), std::string::npos) << reply;
    EXPECT_NE(reply.find("The marks keeper ended at once"), std::string::npos) << reply;
    EXPECT_EQ(hiddenRows("One"), "5 6 7 C D ");
  }
  hands->showRows(name, "One", "A6:A6");
  ask("clearMarks");
  EXPECT_EQ(hiddenRows("One"), "5 7 C D ");
  expectNoRecord();
}

TEST_F(MovedRows, AreHiddenAgainInAWorkbookThatHasAnotherName) {
  hands->insertRows(name, "One", 1, 1);
  hands->saveAs(name, (folder / "Saved.xlsx").string());
  name = "Saved.xlsx";
  ask("clearMarks");
  EXPECT_EQ(hiddenRows("One"), "6 7 8 C D ");
  expectNoRecord();
}

TEST_F(MovedRows, AreHiddenAgainInAWorkbookThatWasOpenedAnew) {
  reopenWithAllVisible();
  EXPECT_EQ(hiddenRows("One"), "");
  ask("clearMarks");
  EXPECT_EQ(hiddenRows("One"), "5 6 7 C D ");
  expectNoRecord();
}

TEST_F(MovedRows, AreFoundInAWorkbookThatWasOpenedAnew) {
  hands->insertRows(name, "One", 2, 3);
  reopenWithAllVisible();
  ask("clearMarks");
  EXPECT_EQ(hiddenRows("One"), "8 9 10 C D ");
  expectNoRecord();
}

TEST_F(MovedRows, StayVisibleWhereTheyAreDeletedInAWorkbookThatWasOpenedAnew) {
  hands->removeRows(name, "One", 6, 1);
  reopenWithAllVisible();
  ask("clearMarks");
  EXPECT_EQ(hiddenRows("One"), "5 6 C D ");
  EXPECT_TRUE(hasLogged("UNHIDE no longer told apart, stays visible: rows 6-6 sheet=One"));
  expectNoRecord();
}

TEST_F(MovedRows, StayVisibleWhereTheyCannotBeToldFromOthers) {
  for (int row = 1; row <= 12; ++row)
    hands->enter(name, "Home", "A" + std::to_string(row), row % 2 == 0 ? "even" : "odd");
  hands->hideRows(name, "Home", "A6");
  ask("reveal", {Array{"Home!A6"}, 0});
  hands->insertRows(name, "Home", 2, 2);
  hands->enter(name, "Home", "A2", "even");
  hands->enter(name, "Home", "A3", "odd");
  reopenWithAllVisible();
  ask("clearMarks");
  EXPECT_EQ(hiddenRows("Home"), "");
  EXPECT_TRUE(hasLogged("UNHIDE no longer told apart, stays visible: rows 6-6 sheet=Home"));
  expectNoRecord();
}

// What a version before traces recorded, or a record whose traces are lost.
class RowsWithoutTraces : public MovedRows {
 public:
  static void SetUpTestSuite() { desk = std::make_unique<CalcRoad>(CalcRoad::Traces::none); }
};

TEST_F(RowsWithoutTraces, AreToldByTheirNumbers) {
  reopenWithAllVisible();
  ask("clearMarks");
  EXPECT_EQ(hiddenRows("One"), "5 6 7 C D ");
  expectNoRecord();
}

TEST_F(MovedRows, AreNotEvenShownWhereTheirTracesCannotBeWritten) {
  ask("clearMarks");
  std::filesystem::create_directory(road.traces().url());
  const std::string reply = ask("reveal", {Array{"One!C6"}, 0});
  std::filesystem::remove(road.traces().url());
  EXPECT_NE(reply.find("The shown lines cannot be recorded: "), std::string::npos) << reply;
  EXPECT_EQ(hiddenRows("One"), "5 6 7 C D ");
  ask("clearMarks");
  EXPECT_EQ(hiddenRows("One"), "5 6 7 C D ");
  ask("reveal", {Array{"One!C6"}, 0});
  EXPECT_EQ(hiddenRows("One"), "5 7 D ");
  ask("select", {Array{"Home!A1"}});
  ask("clearMarks");
  EXPECT_EQ(hiddenRows("One"), "5 6 7 C D ");
  expectNoRecord();
}

TEST_F(MovedRows, AreHiddenAgainWithOthersThatHaveTheirNumbersNow) {
  hands->insertRows(name, "One", 2, 3);
  hands->hideRows(name, "One", "A5:A6");
  EXPECT_NE(ask("reveal", {Array{"One!A5:A6"}, 0}).find("rows 5"), std::string::npos);
  ask("select", {Array{"Home!A1"}});
  EXPECT_EQ(hiddenRows("One"), "C D ");
  ask("clearMarks");
  EXPECT_EQ(hiddenRows("One"), "5 6 8 9 10 C D ");
  expectNoRecord();
}

// As a new process does after the one that showed them was killed.
TEST_F(MovedRows, AreKnownToTheNextWhoAsks) {
  hands->insertRows(name, "One", 2, 2);
  const UnhideStore::Records recorded = road.unhidden().load();
  CalcSpreadsheet other(road.sharedOffice());
  for (const auto& run : recorded.at(0).rows) {
    for (auto row = static_cast<int>(run[0]); row <= run[1]; ++row)
      other.setHidden({{name, "One"}, {{row, 1, row, maxColumn}}}, Axis::rows, true);
  }
  EXPECT_EQ(hiddenRows("One").find("7 8 9 "), 0U);
  ask("clearMarks");
  EXPECT_EQ(hiddenRows("One"), "7 8 9 C D ");
}

}  // namespace
}  // namespace quorin::host::calc
