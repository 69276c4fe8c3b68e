// Marking and revealing in an office, with the process killed at steps of the stores, at calls of
// the spreadsheet and between two messages of one call. The office lives on; a new process takes
// everything back, and the user goes on as if nothing had been.
//
// With $QUORIN_EVERY_POINT set it is every step of the stores, 20 calls and every message of one
// call of each kind that changes something; else a few of each.
#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <set>
#include <signal.h>
#include <utility>

#include "host/Address.h"
#include "host/calc/CalcSpreadsheet.h"
#include "host/calc/office/PrivateOffice.h"
#include "kit/marks/HighlightStore.h"
#include "kit/marks/UnhideStore.h"
#include "kit/value/Marshal.h"
#include "tests/calc/UserHands.h"
#include "tests/calc/XlsxFile.h"
#include "tests/fakes/Eventually.h"
#include "tests/fakes/Files.h"
#include "tests/fakes/TemporaryFolder.h"
#include "tests/kit/crash/Harness.h"

namespace quorin::host::calc {
namespace {

using crash::Fate;
using crash::Life;
using crash::Request;
using Array = JSONValue::Array;
using Points = std::vector<std::string>;

constexpr const char* book = "Crash.xlsx";

Request mark(const std::vector<std::string>& addresses) {
  return {"markCells", {Array(addresses.begin(), addresses.end()), Array{255, 0, 0}}};
}
Request reveal(const std::string& address) {
  return {"reveal", {Array{address}, 0}};
}

// Painting, moving, painting anew beside a rule of the user's, revealing, and taking all back.
std::vector<Request> everything() {
  return {mark({"One!A1", "One!C3"}), mark({"One!C5"}),           reveal("One!F6:F7"),
          reveal("Two!E90"),          mark({"One!B3", "Two!A1"}), {"clearMarks"}};
}

bool isStep(const std::string& point) {
  return point.find(' ') != std::string::npos;
}
bool isMessage(const std::string& point) {
  return point == "message";
}
bool changes(const std::string& point) {
  return point.starts_with("set") || point.starts_with("add") || point.starts_with("delete") ||
         point == "scrollTo" || point == "activateSheet";
}

// A place in every life: so many messages after so many other points, or the point after them where
// a life has fewer messages there.
struct Place {
  std::size_t others = 0;
  std::size_t messages = 0;

  bool isReachedBy(const Points& points) const {
    const auto after = static_cast<std::size_t>(
        std::find_if_not(points.rbegin(), points.rend(), isMessage) - points.rbegin());
    const auto all =
        static_cast<std::size_t>(std::count_if(points.begin(), points.end(), isMessage));
    const std::size_t reached = points.size() - all;
    return reached > others || (reached == others && after >= messages);
  }
};

// Every step of the stores, `calls` calls and the messages of one call of each kind that
// changes something.
std::vector<Place> placesOf(const Points& points, std::size_t calls) {
  std::vector<Place> steps, asked, inside;
  std::set<std::string> kinds;
  std::size_t others = 0;
  for (std::size_t i = 0; i < points.size(); ++i) {
    if (isMessage(points[i])) continue;
    ++others;
    (isStep(points[i]) ? steps : asked).push_back({others, 0});
    if (!changes(points[i]) || !kinds.insert(points[i]).second) continue;
    std::size_t last = i;
    while (last + 1 < points.size() && isMessage(points[last + 1])) ++last;
    for (std::size_t message = 1; message <= last - i; ++message)
      inside.push_back({others, message});
  }
  std::vector<Place> places = steps;
  for (std::size_t i = 0; i < calls; ++i) places.push_back(asked[i * asked.size() / calls]);
  places.insert(places.end(), inside.begin(), inside.end());
  return places;
}

class CalcCrash : public testing::Test {
 protected:
  CalcCrash() {
    fakes::writeXlsx({.name = book,
                      .sheets = {{"One", {{"A1", 1.0}}, false, {{"B2:B5", "=$B2>1"}}},
                                 {"Two", {{"C3", 2.0}}},
                                 {"Home", {{"A1", 1.0}}}}},
                     file_);
    calc_->openWorkbook(file_.string());
    hands_->hideRows(book, "One", "A6:A7");
    hands_->hideColumns(book, "Two", "E1");
    hands_->enter(book, "Home", "H1", "first");
    begin();
  }

