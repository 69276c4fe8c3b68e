#include "app/shell/HotKey.h"
#include "tests/app/shell/ShellFixture.h"

namespace quorin {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using Object = JSONValue::Object;

constexpr HotKeyID summonKey{0x51584E53, 1}, backKey{0x51584E53, 2}, onKey{0x51584E53, 3},
    mapKey{0x51584E53, 4}, depsKey{0x51584E53, 5};

class HotKeyTest : public ShellFixture {
 protected:
  HotKeyTest() {
    bridge.probed = Object{
        {"state", "ok"}, {"excelWindow", Object{{"x1", 40}, {"y1", 60}, {"x2", 900}, {"y2", 800}}}};
    panel = makePanel();
    platform.webView().finishLoading();
    placer = std::make_unique<PanelPlacer>(platform, bridge, *panel);
    hotKey = std::make_unique<HotKey>(HotKey::Parts{platform, *panel, *placer, *log});
    takeJournal();
  }

  void registerAll(const QXConfig& config = {}) {
    hotKey->registerAll(platform.hotKeyService, config);
    takeJournal();
  }

  void saveFrame() { platform.defaults().texts[Panel::frameDefaultsKey] = "1 2 460 588 0 0 9 9 "; }

  static std::string surfaceEvent(const std::string& payload) {
    return "evaluate window.__qxEvent && window.__qxEvent(\"surface\", " + payload + ")";
  }

