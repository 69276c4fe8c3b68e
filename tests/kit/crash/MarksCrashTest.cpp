// Marking, moving, revealing and clearing, with the process killed at every point: every step of
// the stores and every call of the spreadsheet. The spreadsheet lives on in this process; a new one
// takes everything back.
//
// With $QUORIN_EVERY_POINT set these are all points. Otherwise, to be quick, it is every third, and
// under a sanitizer every fifth: what that finds does not depend on which one it is.
#include <gmock/gmock.h>
#include <set>

#include "host/Address.h"
#include "kit/marks/HighlightStore.h"
#include "kit/marks/UnhideStore.h"
#include "kit/value/Marshal.h"
#include "tests/fakes/Files.h"
#include "tests/fakes/MemorySpreadsheet.h"
#include "tests/fakes/TemporaryFolder.h"
#include "tests/kit/crash/Harness.h"
#include "tests/kit/crash/SpreadsheetWire.h"

namespace quorin::crash {
namespace {

using host::Axis;
using host::RangeRef;
using Array = JSONValue::Array;
using Row = std::pair<Axis, int>;

constexpr const char* book = "Plan.xlsx";
constexpr const char* sentinel = "=\"QXZ\"=\"QXZ\"";

Request mark(const std::vector<std::string>& addresses) {
  return {"markCells", {Array(addresses.begin(), addresses.end()), Array{255, 0, 0}}};
}
Request reveal(const std::string& address) {
  return {"reveal", {Array{address}, 0}};
}

// Painting, moving, painting anew on two sheets and over a rule of the user's; revealing hidden
// rows and columns, one after the other; taking all back, and at the end.
std::vector<Request> everything() {
  return {
      mark({"One!A1", "One!C3"}),
      mark({"One!C5"}),
      reveal("One!F6:F7"),
      reveal("Two!E9"),
      mark({"One!D1:D9", "Two!A1"}),
      {"clearMarks"},
      mark({"One!B3"}),
      reveal("One!G40"),
      {"terminate"},
  };
}

// More than goes into one piece.
std::vector<Request> inPieces() {
  std::vector<std::string> many;
  for (int row = 1; row <= 41; ++row) many.push_back("One!D" + std::to_string(row));
  return {mark(many), {"clearMarks"}};
}

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::size_t oneOf = 5;
#else
constexpr std::size_t oneOf = 3;
#endif

bool isChosen(std::size_t number) {
  return std::getenv("QUORIN_EVERY_POINT") != nullptr || number % oneOf == 0;
}

class MarksCrash : public testing::Test {
 protected:
  MarksCrash() { begin(); }

  // A spreadsheet and records as nobody has touched them but the user.
  void begin() {
    memory_ = std::make_unique<fakes::MemorySpreadsheet>();
    memory_->open({.name = book,
                   .sheets = {{"One", {{"A1", 1.0}}, false, {{"B2:B5", "=$B2>1"}}},
                              {"Two", {{"C3", 2.0}}},
                              {"Three", {}}}});
    for (const auto& [axis, number] : hiddenAtFirst()) hide(axis, number);
    memory_->goTo(on("Three", "A1"));
    memory_->userEnters({book, "Three"}, {"A2", 5.0});
    memory_->userSaves(book);
    folder_ = std::make_unique<TemporaryFolder>();
    store_ = std::make_unique<HighlightStore>(*folder_ / "highlights.json");
    unhide_ = std::make_unique<UnhideStore>(*folder_ / "unhidden.json");
  }

  static std::set<Row> hiddenAtFirst() {
    return {{Axis::rows, 6}, {Axis::rows, 7}, {Axis::rows, 40}, {Axis::columns, 5}};
  }
  // Hidden rows are those of One, hidden columns those of Two.
  static RangeRef place(Axis axis, int number) {
    const std::string name =
        axis == Axis::rows ? std::to_string(number) : host::columnLetters(number);
    return on(axis == Axis::rows ? "One" : "Two", name + ":" + name);
  }
  void hide(Axis axis, int number) { memory_->setHidden(place(axis, number), axis, true); }

  static RangeRef on(const std::string& sheet, const std::string& address) {
    return {{book, sheet}, host::parseA1(address).value()};
  }

