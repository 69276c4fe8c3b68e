// Random sequences of marking, revealing and clearing in an office, between what the user does
// there: entering, undoing, inserting and deleting rows, renaming, copying and deleting sheets,
// saving, saving under another name, closing and opening again. At no time is anything hidden that
// was not, or marked that the records do not account for, and in the end nothing is left: every
// line is hidden again that was, on whichever sheet and wherever the edits have moved it.
// $QUORIN_SEQUENCES sets their number, $QUORIN_SEED where they begin.
//
// What the user's edits leave: marks go with their cells, and a request for what the records know
// takes them away also where they have moved to, or where a sheet or the workbook has another name
// now. There is none on the copy of a sheet. On such a copy, a line is visible that was shown when
// the user copied it: the copy is as he saw it.
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
  static constexpr int rows = 9, columns = 6;  // among which some are hidden at first
  static constexpr int labelled = 30;          // rows with a label of their own in column H
  static constexpr int lookedAt = 80;          // rows; edits have not moved labels beyond
  struct Sheet {
    std::string name, otherName;
    std::set<Line> hidden;  // rows by their labels, columns by their numbers
  };

  int pick(int from, int to) { return std::uniform_int_distribution<int>(from, to)(random_); }
  bool once(int in) { return pick(1, in) == 1; }

  RangeRef on(const std::string& sheet, const std::string& address) const {
    return {{book_, sheet}, parseA1(address).value()};
  }

  std::string cell() {
    return columnLetters(pick(1, columns)) + std::to_string(pick(1, once(3) ? 40 : rows));
  }
  Sheet& anySheet() { return sheets_.at(static_cast<std::size_t>(pick(1, ssize(sheets_))) - 1); }
  static int ssize(const std::vector<Sheet>& sheets) { return static_cast<int>(sheets.size()); }

  // In the workbook of the sequence before, as that left it.
  void goOn(unsigned seed) {
    random_.seed(seed);
    goTo("Home", "A1");
  }

  void begin(unsigned seed) {
    random_.seed(seed);
    book_ = "Property" + std::to_string(seed) + ".xlsx";
    file_ = folder_ / book_;
    sheets_ = {{"One", "Uno", {}}, {"Two", "Due", {}}};
    fakes::SheetDescription one{"One", {{"A1", 1.0}}, false, {{"B2:B5", "=$B2>1"}}};
    fakes::SheetDescription two{"Two", {{"C3", 2.0}}};
    for (int row = 1; row <= labelled; ++row) {
      one.cells.push_back({"H" + std::to_string(row), 100.0 + row});
      two.cells.push_back({"H" + std::to_string(row), 200.0 + row});
    }
    fakes::writeXlsx({.name = book_, .sheets = {one, two, {"Home", {{"A1", 1.0}}}}}, file_);
    open();
    for (Sheet& sheet : sheets_) {
      for (int i = pick(1, 4); i > 0; --i) {
        if (once(2)) {
          hands_.hideRows(book_, sheet.name, "A" + std::to_string(pick(1, rows)));
        } else {
          hands_.hideColumns(book_, sheet.name, columnLetters(pick(1, columns)) + "1");
        }
      }
      sheet.hidden = hiddenNow(sheet);
    }
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

  void verb() {
    switch (pick(0, 5)) {
      case 0:
        ask("clearMarks");
        break;
      case 1:
      case 2:
        ask("reveal", {Array{anySheet().name + "!" + cell() + (once(3) ? ":F9" : "")}, 0});
        break;
      default: {
        Array addresses;
        const std::string one = anySheet().name;
        for (int i = pick(1, 6); i > 0; --i)
          addresses.push_back((once(5) ? anySheet().name : one) + "!" + cell());
        ask("markCells", {addresses, Array{pick(0, 1) * 255, 0, 0}});
      }
    }
  }

  // Of the first rows; 0 for one without.
  std::vector<int> labelsOf(const Sheet& sheet) {
    std::vector<int> labels;
    road_.use([&](CalcSpreadsheet& calc) {
      const auto values = calc.values(on(sheet.name, "H1:H" + std::to_string(lookedAt)));
      for (const CellValue& value : values.cells) {
        const double* const number = std::get_if<double>(&value);
        labels.push_back(number ? static_cast<int>(*number) : 0);
      }
    });
    return labels;
  }

  // The office hides a row that is inserted below a hidden one.
  void insertRows(Sheet& sheet) {
    const int first = pick(1, labelled), count = pick(1, 3);
    hands_.insertRows(book_, sheet.name, first, count);
    for (int row = first; row < first + count; ++row)
      hands_.enter(book_, sheet.name, "H" + std::to_string(row), std::to_string(++lastLabel_));
    for (const Line& line : hiddenNow(sheet))
      if (line.second > lastLabel_ - count) sheet.hidden.insert(line);
  }

  void removeRows(Sheet& sheet) {
    const int first = pick(1, labelled), count = pick(1, 3);
    const std::vector<int> labels = labelsOf(sheet);
    for (int row = first; row < first + count; ++row)
      sheet.hidden.erase({Lines::rows, labels.at(static_cast<std::size_t>(row) - 1)});
    hands_.removeRows(book_, sheet.name, first, count);
  }

  void userEdit() {
    Sheet& sheet = anySheet();
    switch (pick(0, 10)) {
      case 0:
        insertRows(sheet);
        break;
      case 1:
        removeRows(sheet);
        break;
      case 2:
        hands_.renameSheet(book_, sheet.name, sheet.otherName);
        std::swap(sheet.name, sheet.otherName);
        break;
      case 3:
        goTo(sheet.name, cell());
        break;
      case 4:
        hands_.save(book_);
        break;
      case 5: {
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
        hands_.copySheet(book_, sheet.name, "Copy" + std::to_string(++saved_));
        break;
      case 8:
        if (sheets_.size() < 2 || once(2)) break;
        hands_.deleteSheet(book_, sheet.name);
        std::erase_if(sheets_,
                      [gone = sheet.name](const Sheet& each) { return each.name == gone; });
        break;
      default:
        hands_.enter(book_, sheet.name, cell(), "5");
        if (once(2)) hands_.undo(book_);
    }
  }

  std::set<Line> hiddenNow(const Sheet& sheet) {
    const std::vector<int> labels = labelsOf(sheet);
    std::set<Line> now;
    for (const int label : labels) now.insert({Lines::rows, label});
    for (int column = 1; column <= columns; ++column) now.insert({Lines::columns, column});
    const auto seen = [&](const std::string& cells) {
      std::vector<Area> areas;
      road_.use([&](CalcSpreadsheet& calc) {
        if (const auto visible = calc.visibleCells(on(sheet.name, cells))) areas = visible->areas;
      });
      return areas;
    };
    for (const Area& area : seen("H1:H" + std::to_string(lookedAt)))
      for (int row = area.firstRow; row <= area.lastRow; ++row)
        now.erase({Lines::rows, labels.at(static_cast<std::size_t>(row) - 1)});
    for (const Area& area : seen("A90:F90"))
      for (int column = area.firstColumn; column <= area.lastColumn; ++column)
        now.erase({Lines::columns, column});
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
    for (const Sheet& sheet : sheets_) {
      for (const Line& line : hiddenNow(sheet))
        EXPECT_TRUE(sheet.hidden.contains(line)) << sheet.name << " " << line.second;
    }
  }

  void expectNothingLeft() {
    ask("select", {Array{"Home!A1"}});
    road_.bridge().restoreStranded();
    EXPECT_EQ(marks(), 0U);
    EXPECT_FALSE(std::filesystem::exists(road_.store().url()));
    EXPECT_FALSE(std::filesystem::exists(road_.unhidden().url()));
    for (const Sheet& sheet : sheets_) EXPECT_EQ(hiddenNow(sheet), sheet.hidden) << sheet.name;
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
  int lastLabel_ = 1000;
  std::string book_;
  std::filesystem::path file_;
  std::vector<Sheet> sheets_;
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
