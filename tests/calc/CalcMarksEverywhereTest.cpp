// Random sequences of marking and clearing in two workbooks of one name in folders of one name,
// between what the user does there: renaming, deleting and copying sheets, also into the other
// workbook, inserting and deleting rows, filtering, grouping, undoing, saving, closing and opening
// again. At no time is anything marked while nothing is recorded, and in the end there is no mark
// in any workbook. $QUORIN_SEQUENCES sets their number, $QUORIN_SEED where they begin.
#include <array>
#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>

#include "kit/value/Marshal.h"
#include "tests/calc/CalcRoad.h"
#include "tests/calc/UserHands.h"
#include "tests/calc/XlsxFile.h"
#include "tests/fakes/Eventually.h"

namespace quorin::host::calc {
namespace {

using Array = JSONValue::Array;

unsigned numberFrom(const char* variable, unsigned otherwise) {
  const char* const text = std::getenv(variable);
  return text ? static_cast<unsigned>(std::atoi(text)) : otherwise;
}

class CalcMarksEverywhere : public testing::Test {
 protected:
  static constexpr std::array books{"x/2025/Plan.xlsx", "y/2025/Plan.xlsx"};

  CalcMarksEverywhere() {
    for (const std::string book : books) {
      const std::filesystem::path file = folder_ / book;
      std::filesystem::create_directories(file.parent_path());
      fakes::SheetDescription one{"One", {{"A1", std::string("head")}, {"Z1", book}}};
      for (int row = 2; row <= 9; ++row)
        one.cells.push_back(
            {"A" + std::to_string(row), std::string(row % 2 == 0 ? "even" : "odd")});
      fakes::SheetDescription home{"Home", {{"Z1", book}}};
      fakes::writeXlsx({.name = "Plan.xlsx", .sheets = {one, {"Two", {}}, home}}, file);
      road_.open(file);
    }
  }

  int pick(int from, int to) { return std::uniform_int_distribution<int>(from, to)(random_); }
  bool once(int in) { return pick(1, in) == 1; }
  std::string anyBook() { return books.at(static_cast<std::size_t>(pick(0, 1))); }
  std::string anySheet(const std::string& book) {
    const std::vector<std::string> all = hands_.sheets(book);
    return all.at(static_cast<std::size_t>(pick(0, static_cast<int>(all.size()) - 1)));
  }
  std::string newName() { return "New" + std::to_string(++named_); }

  // Whatever it is called: by the text in its cell.
  void activate(const std::string& book) {
    road_.use([&](CalcSpreadsheet& calc) {
      for (const std::string& name : calc.workbooks()) {
        const RangeRef cell{{name, "Home"}, parseA1("Z1").value()};
        if (calc.values(cell).cells.front() == CellValue(book)) return calc.activateWorkbook(name);
      }
      throw std::runtime_error("not open: " + book);
    });
  }

  std::string ask(const std::string& verb, Array args = {}) {
    const Bridge::Reply reply = road_.bridge().dispatch(verb, args);
    EXPECT_TRUE(reply.ok) << verb << Marshal::encode(args) << Marshal::encode(reply.payload);
    return Marshal::encode(reply.payload);
  }

  void mark() {
    const std::string book = anyBook();
    activate(book);
    Array addresses;
    for (int i = pick(1, 6); i > 0; --i)
      addresses.push_back("'" + anySheet(book) + "'!" + columnLetters(pick(1, 3)) +
                          std::to_string(pick(1, 12)));
    ask("markCells", {addresses, Array{pick(0, 1) * 255, 0, 0}});
  }

