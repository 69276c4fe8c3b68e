#include "tests/app/contract/ContractWorld.h"

namespace quorin::contract {
namespace {

using namespace std::chrono_literals;

const PanelWindowOptions options{"Quorin", {0, 0, 460, 560}, {320, 320}, "ContractPanel"};
constexpr const char* frameKey = "NSWindow Frame ContractPanel";

class CloseCounter : public PanelWindowDelegate {
 public:
  void panelWindowCloseRequested() override { ++count; }
  int count = 0;
};

class PanelWindowContract : public PortContract {
 protected:
  PanelWindowContract() { forgetDefault(frameKey); }
  ~PanelWindowContract() override { forgetDefault(frameKey); }

  std::unique_ptr<PanelWindow> makeWindow() {
    auto window = platform().makePanelWindow(options);
    window->setContent(*view);
    return window;
  }

  // Until the desktop has answered.
  static void settle() { runFor(400ms); }

  const std::unique_ptr<WebView> view = platform().makeWebView({"qx", ""});
};

TEST_F(PanelWindowContract, StartsHiddenWithItsDecorationAroundTheContent) {
  const auto window = makeWindow();
  EXPECT_FALSE(window->isVisible());
  EXPECT_FALSE(window->isKey());
  ASSERT_TRUE(waitUntil([&] { return window->frame().height > 560; }));
  EXPECT_GE(window->frame().width, 460);
  EXPECT_EQ(window->minimumContentSize(), (ScreenSize{320, 320}));
}

TEST_F(PanelWindowContract, KeepsExactFramesShownAndHidden) {
  const auto window = makeWindow();
  const ScreenFrame first{500, 200, 470, 500}, second{100, 120, 810, 480}, third{30, 90, 400, 444};
  window->setFrame(first);
  EXPECT_EQ(window->frame(), first);
  window->orderFront();
  EXPECT_EQ(window->frame(), first);
  settle();
  EXPECT_EQ(window->frame(), first);
  window->setFrame(second);
  settle();
  EXPECT_EQ(window->frame(), second);
  window->orderOut();
  EXPECT_EQ(window->frame(), second);
  window->setFrame(third);
  EXPECT_EQ(window->frame(), third);
  window->orderFront();
  settle();
  EXPECT_EQ(window->frame(), third);
}

TEST_F(PanelWindowContract, ShowsWithoutTakingTheKeyboard) {
  const auto window = makeWindow();
  window->setFrame({500, 200, 470, 500});
  window->orderFront();
  EXPECT_TRUE(window->isVisible());
  settle();
  EXPECT_FALSE(window->isKey());
}

TEST_F(PanelWindowContract, TakesTheKeyboardAndGivesItUp) {
  const auto window = makeWindow();
  window->makeKeyAndOrderFront();
  ASSERT_TRUE(waitUntil([&] { return window->isKey(); }));
  EXPECT_TRUE(window->isVisible());
  window->resignKey();
  EXPECT_FALSE(window->isKey()) << "at once";
  EXPECT_TRUE(window->isVisible());
  window->makeKeyAndOrderFront();
  EXPECT_TRUE(waitUntil([&] { return window->isKey(); })) << "also when it is visible already";
}

TEST_F(PanelWindowContract, LeavesClosingToItsDelegate) {
  const auto window = makeWindow();
  CloseCounter closing;
  window->setDelegate(&closing);
  window->setFrame({500, 200, 470, 500});
  window->orderFront();
  settle();
  pressCloseButton(*window);
  EXPECT_TRUE(waitUntil([&] { return closing.count == 1; }));
  EXPECT_TRUE(window->isVisible());
  window->setDelegate(nullptr);
}

TEST_F(PanelWindowContract, StartsWithTheFrameThatWasSaved) {
  platform().defaults().setString(frameKey, "120 140 480 500 0 0 1440 900 ");
  const auto window = makeWindow();
  EXPECT_EQ(window->frame(), (ScreenFrame{120, 140, 480, 500}));
}

TEST_F(PanelWindowContract, BringsASavedFrameOffTheScreensBack) {
  platform().defaults().setString(frameKey, "14000 13000 460 580 13840 12000 1920 1080 ");
  const auto window = makeWindow();
  window->orderFront();
  settle();
  const ScreenFrame frame = window->frame();
  const auto screen = window->screen();
  ASSERT_TRUE(screen) << frame.x << " " << frame.y;
  EXPECT_GE(frame.x, screen->frame.x);
  EXPECT_LE(frame.maxX(), screen->frame.maxX());
  EXPECT_GE(frame.y, screen->frame.y);
  EXPECT_LE(frame.maxY(), screen->frame.maxY());
}

TEST_F(PanelWindowContract, TakesAMalformedSavedFrameForNone) {
  platform().defaults().setString(frameKey, "over there");
  const auto window = makeWindow();
  EXPECT_GE(window->frame().width, 460);
}

TEST_F(PanelWindowContract, KnowsTheScreens) {
  const auto window = makeWindow();
  window->setFrame({100, 120, 460, 500});
  const std::vector<Screen> screens = window->screens();
  ASSERT_FALSE(screens.empty());
  EXPECT_EQ(screens[0].frame.x, 0);
  EXPECT_EQ(screens[0].frame.y, 0);
  for (const Screen& screen : screens) {
    EXPECT_GE(screen.visibleFrame.x, screen.frame.x);
    EXPECT_GE(screen.visibleFrame.y, screen.frame.y);
    EXPECT_LE(screen.visibleFrame.maxX(), screen.frame.maxX());
    EXPECT_LE(screen.visibleFrame.maxY(), screen.frame.maxY());
  }
  EXPECT_TRUE(window->mainScreen());
}

}  // namespace
}  // namespace quorin::contract
