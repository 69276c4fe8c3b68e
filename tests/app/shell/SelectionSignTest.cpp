#include "app/shell/SelectionSign.h"
#include "tests/app/shell/ShellFixture.h"

namespace quorin {
namespace {

using namespace std::chrono_literals;

// A hidden panel beside an Excel that nobody says is in front, which is looked at every 300 ms.
class SelectionSignTest : public ShellFixture {
 protected:
  SelectionSignTest()
      : panel(makePanel()),
        poller(platform, bridge, *panel, 300),
        sign(platform, bridge, *panel, poller) {
    platform.workspace().tells = false;
    platform.workspace().frontmost = excel();
    sign.start(300, [this](const RunningApplication& application) {
      EXPECT_EQ(application, excel());
      ++told;
    });
  }

  void tickOn(const char* address) {
    bridge.answers = {
        JSONValue::Object{{"book", "Model.xlsx"}, {"sheet", "Inputs"}, {"addr", address}}};
    platform.mainLoop().advance(300ms);
    settle();
  }

  std::unique_ptr<Panel> panel;
  Poller poller;
  SelectionSign sign;
  int told = 0;
};

TEST_F(SelectionSignTest, TellsOnceThatTheSelectionHasMoved) {
  tickOn("$A$1");
  tickOn("$A$1");
  EXPECT_EQ(told, 0) << "where it was at first says nothing";
  tickOn("$A$2");
  EXPECT_EQ(told, 1);
  tickOn("$A$3");
  EXPECT_EQ(told, 1) << "the user may have closed the panel";
  EXPECT_EQ(bridge.polls, 3) << "and Excel is asked no more";
}

TEST_F(SelectionSignTest, TellsAgainOfAnExcelThatWasStartedAnew) {
  tickOn("$A$1");
  tickOn("$A$2");
  platform.workspace().frontmost.reset();
  tickOn("$A$3");
  platform.workspace().frontmost = excel();
  tickOn("$A$4");
  EXPECT_EQ(told, 1);
  tickOn("$A$5");
  EXPECT_EQ(told, 2);
}

TEST_F(SelectionSignTest, IsNotNeededForAPanelThatTheUserHasCalled) {
  panel->summon();
  tickOn("$A$1");
  panel->close();
  tickOn("$A$1");
  tickOn("$A$2");
  EXPECT_EQ(told, 0);
  EXPECT_EQ(bridge.polls, 0);
}

TEST_F(SelectionSignTest, LooksForNothingWhilePausedOrWhileTheDesktopTells) {
  poller.setPaused(true);
  tickOn("$A$1");
  poller.setPaused(false);
  platform.workspace().tells = true;
  tickOn("$A$2");
  EXPECT_EQ(bridge.polls, 0);
}

TEST_F(SelectionSignTest, TakesAnExcelThatDoesNotAnswerForNoSign) {
  tickOn("$A$1");
  bridge.answers = {std::nullopt};
  platform.mainLoop().advance(300ms);
  settle();
  tickOn("$A$1");
  EXPECT_EQ(told, 0);
}

}  // namespace
}  // namespace quorin
