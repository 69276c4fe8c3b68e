// Windows: a frame round a content view, visible or not, at most one with the keyboard. Frames
// change at once, and every change is told to the delegate, whoever made it
// (NSWindowDidMoveNotification, NSWindowDidResizeNotification).
#import <AppKit/AppKit.h>
#include <algorithm>
#include <vector>

#include "tests/macos/runtime/appkit/Hands.h"
#import "tests/macos/runtime/appkit/Shown.h"
#include "tests/macos/runtime/foundation/Notification.h"
#include "tests/macos/runtime/foundation/Raise.h"
#import "tests/macos/runtime/foundation/Strings.h"
#include "tests/macos/runtime/objc/Runtime.h"

using namespace quorin;

NSNotificationName const NSWindowDidMoveNotification = @"NSWindowDidMoveNotification";
NSNotificationName const NSWindowDidResizeNotification = @"NSWindowDidResizeNotification";

namespace {

constexpr CGFloat titleBar = 16;  // of a utility window

std::vector<NSWindow * __unsafe_unretained>& all() {
  static auto& windows = *new std::vector<NSWindow * __unsafe_unretained>;
  return windows;
}

NSWindow* __unsafe_unretained keyWindow = nil;

double overlap(NSRect one, NSRect other) {
  const double width = std::min(one.origin.x + one.size.width, other.origin.x + other.size.width) -
                       std::max(one.origin.x, other.origin.x);
  const double height =
      std::min(one.origin.y + one.size.height, other.origin.y + other.size.height) -
      std::max(one.origin.y, other.origin.y);
  return width > 0 && height > 0 ? width * height : 0;
}

}  // namespace

@implementation NSWindow {
  NSMutableArray<NSButton*>* _buttons;
}
@synthesize title = _title, level = _level, delegate = _delegate, contentView = _contentView,
            releasedWhenClosed = _releasedWhenClosed, hidesOnDeactivate = _hidesOnDeactivate,
            collectionBehavior = _collectionBehavior, contentMinSize = _contentMinSize,
            styleMask = _styleMask;

- (instancetype)initWithContentRect:(NSRect)content
                          styleMask:(NSWindowStyleMask)style
                            backing:(NSBackingStoreType)backing
                              defer:(BOOL)defer {
  onMainThread("a window");
  _styleMask = style;
  _frame = content;
  if (style & NSWindowStyleMaskTitled) _frame.size.height += titleBar;
  _contentView =
      [[NSView alloc] initWithFrame:NSMakeRect(0, 0, content.size.width, content.size.height)];
  _buttons = [[NSMutableArray alloc] init];
  // "The default value is YES for windows and NO for panels" (releasedWhenClosed); the other way
  // round for hidesOnDeactivate.
  const bool panel = [self isKindOfClass:NSPanel.class];
  _releasedWhenClosed = !panel;
  _hidesOnDeactivate = panel;
  all().push_back(self);
  return self;
}
- (void)dealloc {
  std::erase(all(), self);
  if (keyWindow == self) keyWindow = nil;
}
- (void)setFrame:(NSRect)frame display:(BOOL)display {
  onMainThread("-[NSWindow setFrame:display:]");
  const NSRect before = _frame;
  _frame = frame;
  NSRect inside = NSMakeRect(0, 0, frame.size.width, frame.size.height);
  if (_styleMask & NSWindowStyleMaskTitled) inside.size.height -= titleBar;
  _contentView.frame = inside;
  id<NSWindowDelegate> delegate = _delegate;
  const bool moved = before.origin.x != frame.origin.x || before.origin.y != frame.origin.y;
  const bool resized =
      before.size.width != frame.size.width || before.size.height != frame.size.height;
  if (moved && [delegate respondsToSelector:@selector(windowDidMove:)])
    [delegate windowDidMove:notification(NSWindowDidMoveNotification, self)];
  if (resized && [delegate respondsToSelector:@selector(windowDidResize:)])
    [delegate windowDidResize:notification(NSWindowDidResizeNotification, self)];
}
- (NSScreen*)screen {
  NSScreen* best = nil;
  double most = 0;
  for (NSScreen* each in NSScreen.screens) {
    const double area = overlap(each.frame, _frame);
    if (area <= most) continue;
    most = area;
    best = each;
  }
  return best;  // "nil when the window is offscreen"
}
- (BOOL)canBecomeKeyWindow {
  return (_styleMask & NSWindowStyleMaskTitled) && ![self isKindOfClass:NSPanel.class];
}
- (BOOL)isKeyWindow {
  return keyWindow == self;
}
- (void)orderFrontRegardless {
  onMainThread("orderFrontRegardless");
  _visible = YES;
  [_contentView windowChanged];
}
- (void)orderFront:(id)sender {
  [self orderFrontRegardless];
}
- (void)orderOut:(id)sender {
  onMainThread("orderOut:");
  _visible = NO;
  if (keyWindow == self) [self resignKeyWindow];
  [_contentView windowChanged];
}
- (void)makeKeyAndOrderFront:(id)sender {
  [self orderFrontRegardless];
  if (!self.canBecomeKeyWindow) return;
  if (keyWindow && keyWindow != self) [keyWindow resignKeyWindow];
  [self becomeKeyWindow];
}
- (void)becomeKeyWindow {
  keyWindow = self;
  if (!_firstResponder) _firstResponder = self.initialFirstResponder;
  [_contentView windowChanged];
}
- (void)resignKeyWindow {
  if (keyWindow == self) keyWindow = nil;
  [_contentView windowChanged];
}
// "If the window's delegate or the window itself implements windowShouldClose:, that message is
// sent"; then close.
- (void)performClose:(id)sender {
  [self close];
}
- (void)close {
  [self orderOut:nil];
  if (_releasedWhenClosed) objc_release((__bridge objc::Object*)self);
}
- (NSButton*)standardWindowButton:(NSWindowButton)which {
  if (which != NSWindowCloseButton || !(_styleMask & NSWindowStyleMaskClosable)) return nil;
  NSWindow* __weak window = self;
  return [QXFakeButton withTitle:@""
                         pressed:^{
                           [window performClose:nil];
                         }];
}

@end

@implementation NSPanel
@end

namespace quorin {

NSArray<NSWindow*>* allWindows() {
  NSMutableArray<NSWindow*>* windows = [[NSMutableArray alloc] init];
  for (NSWindow* each : all()) [windows addObject:each];
  return windows;
}

NSWindow* windowOf(NSView* view) {
  NSView* top = view;
  while (top.superview) top = top.superview;
  for (NSWindow* each : all()) {
    if (top && each.contentView == top) return each;
  }
  return nil;
}

std::size_t windowsAlive() {
  return all().size();
}

void userMoves(NSWindow* window, NSRect frame) {
  [window setFrame:frame display:YES];
}

}  // namespace quorin
