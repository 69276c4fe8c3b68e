// Random sequences of marking, revealing and clearing, with an Excel that fails at random places,
// between what the user does there: inserting and deleting rows, renaming and copying sheets,
// saving, saving under another name, closing and opening again. At no time is anything marked or
// unhidden that the records do not know, but for what the user's edits have carried away from them,
// and in the end everything else is as it was. $QUORIN_SEQUENCES sets their number, $QUORIN_SEED
// where they begin.
//
// What the user's edits leave: marks are format conditions and go with their cells, to the copy of
// a sheet too, and into the file; the records hold the addresses and names as they were. A record
// whose sheet or workbook is gone has all marks taken away, wherever they are, and one whose cells
// have moved those of its sheet. But a mark may stay on the copy of its sheet under a name of the
// user's, as one of several of a sheet that alone was moved, where it came back with the file and
// a record knows a later one in its place, and where Excel failed while all of a sheet or workbook
// were looked for. Rows that are shown when the records lose them stay shown. Rows are inserted
// and deleted below the hidden ones: Excel knows those by their numbers alone.
#include <algorithm>
#include <cstdlib>
#include <map>
#include <random>
#include <set>
#include <tuple>
#include <utility>

#include "tests/kit/road/RoadFixture.h"

namespace quorin {
namespace {

using host::Axis;

// A sanitizer makes each take ten times as long, and finds what it finds in few.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int usualSequences = 50;
#else
constexpr int usualSequences = 500;
#endif

int numberFrom(const char* variable, int otherwise) {
  const char* const text = std::getenv(variable);
  return text ? std::atoi(text) : otherwise;
}

using Cell = std::pair<int, int>;
using Row = std::pair<int, int>;                      // 0 and a row, 1 and a column
using Marks = std::map<std::string, std::set<Cell>>;  // by sheet; none without any

// What `marks` has and `others` have not, or have too.
Marks chosen(const Marks& marks, const Marks& others, bool common) {
  Marks found;
  for (const auto& [sheet, cells] : marks)
    for (const Cell& cell : cells)
      if ((others.contains(sheet) && others.at(sheet).contains(cell)) == common)
        found[sheet].insert(cell);
  return found;
}

// A row of 0 is none.
template <typename RowNow>
void moveRows(Marks& marks, const std::string& sheet, RowNow now) {
  const std::set<Cell> before = std::exchange(marks[sheet], {});
  for (const auto& [row, column] : before)
    if (const int there = now(row); there != 0) marks[sheet].insert({there, column});
}

class MarksProperty : public RoadFixture {
 protected:
  static constexpr int rows = 24, columns = 8;
  static constexpr int rowsToHide = 9;  // and rows are inserted and deleted below

  static fakes::WorkbookDescription book(const std::string& name) {
    fakes::WorkbookDescription description{.name = name, .sheets = {}};
    description.sheets.push_back({"One", {{"A1", 1.0}}, false, {{"B2:B5", "=$B2>1"}}});
    description.sheets.push_back({"Two", {{"C3", 2.0}}});
    return description;
  }

  int pick(int from, int to) { return std::uniform_int_distribution<int>(from, to)(random_); }
  std::string sheet() { return pick(0, 2) == 0 ? "Two" : first_; }
  std::string anySheet() {  // copies too
    const std::vector<std::string> all = memory_->worksheets(name_);
    return all[static_cast<std::size_t>(pick(0, static_cast<int>(all.size()) - 1))];
  }
  std::string cell() {
    return host::columnLetters(pick(1, columns)) + std::to_string(pick(1, rows));
  }

  void begin(unsigned seed) {
    random_.seed(seed);
    store_.clear();
    unhide_.clear();
    excel_->forget();
    if (!name_.empty()) memory_->close(name_);
    name_ = "B" + std::to_string(seed) + ".xlsx";
    first_ = "One";
    others_ = 0;
    unknown_ = false;
    strays_.clear();
    free_.clear();
    hiddenAtFirst_.clear();
    for (int i = pick(0, 3); i > 0; --i) {
      const int kind = pick(0, 1);
      hiddenAtFirst_.insert({kind, pick(1, kind == 0 ? rowsToHide : columns)});
    }
    memory_->open(book(name_));
    for (const auto& [kind, number] : hiddenAtFirst_)
      memory_->setHidden(on(name_, "One", rowAddress(kind == 0, number)),
                         kind == 0 ? Axis::rows : Axis::columns, true);
    save({});
  }

