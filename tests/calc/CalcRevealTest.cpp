// Revealing on Calc, all the way, and what it leaves in the workbook once it was taken back.
#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <optional>

#include "kit/value/Marshal.h"
#include "tests/calc/CalcRoad.h"
#include "tests/calc/UserHands.h"
#include "tests/calc/XlsxFile.h"

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
                                 {"Home", {{"A1", 1.0}}}}},
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
  // Reveals, which must unhide that much, and takes it back: nothing may be left of it.
  static void revealAndTakeBack(const std::string& address, const std::string& unhid) {
    const std::string content = hands->contentOf(book), state = hands->stateOf(book);
    const std::string reply = reveal(address);
    EXPECT_NE(reply.find("\"unhid\":\"" + unhid + "\""), std::string::npos) << reply;
    EXPECT_NE(hands->contentOf(book), content) << "nothing was unhidden";
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
    hands->save(name);
    hands->close(name);
    road.open(folder / name);
    ask("select", {Array{"Home!A1"}});
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

TEST_F(MovedLines, AreHiddenAgainInAWorkbookThatHasAnotherName) {
  hands->insertRows(name, "One", 1, 1);
  hands->saveAs(name, (folder / "Saved.xlsx").string());
  name = "Saved.xlsx";
  ask("clearMarks");
  EXPECT_EQ(hiddenLines("One"), "6 7 8 C D ");
  expectNoRecord();
}

TEST_F(MovedLines, AreHiddenAgainInAWorkbookThatWasOpenedAnew) {
  reopen();
  EXPECT_EQ(hiddenLines("One"), "");
  ask("clearMarks");
  EXPECT_EQ(hiddenLines("One"), "5 6 7 C D ");
  expectNoRecord();
}

TEST_F(MovedLines, AreFoundInAWorkbookThatWasOpenedAnew) {
  hands->insertRows(name, "One", 2, 3);
  reopen();
  ask("clearMarks");
  EXPECT_EQ(hiddenLines("One"), "8 9 10 C D ");
  expectNoRecord();
}

TEST_F(MovedLines, StayVisibleWhereTheyAreDeletedInAWorkbookThatWasOpenedAnew) {
  hands->removeRows(name, "One", 6, 1);
  reopen();
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
  reopen();
  ask("clearMarks");
  EXPECT_EQ(hiddenLines("Home"), "");
  EXPECT_TRUE(hasLogged("UNHIDE no longer told apart, stays visible: rows 6-6 sheet=Home"));
  expectNoRecord();
}

// What a version before traces recorded, or a record whose traces are lost.
TEST_F(MovedLines, AreToldByTheirNumbersWhereNothingElseIsKnown) {
  reopen();
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
  EXPECT_EQ(hiddenLines("One"), "7 8 9 ");
  ask("clearMarks");
}

}  // namespace
}  // namespace quorin::host::calc
