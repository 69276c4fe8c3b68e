// Random sequences of marking, revealing and clearing in an office, between what the user does
// there: entering, undoing, inserting and deleting rows, renaming and copying sheets, saving,
// saving under another name, closing and opening again. At no time is anything marked or hidden
// that the records do not account for, and in the end nothing is left. $QUORIN_SEQUENCES sets their
// number, $QUORIN_SEED where they begin.
//
// What the user's edits leave: marks go with their cells, and a request for what the records know
// takes them away also where they have moved to, or where a sheet or the workbook has another name
// now. There is none on the copy of a sheet. Lines that were shown on a sheet that has another name
// now may stay visible, and leave the record.
#include <cstdlib>
#include <gtest/gtest.h>
#include <random>
#include <set>

#include "kit/value/Marshal.h"
#include "tests/calc/CalcRoad.h"
#include "tests/calc/UserHands.h"
#include "tests/calc/XlsxFile.h"

namespace quorin::host::calc {
namespace {

using Array = JSONValue::Array;
using Line = std::pair<Lines, int>;

int numberFrom(const char* variable, int otherwise) {
  const char* const text = std::getenv(variable);
  return text ? std::atoi(text) : otherwise;
}

class CalcMarksProperty : public testing::Test {
 protected:
  // Hidden lines are among these, and row edits below them: what has moved cannot be told apart.
  static constexpr int rows = 9, columns = 6;

  int pick(int from, int to) { return std::uniform_int_distribution<int>(from, to)(random_); }
  bool once(int in) { return pick(1, in) == 1; }

  RangeRef on(const std::string& sheet, const std::string& address) const {
    return {{book_, sheet}, parseA1(address).value()};
  }
  static RangeRef place(const RangeRef& sheet, const Line& line) {
    RangeRef range = sheet;
    const auto [lines, number] = line;
    range.areas = {lines == Lines::rows ? Area{number, 1, number, maxColumn}
                                        : Area{1, number, maxRow, number}};
    return range;
  }

  std::string cell() {
    return columnLetters(pick(1, columns)) + std::to_string(pick(1, once(3) ? 40 : rows));
  }
  std::string anySheet() { return once(2) ? first_ : "Two"; }

  // In the workbook of the sequence before, as that left it but for the lines that stayed visible.
  void goOn(unsigned seed) {
    random_.seed(seed);
    for (const Line& line : free_) hide(line);
    free_.clear();
    goTo("Home", "A1");
  }

  void hide(const Line& line) {
    const auto [lines, number] = line;
    if (lines == Lines::rows) {
      hands_.hideRows(book_, first_, "A" + std::to_string(number));
    } else {
      hands_.hideColumns(book_, first_, columnLetters(number) + "1");
    }
  }

  void begin(unsigned seed) {
    random_.seed(seed);
    first_ = "One";
    book_ = "Property" + std::to_string(seed) + ".xlsx";
    file_ = folder_ / book_;
    hidden_.clear();
    free_.clear();
    for (int i = pick(1, 4); i > 0; --i) {
      const bool row = once(2);
      hidden_.insert({row ? Lines::rows : Lines::columns, pick(1, row ? rows : columns)});
    }
    fakes::writeXlsx({.name = book_,
                      .sheets = {{"One", {{"A1", 1.0}}, false, {{"B2:B5", "=$B2>1"}}},
                                 {"Two", {{"C3", 2.0}}},
                                 {"Home", {{"A1", 1.0}}}}},
                     file_);
    open();
    for (const Line& line : hidden_) hide(line);
    hands_.save(book_);
  }

  void open() {
    road_.open(file_);
    goTo("Home", "A1");
  }
  void goTo(const std::string& sheet, const std::string& address) {
    road_.use([&](CalcSpreadsheet& calc) { calc.goTo(on(sheet, address)); });
  }

  std::string ask(const std::string& verb, Array args = {}) {
    const Bridge::Reply reply = road_.bridge().dispatch(verb, args);
    EXPECT_TRUE(reply.ok) << verb << Marshal::encode(args) << Marshal::encode(reply.payload);
    return Marshal::encode(reply.payload);
  }

  // What is shown of the lines is the user's now: the records know another name.
  void freeShown() {
    const std::set<Line> now = hiddenNow();
    for (const Line& line : hidden_)
      if (!now.contains(line)) free_.insert(line);
  }

  void verb() {
    switch (pick(0, 5)) {
      case 0:
        ask("clearMarks");
        break;
      case 1:
      case 2:
        ask("reveal", {Array{first_ + "!" + cell() + (once(3) ? ":F9" : "")}, 0});
        break;
      default: {
        Array addresses;
        const std::string one = anySheet();
        for (int i = pick(1, 6); i > 0; --i)
          addresses.push_back((once(5) ? anySheet() : one) + "!" + cell());
        ask("markCells", {addresses, Array{pick(0, 1) * 255, 0, 0}});
      }
    }
  }

