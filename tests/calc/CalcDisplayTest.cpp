// A visible Calc on a display of its own, attached to as the user's, with keys typed into it.
#include <com/sun/star/uno/Exception.hpp>
#include <functional>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <thread>

#include "host/Address.h"
#include "host/calc/CalcSpreadsheet.h"
#include "host/calc/office/CalcApplication.h"
#include "host/calc/office/PrivateOffice.h"
#include "host/calc/office/RunningOffice.h"
#include "host/calc/uno/OfficeFiles.h"
#include "tests/calc/Chain.h"
#include "tests/calc/UserHands.h"
#include "tests/calc/XlsxFile.h"
#include "tests/fakes/StoppedProcess.h"
#include "tests/fakes/TemporaryFolder.h"
#include "tests/fakes/ui/VirtualDisplay.h"

namespace quorin::host::calc {
namespace {

using namespace std::chrono_literals;

bool eventually(const std::function<bool()>& condition) {
  const auto deadline = std::chrono::steady_clock::now() + 20s;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(20ms);
  }
  return true;
}

int numberOf(const std::function<void()>& call) {
  try {
    call();
  } catch (const SpreadsheetError& error) {
    return error.number();
  }
  return 0;
}

// The display, the office and the workbook, once for all tests.
struct Desktop {
  ui::VirtualDisplay display{{1400, 900}};
  TemporaryFolder folder;
  std::shared_ptr<PrivateOffice> office;
  std::shared_ptr<OfficeDiscovery> discovery = std::make_shared<OfficeDiscovery>();
  std::shared_ptr<RunningOffice> running;
  std::unique_ptr<CalcSpreadsheet> calc;

  Desktop() {
    PrivateOffice::Options options;
    options.headless = false;
    options.environment = {{"DISPLAY", display.name()}};
    options.prefix = "quorin-visible-";  // counts as the user's
    office = std::make_shared<PrivateOffice>(options);
    discovery->restrictTo(fileUrl(office->folder() / "profile"));
    fakes::writeXlsx(fakes::knownWorkbook(), folder / "Known.xlsx");
    CalcSpreadsheet opener(office);
    opener.openWorkbook((folder / "Known.xlsx").string());
    running = std::make_shared<RunningOffice>(discovery);
    calc = std::make_unique<CalcSpreadsheet>(running);
  }
  ~Desktop() {
    calc.reset();
    office.reset();  // first, so that what attached to it can clear up behind it
    running.reset();
  }
};

std::unique_ptr<Desktop> desktop;

class CalcDisplay : public testing::Test {
 protected:
  static void SetUpTestSuite() { desktop = std::make_unique<Desktop>(); }
  static void TearDownTestSuite() { desktop.reset(); }

