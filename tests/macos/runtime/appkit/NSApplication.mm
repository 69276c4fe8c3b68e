// The application object and its event loop. What it runs is the main thread's loop.
#import <AppKit/AppKit.h>
#include <algorithm>
#include <cstdlib>
#include <optional>
#include <utility>

#include "tests/macos/runtime/appkit/Hands.h"
#include "tests/macos/runtime/foundation/Loop.h"
#include "tests/macos/runtime/foundation/Notification.h"
#include "tests/macos/runtime/foundation/Raise.h"
#import "tests/macos/runtime/foundation/Strings.h"
#include "tests/macos/runtime/objc/Census.h"
#include "tests/macos/runtime/objc/Runtime.h"

using namespace quorin;

NSApplication* NSApp = nil;

namespace quorin {
NSArray<NSWindow*>* allWindows();
}

@implementation NSApplication {
  NSApplicationActivationPolicy _policy;
  bool _launched, _terminating;
  std::optional<bool> _reply;
}
@synthesize delegate = _delegate, mainMenu = _mainMenu;

+ (NSApplication*)sharedApplication {
  onMainThread("+[NSApplication sharedApplication]");
  if (!NSApp) {
    NSApp = [[NSApplication alloc] init];
    objc::exemptFromCensus((__bridge objc::Object*)NSApp);
  }
  return NSApp;
}
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)policy {
  _policy = policy;
  return YES;
}
- (NSApplicationActivationPolicy)activationPolicy {
  return _policy;
}
- (void)activate {
}
- (void)activateIgnoringOtherApps:(BOOL)ignore {
}
- (NSArray<NSWindow*>*)windows {
  return allWindows();
}
- (void)finishLaunching {
  if (std::exchange(_launched, true)) return;
  id<NSApplicationDelegate> delegate = _delegate;
  if ([delegate respondsToSelector:@selector(applicationDidFinishLaunching:)])
    [delegate applicationDidFinishLaunching:notification(@"NSApplicationDidFinishLaunching", self)];
}
- (void)run {
  onMainThread("-[NSApplication run]");
  [self finishLaunching];
  while (true) {
    @autoreleasepool {
      // What is thrown there is logged, and the loop goes on (NSApplication, reportException:).
      @try {
        Loop::main()->run(Loop::defaultMode, Loop::Time::max(), nullptr);
      } @catch (NSException* exception) {
        NSLog(@"uncaught: %@", exception.reason);
      }
    }
  }
}
// "Returns nil if no matching event is found in the specified time"; this program has none.
- (NSEvent*)nextEventMatchingMask:(NSEventMask)mask
                        untilDate:(NSDate*)date
                           inMode:(NSRunLoopMode)mode
                          dequeue:(BOOL)dequeue {
  onMainThread("nextEventMatchingMask:");
  const auto until = std::chrono::steady_clock::now() +
                     std::chrono::duration_cast<Loop::Time::duration>(
                         std::chrono::duration<double>(std::max(date.timeIntervalSinceNow, 0.0)));
  while (Loop::main()->run(read(mode), until, nullptr) == Loop::Ran::source) {
  }
  return nil;
}
- (void)sendEvent:(NSEvent*)event {
}
// "If … applicationShouldTerminate: returns NSTerminateLater, the app runs in a modal loop, in the
// mode NSModalPanelRunLoopMode, until replyToApplicationShouldTerminate:". It is asked at each
// call.
- (bool)mayTerminate {
  id<NSApplicationDelegate> delegate = _delegate;
  if (![delegate respondsToSelector:@selector(applicationShouldTerminate:)]) return true;
  _reply.reset();
  const NSApplicationTerminateReply reply = [delegate applicationShouldTerminate:self];
  if (reply != NSTerminateLater) return reply == NSTerminateNow;
  while (!_reply)
    Loop::main()->run(Loop::modalMode, Loop::Time::max(), [&] { return _reply.has_value(); });
  return *_reply;
}
- (void)replyToApplicationShouldTerminate:(BOOL)shouldTerminate {
  onMainThread("replyToApplicationShouldTerminate:");
  if (_reply) objc::breach("the question whether to terminate is answered twice");
  _reply = shouldTerminate;
}
// "Calls exit(): it does not return."
- (void)terminate:(id)sender {
  onMainThread("terminate:");
  if (![self mayTerminate] || std::exchange(_terminating, true)) return;
  id<NSApplicationDelegate> delegate = _delegate;
  if ([delegate respondsToSelector:@selector(applicationWillTerminate:)])
    [delegate applicationWillTerminate:notification(@"NSApplicationWillTerminate", self)];
  std::exit(0);
}

@end

namespace quorin {

void userReopensApplication() {
  NSApplication* application = NSApplication.sharedApplication;
  id<NSApplicationDelegate> delegate = application.delegate;
  BOOL visible = NO;
  for (NSWindow* each in application.windows) visible = visible || each.visible;
  if ([delegate respondsToSelector:@selector(applicationShouldHandleReopen:hasVisibleWindows:)])
    (void)[delegate applicationShouldHandleReopen:application hasVisibleWindows:visible];
}

}  // namespace quorin