  void userEdit() {
    const std::string book = anyBook(), sheet = anySheet(book);
    switch (pick(0, 9)) {
      case 0:
        if (sheet != "Home") hands_.renameSheet(book, sheet, newName());
        break;
      case 1:
        if (sheet != "Home") hands_.deleteSheet(book, sheet);
        break;
      case 2:
        hands_.copySheet(book, sheet, newName());
        break;
      case 3:
      case 4:
        hands_.copySheetTo(book, sheet, anyBook() == books[0] ? books[1] : books[0]);
        break;
      case 5:
        if (once(2)) {
          hands_.insertRows(book, sheet, pick(2, 9), 2);
        } else {
          hands_.removeRows(book, sheet, pick(2, 9), 2);
        }
        break;
      case 6:
        hands_.filter(book, sheet, "A1:A9", 0, once(2) ? "odd" : "even");
        break;
      case 7:
        hands_.groupRows(book, sheet, "A3:A5");
        if (once(2)) hands_.collapseRows(book, sheet, "A3:A5");
        break;
      case 8:
        hands_.save(book);
        if (once(2)) break;
        hands_.close(book);
        road_.open(folder_ / book);
        break;
      default:
        activate(book);  // the user undoes where he is
        hands_.enter(book, sheet, "B2", "5");
        for (int i = pick(0, 3); i > 0 && hands_.canUndo(book); --i) hands_.undo(book);
    }
  }

  std::string marks() {
    std::string found;
    for (const std::string book : books)
      for (const std::string& sheet : hands_.sheets(book))
        for (const std::string& shape :
             sheet.empty() ? std::vector<std::string>() : hands_.shapes(book, sheet))
          if (shape.starts_with("Quorin mark")) found += book + " " + sheet + ": " + shape + "\n";
    return found;
  }

  // What an undo brings back the keeper takes away in its own time.
  void expectRecorded() {
    if (!road_.store().load().empty()) return;
    EXPECT_TRUE(eventually([&] { return marks().empty(); })) << marks();
  }

  void expectNothingLeft() {
    road_.bridge().restoreStranded();
    EXPECT_FALSE(std::filesystem::exists(road_.store().url()));
    expectRecorded();
  }

  // What two connections of a process share belongs to the first of them, so the road's has to be
  // that one.
  PrivateOffice& connected() {
    road_.use([](CalcSpreadsheet& calc) { calc.workbooks(); });
    return road_.office();
  }

  TemporaryFolder folder_;
  CalcRoad road_;
  UserHands hands_{connected().open()};
  std::mt19937 random_;
  int named_ = 0;
};

TEST_F(CalcMarksEverywhere, AreTakenBack) {
  const unsigned sequences = numberFrom("QUORIN_SEQUENCES", 10);
  const unsigned first = numberFrom("QUORIN_SEED", 1);
  for (unsigned seed = first; seed < first + sequences && !HasFailure(); ++seed) {
    SCOPED_TRACE("QUORIN_SEED=" + std::to_string(first) + ", at " + std::to_string(seed));
    random_.seed(seed);
    mark();
    for (int i = pick(2, 8); i > 0 && !HasFailure(); --i) {
      if (once(4)) {
        mark();
      } else if (once(8)) {
        ask("clearMarks");
      } else {
        userEdit();
      }
      expectRecorded();
    }
    expectNothingLeft();
  }
}

// The office itself makes such sheets when a macro undoes in a workbook that is not in front: in
// the one that is. It finds no sheet by no name.
TEST_F(CalcMarksEverywhere, LeaveNoRecordOfASheetWithoutAName) {
  const std::string front = books[0], behind = books[1];
  std::string last;
  for (int i = 0; i < 3; ++i) hands_.copySheet(behind, "One", last = newName());
  hands_.enter(behind, last, "B2", "5");
  activate(front);
  hands_.undo(behind);
  ASSERT_THAT(hands_.sheets(front), testing::Contains(""));
  ask("markCells", {Array{"One!A1", "Two!B2"}, Array{255, 0, 0}});
  const auto refused =
      road_.bridge().dispatch("markCells", {Array{"''!C3", "One!A2"}, Array{0, 0, 0}});
  EXPECT_EQ(Marshal::encode(refused.payload),
            R"({"kind":"transport","message":"sheet not found: "})");
  EXPECT_EQ(ask("clearMarks"), R"({"removed":0})");
  EXPECT_FALSE(std::filesystem::exists(road_.store().url()));
  EXPECT_EQ(marks(), "");
  EXPECT_EQ(ask("evaluate", {"One!A1&\"er\""}), R"({"ok":true,"value":"header"})");
}

}  // namespace
}  // namespace quorin::host::calc