  static std::string rowAddress(bool row, int number) {
    const std::string name = row ? std::to_string(number) : host::columnLetters(number);
    return name + ":" + name;
  }

  void failSometimes() {
    excel_->forget();
    if (pick(0, 2) != 0) return;
    unknown_ = unknown_ || leadNowhere();
    constexpr int mute[] = {-1712, -609, -600, -10000};
    const AppleEventError error{mute[pick(0, 3)], "Something failed.", {}};
    const int number = pick(1, 80);
    if (pick(0, 1) == 0)
      excel_->failAt(number, error);
    else
      excel_->loseAnswerOf(number, error);
  }

  void step() {
    failSometimes();
    switch (pick(0, 10)) {
      case 0:
      case 1:
        ask("clearMarks");
        break;
      case 2:
      case 3:
      case 4:
        ask("reveal", {texts({sheet() + "!" + cell() + (pick(0, 1) ? "" : ":H24")}), 0});
        break;
      case 5:
        memory_->goTo(on(name_, sheet(), cell()));
        break;
      case 6:
      case 7:
        userEdit();
        break;
      default: {
        std::vector<std::string> addresses;
        const bool several = pick(0, 4) == 0;
        const std::string one = pick(0, 5) == 0 ? anySheet() : sheet();
        for (int i = pick(0, 5) == 0 ? pick(41, 60) : pick(1, 5); i > 0; --i)
          addresses.push_back((several ? sheet() : one) + "!" + cell());
        ask("markCells", {texts(addresses), Array{pick(0, 1) * 255, 0, 0}});
      }
    }
  }

  // The model of what each edit leaves, and the spreadsheet's own word that it is so.
  void userEdit() {
    excel_->forget();
    for (const HighlightStore::Record& record : store_.load())
      unknown_ = unknown_ || record.single != true;
    Marks expected = marksNow();
    const std::string sheet = anySheet();
    const int row = pick(rowsToHide + 1, rows), count = pick(1, 3);
    switch (pick(0, 6)) {
      case 0:
        memory_->userInsertsRows({name_, sheet}, row, count);
        moveRows(expected, sheet, [&](int old) { return old < row ? old : old + count; });
        break;
      case 1:
        memory_->userDeletesRows({name_, sheet}, row, count);
        moveRows(expected, sheet, [&](int old) {
          return old < row ? old : old < row + count ? 0 : old - count;
        });
        break;
      case 2: {
        const std::string name = first_ == "One" ? "Uno" : "One";
        memory_->userRenamesSheet({name_, first_}, name);
        expected[name] = std::exchange(expected[first_], {});
        first_ = name;
        break;
      }
      case 3: {
        const std::string copy = "Copy" + std::to_string(++others_);
        memory_->userCopiesSheet({name_, sheet}, copy);
        expected[copy] = expected[sheet];
        break;
      }
      case 4: {
        const std::string name = std::to_string(++others_) + name_;
        memory_->userSavesAs(name_, name);
        name_ = name;
        saved_ = {first_, expected};
        break;
      }
      default:
        if (pick(0, 1) == 0) save(expected);
        memory_->userReopens(name_);
        unknown_ = true;
        std::tie(first_, expected) = saved_;
    }
    std::erase_if(expected, [](const auto& each) { return each.second.empty(); });
    EXPECT_EQ(marksNow(), expected);
    strays_ = chosen(expected, recordedMarks(), false);
    free_ = lost();
  }

  void save(const Marks& marks) {
    memory_->userSaves(name_);
    saved_ = {first_, marks};
  }

  static void add(std::set<Cell>& cells, const host::Area& area) {
    for (int row = area.firstRow; row <= area.lastRow; ++row)
      for (int column = area.firstColumn; column <= area.lastColumn; ++column)
        cells.insert({row, column});
  }

  Marks marksNow() {
    Marks marks;
    for (const std::string& sheet : memory_->worksheets(name_))
      for (const host::FormatCondition& each : conditions(name_, sheet, true))
        for (const host::Area& area : each.areas) add(marks[sheet], area);
    return marks;
  }

  Marks recordedMarks() {
    Marks known;
    for (const HighlightStore::Record& record : store_.load())
      if (record.book == name_)
        for (const std::string& address : record.addrs)
          add(known[record.sheet], host::parseA1Area(address).value());
    return known;
  }

