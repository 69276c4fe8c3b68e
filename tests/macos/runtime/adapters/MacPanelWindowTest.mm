// What the panel's adapter does with AppKit: which frames it saves, and who has the keys.
#import "app/macos/MacDefaults.h"
#import "app/macos/MacPanelWindow.h"
#import "app/macos/MacWebView.h"
#include "tests/app/contract/ContractWorld.h"
#include "tests/macos/runtime/appkit/Hands.h"

namespace quorin {
namespace {

constexpr const char* frameKey = "NSWindow Frame PanelTest";

class MacPanelWindowTest : public testing::Test {
 protected:
  MacPanelWindowTest() { window.setContent(view); }
  ~MacPanelWindowTest() override { contract::forgetDefault(frameKey); }

  static std::optional<std::string> saved() { return MacDefaults().string(frameKey); }
  static NSWindow* shown() { return NSApplication.sharedApplication.windows.lastObject; }

  MacWebView view{{"qx", ""}, false};
  MacPanelWindow window{{"Quorin", {0, 0, 460, 560}, {320, 320}, "PanelTest"}};
};

TEST_F(MacPanelWindowTest, SavesNoFrameThatTheUserDidNotGive) {
  window.setFrame({500, 200, 470, 500});
  window.orderFront();
  window.makeKeyAndOrderFront();
  window.setFrame({400, 200, 810, 500});
  window.orderOut();
  EXPECT_EQ(saved(), std::nullopt);
}

TEST_F(MacPanelWindowTest, SavesWhereTheUserPutsIt) {
  window.setFrame({500, 200, 470, 500});
  userMoves(shown(), NSMakeRect(610, 210, 470, 500));
  EXPECT_EQ(saved(), "610 210 470 500 0 0 1440 900 ");
  userMoves(shown(), NSMakeRect(1500, 210, 480, 520));
  EXPECT_EQ(saved(), "1500 210 480 520 1440 0 1920 1080 ");
}

TEST_F(MacPanelWindowTest, SavesAWidenedPanelAsItIsWithoutTheWidening) {
  window.setWidening(340, 40);
  window.setFrame({460, 200, 810, 500});
  userMoves(shown(), NSMakeRect(470, 210, 810, 500));
  EXPECT_EQ(saved(), "510 210 470 500 0 0 1440 900 ");
  window.setWidening(0, 0);
  userMoves(shown(), NSMakeRect(510, 220, 470, 500));
  EXPECT_EQ(saved(), "510 220 470 500 0 0 1440 900 ");
}

TEST_F(MacPanelWindowTest, GivesItsKeysToThePage) {
  window.makeKeyAndOrderFront();
  EXPECT_EQ(shown().firstResponder, view.view());
}

TEST_F(MacPanelWindowTest, IsAPanelAboveOthersThatStaysAndTakesNoApplicationForward) {
  NSWindow* panel = shown();
  EXPECT_TRUE(panel.canBecomeKeyWindow);
  EXPECT_EQ(panel.level, NSFloatingWindowLevel);
  EXPECT_FALSE(panel.hidesOnDeactivate);
  EXPECT_FALSE(panel.releasedWhenClosed);
  EXPECT_TRUE(panel.styleMask & NSWindowStyleMaskNonactivatingPanel);
  EXPECT_TRUE(panel.collectionBehavior & NSWindowCollectionBehaviorCanJoinAllSpaces);
  EXPECT_TRUE(panel.collectionBehavior & NSWindowCollectionBehaviorFullScreenAuxiliary);
}

TEST_F(MacPanelWindowTest, HasAPageOfItsOwnSize) {
  userMoves(shown(), NSMakeRect(100, 100, 700, 616));
  EXPECT_EQ(view.view().frame.size.width, 700);
  EXPECT_EQ(view.view().frame.size.height, shown().contentView.bounds.size.height);
}

// Somebody else may hold the window and what it tells.
TEST(MacPanelWindowLife, LeavesNothingOnTheScreenAndTellsNobody) {
  NSWindow* window = nil;
  id<NSWindowDelegate> observer = nil;
  MacWebView view{{"qx", ""}, false};
  {
    MacPanelWindow panel{{"Quorin", {0, 0, 460, 560}, {320, 320}, "PanelTest"}};
    panel.setContent(view);
    panel.orderFront();
    window = NSApplication.sharedApplication.windows.lastObject;
    observer = window.delegate;
    ASSERT_NE(observer, nil);
  }
  EXPECT_FALSE(window.visible);
  EXPECT_EQ(window.delegate, nil);
  userMoves(window, NSMakeRect(610, 210, 470, 500));
  [observer windowDidMove:(NSNotification* _Nonnull)nil];
  [window performClose:nil];
  EXPECT_EQ(MacDefaults().string(frameKey), std::nullopt);
}

}  // namespace
}  // namespace quorin
