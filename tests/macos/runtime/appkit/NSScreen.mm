// Two screens, the first with a menu bar and the Dock.
#import <AppKit/AppKit.h>

#include "tests/macos/runtime/foundation/Raise.h"

using namespace quorin;

@implementation NSScreen

- (instancetype)initWithFrame:(NSRect)frame visibleFrame:(NSRect)visible {
  _frame = frame;
  _visibleFrame = visible;
  return self;
}
+ (NSArray<NSScreen*>*)screens {
  onMainThread("+[NSScreen screens]");
  NSMutableArray<NSScreen*>* all = [[NSMutableArray alloc] init];
  [all addObject:[[NSScreen alloc] initWithFrame:NSMakeRect(0, 0, 1440, 900)
                                    visibleFrame:NSMakeRect(0, 70, 1440, 805)]];
  [all addObject:[[NSScreen alloc] initWithFrame:NSMakeRect(1440, 0, 1920, 1080)
                                    visibleFrame:NSMakeRect(1440, 0, 1920, 1055)]];
  return all;
}
+ (NSScreen*)mainScreen {
  return self.screens.firstObject;
}

@end
