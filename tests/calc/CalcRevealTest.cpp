// Revealing on Calc, all the way, and what it leaves in the workbook once it was taken back.
#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <optional>

#include "kit/value/Marshal.h"
#include "tests/calc/CalcRoad.h"
#include "tests/calc/KeeperProcess.h"
#include "tests/calc/UserHands.h"
#include "tests/calc/XlsxFile.h"
#include "tests/fakes/Eventually.h"

namespace quorin::host::calc {
namespace {

using Array = JSONValue::Array;

constexpr const char* book = "Reveal.xlsx";

class CalcReveal : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    road = std::make_unique<CalcRoad>();
    folder = std::make_unique<TemporaryFolder>();
    fakes::SheetDescription list{"List", {{"A1", "Kind"}, {"B1", "Size"}}};
    for (int row = 2; row <= 9; ++row)
      list.cells.push_back({"A" + std::to_string(row), row % 2 == 0 ? "even" : "odd"});
    fakes::writeXlsx({.name = book,
                      .sheets = {list,
                                 {"Two", {{"A1", 1.0}}},
                                 {"Three", {{"A1", 1.0}}},
                                 {"Four", {{"A1", 1.0}}},
                                 {"Home", {{"A1", 1.0}}}},
                      .names = {{"Sizes", "=List!$B$3:$B$5"}}},
                     *folder / book);
    road->open(*folder / book);
    hands = std::make_unique<UserHands>(road->office().open());
  }
  static void TearDownTestSuite() {
    hands.reset();
    road.reset();
    folder.reset();
  }

  void SetUp() override {
    ask("select", {Array{"Home!A1"}});
    hands->setModified(book, false);
  }

  static std::string ask(const std::string& verb, Array args = {}) {
    const Bridge::Reply reply = road->bridge().dispatch(verb, args);
    return (reply.ok ? "" : "failed ") + Marshal::encode(reply.payload);
  }
  static std::string reveal(const std::string& address) {
    return ask("reveal", {Array{address}, 0});
  }
  // How many of the first lines of the sheet are hidden.
  static int hiddenOn(const std::string& sheet) {
    int count = 0;
    road->use([&](CalcSpreadsheet& calc) {
      for (int i = 1; i <= 30; ++i)
        count += calc.hidden({{book, sheet}, {{i, 1, i, maxColumn}}}, Lines::rows) == true ? 1 : 0;
      for (int i = 1; i <= 10; ++i)
        count += calc.hidden({{book, sheet}, {{1, i, maxRow, i}}}, Lines::columns) == true ? 1 : 0;
    });
    return count;
  }
  // Reveals, which must unhide that much, and takes it back: nothing may be left of it.
  static void revealAndTakeBack(const std::string& address, const std::string& unhid) {
    const std::string content = hands->contentOf(book), state = hands->stateOf(book);
    const std::string sheet = address.substr(0, address.find('!'));
    const int hidden = hiddenOn(sheet);
    const std::string reply = reveal(address);
    EXPECT_NE(reply.find("\"unhid\":\"" + unhid + "\""), std::string::npos) << reply;
    EXPECT_LT(hiddenOn(sheet), hidden);
    EXPECT_EQ(hands->stateOf(book), state);
    ask("select", {Array{"Home!A1"}});
    EXPECT_EQ(ask("clearMarks"), R"({"removed":0})");
    EXPECT_EQ(hands->contentOf(book), content);
    EXPECT_EQ(hands->stateOf(book), state);
  }

  static std::unique_ptr<CalcRoad> road;
  static std::unique_ptr<TemporaryFolder> folder;
  static std::unique_ptr<UserHands> hands;
};

std::unique_ptr<CalcRoad> CalcReveal::road;
std::unique_ptr<TemporaryFolder> CalcReveal::folder;
std::unique_ptr<UserHands> CalcReveal::hands;

TEST_F(CalcReveal, ScrollsWithAMarginOnTheActiveSheet) {
  EXPECT_EQ(reveal("T600"), R"({"activated":false,"revealed":true})");
  EXPECT_EQ(road->firstInView(), "$R$597");
  EXPECT_EQ(reveal("T601"), R"({"revealed":false})");
  EXPECT_EQ(reveal("B2"), R"({"activated":false,"revealed":true})");
  EXPECT_EQ(road->firstInView(), "$A$1");
}