  std::unique_ptr<Panel> panel;
  std::unique_ptr<PanelPlacer> placer;
  std::unique_ptr<HotKey> hotKey;
};

TEST_F(HotKeyTest, InstallsOneHandlerAndRegistersTheFiveCombinations) {
  QXConfig config;
  config.depsKeyCode = 40;
  config.depsModifiers = 256;
  hotKey->registerAll(platform.hotKeyService, config);
  EXPECT_THAT(takeJournal(),
              ElementsAre("installHotKeyHandler", "addHotKey 1 0 2560", "addHotKey 2 123 6144",
                          "addHotKey 3 124 6144", "addHotKey 4 2 2560", "addHotKey 5 40 256"));
  EXPECT_EQ(platform.hotKeyService.signatures, (std::vector<std::uint32_t>(5, 0x51584E53)));
  EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(HotKeyTest, LogsARefusedCombinationAndRegistersTheOthers) {
  platform.hotKeyService.refused[4] = -9878;
  hotKey->registerAll(platform.hotKeyService, {});
  EXPECT_THAT(logged(), ElementsAre("ERROR hotkey 2 register failed: -9878"));
  EXPECT_EQ(takeJournal().back(), "addHotKey 5 1 2560");
}

TEST_F(HotKeyTest, LogsThatNoHandlerCouldBeInstalled) {
  platform.hotKeyService.installStatus = -50;
  registerAll();
  EXPECT_THAT(logged(), ElementsAre("ERROR hotkey handler failed: -50"));
}

TEST_F(HotKeyTest, PassesUnknownCombinationsOn) {
  EXPECT_EQ(hotKey->pressed(summonKey), -9874) << "nothing is registered yet";
  registerAll();
  EXPECT_EQ(platform.hotKeyService.press({0x51584E53, 6}), -9874);
  EXPECT_EQ(platform.hotKeyService.press({0x51584E53, 0}), -9874);
  EXPECT_EQ(platform.hotKeyService.press({0x41414141, 1}), -9874);
  EXPECT_THAT(takeJournal(), IsEmpty());
}

TEST_F(HotKeyTest, PassesEverythingOnOnceItIsGone) {
  registerAll();
  hotKey.reset();
  EXPECT_EQ(platform.hotKeyService.press(summonKey), -9874);
}

TEST_F(HotKeyTest, StepsOnlyWhileThePanelIsVisible) {
  registerAll();
  EXPECT_EQ(platform.hotKeyService.press(backKey), 0);
  EXPECT_THAT(takeJournal(), IsEmpty());
  platform.window().visible = true;
  EXPECT_EQ(platform.hotKeyService.press(backKey), 0);
  EXPECT_EQ(platform.hotKeyService.press(onKey), 0);
  EXPECT_THAT(platform.webView().takeScripts(),
              ElementsAre(R"(window.__qxEvent && window.__qxEvent("step", {"dir":-1}))",
                          R"(window.__qxEvent && window.__qxEvent("step", {"dir":1}))"));
  EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(HotKeyTest, SurfacesAHiddenPanelBesideExcel) {
  registerAll();
  EXPECT_EQ(platform.hotKeyService.press(summonKey), 0);
  EXPECT_THAT(takeJournal(), IsEmpty()) << "Excel is not asked on the main thread";
  EXPECT_THAT(logged(), ElementsAre("HOTKEY tree key=false visible=false excelFrontmost=false"));
  queue.runAll();
  EXPECT_THAT(takeJournal(), ElementsAre("probe"));
  platform.mainLoop().runPosted();
  EXPECT_THAT(takeJournal(),
              ElementsAre("setFrame 900 252 460 588", "makeKeyAndOrderFront",
                          surfaceEvent(R"({"name":"tree","wasKey":false,"wasVisible":false})")));
}

TEST_F(HotKeyTest, SurfacesThePanelWhereItIsWhenExcelDoesNotTell) {
  bridge.probed = Object{{"state", "denied"}};
  registerAll();
  platform.hotKeyService.press(mapKey);
  settle();
  EXPECT_THAT(takeJournal(),
              ElementsAre("probe", "makeKeyAndOrderFront",
                          surfaceEvent(R"({"name":"map","wasKey":false,"wasVisible":false})")));
}

TEST_F(HotKeyTest, SurfacesAHiddenPanelInItsSavedFrameAtOnce) {
  saveFrame();
  registerAll();
  EXPECT_EQ(platform.hotKeyService.press(depsKey), 0);
  EXPECT_THAT(takeJournal(),
              ElementsAre("makeKeyAndOrderFront",
                          surfaceEvent(R"({"name":"deps","wasKey":false,"wasVisible":false})")));
  EXPECT_EQ(queue.waiting(), 0u);
}

TEST_F(HotKeyTest, SendsEveryPressOfAKeyWhileExcelIsAsked) {
  registerAll();
  platform.hotKeyService.press(summonKey);
  platform.hotKeyService.press(mapKey);
  settle();
  EXPECT_THAT(platform.webView().takeScripts(),
              ElementsAre("window.__qxEvent && window.__qxEvent(\"surface\", "
                          R"({"name":"tree","wasKey":false,"wasVisible":false}))",
                          "window.__qxEvent && window.__qxEvent(\"surface\", "
                          R"({"name":"map","wasKey":false,"wasVisible":false}))"));
}

TEST_F(HotKeyTest, DoesNotWaitForASlowExcel) {
  registerAll();
  platform.hotKeyService.press(depsKey);
  platform.mainLoop().advance(std::chrono::milliseconds(300));
  EXPECT_THAT(takeJournal(),
              ElementsAre("makeKeyAndOrderFront",
                          surfaceEvent(R"({"name":"deps","wasKey":false,"wasVisible":false})")));
  settle();
  EXPECT_THAT(takeJournal(), ElementsAre("probe", "setFrame 900 252 460 588"))
      << "moved when Excel has told where its window is";
}

TEST_F(HotKeyTest, GivesTheKeyboardToAVisiblePanel) {
  platform.window().visible = true;
  platform.workspace().frontmost = excel();
  registerAll();
  platform.hotKeyService.press(mapKey);
  EXPECT_THAT(takeJournal(),
              ElementsAre("makeKeyAndOrderFront",
                          surfaceEvent(R"({"name":"map","wasKey":false,"wasVisible":true})")));
  EXPECT_THAT(logged(), ElementsAre("HOTKEY map key=false visible=true excelFrontmost=true"));
}

TEST_F(HotKeyTest, MovesNothingWhenThePanelHasTheKeyboard) {
  platform.window().visible = platform.window().key = true;
  registerAll();
  platform.hotKeyService.press(summonKey);
  EXPECT_THAT(takeJournal(),
              ElementsAre(surfaceEvent(R"({"name":"tree","wasKey":true,"wasVisible":true})")));
  EXPECT_THAT(logged(), ElementsAre("HOTKEY tree key=true visible=true excelFrontmost=false"));
}

TEST_F(HotKeyTest, LogsBeforeAnythingChanges) {
  saveFrame();
  registerAll();
  std::vector<std::string> before;
  platform.window().onMakeKey = [&] { before = logged(); };
  platform.hotKeyService.press(summonKey);
  EXPECT_THAT(before, ElementsAre("HOTKEY tree key=false visible=false excelFrontmost=false"));
  platform.window().key = false;
  platform.hotKeyService.press(mapKey);
  EXPECT_EQ(before.back(), "HOTKEY map key=false visible=true excelFrontmost=false");
}

TEST_F(HotKeyTest, ForgetsAnAnswerThatComesAfterItIsGone) {
  registerAll();
  platform.hotKeyService.press(summonKey);
  queue.runAll();
  hotKey.reset();
  placer.reset();
  platform.mainLoop().runPosted();
  EXPECT_THAT(takeJournal(), Not(Contains("makeKeyAndOrderFront")));
}

}  // namespace
}  // namespace quorin
