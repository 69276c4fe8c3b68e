#import "app/macos/MacApplication.h"

#include <csignal>
#import <dispatch/dispatch.h>

#include "app/macos/Edge.h"
#include "app/shell/EndingSignals.h"

@interface QXApplicationDelegate : NSObject <NSApplicationDelegate>
@property(nonatomic, assign, nullable) quorin::ApplicationDelegate* receiver;
@property(nonatomic, assign) BOOL asked;    // the receiver knows that the application is to end
@property(nonatomic, assign) BOOL goesOn;   // and keeps it no longer
@property(nonatomic, assign) BOOL waiting;  // AppKit waits for an answer
- (void)goOn;
@end

namespace quorin {

// AppKit waits for its answer in the mode of alerts, which is one of the common modes.
static void goOnInTime(QXApplicationDelegate* delegate) {
  const std::chrono::duration<double> delay = ApplicationDelegate::longestDelay;
  [delegate performSelector:@selector(goOn)
                 withObject:nil
                 afterDelay:delay.count()
                    inModes:@[ NSRunLoopCommonModes ]];
}

}  // namespace quorin

@implementation QXApplicationDelegate

- (void)applicationDidFinishLaunching:(NSNotification*)notification {
  quorin::ApplicationDelegate* receiver = self.receiver;
  if (!receiver) return;
  quorin::atEdge("launch", [&] { receiver->applicationDidFinishLaunching(); });
}

// A second question, as at a logout just then, has the answer of the first.
- (NSApplicationTerminateReply)applicationShouldTerminate:(NSApplication*)sender {
  quorin::ApplicationDelegate* receiver = self.receiver;
  if (!receiver || self.goesOn) return NSTerminateNow;
  if (!self.asked) {
    self.asked = YES;
    QXApplicationDelegate* __weak asker = self;
    quorin::atEdge("termination",
                   [&] { receiver->applicationShouldTerminate([asker] { [asker goOn]; }); });
    if (self.goesOn) return NSTerminateNow;
    quorin::goOnInTime(self);
  }
  self.waiting = YES;
  return NSTerminateLater;
}

- (void)goOn {
  if (self.goesOn) return;
  self.goesOn = YES;
  if (self.waiting) [NSApplication.sharedApplication replyToApplicationShouldTerminate:YES];
}

- (void)applicationWillTerminate:(NSNotification*)notification {
  quorin::ApplicationDelegate* receiver = self.receiver;
  if (!receiver) return;
  quorin::atEdge("termination", [&] { receiver->applicationWillTerminate(); });
}

// AppKit's own answer would be to show the windows that it knows hidden; there are none of those.
- (BOOL)applicationShouldHandleReopen:(NSApplication*)sender
                    hasVisibleWindows:(BOOL)hasVisibleWindows {
  quorin::ApplicationDelegate* receiver = self.receiver;
  if (!receiver) return NO;
  quorin::atEdge("reopening", [&] { receiver->applicationShouldHandleReopen(); });
  return NO;
}

@end

namespace quorin {
namespace {

// A handler that does nothing, because the programs that we start would inherit that a signal is
// ignored.
void keepFromEnding(int signal) {
  struct sigaction action {};
  action.sa_handler = [](int) {};
  action.sa_flags = SA_RESTART;
  ::sigaction(signal, &action, nullptr);
}

// Nobody sees the menu bar of an accessory application, and yet it is where key combinations become
// the editing commands of what has the keys. The first menu is the application's own.
NSMenu* editingKeys() {
  NSMenu* edit = [[NSMenu alloc] initWithTitle:@"Edit"];
  [edit addItemWithTitle:@"Undo" action:NSSelectorFromString(@"undo:") keyEquivalent:@"z"];
  [edit addItemWithTitle:@"Redo" action:NSSelectorFromString(@"redo:") keyEquivalent:@"Z"];
  [edit addItemWithTitle:@"Cut" action:NSSelectorFromString(@"cut:") keyEquivalent:@"x"];
  [edit addItemWithTitle:@"Copy" action:NSSelectorFromString(@"copy:") keyEquivalent:@"c"];
  [edit addItemWithTitle:@"Paste" action:NSSelectorFromString(@"paste:") keyEquivalent:@"v"];
  [edit addItemWithTitle:@"Select All"
                  action:NSSelectorFromString(@"selectAll:")
           keyEquivalent:@"a"];
  NSMenu* bar = [[NSMenu alloc] initWithTitle:@""];
  [bar addItemWithTitle:@"Quorin" action:nil keyEquivalent:@""];
  [bar addItemWithTitle:@"Edit" action:nil keyEquivalent:@""].submenu = edit;
  return bar;
}

}  // namespace

MacApplication::MacApplication()
    : application_(NSApplication.sharedApplication),
      delegate_([[QXApplicationDelegate alloc] init]) {
  application_.mainMenu = editingKeys();
  for (const int signal : endingSignals()) signals_.push_back(endAt(signal));
}

MacApplication::~MacApplication() {
  for (dispatch_source_t source : signals_) dispatch_source_cancel(source);
  application_.delegate = nil;
  delegate_.receiver = nullptr;
}

// The signal keeps its own effect until the source would tell of it, so none is lost.
dispatch_source_t MacApplication::endAt(int signal) {
  dispatch_source_t source = dispatch_source_create(
      DISPATCH_SOURCE_TYPE_SIGNAL, static_cast<uintptr_t>(signal), 0, dispatch_get_main_queue());
  dispatch_source_set_registration_handler(source, ^{
    keepFromEnding(signal);
  });
  dispatch_source_set_event_handler(source, ^{
    atEdge("signal", [this] { terminate(); });
  });
  dispatch_activate(source);
  return source;
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
  // After the current event, because terminate: does not return; while an alert is open too.
  [application_ performSelector:@selector(terminate:)
                     withObject:nil
                     afterDelay:0
                        inModes:@[ NSRunLoopCommonModes ]];
}

void MacApplication::activate() {
  if (@available(macOS 14.0, *)) {
    [application_ activate];
  } else {
    [application_ activateIgnoringOtherApps:YES];
  }
}

}  // namespace quorin
