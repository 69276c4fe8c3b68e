#include "app/shell/MenuBar.h"
#include "tests/app/shell/ShellFixture.h"

namespace quorin {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;
using Object = JSONValue::Object;

class MenuBarTest : public ShellFixture {
 protected:
  MenuBarTest() {
    platform.hasStatusBar = true;
    panel = makePanel();
    platform.webView().finishLoading();
    poller = std::make_unique<Poller>(platform, bridge, *panel, 300);
    takeJournal();
  }

  void make() {
    menuBar =
        std::make_unique<MenuBar>(MenuBar::Parts{platform, bridge, *panel, *poller, support, *log});
  }

  std::vector<std::string> titles() {
    std::vector<std::string> found;
    for (const MenuItem& item : platform.statusItem().items) found.push_back(item.title);
    return found;
  }

  MenuItem loginItem() { return platform.statusItem().items.at(6); }

  std::vector<Alert> takeAlerts() { return std::exchange(platform.alerts().shown, {}); }

  std::unique_ptr<Panel> panel;
  std::unique_ptr<Poller> poller;
  FakeFolders folders{folder};
  Support support{{platform, folders, *log}};
  std::unique_ptr<MenuBar> menuBar;
};

TEST_F(MenuBarTest, ShowsItsItemsInOrder) {
  make();
  EXPECT_EQ(platform.statusItem().image, "MenuBarIcon");
  EXPECT_THAT(titles(),
              ElementsAre("Open Auditor", "Pause Follow", "Clear Stuck Highlights",
                          "Open Diagnostic Log", "Report a Problem…", "Check for Updates…",
                          "Start at Login", "Settings…", "", "Quit Quorin"));
  for (const MenuItem& item : platform.statusItem().items) {
    EXPECT_TRUE(item.enabled) << item.title;
    EXPECT_FALSE(item.checked) << item.title;
  }
}

TEST_F(MenuBarTest, OpensThePanelWithTheKeyboard) {
  make();
  platform.statusItem().choose("Open Auditor");
  EXPECT_THAT(takeJournal(),
              ElementsAre("makeKeyAndOrderFront",
                          R"(evaluate window.__qxEvent && window.__qxEvent("summon", {}))"));
}

TEST_F(MenuBarTest, PausesAndResumesFollowing) {
  make();
  platform.statusItem().choose("Pause Follow");
  EXPECT_TRUE(poller->paused());
  EXPECT_EQ(titles()[1], "Resume Follow");
  EXPECT_THAT(
      platform.webView().takeScripts(),
      ElementsAre(R"(window.__qxEvent && window.__qxEvent("followState", {"paused":true}))"));
  platform.statusItem().choose("Resume Follow");
  EXPECT_FALSE(poller->paused());
  EXPECT_EQ(titles()[1], "Pause Follow");
  EXPECT_THAT(
      platform.webView().takeScripts(),
      ElementsAre(R"(window.__qxEvent && window.__qxEvent("followState", {"paused":false}))"));
}

TEST_F(MenuBarTest, StopsPollingAtOnceWhilePaused) {
  make();
  platform.workspace().frontmost = excel();
  panel->showCompanion();
  poller->start();
  const auto polls = [this] {
    bridge.polls = 0;
    platform.mainLoop().advance(std::chrono::milliseconds(300));
    settle();
    return bridge.polls;
  };
  EXPECT_EQ(polls(), 1);
  platform.statusItem().choose("Pause Follow");
  EXPECT_EQ(polls(), 0);
  platform.statusItem().choose("Resume Follow");
  EXPECT_EQ(polls(), 1);
}

TEST_F(MenuBarTest, ClearsHighlightsOnTheBridgeQueueAndTellsHowMany) {
  bridge.replies["clearMarks"] = {true, Object{{"removed", 12}}};
  make();
  platform.statusItem().choose("Clear Stuck Highlights");
  EXPECT_THAT(takeJournal(), IsEmpty());
  queue.runAll();
  EXPECT_THAT(takeJournal(), ElementsAre("dispatch clearMarks []"));
  platform.mainLoop().runPosted();
  EXPECT_THAT(takeJournal(), ElementsAre("activateSelf", "alert Removed 12 highlights"));
  EXPECT_EQ(takeAlerts(), (std::vector<Alert>{{"Removed 12 highlights", "", {}}}));
}

TEST_F(MenuBarTest, TellsOfNothingToClear) {
  bridge.replies["clearMarks"] = {true, Object{{"removed", 0}}};
  make();
  platform.statusItem().choose("Clear Stuck Highlights");
  settle();
  EXPECT_EQ(takeAlerts(), (std::vector<Alert>{{"Removed 0 highlights", "", {}}}));
}

TEST_F(MenuBarTest, TellsWhyNothingCouldBeCleared) {
  bridge.replies["clearMarks"] = {
      false, Object{{"kind", "timeout"}, {"message", "Excel did not respond within 25s"}}};
  make();
  platform.statusItem().choose("Clear Stuck Highlights");
  settle();
  EXPECT_EQ(
      takeAlerts(),
      (std::vector<Alert>{{"Could not clear highlights", "Excel did not respond within 25s", {}}}));
}

TEST_F(MenuBarTest, TellsNothingOnceItIsGone) {
  make();
  platform.statusItem().choose("Clear Stuck Highlights");
  queue.runAll();
  menuBar.reset();
  platform.mainLoop().runPosted();
  EXPECT_THAT(takeAlerts(), IsEmpty());
}

TEST_F(MenuBarTest, OpensTheLogWithEverythingInIt) {
  make();
  log->log("TEST", "last");
  platform.statusItem().choose("Open Diagnostic Log");
  EXPECT_THAT(readFile(folder / "quorin.log"), testing::HasSubstr("TEST last"));
  EXPECT_THAT(takeJournal(), ElementsAre("openFile " + (folder / "quorin.log").string()));
  EXPECT_THAT(logged(), ElementsAre("TEST last"));
}

TEST_F(MenuBarTest, LogsThatNothingOpensTheLog) {
  platform.workspace().opens = false;
  make();
  platform.statusItem().choose("Open Diagnostic Log");
  EXPECT_THAT(logged(), ElementsAre("ERROR no program opens " + log->url().string()));
}

TEST_F(MenuBarTest, ReportsAProblem) {
  platform.bundle().info["QXSupportEmail"] = "help@example.org";
  std::filesystem::create_directories(folder / "temporary");
  std::filesystem::create_directories(folder / "desktop");
  make();
  platform.statusItem().choose("Report a Problem…");
  EXPECT_THAT(takeJournal(), ElementsAre(StartsWith("openURL mailto:help@example.org?")));
}

TEST_F(MenuBarTest, ChecksForUpdates) {
  make();
  platform.statusItem().choose("Check for Updates…");
  EXPECT_THAT(takeJournal(), ElementsAre("checkForUpdates"));
}

TEST_F(MenuBarTest, SaysWhyThereAreNoUpdates) {
  platform.updates.reason = "no feed in this build";
  make();
  const MenuItem item = platform.statusItem().items.at(5);
  EXPECT_EQ(item, (MenuItem{"Check for Updates… (no feed in this build)", false, false}));
  platform.statusItem().choose(item.title);
  menuBar->checkForUpdates();
  EXPECT_THAT(takeJournal(), IsEmpty());
}

TEST_F(MenuBarTest, SaysThatThisBuildHasNoUpdater) {
  platform.hasUpdater = false;
  make();
  EXPECT_EQ(platform.statusItem().items.at(5),
            (MenuItem{"Check for Updates… (not in this build)", false, false}));
}

TEST_F(MenuBarTest, RegistersTheLoginItemAndTakesItBack) {
  make();
  platform.statusItem().choose("Start at Login");
  EXPECT_EQ(loginItem(), (MenuItem{"Start at Login", true, true, true}));
  platform.statusItem().choose("Start at Login");
  EXPECT_EQ(loginItem(), (MenuItem{"Start at Login", true, false, true}));
  EXPECT_THAT(takeJournal(), ElementsAre("registerLoginItem", "unregisterLoginItem"));
  EXPECT_THAT(logged(), ElementsAre("LOGIN register enabled", "LOGIN unregister notRegistered"));
}

TEST_F(MenuBarTest, RegistersInEveryStateButEnabled) {
  make();
  for (const LoginItemStatus status :
       {LoginItemStatus::notRegistered, LoginItemStatus::notFound,
        LoginItemStatus::requiresApproval, LoginItemStatus::unknown}) {
    platform.login.current = status;
    platform.login.afterRegistering = status;
    platform.statusItem().choose("Start at Login");
    EXPECT_FALSE(loginItem().checked);
  }
  EXPECT_THAT(takeJournal(), ElementsAre("registerLoginItem", "registerLoginItem",
                                         "registerLoginItem", "registerLoginItem"));
  EXPECT_THAT(logged(), ElementsAre("LOGIN register notRegistered", "LOGIN register notFound",
                                    "LOGIN register requiresApproval", "LOGIN register unknown"));
}

TEST_F(MenuBarTest, TellsWhyTheLoginItemCouldNotBeChanged) {
  make();
  platform.login.error = "Operation not permitted";
  platform.login.current = LoginItemStatus::enabled;
  platform.statusItem().choose("Start at Login");
  EXPECT_THAT(logged(), ElementsAre("ERROR login: Operation not permitted"));
  EXPECT_EQ(
      takeAlerts(),
      (std::vector<Alert>{{"Could not change the login item", "Operation not permitted", {}}}));
  EXPECT_TRUE(loginItem().checked) << "refreshed in every case";
}

TEST_F(MenuBarTest, DisablesTheLoginItemOutsideOfAnInstalledPlace) {
  platform.login.installed = false;
  platform.login.current = LoginItemStatus::enabled;
  make();
  EXPECT_EQ(loginItem(), (MenuItem{"Start at Login (installed app only)", false, false, true}));
  platform.statusItem().choose("Start at Login (installed app only)");
  EXPECT_THAT(takeJournal(), IsEmpty());
}

TEST_F(MenuBarTest, RefreshesTheLoginItemWhenTheMenuOpens) {
  make();
  platform.login.current = LoginItemStatus::enabled;
  EXPECT_FALSE(loginItem().checked);
  platform.statusItem().open();
  EXPECT_TRUE(loginItem().checked);
  platform.login.installed = false;
  platform.statusItem().open();
  EXPECT_FALSE(loginItem().enabled);
}

TEST_F(MenuBarTest, StaysUsableAfterFailures) {
  make();
  const PanelBridge::Reply refused{false, Object{{"kind", "busy"}, {"message", "Excel is busy"}}};
  bridge.replies["clearMarks"] = refused;
  platform.login.error = "Operation not permitted";
  platform.workspace().opens = false;
  const std::vector<std::string> tried{"Clear Stuck Highlights", "Open Diagnostic Log",
                                       "Report a Problem…", "Start at Login"};
  for (const std::string& title : tried) platform.statusItem().choose(title);
  settle();
  EXPECT_THAT(logged(), ElementsAre("ERROR no program opens " + log->url().string(),
                                    StartsWith("ERROR problem report: "),
                                    "ERROR login: Operation not permitted"));
  EXPECT_EQ(takeAlerts(),
            (std::vector<Alert>{{"Could not change the login item", "Operation not permitted", {}},
                                {"Could not clear highlights", "Excel is busy", {}}}));
  EXPECT_FALSE(loginItem().checked);

  bridge.replies["clearMarks"] = {true, Object{{"removed", 3}}};
  platform.login.error.reset();
  platform.workspace().opens = true;
  std::filesystem::create_directories(folder / "temporary");
  takeJournal();
  for (const std::string& title : tried) platform.statusItem().choose(title);
  settle();
  EXPECT_EQ(takeAlerts(), (std::vector<Alert>{{"Removed 3 highlights", "", {}}}));
  EXPECT_THAT(takeJournal(), Contains(StartsWith("openFile ")));
  EXPECT_TRUE(loginItem().checked);
}

TEST_F(MenuBarTest, Quits) {
  make();
  platform.statusItem().choose("Quit Quorin");
  EXPECT_THAT(takeJournal(), ElementsAre("terminate"));
}

TEST_F(MenuBarTest, DoesWithoutAStatusBar) {
  platform.hasStatusBar = platform.hasLoginItem = platform.hasUpdater = false;
  make();
  menuBar->toggleFollow();
  menuBar->toggleLogin();
  menuBar->refreshLoginItem();
  EXPECT_TRUE(poller->paused());
}

}  // namespace
}  // namespace quorin
