#include <algorithm>

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
using Object = JSONValue::Object;

class AppDelegateTest : public AppDelegateFixture {};

TEST_F(AppDelegateTest, ShowsItsMenuOverPanelAndPoller) {
  platform.hasStatusBar = true;
  launched();
  platform.statusItem().choose("Open Auditor");
  EXPECT_TRUE(platform.window().key);
  platform.statusItem().choose("Pause Follow");
  EXPECT_THAT(platform.webView().takeScripts(), Contains(HasSubstr("followState")));
}

TEST_F(AppDelegateTest, DoesWhatTheHotKeysDoWhenItIsAsked) {
  makeDelegate();
  delegate->surface("map");
  delegate->step(1);
  EXPECT_THAT(logged(), IsEmpty()) << "not before start-up is complete";
  delegate->applicationDidFinishLaunching();
  EXPECT_THAT(logged(), Contains("HOTKEY map key=false visible=false excelFrontmost=false"));
  platform.window().visible = true;
  platform.webView().finishLoading();
  settle();
  platform.webView().takeScripts();
  delegate->surface("deps");
  EXPECT_THAT(logged(), Contains(HasSubstr("HOTKEY deps key=")));
  platform.webView().takeScripts();
  delegate->step(-1);
  EXPECT_THAT(platform.webView().takeScripts(),
              ElementsAre(R"(window.__qxEvent && window.__qxEvent("step", {"dir":-1}))"));
}

TEST_F(AppDelegateTest, PollsAtTheConfiguredPeriod) {
  writeFile(folder / "config.json", R"({"pollMs": 1000})");
  launched();
  platform.workspace().bringToFront(excel());
  settle();
  bridge.polls = 0;
  platform.mainLoop().advance(999ms);
  settle();
  EXPECT_EQ(bridge.polls, 0);
  platform.mainLoop().advance(1ms);
  settle();
  EXPECT_EQ(bridge.polls, 1);
}

TEST_F(AppDelegateTest, TakesTheCellThatTheBridgeMovedToAsKnown) {
  launched();
  platform.workspace().bringToFront(excel());
  settle();
  platform.webView().takeScripts();
  bridge.activatedCell({"Model.xlsx", "Debt", "$C$3"});
  bridge.polls = 0;
  platform.mainLoop().runPosted();
  platform.mainLoop().advance(300ms);
  settle();
  EXPECT_EQ(bridge.polls, 0) << "the tick adopted it";
  bridge.answers.push_back(Object{{"book", "Model.xlsx"}, {"sheet", "Debt"}, {"addr", "$C$3"}});
  platform.mainLoop().advance(300ms);
  settle();
  EXPECT_EQ(bridge.polls, 1);
  EXPECT_THAT(platform.webView().takeScripts(), IsEmpty());
}

TEST_F(AppDelegateTest, SeedsTheBaselineWhenSummonedOverExcel) {
  AppDelegate& app = launched();
  platform.workspace().frontmost = excel();
  app.panel().showCompanion();
  settle();
  EXPECT_EQ(bridge.polls, 1);
  app.panel().close();
  platform.workspace().frontmost = editor();
  app.panel().showCompanion();
  settle();
  EXPECT_EQ(bridge.polls, 1);
}

TEST_F(AppDelegateTest, ComesWithExcelAndGoesWithAnotherApplication) {
  launched();
  platform.workspace().bringToFront(excel());
  EXPECT_TRUE(platform.window().visible);
  EXPECT_FALSE(platform.window().key);
  settle();
  takeJournal();
  platform.workspace().bringToFront(editor());
  EXPECT_THAT(
      takeJournal(),
      ElementsAre(R"(evaluate window.__qxEvent && window.__qxEvent("cleanHide", {}))", "orderOut"));
  platform.workspace().bringToFront(excel());
  EXPECT_TRUE(platform.window().visible);
  EXPECT_THAT(
      logged(),
      ElementsAre("LAUNCH 1.2.3",
                  "COMPANION activated=com.microsoft.Excel action=show enabled=true visible=false "
                  "key=false",
                  "SHOWN companion visible=true key=false",
                  "COMPANION activated=org.example.Editor action=hide enabled=true visible=true "
                  "key=false",
                  "COMPANION activated=com.microsoft.Excel action=show enabled=true visible=false "
                  "key=false",
                  "SHOWN companion visible=true key=false"));
}

