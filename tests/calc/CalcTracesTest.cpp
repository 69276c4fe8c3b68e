// What an evaluation leaves in the user's office: nothing, whatever becomes of us meanwhile.
#include <algorithm>
#include <array>
#include <atomic>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <future>
#include <gtest/gtest.h>
#include <set>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "host/Address.h"
#include "host/calc/CalcSpreadsheet.h"
#include "host/calc/office/PrivateOffice.h"
#include "tests/calc/Chain.h"
#include "tests/calc/UserHands.h"
#include "tests/calc/XlsxFile.h"
#include "tests/fakes/Eventually.h"
#include "tests/fakes/TemporaryFolder.h"

extern char** environ;

namespace quorin::host::calc {
namespace {

using namespace std::chrono_literals;

// Each takes another way: the values it reaches, a name, cells named by text, how a cell looks.
const std::vector<std::string> expressions{"B2*2+A7", "SUM(Prices)*1", "INDIRECT(\"B2\")+1",
                                           "CELL(\"width\",B2)+0"};

class CalcTraces : public testing::Test {
 protected:
  CalcTraces() : office(std::make_shared<PrivateOffice>()), calc(office), hands(opened().open()) {
    hands.enter("Known.xlsx", "Data", "H1", "first");
    hands.enter("Known.xlsx", "Data", "H2", "second");
    hands.undo("Known.xlsx");
    hands.setModified("Known.xlsx", false);
  }
  // What two connections of a process share belongs to the first of them, so ours has to be that
  // one.
  PrivateOffice& opened() {
    fakes::writeXlsx(fakes::knownWorkbook(), folder / "Known.xlsx");
    calc.openWorkbook((folder / "Known.xlsx").string());
    return *office;
  }
  void evaluateAll() {
    for (const std::string& expression : expressions) {
      const auto result = calc.evaluate(expression, {"Known.xlsx", "Data"});
      const auto* const value = std::get_if<CellValue>(&result);
      ASSERT_TRUE(value != nullptr && std::holds_alternative<double>(*value)) << expression;
    }
    Chain chain(calc, {"[Known.xlsx]Data!B2*2", "A1+42"});
    EXPECT_EQ(chain.value(), CellValue(45.0));
  }
  // The files and folders that the office has made, its settings left out.
  std::set<std::string> files() const {
    std::set<std::string> found;
    std::error_code ignored;
    for (auto entry = std::filesystem::recursive_directory_iterator(office->folder(), ignored);
         entry != std::filesystem::recursive_directory_iterator(); entry.increment(ignored)) {
      if (entry->path().filename() == "profile") entry.disable_recursion_pending();
      found.insert(entry->path().string());
    }
    return found;
  }