  Life run(const std::vector<Request>& requests, const Fate& fate = {}) {
    const auto call = [this](const std::string& name, const JSONValue& arguments) {
      return carryOut(*memory_, name, arguments);
    };
    return harness_.run(folder_->path(), requests, call, fate);
  }

  std::vector<host::FormatCondition> conditions(const std::string& sheet, bool ours) {
    std::vector<host::FormatCondition> chosen;
    for (host::FormatCondition& each : memory_->formatConditions(on(sheet, "A1:XFD1048576")))
      if ((each.formula == sentinel) == ours) chosen.push_back(std::move(each));
    return chosen;
  }

  std::set<Row> hiddenNow() {
    std::set<Row> hidden;
    for (const Axis axis : {Axis::rows, Axis::columns})
      for (int number = 1; number <= 50; ++number)
        if (memory_->hidden(place(axis, number), axis) == true) hidden.insert({axis, number});
    return hidden;
  }

  void expectAllRecorded() {
    for (const char* const sheet : {"One", "Two", "Three"}) {
      std::vector<host::Area> known;
      for (const HighlightStore::Record& record : store_->load())
        for (const std::string& address : record.addrs)
          if (record.book == book && record.sheet == sheet)
            known.push_back(host::parseA1Area(address).value());
      for (const host::FormatCondition& each : conditions(sheet, true))
        for (const host::Area& area : each.areas)
          EXPECT_THAT(known, testing::Contains(area)) << sheet << host::addressText({area});
    }
    std::set<Row> shown;
    for (const UnhideStore::Record& record : unhide_->load()) {
      for (const auto& run : record.rows)
        for (auto i = run[0]; i <= run[1]; ++i) shown.insert({Axis::rows, static_cast<int>(i)});
      for (const auto& run : record.cols)
        for (auto i = run[0]; i <= run[1]; ++i) shown.insert({Axis::columns, static_cast<int>(i)});
    }
    const std::set<Row> now = hiddenNow();
    for (const Row& row : hiddenAtFirst())
      EXPECT_TRUE(now.contains(row) || shown.contains(row)) << row.second;
    for (const Row& row : now) EXPECT_TRUE(hiddenAtFirst().contains(row)) << row.second;
  }

  // `before` is what was done to the spreadsheet.
  void expectNothingLeft(const Life& before) {
    for (const char* const sheet : {"One", "Two", "Three"})
      EXPECT_THAT(conditions(sheet, true), testing::IsEmpty()) << sheet;
    EXPECT_EQ(conditions("One", false).size(), 1U);
    EXPECT_EQ(hiddenNow(), hiddenAtFirst());
    for (const char* const file : {"highlights.json", "unhidden.json"})
      EXPECT_FALSE(std::filesystem::exists(*folder_ / file)) << file;
    EXPECT_FALSE(memory_->isModified(book));
    memory_->userEnters({book, "Three"}, {"A2", 6.0});
    EXPECT_TRUE(memory_->isModified(book));
    EXPECT_TRUE(memory_->userUndoes(book));
    // Writing a priority clears Excel's undo list; nothing else does.
    EXPECT_EQ(memory_->userUndoes(book),
              std::count(before.points.begin(), before.points.end(), "setConditionPriority") == 0);
  }

  void killAndTakeBack(const std::vector<Request>& requests, const Life& whole, std::size_t point) {
    SCOPED_TRACE(std::to_string(point) + ": " + whole.points[point]);
    begin();
    Life life = run(requests, {.killAt = point});
    ASSERT_TRUE(life.killed) << "not visited";
    EXPECT_EQ(life.points.back(), whole.points[point]);
    life.points.pop_back();  // it was not carried out
    expectAllRecorded();
    // What a new process would find is what the one before found, and had taken back.
    if (std::exchange(last_, state()) == state()) return;
    run({{"restoreStranded"}});
    expectNothingLeft(life);
  }

  void killInTurn(const std::vector<Request>& requests, const Life& whole) {
    for (std::size_t point = 0; point < whole.points.size() && !HasFailure(); ++point)
      if (isChosen(point)) killAndTakeBack(requests, whole, point);
  }

