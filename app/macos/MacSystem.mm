#include "app/macos/MacSystem.h"

#import <AppKit/AppKit.h>

#import "app/macos/Text.h"

namespace quorin {
namespace {

std::filesystem::path userFolder(NSSearchPathDirectory folder) {
  return fromFileURL([NSFileManager.defaultManager URLsForDirectory:folder
                                                          inDomains:NSUserDomainMask]
                         .firstObject);
}

}  // namespace

std::filesystem::path MacFolders::applicationSupport() const {
  return userFolder(NSApplicationSupportDirectory);
}

std::filesystem::path MacFolders::library() const {
  return userFolder(NSLibraryDirectory);
}

std::filesystem::path MacFolders::desktop() const {
  return userFolder(NSDesktopDirectory);
}

std::filesystem::path MacFolders::temporary() const {
  return fromFileURL(NSFileManager.defaultManager.temporaryDirectory);
}

bool MacTargetApplication::isRunning() {
  @autoreleasepool {
    return [NSRunningApplication runningApplicationsWithBundleIdentifier:@"com.microsoft.Excel"]
               .count > 0;
  }
}

}  // namespace quorin
