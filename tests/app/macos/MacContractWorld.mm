// The hands and the main loop of the contract suites on a Mac, and the program's main.
#import <AppKit/AppKit.h>
#import <Carbon/Carbon.h>
#include <thread>

#import "app/macos/MacSystem.h"
#import "app/macos/Text.h"
#include "kit/platform/Thread.h"
#include "tests/app/contract/ContractWorld.h"

namespace quorin::contract {
namespace {

AppPlatform* thePlatform = nullptr;

// How a button is pressed by a program: it shows the press and acts.
NSButton* _Nullable buttonWithTitle(NSView* view, NSString* title) {
  if ([view isKindOfClass:NSButton.class]) {
    NSButton* button = static_cast<NSButton*>(view);
    if ([button.title isEqualToString:title]) return button;
  }
  for (NSView* each in view.subviews) {
    NSButton* found = buttonWithTitle(each, title);
    if (found) return found;
  }
  return nil;
}

bool pressed(NSString* title) {
  for (NSWindow* window in NSApplication.sharedApplication.windows) {
    NSView* content = window.contentView;
    if (!window.visible || !content) continue;
    NSButton* button = buttonWithTitle(content, title);
    if (!button) continue;
    [button performClick:nil];
    return true;
  }
  return false;
}

}  // namespace

AppPlatform& platform() {
  return *thePlatform;
}

Folders& folders() {
  static MacFolders all;
  return all;
}

void turn() {
  @autoreleasepool {
    NSApplication* application = NSApplication.sharedApplication;
    NSEvent* event = [application nextEventMatchingMask:NSEventMaskAny
                                              untilDate:[NSDate dateWithTimeIntervalSinceNow:0.005]
                                                 inMode:NSDefaultRunLoopMode
                                                dequeue:YES];
    if (event) [application sendEvent:event];
  }
}

void stall(std::chrono::milliseconds time) {
  std::this_thread::sleep_for(time);
}

// As the system tells of it; a press of the key itself would need the permission to control the
// Mac. Carbon's presses come to the target at which they are handled.
void pressHotKey(HotKeyID id, std::uint32_t, std::uint32_t) {
  EventRef event = nullptr;
  ASSERT_EQ(CreateEvent(nullptr, kEventClassKeyboard, kEventHotKeyPressed, 0, kEventAttributeNone,
                        &event),
            noErr);
  const EventHotKeyID pressedID{id.signature, id.id};
  EXPECT_EQ(SetEventParameter(event, kEventParamDirectObject, typeEventHotKeyID, sizeof pressedID,
                              &pressedID),
            noErr);
  EXPECT_EQ(SendEventToEventTarget(event, GetApplicationEventTarget()), noErr);
  ReleaseEvent(event);
}

// An alert runs the loop in a mode of its own.
void pressAlertButtonSoon(const std::string& title) {
  NSString* wanted = toNSString(title);
  __block int attempts = 0;
  NSTimer* timer = [NSTimer timerWithTimeInterval:0.05
                                          repeats:YES
                                            block:^(NSTimer* running) {
                                              if (pressed(wanted) || ++attempts > 200)
                                                [running invalidate];
                                            }];
  [NSRunLoop.currentRunLoop addTimer:timer forMode:NSModalPanelRunLoopMode];
  [NSRunLoop.currentRunLoop addTimer:timer forMode:NSDefaultRunLoopMode];
}

// All windows of the program belong to the test that runs.
void pressCloseButton(PanelWindow& window) {
  const ScreenFrame frame = window.frame();
  for (NSWindow* each in NSApplication.sharedApplication.windows) {
    if (!each.visible || each.frame.origin.x != frame.x || each.frame.origin.y != frame.y) continue;
    NSButton* button = [each standardWindowButton:NSWindowCloseButton];
    ASSERT_NE(button, nil);
    [button performClick:nil];
  }
}

void forgetDefault(const std::string& key) {
  [NSUserDefaults.standardUserDefaults removeObjectForKey:toNSString(key)];
}

}  // namespace quorin::contract

int main(int argc, char** argv) {
  testing::InitGoogleMock(&argc, argv);
  @autoreleasepool {
    quorin::MainThread::record();
    const std::unique_ptr<quorin::AppPlatform> platform = quorin::makePlatform();
    quorin::contract::thePlatform = platform.get();
    platform->application().setAccessory();
    [NSApplication.sharedApplication finishLaunching];
    return RUN_ALL_TESTS();
  }
}