  void killOffice() {
    if (const pid_t office = office_->process(); office > 0) ::kill(office, SIGKILL);
  }

  // The office dies, and the user opens the file in a new one.
  void reopen() {
    killOffice();
    hands_.reset();
    calc_.reset();
    office_ = std::make_shared<PrivateOffice>();
    address_ = office_->open();
    calc_ = std::make_unique<CalcSpreadsheet>(office_,
                                              CalcOptions{.patience = std::chrono::seconds(60)});
    calc_->openWorkbook(file_.string());
    hands_ = std::make_unique<UserHands>(address_);
    harness_ = newHarness();
    calc_->goTo(on("Home", "A1"));
  }

  std::unique_ptr<crash::Harness> newHarness() const {
    return std::make_unique<crash::Harness>(
        Points{QUORIN_CALC_MARKS_CLIENT, address_.pipe, std::to_string(address_.process)});
  }

  // As the user left it, saved.
  void begin() {
    calc_->goTo(on("Home", "A1"));
    hands_->setModified(book, false);
  }

  static RangeRef on(const std::string& sheet, const std::string& address) {
    return {{book, sheet}, parseA1(address).value()};
  }

  Life run(const std::vector<Request>& requests, const Fate& fate = {}) {
    return harness_->run(folder_.path(), requests, nullptr, fate);
  }

  std::vector<FormatCondition> marksOn(const std::string& sheet) {
    std::vector<FormatCondition> marks;
    for (FormatCondition& each : calc_->formatConditions(on(sheet, "A1:XFD1048576")))
      if (each.formula == "=\"QXZ\"=\"QXZ\"") marks.push_back(std::move(each));
    return marks;
  }
  bool areHidden(const std::string& sheet, const std::string& rows) {
    const Axis which = sheet == "One" ? Axis::rows : Axis::columns;
    return calc_->hidden(on(sheet, rows), which) == true;
  }

  std::ptrdiff_t notesOn(const std::string& sheet) {
    const auto shapes = hands_->shapes(book, sheet);
    return std::count_if(shapes.begin(), shapes.end(), [](const std::string& name) {
      return name.starts_with("Quorin shown lines ");
    });
  }

  void expectAllRecorded() {
    for (const char* const sheet : {"One", "Two", "Home"}) {
      std::vector<Area> known;
      for (const HighlightStore::Record& record : store_.load())
        for (const std::string& address : record.addrs)
          if (record.sheet == sheet) known.push_back(parseA1Area(address).value());
      for (const FormatCondition& each : marksOn(sheet))
        for (const Area& area : each.areas)
          EXPECT_TRUE(
              std::any_of(known.begin(), known.end(),
                          [&](const Area& other) { return intersection(area, other) == area; }))
              << sheet << addressText({area});
    }
    bool rows = areHidden("One", "6:7"), columns = areHidden("Two", "E:E");
    for (const UnhideStore::Record& record : unhide_.load()) {
      rows = rows || (record.sheet == "One" && !record.rows.empty());
      columns = columns || (record.sheet == "Two" && !record.cols.empty());
    }
    EXPECT_TRUE(rows);
    EXPECT_TRUE(columns);
  }

  void expectNothingLeft() {
    for (const char* const sheet : {"One", "Two", "Home"}) {
      EXPECT_TRUE(marksOn(sheet).empty()) << sheet;
    }
    EXPECT_TRUE(areHidden("One", "6:7"));
    EXPECT_TRUE(areHidden("Two", "E:E"));
    EXPECT_EQ(calc_->hidden(on("One", "5:8"), Axis::rows), std::nullopt);
    EXPECT_FALSE(std::filesystem::exists(store_.url()));
    EXPECT_FALSE(std::filesystem::exists(unhide_.url()));
    EXPECT_FALSE(std::filesystem::exists(folder_ / "shown-lines.json"));
    EXPECT_EQ(calc_->formatConditions(on("One", "B2")).size(), 1U);
  }

