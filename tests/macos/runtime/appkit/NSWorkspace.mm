// The user's session: which applications run, which one is in front, what opens what.
#import <AppKit/AppKit.h>
#include <algorithm>
#include <unistd.h>

#include "tests/macos/runtime/appkit/Hands.h"
#include "tests/macos/runtime/foundation/Notification.h"
#include "tests/macos/runtime/foundation/Raise.h"
#import "tests/macos/runtime/foundation/Strings.h"
#include "tests/macos/runtime/objc/Census.h"
#include "tests/macos/runtime/objc/Runtime.h"

using namespace quorin;

NSNotificationName const NSWorkspaceDidActivateApplicationNotification =
    @"NSWorkspaceDidActivateApplicationNotification";
NSString* const NSWorkspaceApplicationKey = @"NSWorkspaceApplicationKey";

namespace {

struct Running {
  std::string identifier;
  int process;
};

struct Session {
  std::vector<Running> running{{"com.quorin.contract", ::getpid()}};
  int front = 0;
  int next = 70'001;
  std::vector<std::string> opened;

  const Running* find(int process) const {
    const auto found = std::find_if(running.begin(), running.end(),
                                    [&](const Running& each) { return each.process == process; });
    return found == running.end() ? nullptr : &*found;
  }
};

Session& session() {
  static auto& one = *new Session;
  return one;
}

}  // namespace

@implementation NSRunningApplication {
  NSString* _identifier;
  pid_t _process;
}

+ (NSRunningApplication*)of:(const Running&)running {
  NSRunningApplication* one = [[NSRunningApplication alloc] init];
  one->_identifier = made(running.identifier);
  one->_process = running.process;
  return one;
}
+ (NSArray<NSRunningApplication*>*)runningApplicationsWithBundleIdentifier:(NSString*)identifier {
  NSMutableArray<NSRunningApplication*>* found = [[NSMutableArray alloc] init];
  for (const Running& each : session().running) {
    if (each.identifier == read(identifier)) [found addObject:[self of:each]];
  }
  return found;
}
+ (instancetype)runningApplicationWithProcessIdentifier:(pid_t)process {
  const Running* found = session().find(process);
  return found ? [self of:*found] : nil;
}
- (NSString*)bundleIdentifier {
  return _identifier;
}
- (pid_t)processIdentifier {
  return _process;
}
- (BOOL)activateWithOptions:(NSApplicationActivationOptions)options {
  if (!session().find(_process)) return NO;
  bringForward(_process);
  return YES;
}

@end

@implementation NSWorkspace

+ (NSWorkspace*)sharedWorkspace {
  static NSWorkspace* one = [] {
    NSWorkspace* made = [[NSWorkspace alloc] init];
    made->_notificationCenter = [[NSNotificationCenter alloc] init];
    objc::exemptFromCensus((__bridge objc::Object*)made);
    objc::exemptFromCensus((__bridge objc::Object*)made->_notificationCenter);
    return made;
  }();
  return one;
}
- (NSRunningApplication*)frontmostApplication {
  return [NSRunningApplication runningApplicationWithProcessIdentifier:session().front];
}
- (BOOL)openURL:(NSURL*)url {
  if (!url) raise("NSInvalidArgumentException", "openURL: of nil");
  const std::string scheme = read(url.scheme);
  if (scheme != "file" && scheme != "https" && scheme != "mailto") return NO;
  session().opened.push_back(read(url.absoluteString));
  return YES;
}
- (NSURL*)URLForApplicationWithBundleIdentifier:(NSString*)identifier {
  if (read(identifier) != "com.microsoft.Excel") return nil;
  return [NSURL fileURLWithPath:@"/Applications/Microsoft Excel.app"];
}

@end

namespace quorin {

int startApplication(const std::string& identifier) {
  session().running.push_back({identifier, session().next});
  return session().next++;
}

void bringForward(int process) {
  session().front = process;
  NSRunningApplication* application =
      [NSRunningApplication runningApplicationWithProcessIdentifier:process];
  post(NSWorkspace.sharedWorkspace.notificationCenter,
       NSWorkspaceDidActivateApplicationNotification, @{NSWorkspaceApplicationKey : application});
}

void endApplication(int process) {
  std::erase_if(session().running, [&](const Running& each) { return each.process == process; });
  if (session().front == process) session().front = 0;
}

std::vector<std::string> openedURLs() {
  return session().opened;
}

}  // namespace quorin