TEST_F(CalcReveal, ScrollsWithAMarginOnAnotherSheet) {
  EXPECT_EQ(reveal("Two!T600"), R"({"activated":true,"revealed":true})");
  EXPECT_EQ(road->firstInView(), "$R$597");
}

TEST_F(CalcReveal, RefusesAddressesOnSeveralSheetsAndNone) {
  const std::string refusal = R"({"reason":"multi-sheet","revealed":false})";
  EXPECT_EQ(ask("reveal", {Array{"Two!A1", "Home!A2"}, 0}), refusal);
  EXPECT_EQ(Marshal::encode(road->bridge().reveal({})), refusal);
}

TEST_F(CalcReveal, ShowsNoneOfMoreThan200HiddenRowsAndScrollsAllTheSame) {
  hands->hideRows(book, "Two", "A100:A300");
  hands->hideColumns(book, "Two", "T1");
  const std::string content = hands->contentOf(book);
  EXPECT_EQ(reveal("Two!T100:T300"), R"({"activated":true,"revealed":true})");
  EXPECT_EQ(hands->contentOf(book), content);
  EXPECT_FALSE(std::filesystem::exists(road->unhidden().url()));
}

TEST_F(CalcReveal, ScrollsThePaneBesideFrozenOnes) {
  ask("select", {Array{"Three!A1"}});
  hands->freeze(book, 1, 2);
  EXPECT_EQ(reveal("T600"), R"({"activated":false,"revealed":true})");
  EXPECT_EQ(road->firstInView(), "$R$597");
  EXPECT_EQ(reveal("T601"), R"({"revealed":false})");
  EXPECT_EQ(reveal("C4"), R"({"activated":false,"revealed":true})");
  EXPECT_EQ(road->firstInView(), "$B$3");
  EXPECT_EQ(reveal("C4"), R"({"revealed":false})");
}

TEST_F(CalcReveal, ShowsHiddenLinesOfAnotherSheet) {
  hands->hideRows(book, "Two", "A5:A7");
  hands->hideColumns(book, "Two", "C1:D1");
  hands->setModified(book, false);
  revealAndTakeBack("Two!C6", "row 6, column C");
  revealAndTakeBack("Two!A5:E9", "rows 5\u20137, columns C\u2013D");
}

TEST_F(CalcReveal, RefusesANameOfCellsOnAnotherSheet) {
  hands->hideRows(book, "Home", "A3:A4");
  hands->hideRows(book, "List", "A4:A4");
  EXPECT_EQ(reveal("Sizes"), R"({"reason":"unbound","revealed":false})");
  EXPECT_FALSE(std::filesystem::exists(road->unhidden().url()));
  hands->showRows(book, "Home", "A3:A4");
  hands->showRows(book, "List", "A4:A4");
}

// All rows of the target, and some of its columns.
TEST_F(CalcReveal, ShowsRowsAndColumnsAtOnce) {
  hands->hideRows(book, "Two", "A15:A16");
  hands->hideColumns(book, "Two", "F1");
  hands->setModified(book, false);
  revealAndTakeBack("Two!E15:G16", "rows 15\u201316, column F");
  revealAndTakeBack("Two!F14:F17", "rows 15\u201316, column F");
}

TEST_F(CalcReveal, ShowsAFilteredRow) {
  hands->filter(book, "List", "A1:B9", 0, "even");
  hands->setModified(book, false);
  revealAndTakeBack("List!B5", "row 5");
}

TEST_F(CalcReveal, ShowsARowOfACollapsedGroup) {
  hands->groupRows(book, "Four", "A3:A6");
  hands->collapseRows(book, "Four", "A3:A6");
  hands->setModified(book, false);
  revealAndTakeBack("Four!B4", "row 4");
}

TEST_F(CalcReveal, ShowsHiddenRowsUnderAMergedCell) {
  hands->merge(book, "Four", "B20:D23");
  hands->hideRows(book, "Four", "A21:A22");
  hands->setModified(book, false);
  revealAndTakeBack("Four!B20:D23", "rows 21\u201322");
  revealAndTakeBack("Four!C21", "row 21");
}