  // True if there is a record whose workbook or sheet has another name now.
  bool leadNowhere() {
    const std::vector<std::string> sheets = memory_->worksheets(name_);
    for (const HighlightStore::Record& record : store_.load())
      if (record.book != name_ ||
          std::find(sheets.begin(), sheets.end(), record.sheet) == sheets.end())
        return true;
    return false;
  }

  bool hasRecord(const std::string& sheet) {
    const HighlightStore::Records all = store_.load();
    return std::any_of(all.begin(), all.end(), [&](const HighlightStore::Record& record) {
      return record.book == name_ && record.sheet == sheet;
    });
  }

  std::set<Row> recordedRows() {
    std::set<Row> unhidden;
    for (const UnhideStore::Record& record : unhide_.load()) {
      if (record.book != name_ || record.sheet != first_) continue;
      for (const auto& run : record.rows)
        for (auto i = run[0]; i <= run[1]; ++i) unhidden.insert({0, static_cast<int>(i)});
      for (const auto& run : record.cols)
        for (auto i = run[0]; i <= run[1]; ++i) unhidden.insert({1, static_cast<int>(i)});
    }
    return unhidden;
  }

  std::set<Row> hiddenNow() {
    std::set<Row> found;
    for (const bool row : {true, false})
      for (int number = 1; number <= (row ? rows : columns); ++number)
        if (memory_->hidden(on(name_, first_, rowAddress(row, number)),
                            row ? Axis::rows : Axis::columns) == true)
          found.insert({row ? 0 : 1, number});
    return found;
  }

  // Those of the rows hidden at first that are shown, and in no record.
  std::set<Row> lost() {
    std::set<Row> found = hiddenAtFirst_;
    for (const Row& each : hiddenNow()) found.erase(each);
    for (const Row& each : recordedRows()) found.erase(each);
    return found;
  }

  void expectRecorded() {
    excel_->forget();
    const Marks now = marksNow();
    EXPECT_EQ(chosen(chosen(now, recordedMarks(), false), strays_, false), Marks());
    strays_ = chosen(strays_, now, true);
    for (const Row& each : lost()) EXPECT_TRUE(free_.contains(each)) << each.second;
    for (const Row& each : hiddenNow())
      EXPECT_TRUE(hiddenAtFirst_.contains(each))
          << (each.first == 0 ? "row " : "column ") << each.second << " was not hidden before";
  }

  void expectNothingLeft() {
    excel_->forget();
    memory_->goTo(on(name_, "Two", "A1"));
    Marks left = leadNowhere() ? Marks() : chosen(strays_, recordedMarks(), false);
    if (!unknown_)
      for (const char* const sheet : {"One", "Uno", "Two"})
        if (hasRecord(sheet)) left.erase(sheet);
    std::set<Row> hidden = hiddenAtFirst_;
    for (const Row& each : free_) hidden.erase(each);
    bridge_.restoreStranded();
    EXPECT_EQ(chosen(marksNow(), left, false), Marks());
    EXPECT_EQ(hiddenNow(), hidden);
    EXPECT_TRUE(store_.load().empty());
    EXPECT_TRUE(unhide_.load().empty());
    EXPECT_EQ(conditions(name_, first_, false).size(), 1U);
  }

  std::mt19937 random_;
  std::string name_, first_;  // the workbook and its first sheet, as they are called now
  int others_ = 0;            // names so far
  // Marks came back with a file, one of several was moved, or Excel failed while they were looked
  // for.
  bool unknown_ = false;
  std::pair<std::string, Marks> saved_;  // the first sheet's name and the marks, in the file
  Marks strays_;                         // which the records do not know by the user's doing
  std::set<Row> hiddenAtFirst_;          // on the first sheet
  std::set<Row> free_;                   // of those, what stays shown
};

TEST_F(MarksProperty, EveryMarkIsRecordedAndCanBeTakenBack) {
  const int sequences = numberFrom("QUORIN_SEQUENCES", usualSequences);
  const int first = numberFrom("QUORIN_SEED", 1);
  for (int seed = first; seed < first + sequences && !HasFailure(); ++seed) {
    SCOPED_TRACE("QUORIN_SEED=" + std::to_string(seed));
    begin(static_cast<unsigned>(seed));
    for (int i = pick(1, 12); i > 0 && !HasFailure(); --i) {
      step();
      expectRecorded();
    }
    expectNothingLeft();
  }
}

}  // namespace
}  // namespace quorin