TEST_F(AppDelegateTest, StaysHiddenAfterTheUserHidItThroughThePage) {
  launched();
  platform.workspace().bringToFront(excel());
  platform.webView().post(Object{{"id", 1}, {"verb", "hidePanel"}});
  platform.workspace().bringToFront(editor());
  platform.workspace().bringToFront(excel());
  EXPECT_FALSE(platform.window().visible);
  EXPECT_THAT(logged(), Contains("COMPANION activated=com.microsoft.Excel action=ignore "
                                 "enabled=false visible=false key=false"));
}

TEST_F(AppDelegateTest, IgnoresAnotherApplicationWhileHidden) {
  launched();
  platform.workspace().bringToFront({"", 3, false});
  EXPECT_THAT(takeJournal(), IsEmpty());
  EXPECT_THAT(logged(), Contains("COMPANION activated= action=ignore enabled=true visible=false "
                                 "key=false"));
}

TEST_F(AppDelegateTest, TakesOnlyTheExactIdentifierForExcels) {
  AppDelegate& app = launched();
  for (const char* other : {"com.microsoft.excel", "com.microsoft.Excel.Helper", "microsoft.Excel"})
    platform.workspace().bringToFront({other, 815, false});
  EXPECT_THAT(takeJournal(), IsEmpty());
  app.panel().showCompanion();
  platform.workspace().bringToFront({"com.microsoft.excel", 815, false});
  EXPECT_FALSE(platform.window().visible);
  EXPECT_TRUE(app.panel().enabled());
}

TEST_F(AppDelegateTest, IgnoresItself) {
  AppDelegate& app = launched();
  platform.workspace().bringToFront(self());
  EXPECT_FALSE(platform.window().visible);
  app.panel().summon();
  takeJournal();
  platform.workspace().bringToFront(self());
  EXPECT_THAT(takeJournal(), IsEmpty());
  EXPECT_THAT(logged(), Contains("COMPANION activated=com.quorin.app action=ignore enabled=true "
                                 "visible=true key=true"));
}

TEST_F(AppDelegateTest, StandsBesideExcelWhenItFirstComes) {
  launched();
  platform.workspace().bringToFront(excel());
  settle();
  EXPECT_EQ(platform.window().currentFrame, (ScreenFrame{900, 252, 460, 588}));
  platform.window().currentFrame = {5, 5, 460, 588};
  platform.workspace().bringToFront(editor());
  platform.workspace().bringToFront(excel());
  settle();
  EXPECT_EQ(platform.window().currentFrame.x, 5) << "only the first time";
}