// In a workbook where the office takes some 10 ms for each change of lines, and 100 ms while it
// draws and computes after each. On a machine that is too busy for one call the next goes on.
TEST_F(CalcReveal, ShowsAndHidesManyRowsOfALargeWorkbook) {
  const char* const told = std::getenv("QUORIN_WORKBOOKS");
  const std::filesystem::path workbooks = told ? told : QUORIN_ROOT "/../shared/workbooks";
  const std::string large = "uk-2050-energy-model.xlsx";
  if (!std::filesystem::exists(workbooks / large))
    GTEST_SKIP() << "no workbooks: set QUORIN_WORKBOOKS to a folder of them";
  road->open(workbooks / large);
  constexpr int first = 11, last = 409, all = 200;  // every other one
  for (int row = first; row <= last; row += 2)
    hands->hideRows(large, "XII.a", "A" + std::to_string(row));
  const auto hidden = [&] {
    int count = 0;
    road->use([&](CalcSpreadsheet& calc) {
      const auto seen = calc.visibleCells({{large, "XII.a"}, {{first, 1, last, 1}}});
      for (const Area& area : seen.value_or(RangeRef()).areas)
        count += area.lastRow - area.firstRow + 1;
    });
    return last - first + 1 - count;
  };
  const auto until = [&](const std::string& verb, const Array& args, int wanted) {
    constexpr int mostCalls = 3;
    const auto start = std::chrono::steady_clock::now();
    std::string reply = ask(verb, args);
    const auto end = std::chrono::steady_clock::now();
    RecordProperty(verb + "Ms", std::to_string((end - start) / std::chrono::milliseconds(1)));
    for (int i = 1; i < mostCalls && hidden() != wanted; ++i) reply = ask(verb, args);
    EXPECT_EQ(hidden(), wanted) << reply;
    return reply;
  };
  EXPECT_EQ(hidden(), all);
  const std::string reply = until("reveal", {Array{"XII.a!A11:A409"}, 0}, 0);
  EXPECT_NE(reply.find("row 11, row 13"), std::string::npos) << reply;
  ask("select", {Array{"XII.a!A1"}});
  until("clearMarks", {}, all);
  ask("clearMarks");
  EXPECT_FALSE(std::filesystem::exists(road->unhidden().url()));
  hands->close(large);
}

// Shown lines that the user's edits move before they are taken back.
class MovedLines : public testing::Test {
 protected:
  static void SetUpTestSuite() { desk = std::make_unique<CalcRoad>(); }
  static void TearDownTestSuite() { desk.reset(); }

