// Alerts: a window with buttons, and a loop in the modal mode until one is pressed.
#import <AppKit/AppKit.h>

#include "tests/macos/runtime/appkit/Hands.h"
#include "tests/macos/runtime/foundation/Loop.h"
#include "tests/macos/runtime/foundation/Raise.h"

using namespace quorin;

NSRunLoopMode const NSModalPanelRunLoopMode = @"NSModalPanelRunLoopMode";

static NSAlert* __weak shown = nil;

@implementation NSAlert {
  NSWindow* _panel;
  NSInteger _count;
  NSModalResponse _response;
}
@synthesize messageText = _messageText, informativeText = _informativeText;

- (instancetype)init {
  onMainThread("an alert");
  _panel = [[NSPanel alloc] initWithContentRect:NSMakeRect(400, 400, 420, 150)
                                      styleMask:NSWindowStyleMaskTitled
                                        backing:NSBackingStoreBuffered
                                          defer:NO];
  return self;
}
- (NSWindow*)window {
  return _panel;
}
// "The first button … returns NSAlertFirstButtonReturn", the others follow.
- (NSButton*)addButtonWithTitle:(NSString*)title {
  const NSModalResponse code = NSAlertFirstButtonReturn + _count++;
  NSAlert* __weak alert = self;
  NSButton* button = [QXFakeButton withTitle:title
                                     pressed:^{
                                       NSAlert* pressed = alert;
                                       if (pressed) pressed->_response = code;
                                     }];
  [_panel.contentView addSubview:button];
  return button;
}
// "If you don't add any buttons, an OK button is added."
- (NSModalResponse)runModal {
  onMainThread("runModal");
  if (_count == 0) [self addButtonWithTitle:@"OK"];
  [_panel makeKeyAndOrderFront:nil];
  NSAlert* before = shown;
  shown = self;
  while (_response == 0) {
    Loop::main()->run(Loop::modalMode, Loop::Time::max(), [&] { return _response != 0; });
  }
  shown = before;
  [_panel orderOut:nil];
  return _response;
}
// "runModal returns NSModalResponseAbort" (abortModal).
- (void)stop {
  _response = NSModalResponseAbort;
}

@end

@interface NSAlert (QXStop)
- (void)stop;
@end

namespace quorin {

NSAlert* shownAlert() {
  return shown;
}

void stopAlert() {
  [shown stop];
}

}  // namespace quorin
