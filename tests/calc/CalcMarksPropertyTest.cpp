// Random sequences of marking, revealing and clearing in an office, between what the user does
// there in two workbooks of one name: entering, undoing, inserting and deleting rows, filtering,
// grouping, renaming, copying and deleting sheets, copying them to the other workbook, saving,
// saving under another name, closing and opening again. At no time is anything hidden that was not,
// or marked that the records do not account for, and in the end nothing is left: every row is
// hidden again that was, on whichever sheet and wherever the edits have moved it, and no sheet has
// a mark. $QUORIN_SEQUENCES sets their number, $QUORIN_SEED where they begin.
//
// What the user has made of a row himself stays: filtering shows or hides each row of the filter
// anew, and opening a group shows all of it, whoever had hidden it. A group all of whose rows we
// had shown is no exception that he could see, but the office tells nobody that he has opened it:
// they are hidden again. The copy of a sheet has hidden what the sheet had, without what we have
// shown.
#include <algorithm>
#include <array>
#include <com/sun/star/uno/Exception.hpp>
#include <cppuhelper/exc_hlp.hxx>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <optional>
#include <random>
#include <set>
#include <utility>

#include "host/calc/uno/Text.h"
#include "kit/value/Marshal.h"
#include "tests/calc/CalcRoad.h"
#include "tests/calc/UserHands.h"
#include "tests/calc/XlsxFile.h"

namespace quorin::host::calc {
namespace {

using Array = JSONValue::Array;
using Row = std::pair<Axis, int>;

int numberFrom(const char* variable, int otherwise) {
  const char* const text = std::getenv(variable);
  return text ? std::atoi(text) : otherwise;
}

class CalcMarksProperty : public testing::Test {
 protected:
  static constexpr int rows = 9, columns = 6;  // among which some are hidden at first
  static constexpr int labelled = 30;          // rows with a label of their own in column H
  static constexpr int lookedAt = 80;          // rows; edits have not moved labels beyond
  // Rows that the user filters, the first of which is the header, and those that he groups.
  using Span = std::pair<int, int>;
  static constexpr Span toFilter{12, 17}, toGroup{20, 23};
  struct Sheet {
    std::string name, otherName;
    int labels = 0;             // that of row 1 was one more at first
    std::set<Row> hidden = {};  // rows by their labels, columns by their numbers
    bool isFiltered = false, isGrouped = false, isCollapsed = false, isCopy = false;
  };
  struct Book {
    std::string path;  // the end of it, by which the user's hands know it
    std::filesystem::path file;
    std::string name;  // as it is called to us
    std::vector<Sheet> sheets;
  };

  int pick(int from, int to) { return std::uniform_int_distribution<int>(from, to)(random_); }
  bool once(int in) { return pick(1, in) == 1; }

  Book& front() { return books_.at(front_); }
  Book& other() { return books_.at(1 - front_); }

  RangeRef on(const std::string& sheet, const std::string& address) {
    return {{front().name, sheet}, parseA1(address).value()};
  }

  std::string cell() {
    return columnLetters(pick(1, columns)) + std::to_string(pick(1, once(3) ? 40 : rows));
  }
  // Among the rows that are filtered and grouped, before they have moved.
  std::string cellsToFind() {
    const int row = pick(toFilter.first, toGroup.second);
    return "A" + std::to_string(row) + ":F" + std::to_string(row + pick(0, 3));
  }
  Sheet& anySheet() {
    return front().sheets.at(static_cast<std::size_t>(pick(1, ssize(front().sheets))) - 1);
  }
  static int ssize(const std::vector<Sheet>& sheets) { return static_cast<int>(sheets.size()); }

  void bringToFront(std::size_t book) {
    front_ = book;
    goTo("Home", "A1");
  }

  // In the workbooks of the sequence before, as that left them.
  void goOn(unsigned seed) {
    random_.seed(seed);
    bringToFront(static_cast<std::size_t>(pick(0, 1)));
  }

  void begin(unsigned seed) {
    doing_ = "beginning";
    random_.seed(seed);
    for (const Book& book : books_)
      if (!book.path.empty()) hands_.close(book.path);
    books_ = {};
    for (front_ = 0; front_ < books_.size(); ++front_) {
      front().path =
          (front_ == 0 ? "left/Property" : "right/Property") + std::to_string(seed) + ".xlsx";
      front().file = folder_ / front().path;
      std::filesystem::create_directories(front().file.parent_path());
      makeWorkbook(front());
    }
    bringToFront(static_cast<std::size_t>(pick(0, 1)));
  }