  TemporaryFolder folder;
  std::shared_ptr<PrivateOffice> office;
  CalcSpreadsheet calc;
  UserHands hands;
};

// Another process of ours that evaluates without end.
class Client {
 public:
  explicit Client(PrivateOffice& office) {
    const OfficeAddress address = office.open();
    std::vector<std::string> command{QUORIN_EVALUATING_CLIENT, address.pipe,
                                     std::to_string(address.process), "Known.xlsx", "Data"};
    command.insert(command.end(), expressions.begin(), expressions.end());
    std::vector<char*> pointers;
    for (std::string& text : command) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    std::array<int, 2> report{};
    if (::pipe2(report.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_adddup2(&files, report[1], STDOUT_FILENO);
    const int failure =
        ::posix_spawn(&process_, command[0].c_str(), &files, nullptr, pointers.data(), environ);
    posix_spawn_file_actions_destroy(&files);
    ::close(report[1]);
    report_ = report[0];
    if (failure != 0) throw std::runtime_error("cannot start " + command[0]);
  }
  ~Client() {
    end();
    ::close(report_);
  }
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;

  bool finishedARound() const {  // waits for it
    char c = 0;
    return ::read(report_, &c, 1) == 1;
  }
  bool stop() const {
    int status = 0;
    return ::kill(process_, SIGSTOP) == 0 && ::waitpid(process_, &status, WUNTRACED) == process_ &&
           WIFSTOPPED(status);
  }
  void end() {
    if (process_ <= 0) return;
    ::kill(process_, SIGKILL);
    ::waitpid(process_, nullptr, 0);
    process_ = 0;
  }

 private:
  pid_t process_ = 0;
  int report_ = -1;
};

TEST_F(CalcTraces, LeavesTheWorkbookAsItWas) {
  const RangeRef selected{{"Known.xlsx", "Data"}, parseA1("B2:C3").value()};
  calc.goTo(selected);
  const std::string before = hands.stateOf("Known.xlsx");
  EXPECT_NE(before.find("modified: 0"), std::string::npos) << before;
  evaluateAll();
  EXPECT_EQ(hands.stateOf("Known.xlsx"), before);
  EXPECT_EQ(calc.selection(), selected);
  EXPECT_EQ(calc.activeCell(), (RangeRef{selected.sheet, parseA1("B2").value()}));
  hands.setModified("Known.xlsx", true);
  evaluateAll();
  EXPECT_NE(hands.stateOf("Known.xlsx").find("modified: 1"), std::string::npos);
}

TEST_F(CalcTraces, HidesAndShowsRowsWithoutATrace) {
  const RangeRef cells{{"Known.xlsx", "Data"}, parseA1("B2:C3").value()};
  const auto hideAndShow = [&] {
    for (const Axis axis : {Axis::rows, Axis::columns}) {
      calc.setHidden(cells, axis, true);
      EXPECT_EQ(calc.hidden(cells, axis), true);
      calc.setHidden(cells, axis, false);
      EXPECT_EQ(calc.hidden(cells, axis), false);
    }
  };
  for (const bool modified : {false, true}) {
    hands.setModified("Known.xlsx", modified);
    const std::string before = hands.stateOf("Known.xlsx");
    hideAndShow();
    EXPECT_EQ(hands.stateOf("Known.xlsx"), before);
  }
}

// The user's hands are on the same workbook at the same time: no edit of theirs may get lost from
// the undo list, nor from the flag by which the office asks to save.
TEST_F(CalcTraces, TakesNoEditOfTheUsersForItsOwn) {
  const RangeRef cells{{"Known.xlsx", "Data"}, parseA1("B8:C9").value()};
  std::atomic<bool> over = false;
  std::atomic<int> rounds = 0;
  auto ours = std::async(std::launch::async, [&] {
    for (; !over; ++rounds) {
      const std::string id = calc.addFormatCondition(cells, "=\"QXZ\"=\"QXZ\"");
      calc.setConditionFill(cells.sheet, id, Color{255, 0, 0});
      calc.setHidden(cells, Axis::rows, rounds % 2 == 0);
      calc.deleteCondition(cells, id);
    }
  });
  const auto steps = [&] {
    const std::string state = hands.stateOf("Known.xlsx");
    return std::count(state.begin(), state.begin() + static_cast<long>(state.find("redo:")), '[');
  };
  const auto before = steps();
  constexpr int edits = 60, editsInARound = 15;
  int unasked = 0;
  for (int i = 1; i <= edits; ++i) {
    hands.setModified("Known.xlsx", false);
    hands.enter("Known.xlsx", "Data", "H1", std::to_string(i));
    std::this_thread::sleep_for(3ms);  // somewhere in one of our rounds
    if (hands.stateOf("Known.xlsx").find("modified: 1") == std::string::npos) ++unasked;
    // Not all of them within the first of our rounds, on a machine with much to do.
    if (!eventually([&] { return rounds >= i / editsInARound; })) break;
  }
  over = true;
  ours.get();
  EXPECT_GE(rounds.load(), edits / editsInARound);
  EXPECT_EQ(unasked, 0);
  EXPECT_EQ(steps(), before + edits);
}

TEST_F(CalcTraces, OpensAnUndoListThatWasLeftLocked) {
  const std::string before = hands.stateOf("Known.xlsx");
  hands.lockUndo("Known.xlsx");
  hands.lockUndo("Known.xlsx");
  EXPECT_NE(hands.stateOf("Known.xlsx"), before);
  EXPECT_EQ(CalcSpreadsheet(office).workbooks(), std::vector<std::string>{"Known.xlsx"});
  EXPECT_EQ(hands.stateOf("Known.xlsx"), before);
}

TEST_F(CalcTraces, GoesWithAClientThatIsKilled) {
  const std::string before = hands.stateOf("Known.xlsx");
  const int documents = hands.documents();
  const auto filesBefore = files();
  for (int i = 0; i < 3; ++i) {
    Client client(*office);
    for (int round = 0; round <= i; ++round) ASSERT_TRUE(client.finishedARound());
    EXPECT_GT(hands.documents(), documents);  // there is something to be left behind
    std::this_thread::sleep_for(std::chrono::milliseconds(17 * i));  // any point of a round will do
    client.end();
  }
  EXPECT_TRUE(eventually([&] { return hands.documents() == documents; })) << hands.documents();
  EXPECT_EQ(hands.stateOf("Known.xlsx"), before);
  EXPECT_TRUE(eventually([&] { return files() == filesBefore; }));
}

TEST_F(CalcTraces, GoesWhenTheConnectionIsGivenUp) {
  const int documents = hands.documents();
  {
    CalcSpreadsheet other(office);
    other.evaluate("B2*2+A7", {"Known.xlsx", "Data"});
    EXPECT_GT(hands.documents(), documents);
  }
  EXPECT_TRUE(eventually([&] { return hands.documents() == documents; })) << hands.documents();
}

TEST_F(CalcTraces, NeverHoldsUpTheUserWhileWeAreStopped) {
  for (int i = 0; i < 3; ++i) {
    Client client(*office);
    for (int round = 0; round <= i; ++round) ASSERT_TRUE(client.finishedARound());
    ASSERT_TRUE(client.stop());
    auto edits = std::async(std::launch::async, [&] {
      for (int row = 1; row <= 20; ++row) {
        hands.enter("Known.xlsx", "Data", "B2", std::to_string(row));
        hands.enter("Known.xlsx", "Data", "K" + std::to_string(row), "=B2*2");
      }
    });
    const bool done = edits.wait_for(60s) == std::future_status::ready;
    client.end();  // an office that waits for it goes on
    EXPECT_TRUE(done);
    edits.get();
  }
  EXPECT_EQ(calc.evaluate("K20+0", {"Known.xlsx", "Data"}), Evaluation(CellValue(40.0)));
}

}  // namespace
}  // namespace quorin::host::calc
