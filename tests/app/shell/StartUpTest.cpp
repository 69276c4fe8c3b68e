#include "tests/app/shell/AppDelegateFixture.h"

namespace quorin {
namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class StartUpTest : public AppDelegateFixture {
 protected:
  // A crash so long before this launch.
  void crashed(std::chrono::milliseconds before) {
    const auto crash = folder / "library/Logs/DiagnosticReports/Quorin-1.ips";
    writeFile(crash, "stack");
    std::filesystem::last_write_time(
        crash, std::chrono::file_clock::from_sys(platform.clock().now() - before));
  }

  // Launched so long before this launch.
  void launchedBefore(std::chrono::hours before) {
    const std::string date = ISO::string(ISO::fromClock(platform.clock().now() - before));
    writeFile(config, R"({"lastLaunchedAt": ")" + date + "\"}");
  }
};

TEST_F(StartUpTest, StartsInItsOrder) {
  launch();
  EXPECT_THAT(logged(), ElementsAre("LAUNCH 1.2.3"));
  EXPECT_THAT(takeJournal(), ElementsAre(StartsWith("loadFile ")));
  EXPECT_EQ(platform.mainLoop().timerCount(), 1u);
  EXPECT_EQ(queue.waiting(), 1u);
  settle();
  EXPECT_THAT(takeJournal(), ElementsAre("restoreStranded"));
  EXPECT_FALSE(platform.window().visible);
}

TEST_F(StartUpTest, RegistersTheConfiguredHotKeysAfterTheRest) {
  platform.hasHotKeys = true;
  writeFile(config, R"({"mapKeyCode": 46, "mapModifiers": 4352})");
  launch();
  EXPECT_EQ(queue.waiting(), 1u) << "stranded marks come first";
  EXPECT_THAT(takeJournal(), Contains("addHotKey 4 46 4352"));
  platform.window().visible = true;
  platform.webView().finishLoading();
  EXPECT_EQ(platform.hotKeyService.press({HotKey::signature, 4}), 0);
  EXPECT_THAT(logged(), Contains("HOTKEY map key=false visible=true excelFrontmost=false"));
}

TEST_F(StartUpTest, PromptsAfterACrashBeforeItStartsTheRest) {
  launchedBefore(2h);
  crashed(1h);
  launch();
  EXPECT_THAT(takeJournal(), ElementsAre("activateSelf", "alert Quorin crashed last time"));
  EXPECT_THAT(logged(),
              ElementsAre("LAUNCH 1.2.3", "SUPPORT crash report found since last launch"));
  EXPECT_FALSE(platform.madePanel());
  EXPECT_EQ(queue.waiting(), 0u);
  platform.alerts().press(1);
  EXPECT_TRUE(platform.madePanel());
  settle();
  EXPECT_THAT(takeJournal(), Contains("restoreStranded"));
}

TEST_F(StartUpTest, DoesNotPromptForACrashOfBeforeTheLastLaunch) {
  launchedBefore(1h);
  crashed(2h);
  launch();
  EXPECT_THAT(platform.alerts().shown, IsEmpty());
  EXPECT_TRUE(platform.madePanel());
}

TEST_F(StartUpTest, PromptsForAnyCrashAtTheFirstLaunch) {
  crashed(24h * 365 * 30);
  launch();
  EXPECT_THAT(takeJournal(), Contains("alert Quorin crashed last time"));
}

TEST_F(StartUpTest, PromptsOnceForACrashInTheSecondOfTheLaunch) {
  launchedBefore(2h);
  platform.mainLoop().advance(800ms);
  crashed(500ms);
  launch();
  EXPECT_THAT(takeJournal(), Contains("alert Quorin crashed last time"));
  platform.alerts().press(1);
  delegate.reset();
  platform.mainLoop().advance(10s);
  launch();
  EXPECT_THAT(takeJournal(), Not(Contains("alert Quorin crashed last time")));
}

TEST_F(StartUpTest, PromptsForACrashInTheSecondOfItsOwnLaunch) {
  platform.mainLoop().advance(200ms);
  launch();
  delegate.reset();
  takeJournal();
  platform.mainLoop().advance(500ms);
  crashed(0ms);
  launch();
  EXPECT_THAT(takeJournal(), Contains("alert Quorin crashed last time"));
}