  void makeWorkbook(Book& book) {
    book.sheets = {{"One", "Uno", 100}, {"Two", "Due", 200}};
    fakes::SheetDescription one{"One", {{"A1", 1.0}}, false, {{"B2:B5", "=$B2>1"}}};
    fakes::SheetDescription two{"Two", {{"C3", 2.0}}};
    for (int row = 1; row <= labelled; ++row) {
      one.cells.push_back({"H" + std::to_string(row), 100.0 + row});
      two.cells.push_back({"H" + std::to_string(row), 200.0 + row});
    }
    fakes::writeXlsx({.name = book.path, .sheets = {one, two, {"Home", {{"A1", 1.0}}}}}, book.file);
    open(book);
    for (Sheet& sheet : book.sheets) {
      for (int i = pick(1, 4); i > 0; --i) {
        if (once(2)) {
          hands_.hideRows(book.path, sheet.name, "A" + std::to_string(pick(1, rows)));
        } else {
          hands_.hideColumns(book.path, sheet.name, columnLetters(pick(1, columns)) + "1");
        }
      }
      sheet.hidden = hiddenNow(sheet);
    }
    hands_.save(book.path);
  }

  // Asks how the workbook is called; the other one keeps its name.
  void nameAnew(Book& book) {
    const Book& another = &book == &front() ? other() : front();
    road_.use([&](CalcSpreadsheet& calc) {
      for (const std::string& name : calc.workbooks())
        if (name != another.name) book.name = name;
    });
  }

  void open(Book& book) {
    road_.open(book.file);
    nameAnew(book);
    goTo("Home", "A1");
  }
  void goTo(const std::string& sheet, const std::string& address) {
    road_.use([&](CalcSpreadsheet& calc) { calc.goTo(on(sheet, address)); });
  }

