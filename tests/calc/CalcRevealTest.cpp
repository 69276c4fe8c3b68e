// Revealing on Calc, all the way, and what it leaves in the workbook once it was taken back.
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>

#include "kit/value/Marshal.h"
#include "tests/calc/CalcRoad.h"
#include "tests/calc/SheetHands.h"
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
    fakes::SheetDescription many{"Many", {{"C70", 1830.0, "=SUBTOTAL(109,A1:A60)"}}};
    for (int row = 1; row <= 60; ++row)
      many.cells.push_back({"A" + std::to_string(row), static_cast<double>(row)});
    fakes::writeXlsx({.name = book,
                      .sheets = {list,
                                 {"Two", {{"A1", 1.0}}},
                                 {"Three", {{"A1", 1.0}}},
                                 {"Four", {{"A1", 1.0}}},
                                 many,
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
    return road->ask(verb, std::move(args));
  }
  static std::string reveal(const std::string& address) {
    return ask("reveal", {Array{address}, 0});
  }
  // How many of the first rows of the sheet are hidden.
  static int hiddenOn(const std::string& sheet) {
    int count = 0;
    road->use([&](CalcSpreadsheet& calc) {
      for (int i = 1; i <= 30; ++i)
        count += calc.hidden({{book, sheet}, {{i, 1, i, maxColumn}}}, Axis::rows) == true ? 1 : 0;
      for (int i = 1; i <= 10; ++i)
        count += calc.hidden({{book, sheet}, {{1, i, maxRow, i}}}, Axis::columns) == true ? 1 : 0;
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

TEST_F(CalcReveal, ShowsHiddenRowsOfAnotherSheet) {
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

// Subtotals, drawings and charts are as after the user's own hiding.
TEST_F(CalcReveal, LeavesWhatFollowsManyRowsAsItWas) {
  SheetHands sheets(road->office().open(), book);
  sheets.draw("Many", "E65");
  sheets.addChart("Home", "Many", "A20:A40");
  const int shown = sheets.topOfDrawing("Many");
  for (int row = 5; row <= 45; row += 2) hands->hideRows(book, "Many", "A" + std::to_string(row));
  const int hidden = sheets.topOfDrawing("Many");
  EXPECT_LT(hidden, shown);
  hands->setModified(book, false);
  const std::string state = hands->stateOf(book);

  reveal("Many!A5:A45");
  EXPECT_EQ(hiddenOn("Many"), 0);
  EXPECT_EQ(sheets.number("Many", "C70"), 1830);
  EXPECT_EQ(sheets.topOfDrawing("Many"), shown);
  EXPECT_EQ(sheets.hiddenInChart("Home"), 0);
  ask("select", {Array{"Home!A1"}});
  ask("clearMarks");
  EXPECT_EQ(hiddenOn("Many"), 13) << "of 30";
  EXPECT_EQ(sheets.number("Many", "C70"), 1305);
  EXPECT_EQ(sheets.topOfDrawing("Many"), hidden);
  EXPECT_EQ(sheets.hiddenInChart("Home"), 10);
  EXPECT_EQ(hands->stateOf(book), state);
}

// In a workbook where the office takes some 10 ms for each change of rows, and 100 ms while it
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

}  // namespace
}  // namespace quorin::host::calc
