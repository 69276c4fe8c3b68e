#import "app/macos/MacApplication.h"

#include "app/macos/Edge.h"

@interface QXApplicationDelegate : NSObject <NSApplicationDelegate>
@property(nonatomic, assign, nullable) quorin::ApplicationDelegate* receiver;
@end

@implementation QXApplicationDelegate

- (void)applicationDidFinishLaunching:(NSNotification*)notification {
  quorin::ApplicationDelegate* receiver = self.receiver;
  if (!receiver) return;
  quorin::atEdge("launch", [&] { receiver->applicationDidFinishLaunching(); });
}

- (void)applicationWillTerminate:(NSNotification*)notification {
  quorin::ApplicationDelegate* receiver = self.receiver;
  if (!receiver) return;
  quorin::atEdge("termination", [&] { receiver->applicationWillTerminate(); });
}

@end

namespace quorin {

MacApplication::MacApplication()
    : application_(NSApplication.sharedApplication),
      delegate_([[QXApplicationDelegate alloc] init]) {}

MacApplication::~MacApplication() {
  application_.delegate = nil;
  delegate_.receiver = nullptr;
}

void MacApplication::setAccessory() {
  [application_ setActivationPolicy:NSApplicationActivationPolicyAccessory];
}

void MacApplication::setDelegate(ApplicationDelegate& delegate) {
  delegate_.receiver = &delegate;
  application_.delegate = delegate_;
}

void MacApplication::run() {
  [application_ run];
}

void MacApplication::terminate() {
  // After the current event: terminate: does not return.
  [application_ performSelector:@selector(terminate:) withObject:nil afterDelay:0];
}

void MacApplication::activate() {
  if (@available(macOS 14.0, *)) {
    [application_ activate];
  } else {
    [application_ activateIgnoringOtherApps:YES];
  }
}

}  // namespace quorin
