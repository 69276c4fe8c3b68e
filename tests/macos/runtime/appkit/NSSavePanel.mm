// Save panels: a window with "Save" and "Cancel", and a loop in the modal mode until one is
// pressed.
#import <AppKit/AppKit.h>

#include "tests/macos/runtime/appkit/Hands.h"
#include "tests/macos/runtime/foundation/Loop.h"
#include "tests/macos/runtime/foundation/Raise.h"

using namespace quorin;

@implementation NSSavePanel {
  NSModalResponse _response;
  BOOL _isAnswered;
}
@synthesize nameFieldStringValue = _nameFieldStringValue;

+ (NSSavePanel*)savePanel {
  onMainThread("a save panel");
  NSSavePanel* panel = [[NSSavePanel alloc] initWithContentRect:NSMakeRect(300, 300, 480, 300)
                                                      styleMask:NSWindowStyleMaskTitled
                                                        backing:NSBackingStoreBuffered
                                                          defer:NO];
  [panel addButton:@"Save" answering:NSModalResponseOK];
  [panel addButton:@"Cancel" answering:NSModalResponseCancel];
  return panel;
}
- (void)addButton:(NSString*)title answering:(NSModalResponse)response {
  NSSavePanel* __weak panel = self;
  [self.contentView addSubview:[QXFakeButton withTitle:title
                                               pressed:^{
                                                 NSSavePanel* pressed = panel;
                                                 if (!pressed) return;
                                                 pressed->_response = response;
                                                 pressed->_isAnswered = YES;
                                               }]];
}
// "NSModalResponseOK … or NSModalResponseCancel".
- (NSModalResponse)runModal {
  onMainThread("runModal");
  [self makeKeyAndOrderFront:nil];
  while (!_isAnswered) {
    Loop::main()->run(Loop::modalMode, Loop::Time::max(), [&] { return _isAnswered == YES; });
  }
  [self orderOut:nil];
  return _response;
}
// "The URL of the file the user selected."
- (NSURL*)URL {
  return [NSURL fileURLWithPath:[@"/tmp/" stringByAppendingString:_nameFieldStringValue]];
}

@end
