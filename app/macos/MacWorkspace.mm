#include "app/macos/MacWorkspace.h"

#include <memory>
#include <utility>

#include "app/macos/Edge.h"
#import "app/macos/Text.h"

namespace quorin {
namespace {

RunningApplication described(NSRunningApplication* application) {
  const int process = application.processIdentifier;
  return {fromNSString(application.bundleIdentifier), process,
          process == NSProcessInfo.processInfo.processIdentifier};
}

}  // namespace

MacWorkspace::~MacWorkspace() {
  stopObserving();
}

std::vector<RunningApplication> MacWorkspace::runningApplications(
    const std::string& identifier) const {
  std::vector<RunningApplication> found;
  for (NSRunningApplication* each in
       [NSRunningApplication runningApplicationsWithBundleIdentifier:toNSString(identifier)]) {
    found.push_back(described(each));
  }
  return found;
}

std::optional<RunningApplication> MacWorkspace::frontmostApplication() const {
  NSRunningApplication* front = NSWorkspace.sharedWorkspace.frontmostApplication;
  if (!front) return std::nullopt;
  return described(front);
}

void MacWorkspace::activate(const RunningApplication& application) {
  [[NSRunningApplication runningApplicationWithProcessIdentifier:application.processIdentifier]
      activateWithOptions:NSApplicationActivationOptions()];
}

void MacWorkspace::observeActivation(ActivationHandler handler) {
  stopObserving();
  if (!handler) return;
  const auto receiver = std::make_shared<ActivationHandler>(std::move(handler));
  // Activations are told at the workspace's own centre and nowhere else.
  observation_ = [NSWorkspace.sharedWorkspace.notificationCenter
      addObserverForName:NSWorkspaceDidActivateApplicationNotification
                  object:nil
                   queue:NSOperationQueue.mainQueue
              usingBlock:^(NSNotification* notification) {
                NSRunningApplication* activated = notification.userInfo[NSWorkspaceApplicationKey];
                if (!activated) return;
                const auto running = receiver;  // the handler may replace itself
                atEdge("activation", [&] { (*running)(described(activated)); });
              }];
}

void MacWorkspace::stopObserving() {
  id<NSObject> observation = std::exchange(observation_, nil);
  if (!observation) return;
  [NSWorkspace.sharedWorkspace.notificationCenter removeObserver:observation];
}

bool MacWorkspace::openURL(const std::string& url) {
  NSURL* target = [NSURL URLWithString:toNSString(url)];
  return target && [NSWorkspace.sharedWorkspace openURL:target];
}

bool MacWorkspace::openFile(const std::filesystem::path& file) {
  return [NSWorkspace.sharedWorkspace openURL:toFileURL(file)];
}

}  // namespace quorin
