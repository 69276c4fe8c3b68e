// The user's folders, and programs that are started. Of programs there is ditto, as a stand-in.
#import <Foundation/Foundation.h>
#include <filesystem>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "tests/macos/runtime/foundation/Raise.h"
#import "tests/macos/runtime/foundation/Strings.h"
#include "tests/macos/runtime/objc/Census.h"
#include "tests/macos/runtime/objc/Runtime.h"

using namespace quorin;

namespace {

std::string home() {
  const char* folder = ::getenv("HOME");
  return folder ? folder : "/var/empty";
}

}  // namespace

@implementation NSFileManager

+ (NSFileManager*)defaultManager {
  static NSFileManager* one = [] {
    NSFileManager* made = [[NSFileManager alloc] init];
    objc::exemptFromCensus((__bridge objc::Object*)made);
    return made;
  }();
  return one;
}
- (NSArray<NSURL*>*)URLsForDirectory:(NSSearchPathDirectory)directory
                           inDomains:(NSSearchPathDomainMask)domains {
  const char* name = directory == NSApplicationSupportDirectory ? "/Library/Application Support"
                     : directory == NSLibraryDirectory          ? "/Library"
                     : directory == NSDesktopDirectory          ? "/Desktop"
                                                                : nullptr;
  if (!name || domains != NSUserDomainMask) return [NSArray array];
  return [NSArray arrayWithObject:[NSURL fileURLWithPath:made(home() + name)]];
}
- (NSURL*)homeDirectoryForCurrentUser {
  return [NSURL fileURLWithPath:made(home())];
}
- (NSURL*)temporaryDirectory {
  return [NSURL fileURLWithPath:made(std::filesystem::temp_directory_path().native())];
}

@end

@implementation NSTask {
  pid_t _process;
  int _status;
}
@synthesize executableURL = _executableURL, arguments = _arguments;

- (instancetype)init {
  return self;
}
- (BOOL)launchAndReturnError:(NSError**)error {
  if (_process) raise("NSInvalidArgumentException", "a task is launched twice");
  std::vector<std::string> texts{read(_executableURL.path)};
  if (texts[0] == "/usr/bin/ditto") texts[0] = QUORIN_DITTO;
  for (NSString* each in _arguments) texts.push_back(read(each));
  std::vector<char*> pointers;
  for (std::string& each : texts) pointers.push_back(each.data());
  pointers.push_back(nullptr);
  if (::posix_spawn(&_process, pointers[0], nullptr, nullptr, pointers.data(), ::environ) == 0)
    return YES;
  if (error) *error = [NSError errorWithDomain:NSCocoaErrorDomain code:4 userInfo:nil];
  return NO;
}
- (void)waitUntilExit {
  int status = 0;
  ::waitpid(_process, &status, 0);
  _status = WIFEXITED(status) ? WEXITSTATUS(status) : WTERMSIG(status);
}
- (int)terminationStatus {
  if (!_process) raise("NSInvalidArgumentException", "the task was not launched");
  return _status;
}

@end