TEST_F(AppDelegateTest, FollowsAWindowOfExcelThatIsStillOpening) {
  launched();
  const JSONValue probed = std::exchange(
      bridge.probed,
      Object{{"excelWindow", Object{{"x1", 0}, {"y1", 60}, {"x2", 700}, {"y2", 800}}}});
  platform.workspace().bringToFront(excel());
  settle();
  EXPECT_EQ(platform.window().currentFrame.x, 700);
  bridge.probed = probed;
  platform.mainLoop().advance(1000ms);
  settle();
  EXPECT_EQ(platform.window().currentFrame.x, 900);
  platform.mainLoop().advance(1000ms);
  settle();
  takeJournal();
  platform.mainLoop().advance(60'000ms);
  settle();
  EXPECT_THAT(takeJournal(), Not(Contains("probe"))) << "two answers agree";
}

TEST_F(AppDelegateTest, AsksABusyExcelAgainWhereItsWindowIs) {
  launched();
  const JSONValue probed = std::exchange(bridge.probed, Object{{"state", "busy"}});
  platform.workspace().bringToFront(excel());
  settle();
  EXPECT_EQ(platform.window().currentFrame.x, 0);
  bridge.probed = probed;
  platform.mainLoop().advance(1000ms);
  settle();
  EXPECT_EQ(platform.window().currentFrame.x, 900);
}

TEST_F(AppDelegateTest, StopsAskingABusyExcel) {
  launched();
  bridge.probed = Object{{"state", "busy"}};
  platform.workspace().bringToFront(excel());
  for (int i = 0; i < 60; ++i) {
    settle();
    platform.mainLoop().advance(1000ms);
  }
  const Journal journal = takeJournal();
  EXPECT_EQ(std::count(journal.begin(), journal.end(), "probe"), 31);
}

TEST_F(AppDelegateTest, AsksAgainWhereExcelsWindowIsWhenItComesForward) {
  launched();
  const JSONValue probed = std::exchange(bridge.probed, Object{{"state", "busy"}});
  platform.workspace().bringToFront(excel());
  for (int i = 0; i < 60; ++i) {
    settle();
    platform.mainLoop().advance(1000ms);
  }
  bridge.probed = probed;
  platform.workspace().bringToFront(editor());
  platform.workspace().bringToFront(excel());
  settle();
  EXPECT_EQ(platform.window().currentFrame.x, 900);
}

TEST_F(AppDelegateTest, DoesNotWaitForASlowExcelToRaiseThePanel) {
  AppDelegate& app = launched();
  app.raisePanel();
  platform.mainLoop().advance(299ms);
  EXPECT_FALSE(platform.window().visible);
  platform.mainLoop().advance(1ms);
  EXPECT_TRUE(platform.window().key);
  EXPECT_EQ(platform.window().currentFrame.x, 0);
  takeJournal();
  settle();
  EXPECT_THAT(takeJournal(), ElementsAre("probe", "setFrame 900 252 460 588"));
}

TEST_F(AppDelegateTest, LeavesThePanelWhereTheUserPutItWhileExcelWasSlow) {
  AppDelegate& app = launched();
  app.raisePanel();
  platform.mainLoop().advance(300ms);
  platform.defaults().texts["NSWindow Frame QuorinPanel"] = "5 5 460 588 0 0 1440 900 ";
  takeJournal();
  settle();
  EXPECT_THAT(takeJournal(), ElementsAre("probe"));
}

TEST_F(AppDelegateTest, AsksForNoWindowWhenTheUserHasPlacedThePanel) {
  platform.defaults().texts["NSWindow Frame QuorinPanel"] = "5 5 460 588 0 0 1440 900 ";
  launched();
  platform.workspace().bringToFront(excel());
  settle();
  EXPECT_THAT(takeJournal(), Not(Contains("probe")));
}

TEST_F(AppDelegateTest, RaisesTheHiddenPanelBesideExcel) {
  AppDelegate& app = launched();
  app.raisePanel();
  EXPECT_THAT(takeJournal(), IsEmpty());
  settle();
  EXPECT_THAT(takeJournal(),
              ElementsAre("probe", "setFrame 900 252 460 588", "makeKeyAndOrderFront",
                          R"(evaluate window.__qxEvent && window.__qxEvent("summon", {}))"));
}

TEST_F(AppDelegateTest, RaisesThePanelWhereItIs) {
  AppDelegate& app = launched();
  platform.workspace().bringToFront(excel());
  settle();
  takeJournal();
  app.raisePanel();
  EXPECT_THAT(takeJournal(),
              ElementsAre("makeKeyAndOrderFront",
                          R"(evaluate window.__qxEvent && window.__qxEvent("summon", {}))"));
}

TEST_F(AppDelegateTest, RaisesThePanelAtTheEndOfStartUpWhenAskedBefore) {
  makeDelegate();
  delegate->raisePanel();
  EXPECT_FALSE(platform.madePanel());
  delegate->applicationDidFinishLaunching();
  settle();
  EXPECT_TRUE(platform.window().key);
  EXPECT_EQ(platform.window().currentFrame.x, 900);
}

TEST_F(AppDelegateTest, RaisesThePanelWithoutExcelsWindowAndPlacesItLater) {
  AppDelegate& app = launched();
  const JSONValue probed = std::exchange(bridge.probed, Object{{"state", "notRunning"}});
  app.raisePanel();
  settle();
  EXPECT_TRUE(platform.window().key);
  EXPECT_EQ(platform.window().currentFrame.x, 0);
  bridge.probed = probed;
  platform.mainLoop().advance(1000ms);
  settle();
  EXPECT_EQ(platform.window().currentFrame.x, 900);
}

TEST_F(AppDelegateTest, TakesTheMarksBackAtTheEndAndWritesTheLog) {
  AppDelegate& app = launched();
  std::vector<std::string> before;
  bridge.onClearMarksForTerminate = [&] { before = logged(); };
  app.applicationWillTerminate();
  EXPECT_THAT(before, ElementsAre("LAUNCH 1.2.3")) << "the marks first";
  EXPECT_THAT(takeJournal(), ElementsAre("clearMarksForTerminate"));
  EXPECT_THAT(readFile(folder / "quorin.log"), HasSubstr(" TERMINATE quit\n"))
      << "on disk before the process ends";
}

// The panel is up, and there are marks; `ended` counts how often the application goes on.
class AtTheEnd : public AppDelegateTest {
 protected:
  AtTheEnd() {
    launched();
    platform.workspace().bringToFront(excel());
    settle();
    takeJournal();
    bridge.recorded = {12, 1, 3, 2};
  }

  void terminate() {
    delegate->applicationShouldTerminate([this] { ++ended; });
  }

  void pageSays(const char* verb) {
    platform.webView().post(Object{{"id", 9}, {"verb", verb}, {"args", JSONValue::Array{}}});
  }

  int ended = 0;
  const std::string told =
      "evaluate window.__qxEvent && window.__qxEvent(\"quitting\", "
      "{\"cells\":12,\"columns\":2,\"names\":1,\"rows\":3})";
  const std::string answered = R"(evaluate window.__qxResolve(9, {"ok":true,"payload":null}))";
};

TEST_F(AtTheEnd, WaitsUntilThePageHasDrawnWhatIsTakenBack) {
  terminate();
  EXPECT_THAT(takeJournal(), ElementsAre(told));
  pageSays("setSetting");
  EXPECT_EQ(ended, 0) << "another verb is none of it";
  pageSays("quittingDrawn");
  EXPECT_EQ(ended, 1);
  EXPECT_THAT(takeJournal(), ElementsAre(testing::_, answered));
  pageSays("quittingDrawn");
  EXPECT_EQ(ended, 1);
}

TEST_F(AtTheEnd, SaysNothingWhereNothingIsRecorded) {
  bridge.recorded = {};
  terminate();
  EXPECT_EQ(ended, 1);
  EXPECT_THAT(takeJournal(), IsEmpty());
}

TEST_F(AtTheEnd, SaysNothingInAHiddenPanel) {
  platform.workspace().bringToFront(editor());
  takeJournal();
  terminate();
  EXPECT_EQ(ended, 1);
  EXPECT_THAT(takeJournal(), IsEmpty());
}

TEST_F(AtTheEnd, TakesNoAnswerForOneThatWasNotAsked) {
  pageSays("quittingDrawn");
  EXPECT_THAT(takeJournal(), ElementsAre(answered));
  terminate();
  EXPECT_EQ(ended, 0);
}

TEST_F(AtTheEnd, MakesNoPanelToSayIt) {
  platform.journal.clear();
  makeDelegate();
  terminate();
  EXPECT_EQ(ended, 1);
  EXPECT_THAT(takeJournal(), IsEmpty());
}

TEST_F(AtTheEnd, IsNotKeptByAPageThatIsGone) {
  platform.webView().delegate->webViewWebProcessDidTerminate();
  takeJournal();
  terminate();
  EXPECT_THAT(takeJournal(), IsEmpty());
  EXPECT_EQ(ended, 0) << "the application goes on by itself";
  platform.webView().finishLoading();
  EXPECT_THAT(takeJournal(), ElementsAre(told));
}

TEST_F(AppDelegateTest, LeavesNothingBehindThatCouldCallIt) {
  launched();
  platform.workspace().bringToFront(excel());
  bridge.activatedCell({"b", "s", "a"});
  delegate.reset();
  settle();
  platform.workspace().bringToFront(editor());
}

}  // namespace
}  // namespace quorin