  MovedLines() {
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
    const Bridge::Reply reply = road.bridge().dispatch(verb, args);
    return (reply.ok ? "" : "failed ") + Marshal::encode(reply.payload);
  }
  // Of the first rows and columns: "5 6 7 C D".
  std::string hiddenLines(const std::string& sheet) {
    std::string text;
    road.use([&](CalcSpreadsheet& calc) {
      for (int i = 1; i <= 20; ++i)
        if (calc.hidden({{name, sheet}, {{i, 1, i, maxColumn}}}, Lines::rows) == true)
          text += std::to_string(i) + " ";
      for (int i = 1; i <= 10; ++i)
        if (calc.hidden({{name, sheet}, {{1, i, maxRow, i}}}, Lines::columns) == true)
          text += columnLetters(i) + " ";
    });
    return text;
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
  // As the file would be had it been saved with the lines visible, which the marks keeper prevents.
  void reopenWithAllVisible() {
    hands->save(name);
    reopen();
    hands->showRows(name, "One", "A1:A20");
    hands->showRows(name, "Home", "A1:A20");
    hands->showColumns(name, "One", "A1:J1");
  }

  ~MovedLines() override { hands->close(name); }

  static inline std::unique_ptr<CalcRoad> desk;
  static inline int books = 0;
  std::string name = "Moved" + std::to_string(++books) + ".xlsx";
  TemporaryFolder folder;
  CalcRoad& road = *desk;
  std::optional<UserHands> hands;
};

TEST_F(MovedLines, AreHiddenAgainWhereRowsWereInsertedAbove) {
  hands->insertRows(name, "One", 2, 3);
  EXPECT_EQ(hiddenLines("One"), "");
  const std::string before = hands->stateOf(name);
  ask("clearMarks");
  EXPECT_EQ(hiddenLines("One"), "8 9 10 C D ");
  EXPECT_EQ(hands->stateOf(name), before);
  expectNoRecord();
}

TEST_F(MovedLines, StayVisibleWhereTheyAreDeletedAndTheLogSaysSo) {
  hands->removeRows(name, "One", 6, 1);
  ask("clearMarks");
  EXPECT_EQ(hiddenLines("One"), "5 6 C D ");
  EXPECT_TRUE(hasLogged("UNHIDE no longer told apart, stays visible: rows 6-6 sheet=One"));
  expectNoRecord();
}

TEST_F(MovedLines, AreHiddenAgainOnASheetThatHasAnotherName) {
  hands->renameSheet(name, "One", "Uno");
  ask("clearMarks");
  EXPECT_EQ(hiddenLines("Uno"), "5 6 7 C D ");
  EXPECT_TRUE(hasLogged("UNHIDE restore stale book=" + name + " sheet=One"));
  expectNoRecord();
}

// The office then takes its ranges of their cells for some of another sheet.
TEST_F(MovedLines, HideNothingOfTheNextSheetWhereTheirsIsDeleted) {
  hands->deleteSheet(name, "One");
  ask("clearMarks");
  EXPECT_EQ(hiddenLines("Home"), "");
  EXPECT_FALSE(std::filesystem::exists(road.unhidden().url()));
  EXPECT_NE(ask("reveal", {Array{"Home!T90"}, 0}).find("true"), std::string::npos);
}

TEST_F(MovedLines, AreHiddenAgainOnARenamedSheetOnceTheUserHasLeftThem) {
  ask("select", {Array{"One!C6"}});
  hands->renameSheet(name, "One", "Uno");
  ask("clearMarks");
  EXPECT_EQ(hiddenLines("Uno"), "5 7 D ") << "the user's cell is in the others";
  ask("select", {Array{"Home!A1"}});
  EXPECT_EQ(hiddenLines("Uno"), "5 6 7 C D ");
  expectNoRecord();
}

TEST_F(MovedLines, ComeIntoNoFileAsVisible) {
  hands->setModified(name, false);
  const std::string before = hands->stateOf(name);
  hands->save(name);
  EXPECT_EQ(hiddenLines("One"), "") << "still shown";
  EXPECT_EQ(hands->stateOf(name), before);
  reopen();
  EXPECT_EQ(hiddenLines("One"), "5 6 7 C D ");
  ask("clearMarks");
  EXPECT_EQ(hiddenLines("One"), "5 6 7 C D ");
  expectNoRecord();
}

TEST_F(MovedLines, StayVisibleWhereTheUserHasMadeThemSo) {
  ask("clearMarks");
  hands->groupRows(name, "Home", "A3:A6");
  hands->collapseRows(name, "Home", "A3:A6");
  hands->filter(name, "One", "A1:B4", 0, "22");
  ask("reveal", {Array{"Home!A4"}, 0});
  ask("select", {Array{"Home!A4"}});  // keeps it shown for the next
  ask("reveal", {Array{"One!A3"}, 0});
  EXPECT_EQ(hiddenLines("Home"), "3 5 6 ");
  EXPECT_EQ(hiddenLines("One"), "4 5 6 7 C D ");
  hands->expandRows(name, "Home", "A3:A6");
  hands->endFilter(name, "One", "A1:B4");
  ask("select", {Array{"Home!J20"}});
  ask("clearMarks");
  EXPECT_EQ(hiddenLines("Home"), "");
  EXPECT_EQ(hiddenLines("One"), "5 6 7 C D ");
  EXPECT_TRUE(hasLogged("UNHIDE made visible by the user, stays visible: rows 4-4 sheet=Home"));
  expectNoRecord();
}

// Beside them, by a later reveal and not by the user.
TEST_F(MovedLines, AreHiddenAgainWithNeighboursThatWereShownLater) {
  ask("clearMarks");
  ask("reveal", {Array{"One!A6"}, 0});
  ask("reveal", {Array{"One!A5:A7"}, 0});
  EXPECT_EQ(hiddenLines("One"), "C D ");
  ask("clearMarks");
  EXPECT_EQ(hiddenLines("One"), "5 6 7 C D ");
  expectNoRecord();
}

// Whoever asked for them is gone; what it could not hide is hidden by the marks keeper, and what
// the user shows afterwards is not hidden by the record that is left.
TEST_F(MovedLines, AreHiddenByTheKeeperOfWhoIsGone) {
  ask("clearMarks");
  CalcSpreadsheet next(road.sharedOffice());
  {
    CalcSpreadsheet gone(road.sharedOffice());
    gone.setHidden({{name, "One"}, {{5, 1, 6, maxColumn}}}, Lines::rows, false);
    EXPECT_EQ(hiddenLines("One"), "7 C D ");
  }
  EXPECT_TRUE(eventually([&] { return hiddenLines("One") == "5 6 7 C D "; }));
  hands->showRows(name, "One", "A5:A5");
  for (const int row : {5, 6})
    next.setHidden({{name, "One"}, {{row, 1, row, maxColumn}}}, Lines::rows, true);
  EXPECT_EQ(hiddenLines("One"), "6 7 C D ");
}

// Nobody asks for anything after its death, but a new one is there for the next save.
TEST_F(MovedLines, ComeIntoNoFileAfterTheirKeeperWasKilled) {
  const pid_t first = keeper();
  ASSERT_GT(first, 0);
  ::kill(first, SIGKILL);
  ASSERT_TRUE(eventually([&] { return keeper() > 0 && keeper() != first; }));
  road.use([](CalcSpreadsheet&) {});  // the new one has found them
  hands->save(name);
  EXPECT_EQ(hiddenLines("One"), "") << "still shown";
  reopen();
  EXPECT_EQ(hiddenLines("One"), "5 6 7 C D ");
  ask("clearMarks");
  expectNoRecord();
}

// They would come into the next file. Lines that were never shown for want of a keeper are recorded
// all the same, and the user's when he shows them.
TEST_F(MovedLines, AreHiddenAtOnceAndNoMoreAreShownWhereNoKeeperCanBeHad) {
  ask("markCells", {Array{"Home!A1"}, Array{255, 0, 0}});  // takes them back
  ask("reveal", {Array{"One!C5:D7"}, 0});
  ask("select", {Array{"Home!A1"}});
  ASSERT_EQ(hiddenLines("One"), "");
  {
    const NoNewKeeper none;
    ASSERT_GT(keeper(), 0);
    ::kill(keeper(), SIGKILL);
    EXPECT_TRUE(eventually([&] { return hiddenLines("One") == "5 6 7 C D "; }));
    EXPECT_TRUE(eventually([&] { return hands->shapes(name, "Home").empty(); }));
    const std::string reply = ask("reveal", {Array{"One!A6"}, 0});
    EXPECT_NE(reply.find("failed "), std::string::npos) << reply;
    EXPECT_NE(reply.find("The marks keeper ended at once"), std::string::npos) << reply;
    EXPECT_EQ(hiddenLines("One"), "5 6 7 C D ");
  }
  hands->showRows(name, "One", "A6:A6");
  ask("clearMarks");
  EXPECT_EQ(hiddenLines("One"), "5 7 C D ");
  expectNoRecord();
}

TEST_F(MovedLines, AreHiddenAgainInAWorkbookThatHasAnotherName) {
  hands->insertRows(name, "One", 1, 1);
  hands->saveAs(name, (folder / "Saved.xlsx").string());
  name = "Saved.xlsx";
  ask("clearMarks");
  EXPECT_EQ(hiddenLines("One"), "6 7 8 C D ");
  expectNoRecord();
}

TEST_F(MovedLines, AreHiddenAgainInAWorkbookThatWasOpenedAnew) {
  reopenWithAllVisible();
  EXPECT_EQ(hiddenLines("One"), "");
  ask("clearMarks");
  EXPECT_EQ(hiddenLines("One"), "5 6 7 C D ");
  expectNoRecord();
}

TEST_F(MovedLines, AreFoundInAWorkbookThatWasOpenedAnew) {
  hands->insertRows(name, "One", 2, 3);
  reopenWithAllVisible();
  ask("clearMarks");
  EXPECT_EQ(hiddenLines("One"), "8 9 10 C D ");
  expectNoRecord();
}

TEST_F(MovedLines, StayVisibleWhereTheyAreDeletedInAWorkbookThatWasOpenedAnew) {
  hands->removeRows(name, "One", 6, 1);
  reopenWithAllVisible();
  ask("clearMarks");
  EXPECT_EQ(hiddenLines("One"), "5 6 C D ");
  EXPECT_TRUE(hasLogged("UNHIDE no longer told apart, stays visible: rows 6-6 sheet=One"));
  expectNoRecord();
}

TEST_F(MovedLines, StayVisibleWhereTheyCannotBeToldFromOthers) {
  for (int row = 1; row <= 12; ++row)
    hands->enter(name, "Home", "A" + std::to_string(row), row % 2 == 0 ? "even" : "odd");
  hands->hideRows(name, "Home", "A6");
  ask("reveal", {Array{"Home!A6"}, 0});
  hands->insertRows(name, "Home", 2, 2);
  hands->enter(name, "Home", "A2", "even");
  hands->enter(name, "Home", "A3", "odd");
  reopenWithAllVisible();
  ask("clearMarks");
  EXPECT_EQ(hiddenLines("Home"), "");
  EXPECT_TRUE(hasLogged("UNHIDE no longer told apart, stays visible: rows 6-6 sheet=Home"));
  expectNoRecord();
}

// What a version before traces recorded, or a record whose traces are lost.
TEST_F(MovedLines, AreToldByTheirNumbersWhereNothingElseIsKnown) {
  reopenWithAllVisible();
  road.forgetTraces();
  ask("clearMarks");
  EXPECT_EQ(hiddenLines("One"), "5 6 7 C D ");
  expectNoRecord();
}

TEST_F(MovedLines, AreNotEvenShownWhereTheirTracesCannotBeWritten) {
  ask("clearMarks");
  std::filesystem::create_directory(road.traces().url());
  const std::string reply = ask("reveal", {Array{"One!C6"}, 0});
  std::filesystem::remove(road.traces().url());
  EXPECT_NE(reply.find("The shown lines cannot be recorded: "), std::string::npos) << reply;
  EXPECT_EQ(hiddenLines("One"), "5 6 7 C D ");
  ask("clearMarks");
  EXPECT_EQ(hiddenLines("One"), "5 6 7 C D ");
  ask("reveal", {Array{"One!C6"}, 0});
  EXPECT_EQ(hiddenLines("One"), "5 7 D ");
  ask("select", {Array{"Home!A1"}});
  ask("clearMarks");
  EXPECT_EQ(hiddenLines("One"), "5 6 7 C D ");
  expectNoRecord();
}

TEST_F(MovedLines, AreHiddenAgainWithOthersThatHaveTheirNumbersNow) {
  hands->insertRows(name, "One", 2, 3);
  hands->hideRows(name, "One", "A5:A6");
  EXPECT_NE(ask("reveal", {Array{"One!A5:A6"}, 0}).find("rows 5"), std::string::npos);
  ask("select", {Array{"Home!A1"}});
  EXPECT_EQ(hiddenLines("One"), "C D ");
  ask("clearMarks");
  EXPECT_EQ(hiddenLines("One"), "5 6 8 9 10 C D ");
  expectNoRecord();
}

// As a new process does after the one that showed them was killed.
TEST_F(MovedLines, AreKnownToTheNextWhoAsks) {
  hands->insertRows(name, "One", 2, 2);
  const UnhideStore::Records recorded = road.unhidden().load();
  CalcSpreadsheet other(road.sharedOffice());
  for (const auto& run : recorded.at(0).rows) {
    for (auto row = static_cast<int>(run[0]); row <= run[1]; ++row)
      other.setHidden({{name, "One"}, {{row, 1, row, maxColumn}}}, Lines::rows, true);
  }
  EXPECT_EQ(hiddenLines("One").find("7 8 9 "), 0U);
  ask("clearMarks");
  EXPECT_EQ(hiddenLines("One"), "7 8 9 C D ");
}

}  // namespace
}  // namespace quorin::host::calc