  std::string ask(const std::string& verb, Array args = {}) {
    doing_ = verb;
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
        ask("reveal", {Array{anySheet().name + "!" +
                             (once(2) ? cell() + (once(3) ? ":F9" : "") : cellsToFind())},
                       0});
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

  // The office hides a row that is inserted below a hidden one, right beside a group too.
  void insertRows(Sheet& sheet) {
    const int first = pick(1, labelled), count = pick(1, 3);
    if (const auto place = placeOf(sheet, toGroup); place && first == place->second + 1) return;
    hands_.insertRows(front().path, sheet.name, first, count);
    for (int row = first; row < first + count; ++row)
      hands_.enter(front().path, sheet.name, "H" + std::to_string(row),
                   std::to_string(++lastLabel_));
    for (const Row& each : hiddenNow(sheet))
      if (each.second > lastLabel_ - count) sheet.hidden.insert(each);
  }

  void removeRows(Sheet& sheet) {
    const int first = pick(1, labelled), count = pick(1, 3);
    const std::vector<int> labels = labelsOf(sheet);
    for (int row = first; row < first + count; ++row)
      sheet.hidden.erase({Axis::rows, labels.at(static_cast<std::size_t>(row) - 1)});
    hands_.removeRows(front().path, sheet.name, first, count);
  }

  // Where those of the rows are now that are left; none when none is.
  std::optional<Span> placeOf(const Sheet& sheet, const Span& rowsAtFirst) {
    std::optional<Span> place;
    int row = 0;
    for (const int label : labelsOf(sheet)) {
      ++row;
      if (label < sheet.labels + rowsAtFirst.first || label > sheet.labels + rowsAtFirst.second)
        continue;
      if (!place) place = {row, row};
      place->second = row;
    }
    return place;
  }

  // They are as the user has made them.
  void leaveToUser(Sheet& sheet, const Span& rowsNow) {
    const std::set<Row> now = hiddenNow(sheet);
    const std::vector<int> labels = labelsOf(sheet);
    for (int row = rowsNow.first; row <= rowsNow.second; ++row) {
      const Row each{Axis::rows, labels.at(static_cast<std::size_t>(row) - 1)};
      sheet.hidden.erase(each);
      if (now.contains(each)) sheet.hidden.insert(each);
    }
  }

  void filter(Sheet& sheet) {
    const auto place = placeOf(sheet, toFilter);
    if (sheet.isCopy || !place || place->first == place->second) return;
    const std::string cells =
        "H" + std::to_string(place->first) + ":H" + std::to_string(place->second);
    if (std::exchange(sheet.isFiltered, !sheet.isFiltered)) {
      hands_.endFilter(front().path, sheet.name, cells);
    } else {
      hands_.filter(front().path, sheet.name, cells, 0, std::to_string(sheet.labels + 14));
    }
    // Ending a filter takes no row for a header.
    leaveToUser(sheet, {sheet.isFiltered ? place->first + 1 : place->first, place->second});
  }

  // That a group is open tells only what is visible of it. Hidden rows right beside it could as
  // well be of it, so there is none at such times.
  void group(Sheet& sheet) {
    const auto place = placeOf(sheet, toGroup);
    if (sheet.isCopy || !place) return;
    const std::string cells =
        "A" + std::to_string(place->first) + ":A" + std::to_string(place->second);
    const std::set<Row> before = hiddenNow(sheet);
    const std::vector<int> labels = labelsOf(sheet);
    bool isToBeSeen = false;
    for (int row = place->first - 1; row <= place->second + 1; ++row) {
      const Row each{Axis::rows, labels.at(static_cast<std::size_t>(row) - 1)};
      const bool isBeside = row < place->first || row > place->second;
      if (isBeside && sheet.hidden.contains(each)) return;
      isToBeSeen = isToBeSeen || before.contains(each);
    }
    if (!std::exchange(sheet.isGrouped, true)) hands_.groupRows(front().path, sheet.name, cells);
    if (std::exchange(sheet.isCollapsed, !sheet.isCollapsed)) {
      hands_.expandRows(front().path, sheet.name, cells);
      if (isToBeSeen) leaveToUser(sheet, *place);
    } else {
      hands_.collapseRows(front().path, sheet.name, cells);
      leaveToUser(sheet, *place);
    }
  }

  void copy(const Sheet& sheet, bool toOther) {
    constexpr std::size_t mostSheets = 5;
    const std::size_t to = toOther ? 1 - front_ : front_;
    Book& book = books_.at(to);
    if (book.sheets.size() >= mostSheets) return;
    Sheet fresh{"Copy" + std::to_string(++saved_), "Other" + std::to_string(saved_), sheet.labels,
                sheet.hidden};
    fresh.isCopy = true;
    if (toOther) {
      copyToOther(sheet, fresh.name);
    } else {
      hands_.copySheet(book.path, sheet.name, fresh.name);
    }
    book.sheets.push_back(fresh);
    marks();  // whoever asks for anything sees no difference any more
    const std::size_t from = std::exchange(front_, to);
    EXPECT_EQ(hiddenNow(fresh), fresh.hidden) << "at once, on " << fresh.name;
    front_ = from;
  }

  void copyToOther(const Sheet& sheet, const std::string& fresh) {
    const std::vector<std::string> before = hands_.sheets(other().path);
    hands_.copySheetTo(front().path, sheet.name, other().path);
    for (const std::string& name : hands_.sheets(other().path))
      if (std::find(before.begin(), before.end(), name) == before.end())
        hands_.renameSheet(other().path, name, fresh);
  }

  void userEdit() {
    Sheet& sheet = anySheet();
    Book& book = front();
    const int edit = pick(0, 14);
    doing_ = "edit " + std::to_string(edit) + " on " + book.path + " " + sheet.name;
    switch (edit) {
      case 0:
        insertRows(sheet);
        break;
      case 1:
        removeRows(sheet);
        break;
      case 2:
        hands_.renameSheet(book.path, sheet.name, sheet.otherName);
        std::swap(sheet.name, sheet.otherName);
        break;
      case 3:
        goTo(sheet.name, cell());
        break;
      case 4:
        hands_.save(book.path);
        break;
      case 5: {
        const std::string name = std::to_string(++saved_) + ".xlsx";
        book.file = book.file.parent_path() / name;
        hands_.saveAs(book.path, book.file);
        book.path = (book.file.parent_path().filename() / name).string();
        nameAnew(book);
        break;
      }
      case 6:
        hands_.save(book.path);
        hands_.close(book.path);
        open(book);
        // An unnamed filter is not in the file, what it hid is.
        for (Sheet& each : book.sheets) each.isFiltered = false;
        break;
      case 7:
        copy(Sheet(sheet), false);
        break;
      case 8:
        copy(Sheet(sheet), true);
        break;
      case 9:
        if (book.sheets.size() < 2 || once(2)) break;
        hands_.deleteSheet(book.path, sheet.name);
        std::erase_if(book.sheets,
                      [gone = sheet.name](const Sheet& each) { return each.name == gone; });
        break;
      case 10:
        filter(sheet);
        break;
      case 11:
        group(sheet);
        break;
      case 12:
        bringToFront(1 - front_);
        break;
      default:
        hands_.enter(book.path, sheet.name, cell(), "5");
        if (once(2)) hands_.undo(book.path);
    }
  }

  std::set<Row> hiddenNow(const Sheet& sheet) {
    const std::vector<int> labels = labelsOf(sheet);
    std::set<Row> now;
    for (const int label : labels) now.insert({Axis::rows, label});
    for (int column = 1; column <= columns; ++column) now.insert({Axis::columns, column});
    const auto seen = [&](const std::string& cells) {
      std::vector<Area> areas;
      road_.use([&](CalcSpreadsheet& calc) {
        if (const auto visible = calc.visibleCells(on(sheet.name, cells))) areas = visible->areas;
      });
      return areas;
    };
    for (const Area& area : seen("H1:H" + std::to_string(lookedAt)))
      for (int row = area.firstRow; row <= area.lastRow; ++row)
        now.erase({Axis::rows, labels.at(static_cast<std::size_t>(row) - 1)});
    for (const Area& area : seen("A90:F90"))
      for (int column = area.firstColumn; column <= area.lastColumn; ++column)
        now.erase({Axis::columns, column});
    return now;
  }

  // On all sheets of all workbooks.
  std::size_t marks() {
    std::size_t count = 0;
    road_.use([&](CalcSpreadsheet& calc) {
      for (const std::string& book : calc.workbooks())
        for (const std::string& sheet : calc.worksheets(book))
          for (const FormatCondition& each :
               calc.formatConditions({{book, sheet}, {{1, 1, maxRow, maxColumn}}}))
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
    const bool areMarked = marks() != 0;
    EXPECT_TRUE(!road_.store().load().empty() || !areMarked);
    for (const Sheet& sheet : front().sheets) {
      for (const Row& each : hiddenNow(sheet))
        EXPECT_TRUE(sheet.hidden.contains(each)) << sheet.name << " " << each.second;
    }
  }

  void expectNothingLeft() {
    ask("select", {Array{"Home!A1"}});
    road_.bridge().restoreStranded();
    EXPECT_EQ(marks(), 0U);
    EXPECT_FALSE(std::filesystem::exists(road_.store().url()));
    EXPECT_FALSE(std::filesystem::exists(road_.unhidden().url()));
    for (int i = 0; i < 2; ++i) {
      front_ = 1 - front_;
      for (const Sheet& sheet : front().sheets)
        EXPECT_EQ(hiddenNow(sheet), sheet.hidden) << front().name << " " << sheet.name;
      hands_.setModified(front().path, false);
      hands_.enter(front().path, "Home", "A1", "7");
      EXPECT_NE(hands_.stateOf(front().path).find("locked: 0\nmodified: 1"), std::string::npos);
      hands_.undo(front().path);
    }
  }

  void act() {
    if (once(2)) {
      userEdit();
    } else {
      verb();
    }
    expectRecorded();
  }

  TemporaryFolder folder_;
  CalcRoad road_;
  UserHands hands_{connected().open()};
  std::mt19937 random_;
  std::string doing_;  // what the user does, or we, now
  int saved_ = 0;      // under another name, or copied
  int lastLabel_ = 1000;
  std::array<Book, 2> books_;
  std::size_t front_ = 0;  // the one of them that is in front
};

TEST_F(CalcMarksProperty, EveryMarkCanBeTakenBack) {
  const int sequences = numberFrom("QUORIN_SEQUENCES", 30);
  const int first = numberFrom("QUORIN_SEED", 1);
  for (int seed = first; seed < first + sequences && !HasFailure(); ++seed) {
    // Loading a file is what takes longest: several sequences share one.
    constexpr int each = 10;
    const int start = seed - (seed - first) % each;
    SCOPED_TRACE("QUORIN_SEED=" + std::to_string(start) + ", at " + std::to_string(seed));
    try {
      if (seed == start) {
        begin(static_cast<unsigned>(seed));
      } else {
        goOn(static_cast<unsigned>(seed));
      }
      for (int i = pick(2, 8); i > 0 && !HasFailure(); --i) act();
      expectNothingLeft();
    } catch (const css::uno::Exception& refused) {
      ADD_FAILURE() << doing_ << ": " << toText(cppu::getCaughtException().getValueTypeName())
                    << " " << toText(refused.Message);
    }
  }
}

}  // namespace
}  // namespace quorin::host::calc