  // All that outlives the process.
  std::string state() {
    JSONValue::Array all;
    for (const char* const sheet : {"One", "Two", "Three"}) {
      all.push_back(encoded(conditions(sheet, true)));
      all.push_back(encoded(conditions(sheet, false)));
    }
    for (const Row& row : hiddenNow()) all.push_back(JSONValue(row.second));
    all.push_back(encoded(memory_->activeSheet()));
    for (const std::string& name : filesIn(folder_->path()))
      if (name != "quorin.log") {
        all.push_back(name.ends_with(".tmp") ? "temporary" : name);
        all.push_back(readFile(*folder_ / name));
      }
    return Marshal::encode(all);
  }

  Harness harness_{{QUORIN_MARKS_CLIENT}};
  std::string last_;  // the state at the point before
  std::unique_ptr<fakes::MemorySpreadsheet> memory_;
  std::unique_ptr<TemporaryFolder> folder_;
  std::unique_ptr<HighlightStore> store_;
  std::unique_ptr<UnhideStore> unhide_;
};

TEST_F(MarksCrash, TakesEverythingBackWhereverTheProcessDies) {
  const Life whole = run(everything());
  for (const JSONValue& answer : whole.answers)
    EXPECT_TRUE(answer.isNull() || *item(answer, 0).boolean()) << Marshal::encode(answer);
  EXPECT_THAT(whole.points, testing::IsSupersetOf(
                                {"append temporary", "sync temporary", "rename highlights.json",
                                 "rename unhidden.json", "remove highlights.json",
                                 "remove unhidden.json", "addFormatCondition", "setConditionFill",
                                 "setConditionPriority", "setConditionRange", "deleteCondition",
                                 "setHidden", "activateSheet", "scrollTo"}));
  expectNothingLeft(whole);
  RecordProperty("points", static_cast<int>(whole.points.size()));
  killInTurn(everything(), whole);
}

TEST_F(MarksCrash, TakesEverythingBackThatWasPaintedInPieces) {
  const Life whole = run(inPieces());
  expectNothingLeft(whole);
  RecordProperty("points", static_cast<int>(whole.points.size()));
  killInTurn(inPieces(), whole);
}

// Every step of the stores in turn finds the disk full, or may not write; once, or from there on to
// the end of the process. The next one has room again.
TEST_F(MarksCrash, MarksNothingThatItCannotRecord) {
  const Life whole = run(everything());
  for (const bool lasting : {false, true}) {
    for (std::size_t point = 0; point < whole.points.size() && !HasFailure(); ++point) {
      if (whole.points[point].find(' ') == std::string::npos) continue;  // a call
      if (!isChosen(point)) continue;
      SCOPED_TRACE(std::to_string(point) + ": " + whole.points[point] + (lasting ? " on" : ""));
      begin();
      const int number = point % 2 == 0 ? ENOSPC : EACCES;
      const Life life =
          run(everything(), {.failAt = point, .failsFromThereOn = lasting, .number = number});
      EXPECT_EQ(life.answers.size(), everything().size());
      expectAllRecorded();
      run({{"restoreStranded"}});
      expectNothingLeft(life);
    }
  }
}

// The process that takes back dies too, at every point in turn; the one after it finds the rest.
TEST_F(MarksCrash, TakesEverythingBackAfterADeathWhileTakingBack) {
  const std::vector<Request> marks = {mark({"One!A1", "One!B3", "Two!C3"}), reveal("One!F6:F7")};
  const auto strand = [&] {
    begin();
    const Life life = run(marks);
    memory_->goTo(on("Three", "A1"));
    return life;
  };
  Life before = strand();
  const Life whole = run({{"restoreStranded"}});
  expectNothingLeft(before);
  for (std::size_t point = 0; point < whole.points.size() && !HasFailure(); ++point) {
    if (!isChosen(point)) continue;
    SCOPED_TRACE(std::to_string(point) + ": " + whole.points[point]);
    before = strand();
    ASSERT_TRUE(run({{"restoreStranded"}}, {.killAt = point}).killed) << "not visited";
    expectAllRecorded();
    run({{"restoreStranded"}});
    expectNothingLeft(before);
  }
}

}  // namespace
}  // namespace quorin::crash
