#include "app/macos/MacLoginItem.h"

#import <ServiceManagement/ServiceManagement.h>

#import "app/macos/Text.h"
#include "app/shell/InstalledPlace.h"

namespace quorin {
namespace {

std::optional<std::string> described(BOOL done, NSError* _Nullable error) {
  if (done) return std::nullopt;
  const std::string text = fromNSString(error.localizedDescription);
  return text.empty() ? "unknown error" : text;
}

}  // namespace

bool MacLoginItem::isInstalled() const {
  return isInstalledApplication(
      fromFileURL(NSBundle.mainBundle.bundleURL),
      fromFileURL(NSFileManager.defaultManager.homeDirectoryForCurrentUser));
}

// Before the first registration the answer may be "not found" as well as "not registered".
LoginItemStatus MacLoginItem::status() const {
  switch (SMAppService.mainAppService.status) {
    case SMAppServiceStatusNotRegistered:
      return LoginItemStatus::notRegistered;
    case SMAppServiceStatusEnabled:
      return LoginItemStatus::enabled;
    case SMAppServiceStatusRequiresApproval:
      return LoginItemStatus::requiresApproval;
    case SMAppServiceStatusNotFound:
      return LoginItemStatus::notFound;
  }
  return LoginItemStatus::unknown;
}

std::optional<std::string> MacLoginItem::registerItem() {
  NSError* error = nil;
  const BOOL done = [SMAppService.mainAppService registerAndReturnError:&error];
  return described(done, error);
}

std::optional<std::string> MacLoginItem::unregisterItem() {
  NSError* error = nil;
  const BOOL done = [SMAppService.mainAppService unregisterAndReturnError:&error];
  return described(done, error);
}

}  // namespace quorin