  void userEdit() {
    switch (pick(0, 9)) {
      case 0:
        hands_.insertRows(book_, first_, pick(rows + 1, 30), pick(1, 3));
        break;
      case 1:
        hands_.removeRows(book_, first_, pick(rows + 1, 30), pick(1, 3));
        break;
      case 2: {
        freeShown();
        const std::string name = first_ == "One" ? "Uno" : "One";
        hands_.renameSheet(book_, first_, name);
        first_ = name;
        break;
      }
      case 3:
        goTo(anySheet(), cell());
        break;
      case 4:
        hands_.save(book_);
        break;
      case 5: {
        freeShown();
        const std::string name = std::to_string(++saved_) + ".xlsx";
        hands_.saveAs(book_, folder_ / name);
        book_ = name;
        file_ = folder_ / name;
        break;
      }
      case 6:
        hands_.save(book_);
        hands_.close(book_);
        open();
        break;
      case 7:
        hands_.copySheet(book_, anySheet(), "Copy" + std::to_string(++saved_));
        break;
      default:
        hands_.enter(book_, "Two", cell(), "5");
        if (once(2)) hands_.undo(book_);
    }
  }

  std::set<Line> hiddenNow() {
    std::set<Line> now;
    road_.use([&](CalcSpreadsheet& calc) {
      for (const Lines lines : {Lines::rows, Lines::columns})
        for (int number = 1; number <= (lines == Lines::rows ? rows : columns); ++number)
          if (calc.hidden(place(on(first_, "A1"), {lines, number}), lines) == true)
            now.insert({lines, number});
    });
    return now;
  }

  std::size_t marks() {
    std::size_t count = 0;
    road_.use([&](CalcSpreadsheet& calc) {
      for (const std::string& sheet : calc.worksheets(book_))
        for (const FormatCondition& each : calc.formatConditions(on(sheet, "A1:XFD1048576")))
          count += each.formula == "=\"QXZ\"=\"QXZ\"" ? 1 : 0;
    });
    return count;
  }

  // What two connections of a process share belongs to the first of them, so the road's has to be
  // that one.
  PrivateOffice& connected() {
    road_.use([](CalcSpreadsheet& calc) { calc.workbooks(); });
    return road_.office();
  }

  void expectRecorded() {
    EXPECT_TRUE(!road_.store().load().empty() || marks() == 0);
    std::set<Line> shown = free_;
    for (const UnhideStore::Record& record : road_.unhidden().load()) {
      for (const auto& run : record.rows)
        for (auto i = run[0]; i <= run[1]; ++i) shown.insert({Lines::rows, static_cast<int>(i)});
      for (const auto& run : record.cols)
        for (auto i = run[0]; i <= run[1]; ++i) shown.insert({Lines::columns, static_cast<int>(i)});
    }
    const std::set<Line> now = hiddenNow();
    for (const Line& line : hidden_)
      EXPECT_TRUE(now.contains(line) || shown.contains(line)) << line.second;
    for (const Line& line : now) EXPECT_TRUE(hidden_.contains(line)) << line.second;
  }

  void expectNothingLeft() {
    goTo("Home", "A1");
    road_.bridge().restoreStranded();
    EXPECT_EQ(marks(), 0U);
    EXPECT_FALSE(std::filesystem::exists(road_.store().url()));
    EXPECT_FALSE(std::filesystem::exists(road_.unhidden().url()));
    const std::set<Line> now = hiddenNow();
    for (const Line& line : hidden_)
      EXPECT_TRUE(now.contains(line) || free_.contains(line)) << line.second;
    for (const Line& line : now) EXPECT_TRUE(hidden_.contains(line)) << line.second;
    hands_.setModified(book_, false);
    hands_.enter(book_, "Home", "A1", "7");
    EXPECT_NE(hands_.stateOf(book_).find("locked: 0\nmodified: 1"), std::string::npos);
    hands_.undo(book_);
  }

  TemporaryFolder folder_;
  CalcRoad road_;
  UserHands hands_{connected().open()};
  std::mt19937 random_;
  int saved_ = 0;  // under another name, or copied
  std::string book_, first_;
  std::filesystem::path file_;
  std::set<Line> hidden_;  // at first, on the first sheet
  std::set<Line> free_;    // those that may stay visible
};

TEST_F(CalcMarksProperty, EveryMarkCanBeTakenBack) {
  const int sequences = numberFrom("QUORIN_SEQUENCES", 30);
  const int first = numberFrom("QUORIN_SEED", 1);
  for (int seed = first; seed < first + sequences && !HasFailure(); ++seed) {
    // Loading a file is what takes longest: several sequences share one.
    constexpr int each = 10;
    const int start = seed - (seed - first) % each;
    SCOPED_TRACE("QUORIN_SEED=" + std::to_string(start) + ", at " + std::to_string(seed));
    if (seed == start) {
      if (!book_.empty()) hands_.close(book_);
      begin(static_cast<unsigned>(seed));
    } else {
      goOn(static_cast<unsigned>(seed));
    }
    for (int i = pick(2, 8); i > 0 && !HasFailure(); --i) {
      if (once(2)) {
        userEdit();
      } else {
        verb();
      }
      expectRecorded();
    }
    expectNothingLeft();
  }
}

}  // namespace
}  // namespace quorin::host::calc
