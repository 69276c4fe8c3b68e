#include "app/macos/MacArchiver.h"

#import "app/macos/Text.h"

namespace quorin {

int MacArchiver::zip(const std::filesystem::path& folder, const std::filesystem::path& file) {
  @autoreleasepool {
    NSTask* task = [[NSTask alloc] init];
    task.executableURL = toFileURL("/usr/bin/ditto");
    task.arguments =
        @[ @"-c", @"-k", @"--keepParent", toNSString(folder.native()), toNSString(file.native()) ];
    NSError* error = nil;
    if (![task launchAndReturnError:&error]) {
      NSLog(@"ditto: %@", error);
      return -1;
    }
    [task waitUntilExit];
    return task.terminationStatus;
  }
}

}  // namespace quorin