  void SetUp() override {
    ASSERT_TRUE(eventually([] {
      return desktop->display.xdotool(
          {"search", "--onlyvisible", "--class", "libreoffice-calc", "windowactivate", "--sync"});
    }));
    calc().goTo(at("H20"));
  }
  static CalcSpreadsheet& calc() { return *desktop->calc; }
  static RangeRef at(const char* address) {
    return {{"Known.xlsx", "Data"}, parseA1(address).value()};
  }
  static void keys(const std::vector<std::string>& arguments) {
    ASSERT_TRUE(desktop->display.xdotool(arguments));
  }
  // -10000 while an entry is typed. To the entry's own cell: its keys may still be on their way.
  static int goToEntry(const char* cell = "H20") {
    return numberOf([&] { calc().select(at(cell)); });
  }
};

TEST_F(CalcDisplay, AttachesToTheRunningCalc) {
  CalcApplication application(desktop->running);
  EXPECT_TRUE(application.isRunning());
  EXPECT_EQ(desktop->discovery->runningCalc()->id, desktop->office->process());
  EXPECT_EQ(desktop->running->open().process, desktop->office->process());
  EXPECT_EQ(calc().workbooks(), std::vector<std::string>{"Known.xlsx"});
}

TEST_F(CalcDisplay, FollowsTheUsersKeys) {
  keys({"key", "Down", "Right"});
  EXPECT_TRUE(eventually([] { return calc().activeCell() == at("I21"); }));
  keys({"key", "shift+Down"});
  EXPECT_TRUE(eventually([] { return calc().selection() == at("I21:I22"); }));
  EXPECT_EQ(calc().activeCell(), at("I21"));
}

TEST_F(CalcDisplay, TellsWhereItsWindowIs) {
  const auto bounds = calc().windowBounds(1);
  ASSERT_TRUE(bounds);
  EXPECT_GT(bounds->right - bounds->left, 300);
  EXPECT_GT(bounds->bottom - bounds->top, 200);
  EXPECT_LE(bounds->right, 1400);
  EXPECT_EQ(calc().windowBounds(2), std::nullopt);
  EXPECT_TRUE(eventually([] { return calc().isFrontmost(); }));
}

TEST_F(CalcDisplay, NeverEntersWhatIsHalfTyped) {
  keys({"type", "abc"});
  ASSERT_TRUE(eventually([] { return goToEntry() == -10000; }));
  for (const auto& move : std::vector<std::function<void()>>{
           [] { calc().goTo(at("A1")); }, [] { calc().activateCell(at("A1")); },
           [] {
             calc().activateSheet({"Known.xlsx", "Blank"});
           },
           [] { calc().activateWorkbook("Known.xlsx"); }, [] { calc().scrollTo(at("A1")); }}) {
    EXPECT_EQ(numberOf(move), -10000);
  }
  // Reading and evaluating go on, and leave the entry alone too.
  EXPECT_EQ(calc().values(at("H20")).cells, std::vector<CellValue>{Blank{}});
  for (const char* expression : {"B2*2+A7", "INDIRECT(\"A7\")+3", "CELL(\"row\",A45)+0"}) {
    EXPECT_EQ(calc().evaluate(expression, at("A1").sheet), Evaluation(CellValue(45.0)));
  }
  EXPECT_EQ(goToEntry(), -10000);
  EXPECT_EQ(calc().values(at("H20")).cells, std::vector<CellValue>{Blank{}});
  keys({"key", "Escape"});
  EXPECT_TRUE(eventually([] { return goToEntry() == 0; }));
  EXPECT_EQ(calc().values(at("H20")).cells, std::vector<CellValue>{Blank{}});
}

TEST_F(CalcDisplay, LetsTheUserTypeOnDuringAChain) {
  keys({"type", "abc"});
  ASSERT_TRUE(eventually([] { return goToEntry() == -10000; }));
  {
    Chain chain(calc(), {"[Known.xlsx]Data!B2*2", "A1+42"});
    EXPECT_EQ(chain.value(), CellValue(45.0));
  }
  EXPECT_EQ(calc().activeWorkbook(), "Known.xlsx");
  EXPECT_EQ(calc().formulas(at("C2:C3"), ReferenceStyle::r1c1).cells,
            (std::vector<CellValue>{"=RC[-1]*2", "=RC[-1]*2"}));
  EXPECT_EQ(calc().usedRange(at("A1").sheet), at("A1:E10"));
  EXPECT_EQ(calc().activeCell(), at("H20"));
  keys({"type", "def"});
  keys({"key", "Return"});
  EXPECT_TRUE(eventually(
      [] { return calc().values(at("H20")).cells == std::vector<CellValue>{"abcdef"}; }));
  keys({"key", "ctrl+z"});
  EXPECT_TRUE(
      eventually([] { return calc().values(at("H20")).cells == std::vector<CellValue>{Blank{}}; }));
}

TEST_F(CalcDisplay, NoticesAnEditOfAnExistingEntryAndOfAFormula) {
  calc().goTo(at("A7"));
  keys({"key", "F2"});
  EXPECT_TRUE(eventually([] { return goToEntry("A7") == -10000; }));
  keys({"key", "Escape"});
  EXPECT_TRUE(eventually([] { return goToEntry("A7") == 0; }));
  calc().goTo(at("H20"));
  keys({"type", "=A7+"});
  EXPECT_TRUE(eventually([] { return goToEntry() == -10000; }));
  keys({"key", "Escape"});
  EXPECT_TRUE(eventually([] { return goToEntry() == 0; }));
  EXPECT_EQ(calc().values(at("H20")).cells, std::vector<CellValue>{Blank{}});
}

TEST_F(CalcDisplay, EvaluatesInTheChangedWorkbook) {
  EXPECT_EQ(calc().evaluate("H20&\"!\"", at("A1").sheet), Evaluation(CellValue("!")));
  calc().goTo(at("H20"));
  keys({"type", "new"});
  ASSERT_TRUE(eventually([] { return goToEntry() == -10000; }));
  keys({"key", "Return"});
  ASSERT_TRUE(
      eventually([] { return calc().values(at("H20")).cells == std::vector<CellValue>{"new"}; }));
  EXPECT_EQ(calc().evaluate("H20&\"!\"", at("A1").sheet), Evaluation(CellValue("new!")));
  keys({"key", "ctrl+z"});
  ASSERT_TRUE(
      eventually([] { return calc().values(at("H20")).cells == std::vector<CellValue>{Blank{}}; }));
  EXPECT_EQ(calc().evaluate("H20&\"!\"", at("A1").sheet), Evaluation(CellValue("!")));
}

TEST_F(CalcDisplay, ReadsWhileADialogIsOpen) {
  keys({"key", "ctrl+1"});
  ASSERT_TRUE(eventually([] {
    return desktop->display.xdotool({"search", "--onlyvisible", "--name", "Format Cells"});
  }));
  EXPECT_EQ(calc().values(at("A7")).cells, std::vector<CellValue>{42.0});
  EXPECT_EQ(calc().evaluate("A7+1", at("A1").sheet), Evaluation(CellValue(43.0)));
  keys({"key", "Escape"});
}

TEST_F(CalcDisplay, LeavesTheClipboardAlone) {
  calc().goTo(at("A7"));
  keys({"key", "ctrl+c"});
  for (const char* expression : {"B2*2+A7", "INDIRECT(\"A7\")+3", "CELL(\"row\",A45)+0"}) {
    EXPECT_EQ(calc().evaluate(expression, at("A1").sheet), Evaluation(CellValue(45.0)));
  }
  calc().goTo(at("H20"));
  keys({"key", "ctrl+v"});
  EXPECT_TRUE(
      eventually([] { return calc().values(at("H20")).cells == std::vector<CellValue>{42.0}; }));
  keys({"key", "ctrl+z"});
  EXPECT_TRUE(
      eventually([] { return calc().values(at("H20")).cells == std::vector<CellValue>{Blank{}}; }));
}

TEST_F(CalcDisplay, TimesOutReachingAStoppedCalc) {
  RunningOffice fresh(desktop->discovery);
  ASSERT_TRUE(stopProcess(desktop->office->process()));
  EXPECT_TRUE(fresh.isRunning());  // without waiting
  EXPECT_EQ(numberOf([&] { fresh.open(); }), -1712);
  ASSERT_EQ(::kill(desktop->office->process(), SIGCONT), 0);
  EXPECT_EQ(numberOf([&] { fresh.open(); }), 0);
}

TEST_F(CalcDisplay, AsksForOnePipeThatIsTheUsersAlone) {
  const OfficeAddress first = desktop->running->open();
  EXPECT_EQ(first.pipe, desktop->running->open().pipe);
  // As an office makes it whose umask keeps nobody out.
  ASSERT_EQ(::chmod(pipeFile(first.pipe).c_str(), 0777), 0);
  EXPECT_EQ(RunningOffice(desktop->discovery).open().pipe, first.pipe) << "a later Quorin's, too";
  struct stat status {};
  ASSERT_EQ(::stat(pipeFile(first.pipe).c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777u, 0600u);
  EXPECT_EQ(first.pipe.find(std::to_string(first.process)), std::string::npos);
}

// A Calc of the user's on the same display, with a workbook open.
class AnotherCalc {
 public:
  AnotherCalc() {
    PrivateOffice::Options options;
    options.headless = false;
    options.environment = {{"DISPLAY", desktop->display.name()}};
    options.prefix = "quorin-visible-";
    office = std::make_shared<PrivateOffice>(options);
    CalcSpreadsheet(office).openWorkbook((desktop->folder / "Known.xlsx").string());
  }
  std::string profile() const { return fileUrl(office->folder() / "profile"); }

  std::shared_ptr<PrivateOffice> office;
};

TEST_F(CalcDisplay, AttachesAgainToACalcThatWasQuitAndStartedAnew) {
  const auto discovery = std::make_shared<OfficeDiscovery>();
  CalcSpreadsheet calc(std::make_shared<RunningOffice>(discovery));
  const auto evaluated = [&] { return calc.evaluate("B2*2+A7", at("A1").sheet); };
  AnotherCalc first;
  discovery->restrictTo(first.profile());
  EXPECT_EQ(evaluated(), Evaluation(CellValue(45.0)));
  const pid_t process = first.office->process();
  try {
    UserHands(first.office->open()).quit();
  } catch (const css::uno::Exception&) {
    // It ended before it could answer.
  }
  EXPECT_TRUE(eventually([&] { return ::kill(process, 0) != 0; }));  // nothing of ours keeps it
  EXPECT_NE(numberOf([&] { calc.workbooks(); }), 0);
  EXPECT_TRUE(eventually([&] { return numberOf([&] { calc.workbooks(); }) == -600; }));
  const AnotherCalc second;
  discovery->restrictTo(second.profile());
  EXPECT_EQ(evaluated(), Evaluation(CellValue(45.0)));
  EXPECT_EQ(calc.workbooks(), std::vector<std::string>{"Known.xlsx"});
}

// As one in a sandbox: it runs and shows a workbook, but nobody can speak to it.
TEST_F(CalcDisplay, IsNotAllowedToReachACalcWithoutItsPipe) {
  const auto discovery = std::make_shared<OfficeDiscovery>();
  CalcSpreadsheet calc(std::make_shared<RunningOffice>(discovery));
  const AnotherCalc hidden;
  discovery->restrictTo(hidden.profile());
  const std::filesystem::path pipe = pipeFile(singleInstancePipe(hidden.profile()));
  const std::filesystem::path away = hidden.office->folder() / "away";
  std::filesystem::create_hard_link(pipe, away);
  std::filesystem::remove(pipe);
  EXPECT_TRUE(calc.isRunning());
  EXPECT_EQ(numberOf([&] { calc.workbooks(); }), -1743);
  std::filesystem::create_hard_link(away, pipe);
  EXPECT_EQ(calc.workbooks(), std::vector<std::string>{"Known.xlsx"});
}

}  // namespace
}  // namespace quorin::host::calc
