// The user's session: which applications run, which one is in front, what opens what. Which ones
// run any thread may ask ("NSRunningApplication is thread safe").
#import <AppKit/AppKit.h>
#include <algorithm>
#include <mutex>
#include <optional>
#include <unistd.h>

#include "tests/macos/runtime/appkit/Hands.h"
#include "tests/macos/runtime/foundation/Bundle.h"
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
  mutable std::mutex lock;
  std::vector<Running> running{{mainBundle().info["CFBundleIdentifier"], ::getpid()}};
  int front = 0;
  int next = 70'001;
  bool excelIsInstalled = true;
  NSUInteger lastOptions = 0;
  std::vector<std::string> opened;

  std::vector<Running> all() const {
    const std::lock_guard guard(lock);
    return running;
  }
  std::optional<Running> find(int process) const {
    for (const Running& each : all()) {
      if (each.process == process) return each;
    }
    return std::nullopt;
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
  for (const Running& each : session().all()) {
    if (each.identifier == read(identifier)) [found addObject:[self of:each]];
  }
  return found;
}
+ (instancetype)runningApplicationWithProcessIdentifier:(pid_t)process {
  const std::optional<Running> found = session().find(process);
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
  session().lastOptions = options;
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
  return [NSRunningApplication runningApplicationWithProcessIdentifier:frontProcess()];
}
- (BOOL)openURL:(NSURL*)url {
  if (!url) raise("NSInvalidArgumentException", "openURL: of nil");
  const std::string scheme = read(url.scheme);
  if (scheme != "file" && scheme != "https" && scheme != "mailto") return NO;
  session().opened.push_back(read(url.absoluteString));
  return YES;
}
- (NSURL*)URLForApplicationWithBundleIdentifier:(NSString*)identifier {
  const std::lock_guard guard(session().lock);
  if (read(identifier) != "com.microsoft.Excel" || !session().excelIsInstalled) return nil;
  return [NSURL fileURLWithPath:@"/Applications/Microsoft Excel.app"];
}

@end

namespace quorin {

int startApplication(const std::string& identifier) {
  const std::lock_guard guard(session().lock);
  session().running.push_back({identifier, session().next});
  return session().next++;
}

void bringForward(int process) {
  {
    const std::lock_guard guard(session().lock);
    session().front = process;
  }
  NSRunningApplication* application =
      [NSRunningApplication runningApplicationWithProcessIdentifier:process];
  post(NSWorkspace.sharedWorkspace.notificationCenter,
       NSWorkspaceDidActivateApplicationNotification, @{NSWorkspaceApplicationKey : application});
}

void endApplication(int process) {
  const std::lock_guard guard(session().lock);
  std::erase_if(session().running, [&](const Running& each) { return each.process == process; });
  if (session().front == process) session().front = 0;
}

int frontProcess() {
  const std::lock_guard guard(session().lock);
  return session().front;
}

void installExcel(bool installed) {
  const std::lock_guard guard(session().lock);
  session().excelIsInstalled = installed;
}

NSUInteger lastActivationOptions() {
  return session().lastOptions;
}

std::vector<std::string> openedURLs() {
  return session().opened;
}

}  // namespace quorin