  // The processes of the keepers at this office.
  std::vector<pid_t> keepers() const {
    std::vector<pid_t> found;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
      const std::string command = readFile(entry.path() / "cmdline");
      if (command.find("quorin-marks-keeper") != std::string::npos &&
          command.find(address_.pipe) != std::string::npos)
        found.push_back(std::atoi(entry.path().filename().c_str()));
    }
    return found;
  }

  bool isModified() { return hands_->stateOf(book).find("modified: 1") != std::string::npos; }

  // The user's next edit counts, whatever the dead process left.
  void expectEditsCount() {
    hands_->setModified(book, false);
    hands_->enter(book, "Home", "H2", std::to_string(++edits_));
    EXPECT_TRUE(isModified());
  }

  void expectUndoWorks() {
    const std::string state = hands_->stateOf(book);
    EXPECT_NE(state.find("locked: 0"), std::string::npos) << state;
    const auto before = calc_->values(on("Home", "H2")).cells;
    hands_->enter(book, "Home", "H2", std::to_string(++edits_));
    EXPECT_NE(calc_->values(on("Home", "H2")).cells, before);
    hands_->undo(book);
    EXPECT_EQ(calc_->values(on("Home", "H2")).cells, before);
  }

  TemporaryFolder folder_;
  const std::filesystem::path file_ = folder_ / book;
  std::shared_ptr<PrivateOffice> office_ = std::make_shared<PrivateOffice>();
  OfficeAddress address_ = office_->open();
  std::unique_ptr<CalcSpreadsheet> calc_ =
      std::make_unique<CalcSpreadsheet>(office_, CalcOptions{.patience = std::chrono::seconds(60)});
  std::unique_ptr<UserHands> hands_ = std::make_unique<UserHands>(address_);
  HighlightStore store_{folder_ / "highlights.json"};
  UnhideStore unhide_{folder_ / "unhidden.json"};
  std::unique_ptr<crash::Harness> harness_ = newHarness();
  int edits_ = 0;
};

TEST_F(CalcCrash, TakesEverythingBackWhereverTheProcessDies) {
  const std::string state = hands_->stateOf(book);
  const Life whole = run(everything());
  for (const JSONValue& answer : whole.answers)
    EXPECT_TRUE(*answer.array()->at(0).boolean()) << Marshal::encode(answer);
  expectNothingLeft();
  EXPECT_EQ(hands_->stateOf(book), state);
  const bool all = std::getenv("QUORIN_EVERY_POINT") != nullptr;
  const std::vector<Place> places = placesOf(whole.points, 20);
  ASSERT_GT(places.size(), 60U);
  const std::size_t few = 8;
  const std::size_t pace = all ? 1 : places.size() / few;
  std::size_t visited = 0;
  for (std::size_t i = pace / 2; i < places.size() && !HasFailure(); i += pace) {
    begin();
    const Life life =
        run(everything(),
            {.kills = [&](const Points& points) { return places[i].isReachedBy(points); }});
    SCOPED_TRACE(life.points.back() + " after " + std::to_string(places[i].others) +
                 " points and " + std::to_string(places[i].messages) + " messages");
    if (!life.killed) {  // some calls depend on the time: this run had fewer of them
      expectNothingLeft();
      continue;
    }
    ++visited;
    expectAllRecorded();
    expectEditsCount();
    run({{"restoreStranded"}});
    expectNothingLeft();
    expectUndoWorks();
    expectEditsCount();
  }
  EXPECT_GE(visited, all ? places.size() * 9 / 10 : few - 1);
  RecordProperty("points", static_cast<int>(whole.points.size()));
  RecordProperty("visited", static_cast<int>(visited));
}

// The keeper of a process that died in its turn waits for that one's last call. What the next
// process marks and shows in that time stays, and goes with its own request.
TEST_F(CalcCrash, LeavesToTheNextProcessWhatIsItsWhileTheKeeperOfTheDeadOneWaits) {
  for (const char* const last : {"setConditionFill", "setHidden"}) {
    SCOPED_TRACE(last);
    begin();
    // In the middle of it, when the turn has been taken for it.
    const auto isInCall = [last](const Points& points) {
      const auto call = std::find_if_not(points.rbegin(), points.rend(), isMessage);
      return call != points.rend() && *call == last && call - points.rbegin() == 12;
    };
    ASSERT_TRUE(run(everything(), {.kills = isInCall}).killed);
    const std::vector<pid_t> waiting = keepers();
    EXPECT_FALSE(waiting.empty());
    bool visited = false;
    const auto look = [&](const Points& points) {
      const bool isDone = points.back() != "message" && std::find(points.begin(), points.end() - 1,
                                                                  "scrollTo") < points.end() - 1;
      if (!isDone || std::exchange(visited, true)) return false;
      hands_->save(book);  // which takes both out and puts them back
      EXPECT_TRUE(eventually([&] {
        const std::vector<pid_t> now = keepers();
        return std::none_of(now.begin(), now.end(), [&](pid_t each) {
          return std::find(waiting.begin(), waiting.end(), each) != waiting.end();
        });
      }));
      EXPECT_TRUE(marksOn("One").empty());
      EXPECT_EQ(marksOn("Two").size(), 1U);
      EXPECT_TRUE(areHidden("One", "6:7"));
      EXPECT_EQ(calc_->hidden(on("Two", "E:E"), Axis::columns), false);
      EXPECT_EQ(notesOn("Two"), 1);
      expectAllRecorded();
      return false;
    };
    run({{"restoreStranded"}, mark({"Two!A1"}), reveal("Two!E90"), {"clearMarks"}},
        {.kills = look});
    EXPECT_TRUE(visited);
    expectNothingLeft();
  }
}

// Saved while marks are on and rows are shown, and then the office dies as well.
TEST_F(CalcCrash, TakesEverythingBackFromAFileOfADeadOffice) {
  run({mark({"One!A1", "Two!B2"}), reveal("One!F6:F7"), reveal("Two!E90")});
  EXPECT_FALSE(store_.load().empty());
  EXPECT_FALSE(unhide_.load().empty());
  hands_->save(book);
  reopen();
  expectAllRecorded();
  run({{"restoreStranded"}});
  expectNothingLeft();
  expectUndoWorks();
  expectEditsCount();
}

// The office dies under a process that is marking; the file is as the user saved it.
TEST_F(CalcCrash, TakesEverythingBackWhereverTheOfficeDies) {
  hands_->save(book);
  const Life whole = run(everything());
  const std::vector<Place> places = placesOf(whole.points, 20);
  const std::size_t times = std::getenv("QUORIN_EVERY_POINT") != nullptr ? 20 : 1;
  std::size_t deaths = 0;
  for (std::size_t i = 0; i < times && !HasFailure(); ++i) {
    const Place place = places[(2 * i + 1) * places.size() / (2 * times)];
    bool visited = false;
    run(everything(), {.kills = [&](const Points& points) {
          if (!visited && place.isReachedBy(points)) {
            visited = true;
            killOffice();
          }
          return false;
        }});
    // A life may have a few messages less than the first one.
    if (visited)
      ++deaths;
    else
      killOffice();
    reopen();
    expectAllRecorded();
    run({{"restoreStranded"}});
    expectNothingLeft();
    expectUndoWorks();
    expectEditsCount();
  }
  EXPECT_GE(10 * deaths, 9 * times);
  RecordProperty("deaths", static_cast<int>(deaths));
}

}  // namespace
}  // namespace quorin::host::calc
