// Random sequences of marking, revealing and clearing, with an Excel that fails at random places:
// at no time is anything marked or unhidden that the records do not know, and in the end everything
// is as it was. $QUORIN_SEQUENCES sets their number, $QUORIN_SEED where they begin.
#include <cstdlib>
#include <random>
#include <set>

#include "tests/kit/road/RoadFixture.h"

namespace quorin {
namespace {

using host::Lines;

int numberFrom(const char* variable, int otherwise) {
  const char* const text = std::getenv(variable);
  return text ? std::atoi(text) : otherwise;
}

using Cell = std::pair<int, int>;

class MarksProperty : public RoadFixture {
 protected:
  static constexpr int rows = 24, columns = 8;

  static fakes::WorkbookDescription book(const std::string& name) {
    fakes::WorkbookDescription description{.name = name, .sheets = {}};
    description.sheets.push_back({"One", {{"A1", 1.0}}, false, {{"B2:B5", "=$B2>1"}}});
    description.sheets.push_back({"Two", {{"C3", 2.0}}});
    return description;
  }

  int pick(int from, int to) { return std::uniform_int_distribution<int>(from, to)(random_); }
  std::string sheet() { return pick(0, 2) == 0 ? "Two" : "One"; }
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
    hiddenAtFirst_.clear();
    for (int i = pick(0, 3); i > 0; --i) {
      const int kind = pick(0, 1);
      hiddenAtFirst_.insert({kind, pick(1, kind == 0 ? rows : columns)});
    }
    open();
  }

  void open() {
    memory_->open(book(name_));
    for (const auto& [kind, line] : hiddenAtFirst_)
      memory_->setHidden(on(name_, "One", lineAddress(kind == 0, line)),
                         kind == 0 ? Lines::rows : Lines::columns, true);
  }

  static std::string lineAddress(bool row, int line) {
    const std::string name = row ? std::to_string(line) : host::columnLetters(line);
    return name + ":" + name;
  }

  void failSometimes() {
    excel_->forget();
    if (pick(0, 2) != 0) return;
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
    switch (pick(0, 9)) {
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
        if (pick(0, 3) == 0) {
          // Closed without saving, and opened again.
          memory_->close(name_);
          open();
        }
        break;
      default: {
        std::vector<std::string> addresses;
        const bool several = pick(0, 4) == 0;
        const std::string one = sheet();
        for (int i = pick(0, 5) == 0 ? pick(41, 60) : pick(1, 5); i > 0; --i)
          addresses.push_back((several ? sheet() : one) + "!" + cell());
        ask("markCells", {texts(addresses), Array{pick(0, 1) * 255, 0, 0}});
      }
    }
  }

  static void add(std::set<Cell>& cells, const host::Area& area) {
    for (int row = area.firstRow; row <= area.lastRow; ++row)
      for (int column = area.firstColumn; column <= area.lastColumn; ++column)
        cells.insert({row, column});
  }

  void expectRecorded() {
    excel_->forget();
    for (const char* const sheet : {"One", "Two"}) {
      std::set<Cell> known;
      for (const HighlightStore::Record& record : store_.load())
        if (record.book == name_ && record.sheet == sheet)
          for (const std::string& address : record.addrs)
            add(known, host::parseA1Area(address).value_or(host::Area{1, 1, 1, 1}));
      for (const host::FormatCondition& each : conditions(name_, sheet, true))
        for (const host::Area& area : each.areas) {
          std::set<Cell> marked;
          add(marked, area);
          for (const Cell& place : marked)
            EXPECT_TRUE(known.contains(place)) << sheet << " " << host::addressText({area});
        }
    }
    std::set<std::pair<int, int>> unhidden;
    for (const UnhideStore::Record& record : unhide_.load()) {
      if (record.book != name_ || record.sheet != "One") continue;
      for (const auto& run : record.rows)
        for (auto i = run[0]; i <= run[1]; ++i) unhidden.insert({0, static_cast<int>(i)});
      for (const auto& run : record.cols)
        for (auto i = run[0]; i <= run[1]; ++i) unhidden.insert({1, static_cast<int>(i)});
    }
    for (const auto& line : hiddenAtFirst_)
      if (!hiddenNow().contains(line)) {
        EXPECT_TRUE(unhidden.contains(line)) << line.second;
      }
    expectNoneHiddenBeside();
  }

  void expectNoneHiddenBeside() {
    for (const auto& line : hiddenNow())
      EXPECT_TRUE(hiddenAtFirst_.contains(line))
          << (line.first == 0 ? "row " : "column ") << line.second << " was not hidden before";
  }

  std::set<std::pair<int, int>> hiddenNow() {
    std::set<std::pair<int, int>> lines;
    for (const bool row : {true, false})
      for (int line = 1; line <= (row ? rows : columns); ++line)
        if (memory_->hidden(on(name_, "One", lineAddress(row, line)),
                            row ? Lines::rows : Lines::columns) == true)
          lines.insert({row ? 0 : 1, line});
    return lines;
  }

  void expectNothingLeft() {
    excel_->forget();
    memory_->goTo(on(name_, "Two", "A1"));
    bridge_.restoreStranded();
    EXPECT_EQ(marked(name_, "One") + marked(name_, "Two"), "");
    EXPECT_EQ(hiddenNow(), hiddenAtFirst_);
    EXPECT_TRUE(store_.load().empty());
    EXPECT_TRUE(unhide_.load().empty());
    EXPECT_EQ(conditions(name_, "One", false).size(), 1U);
  }

  std::mt19937 random_;
  std::string name_;
  std::set<std::pair<int, int>> hiddenAtFirst_;  // 0 and a row, 1 and a column
};

TEST_F(MarksProperty, EveryMarkIsRecordedAndCanBeTakenBack) {
  const int sequences = numberFrom("QUORIN_SEQUENCES", 500);
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