TEST_F(StartUpTest, KnowsThePreviousLaunchThoughThisOneCannotBeRecorded) {
  config = folder / std::string(250, 'c');  // too long a name for a new file to have a longer one
  launchedBefore(2h);
  crashed(1h);
  const std::string before = readFile(config);
  launch();
  EXPECT_EQ(readFile(config), before);
  EXPECT_THAT(logged(), Contains(StartsWith("ERROR lastLaunchedAt not saved: ")));
  EXPECT_THAT(takeJournal(), Contains("alert Quorin crashed last time"));
  platform.alerts().press(1);
  EXPECT_TRUE(platform.madePanel());
  delegate.reset();
  crashed(3h);
  launch();
  EXPECT_THAT(takeJournal(), Not(Contains("alert Quorin crashed last time")));
}

TEST_F(StartUpTest, GoesOnAfterAReportThatFailed) {
  crashed(1h);
  platform.packer.status = 1;
  std::filesystem::create_directories(folder / "temporary");
  launch();
  platform.alerts().press(0);
  EXPECT_THAT(logged(), Contains("ERROR problem report: ditto failed"));
  EXPECT_TRUE(platform.madePanel());
  settle();
  EXPECT_THAT(takeJournal(), Contains("restoreStranded"));
}

TEST_F(StartUpTest, GoesOnWithoutTheHotKeysThatTheSystemRefuses) {
  platform.hasHotKeys = true;
  for (std::uint32_t id = 1; id <= 5; ++id) platform.hotKeyService.refused[id] = -9878;
  launch();
  EXPECT_THAT(logged(), ElementsAre("LAUNCH 1.2.3", "ERROR hotkey 0 register failed: -9878",
                                    "ERROR hotkey 123 register failed: -9878",
                                    "ERROR hotkey 124 register failed: -9878",
                                    "ERROR hotkey 2 register failed: -9878",
                                    "ERROR hotkey 1 register failed: -9878"));
  platform.workspace().bringToFront(excel());
  EXPECT_TRUE(platform.window().visible);
}

TEST_F(StartUpTest, TellsThatTheScriptDidNotCompileAndQuits) {
  compileError = "Expected end of line (-2741) line 12";
  launch();
  EXPECT_THAT(takeJournal(), ElementsAre("activateSelf",
                                         "alert Quorin could not compile its Excel script: "
                                         "Expected end of line (-2741) line 12"));
  EXPECT_THAT(platform.alerts().shown[0].buttons, IsEmpty());
  platform.alerts().press(0);
  EXPECT_THAT(takeJournal(), ElementsAre("terminate"));
  EXPECT_FALSE(platform.madePanel());
  EXPECT_THAT(logged(), IsEmpty());
  EXPECT_EQ(queue.waiting(), 0u);
  delegate->raisePanel();
  EXPECT_FALSE(platform.madePanel());
}

TEST_F(StartUpTest, LogsAnEmptyVersionWhenTheBundleHasNone) {
  platform.bundle().info.clear();
  launch();
  EXPECT_THAT(logged(), ElementsAre("LAUNCH "));
}

TEST_F(StartUpTest, ShowsThePanelAtLaunchForDevelopers) {
  environment["QX_DEV_AUTOSHOW"] = "1";
  launch();
  EXPECT_FALSE(platform.window().visible) << "scheduled, not done at once";
  platform.mainLoop().runPosted();
  EXPECT_TRUE(platform.window().key);
  platform.webView().finishLoading();
  EXPECT_THAT(platform.webView().takeScripts(),
              ElementsAre(R"(window.__qxEvent && window.__qxEvent("summon", {}))"));
}

TEST_F(StartUpTest, ShowsNothingAtLaunchForAnyOtherValue) {
  environment["QX_DEV_AUTOSHOW"] = "true";
  launch();
  settle();
  EXPECT_FALSE(platform.window().visible);
}

TEST_F(StartUpTest, RecordsTheLaunchAndKeepsUnknownKeys) {
  writeFile(config, R"({"mine": [1], "lastLaunchedAt": "2026-01-01T00:00:00Z"})");
  launch();
  const std::string text = readFile(config);
  EXPECT_THAT(text, HasSubstr(R"("lastLaunchedAt": "2026-09-21T14:13:20Z")"));
  EXPECT_THAT(text, HasSubstr(R"("mine")"));
}

TEST_F(StartUpTest, StartsWithoutAConfigurationThatCanBeWritten) {
  writeFile(config, "[1,2");
  launched();
  EXPECT_EQ(readFile(config), "[1,2");
  EXPECT_THAT(logged(), Contains(StartsWith("ERROR lastLaunchedAt not saved: ")));
  EXPECT_EQ(platform.mainLoop().timerCount(), 1u);
}

}  // namespace
}  // namespace quorin
