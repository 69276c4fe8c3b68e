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

std::optional<std::string> excelVersion() {
  NSBundle* excel = [NSBundle bundleWithPath:@"/Applications/Microsoft Excel.app"];
  id version = [excel objectForInfoDictionaryKey:@"CFBundleShortVersionString"];
  if (![version isKindOfClass:NSString.class]) return std::nullopt;
  return fromNSString(static_cast<NSString*>(version));
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

SystemVersions macVersions() {
  @autoreleasepool {
    return {"macOS", fromNSString(NSProcessInfo.processInfo.operatingSystemVersionString), "Excel",
            excelVersion()};
  }
}

}  // namespace quorin
