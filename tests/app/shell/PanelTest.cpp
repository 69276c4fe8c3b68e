#include "tests/app/shell/ShellFixture.h"

namespace quorin {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

using PanelTest = ShellFixture;
using PanelDeathTest = ShellFixture;

constexpr BridgeShapes::WindowBounds excelWindow{40, 60, 900, 800};
const Panel::Event greeting{"surface", JSONValue::Object{{"name", "map"}}};

TEST_F(PanelTest, BuildsOneHiddenWindowWithThePageInIt) {
  const auto panel = makePanel();
  const FakePanelWindow& window = platform.window();
  EXPECT_EQ(window.options.title, "Quorin");
  EXPECT_EQ(window.options.contentFrame, (ScreenFrame{0, 0, 460, 560}));
  EXPECT_EQ(window.options.minimumContentSize, (ScreenSize{320, 320}));
  EXPECT_EQ(window.options.frameAutosaveName, "QuorinPanel");
  EXPECT_EQ(platform.webView().options.messageHandlerName, "qx");
  EXPECT_EQ(window.content, &platform.webView());
  EXPECT_FALSE(panel->isVisible());
  EXPECT_TRUE(panel->enabled());
}

TEST_F(PanelTest, TellsThePageTheNameOfTheSpreadsheet) {
  const auto panel = makePanel();
  EXPECT_EQ(platform.webView().options.startScript, R"(window.__qxApp = "Test \"Sheets\"";)");
}

TEST_F(PanelTest, LoadsTheBundleAndLetsItReadItsOwnFolder) {
  writeFile(folder / "resources/web/index.html", "<p>page</p>");
  platform.bundle().resources = folder / "resources";
  const auto panel = makePanel();
  const std::string web = (folder / "resources/web").string();
  EXPECT_THAT(platform.journal, ElementsAre("loadFile " + web + "/index.html " + web));
}

TEST_F(PanelTest, LoadsTheDevelopmentPageInsteadOfTheBundle) {
  writeFile(folder / "resources/web/index.html", "<p>page</p>");
  platform.bundle().resources = folder / "resources";
  environment["QX_DEV_URL"] = "http://127.0.0.1:5173/";
  const auto panel = makePanel();
  EXPECT_THAT(platform.journal, ElementsAre("loadURL http://127.0.0.1:5173/ 60"));
}

TEST_F(PanelTest, LoadsTheBundleWhenTheDevelopmentPageIsNoURL) {
  writeFile(folder / "resources/web/index.html", "<p>page</p>");
  platform.bundle().resources = folder / "resources";
  environment["QX_DEV_URL"] = "not a url";
  const auto panel = makePanel();
  EXPECT_THAT(platform.journal, ElementsAre(StartsWith("loadFile ")));
}

TEST_F(PanelTest, LoadsNoDevelopmentPageOfAnotherMachine) {
  writeFile(folder / "resources/web/index.html", "<p>page</p>");
  platform.bundle().resources = folder / "resources";
  environment["QX_DEV_URL"] = "http://localhost.example.org/";
  const auto panel = makePanel();
  EXPECT_THAT(platform.journal, ElementsAre(StartsWith("loadFile ")));
  EXPECT_THAT(logged(),
              ElementsAre("ERROR QX_DEV_URL is not an address on this machine, showing the own "
                          "page"));
}

TEST_F(PanelTest, LogsWhatThePageMayNotHave) {
  const auto panel = makePanel();
  platform.webView().delegate->webViewDidRefuse("navigation");
  EXPECT_THAT(logged(), ElementsAre("ERROR web view refused a navigation"));
}

TEST_F(PanelTest, SaysThatTheBundleIsMissingWithoutLoggingIt) {
  const std::string heading =
      "loadHTML <h1 style='font:14px system-ui;padding:16px'>Quorin: web bundle missing</h1>";
  makePanel();
  EXPECT_THAT(takeJournal(), ElementsAre(heading)) << "no resource folder";
  platform.bundle().resources = folder / "nowhere";
  makePanel();
  EXPECT_THAT(takeJournal(), ElementsAre(heading)) << "no file";
  EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(PanelTest, ShowsItselfBesideExcelAndTellsThePage) {
  const auto panel = makePanel();
  panel->setOnSummon([&] { platform.journal.push_back("onSummon"); });
  platform.webView().finishLoading();
  takeJournal();
  panel->show(excelWindow, greeting);
  EXPECT_THAT(takeJournal(),
              ElementsAre("setFrame 900 252 460 588", "makeKeyAndOrderFront", "onSummon",
                          R"(evaluate window.__qxEvent && window.__qxEvent("surface", )"
                          R"({"name":"map"}))"));
}

TEST_F(PanelTest, StaysWhereItIsWithoutExcelsWindow) {
  const auto panel = makePanel();
  takeJournal();
  panel->show(std::nullopt, greeting);
  EXPECT_THAT(takeJournal(), ElementsAre("makeKeyAndOrderFront"));
}

TEST_F(PanelTest, StaysWhereItIsWithoutAScreen) {
  const auto panel = makePanel();
  platform.window().allScreens.clear();
  takeJournal();
  panel->show(excelWindow, greeting);
  EXPECT_THAT(takeJournal(), ElementsAre("makeKeyAndOrderFront"));
}

TEST_F(PanelTest, NeverMovesOnceTheUserHasMovedIt) {
  const auto panel = makePanel();
  platform.defaults().texts["NSWindow Frame QuorinPanel"] = "";
  takeJournal();
  panel->show(excelWindow, greeting);
  panel->positionBeside(excelWindow);
  EXPECT_THAT(takeJournal(), ElementsAre("makeKeyAndOrderFront"));
}

TEST_F(PanelTest, MeasuresExcelsPositionOnTheFirstScreen) {
  const auto panel = makePanel();
  platform.window().allScreens = {{{0, 0, 1920, 1200}, {0, 0, 1920, 1170}},
                                  {{1920, 0, 1440, 900}, {1920, 0, 1440, 900}}};
  panel->positionBeside({0, 100, 1000, 900});
  EXPECT_EQ(platform.window().currentFrame, (ScreenFrame{1000, 512, 460, 588}));
}

TEST_F(PanelTest, ComesWithExcelWithoutTakingTheKeyboard) {
  const auto panel = makePanel();
  panel->setOnSummon([&] { platform.journal.push_back("onSummon"); });
  platform.webView().finishLoading();
  takeJournal();
  panel->showCompanion();
  EXPECT_THAT(takeJournal(),
              ElementsAre("orderFront", "onSummon",
                          R"(evaluate window.__qxEvent && window.__qxEvent("summon", )"
                          R"({"resume":true}))"));
  EXPECT_THAT(logged(), ElementsAre("SHOWN companion visible=true key=false"));
}

TEST_F(PanelTest, GivesTheKeyboardBackToTheFirstExcel) {
  const auto panel = makePanel();
  platform.workspace().running = {editor(), excel(), {"com.microsoft.Excel", 4712, false}};
  panel->show(std::nullopt, greeting);
  takeJournal();
  panel->relinquishKey();
  EXPECT_THAT(takeJournal(), ElementsAre("activate 4711", "resignKey", "orderFront"));
  EXPECT_TRUE(panel->isVisible());
  EXPECT_THAT(logged(), ElementsAre("SHOWN relinquish key=false"));
}

TEST_F(PanelTest, ResignsWithoutExcel) {
  const auto panel = makePanel();
  panel->show(std::nullopt, greeting);
  takeJournal();
  panel->relinquishKey();
  EXPECT_THAT(takeJournal(), ElementsAre("resignKey", "orderFront"));
}

TEST_F(PanelTest, OnlyActivatesExcelWhenItHasNoKeyboardToGive) {
  const auto panel = makePanel();
  platform.workspace().running = {excel()};
  panel->showCompanion();
  takeJournal();
  panel->relinquishKey();
  EXPECT_THAT(takeJournal(), ElementsAre("activate 4711"));
}

TEST_F(PanelTest, LogsThatItIsStillKey) {
  const auto panel = makePanel();
  panel->show(std::nullopt, greeting);
  platform.window().keepsKey = true;
  panel->relinquishKey();
  EXPECT_THAT(logged(), ElementsAre("SHOWN relinquish key=true"));
}

TEST_F(PanelTest, WidensToTheRightWhereThereIsRoom) {
  const auto panel = makePanel();
  platform.window().currentFrame = {100, 200, 460, 588};
  takeJournal();
  panel->setWidth(true);
  EXPECT_THAT(takeJournal(), ElementsAre("setFrame 100 200 800 588"));
  EXPECT_EQ(platform.window().widening, std::pair(340.0, 0.0));
  panel->setWidth(false);
  EXPECT_THAT(takeJournal(), ElementsAre("setFrame 100 200 460 588"));
  EXPECT_EQ(platform.window().widening, std::pair(0.0, 0.0));
}

TEST_F(PanelTest, MovesLeftByTheOverflowAndBackByExactlyThat) {
  const auto panel = makePanel();
  platform.window().currentFrame = {760, 200, 460, 588};  // 760 + 800 exceeds 1440 by 120
  takeJournal();
  panel->setWidth(true);
  EXPECT_EQ(platform.window().widening, std::pair(340.0, 120.0));
  platform.window().currentFrame.x = 300;  // the user moves it meanwhile
  panel->setWidth(false);
  EXPECT_THAT(takeJournal(), ElementsAre("setFrame 640 200 800 588", "setFrame 420 200 460 588"));
}

TEST_F(PanelTest, MovesLeftOnlyAsFarAsThereIsRoom) {
  const auto panel = makePanel();
  platform.window().ownScreen = Screen{{0, 0, 700, 900}, {0, 0, 700, 900}};
  platform.window().currentFrame = {50, 0, 460, 588};
  takeJournal();
  panel->setWidth(true);
  EXPECT_THAT(takeJournal(), ElementsAre("setFrame 0 0 800 588"));
}

TEST_F(PanelTest, DoesNotMoveLeftFromBeyondTheVisibleFrame) {
  const auto panel = makePanel();
  platform.window().ownScreen = Screen{{0, 0, 700, 900}, {0, 0, 700, 900}};
  platform.window().currentFrame = {-30, 0, 460, 588};
  takeJournal();
  panel->setWidth(true);
  EXPECT_THAT(takeJournal(), ElementsAre("setFrame -30 0 800 588"));
}

TEST_F(PanelTest, TakesTheMainScreenWhenItIsOnNone) {
  const auto panel = makePanel();
  platform.window().ownScreen.reset();
  platform.window().keyScreen = Screen{{0, 0, 1000, 900}, {0, 0, 1000, 900}};
  platform.window().currentFrame = {500, 0, 460, 588};
  takeJournal();
  panel->setWidth(true);
  EXPECT_THAT(takeJournal(), ElementsAre("setFrame 200 0 800 588"));
}

TEST_F(PanelTest, WidensInPlaceWithoutAnyScreen) {
  const auto panel = makePanel();
  platform.window().ownScreen.reset();
  platform.window().keyScreen.reset();
  platform.window().currentFrame = {1200, 0, 460, 588};
  takeJournal();
  panel->setWidth(true);
  EXPECT_THAT(takeJournal(), ElementsAre("setFrame 1200 0 800 588"));
}

TEST_F(PanelTest, ChangesNothingWhenAskedForTheWidthItHas) {
  const auto panel = makePanel();
  takeJournal();
  panel->setWidth(false);
  EXPECT_THAT(takeJournal(), IsEmpty());
  panel->setWidth(true);
  takeJournal();
  panel->setWidth(true);
  EXPECT_THAT(takeJournal(), IsEmpty());
}

TEST_F(PanelTest, NeverNarrowsBelowTheMinimum) {
  const auto panel = makePanel();
  panel->setWidth(true);
  platform.window().currentFrame = {100, 0, 500, 588};
  panel->setWidth(false);
  EXPECT_EQ(platform.window().currentFrame, (ScreenFrame{100, 0, 320, 588}));
}

TEST_F(PanelTest, StaysWideWhileItIsHidden) {
  const auto panel = makePanel();
  panel->setWidth(true);
  panel->close();
  panel->showCompanion();
  takeJournal();
  panel->setWidth(true);
  EXPECT_THAT(takeJournal(), IsEmpty());
}

TEST_F(PanelTest, HidesWhenClosedAndTellsThePage) {
  const auto panel = makePanel();
  platform.webView().finishLoading();
  panel->show(std::nullopt, greeting);
  takeJournal();
  platform.window().pressClose();
  EXPECT_THAT(
      takeJournal(),
      ElementsAre(R"(evaluate window.__qxEvent && window.__qxEvent("cleanHide", {}))", "orderOut"));
  EXPECT_TRUE(panel->enabled());
}

TEST_F(PanelTest, IsEnabledAgainWhenTheUserSummonsIt) {
  const auto panel = makePanel();
  platform.webView().post(JSONValue::Object{{"id", 1}, {"verb", "hidePanel"}});
  ASSERT_FALSE(panel->enabled());
  panel->summon();
  EXPECT_TRUE(panel->enabled());
  EXPECT_TRUE(panel->isKey());
}

TEST_F(PanelTest, LogsFailedLoadsAndKeepsEvents) {
  const auto panel = makePanel();
  FakeWebView& view = platform.webView();
  panel->sendEvent("first", nullptr);
  view.delegate->webViewDidStartProvisionalNavigation();
  view.delegate->webViewDidFailProvisionalNavigation("Could not connect");
  view.delegate->webViewDidStartProvisionalNavigation();
  view.delegate->webViewDidFailNavigation("Connection lost");
  EXPECT_THAT(logged(), ElementsAre("ERROR web load failed: Could not connect",
                                    "ERROR web navigation failed: Connection lost"));
  EXPECT_THAT(view.takeScripts(), IsEmpty());
  view.finishLoading();
  EXPECT_THAT(view.takeScripts(),
              ElementsAre(R"(window.__qxEvent && window.__qxEvent("first", null))"));
}

TEST_F(PanelTest, AFailureDoesNotMakeALoadedPageUnready) {
  const auto panel = makePanel();
  FakeWebView& view = platform.webView();
  view.finishLoading();
  view.delegate->webViewDidFailNavigation("an old one");
  panel->sendEvent("now", 1);
  EXPECT_THAT(view.takeScripts(), ElementsAre(R"(window.__qxEvent && window.__qxEvent("now", 1))"));
}

TEST_F(PanelTest, ReloadsThePageWhoseProcessDied) {
  const auto panel = makePanel();
  FakeWebView& view = platform.webView();
  view.finishLoading();
  takeJournal();
  view.delegate->webViewWebProcessDidTerminate();
  panel->sendEvent("held", JSONValue::Object{});
  EXPECT_THAT(takeJournal(), ElementsAre("reload"));
  EXPECT_THAT(logged(), ElementsAre("ERROR web process ended, reloading"));
  view.finishLoading();
  EXPECT_THAT(view.takeScripts(),
              ElementsAre(R"(window.__qxEvent && window.__qxEvent("held", {}))"));
}

TEST_F(PanelTest, GivesUpAPageThatDiesAtOnceUntilThePanelIsShownAgain) {
  const auto panel = makePanel();
  FakeWebView& view = platform.webView();
  takeJournal();
  for (int i = 0; i < 3; ++i) {
    view.finishLoading();
    view.delegate->webViewWebProcessDidTerminate();
  }
  EXPECT_THAT(takeJournal(), ElementsAre("reload", "reload", "reload"));
  view.finishLoading();
  view.delegate->webViewWebProcessDidTerminate();
  EXPECT_THAT(takeJournal(), IsEmpty());
  EXPECT_THAT(logged(), Contains("ERROR web process ended again, not reloading"));
  panel->showCompanion();
  EXPECT_THAT(takeJournal(), ElementsAre(StartsWith("loadHTML "), "orderFront"));
}

TEST_F(PanelTest, ReloadsAgainAndAgainWhenThePageLivedAWhileInBetween) {
  const auto panel = makePanel();
  FakeWebView& view = platform.webView();
  takeJournal();
  for (int i = 0; i < 6; ++i) {
    view.finishLoading();
    platform.mainLoop().advance(std::chrono::seconds(10));
    view.delegate->webViewWebProcessDidTerminate();
  }
  EXPECT_THAT(takeJournal(), testing::SizeIs(6));
  EXPECT_THAT(logged(), Not(Contains("ERROR web process ended again, not reloading")));
}

TEST_F(PanelDeathTest, StopsTheProcessWhenUsedOnAnotherThread) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto panel = makePanel();
  platform.mainLoop().onMainThread = false;
  EXPECT_DEATH(
      {
        std::filesystem::remove_all(folder);  // the dying process has one of its own
        panel->sendEvent("x", nullptr);
      },
      "Panel::sendEvent belongs on the thread \"main\"");
}

}  // namespace
}  // namespace quorin
