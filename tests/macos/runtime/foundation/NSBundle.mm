// The program's bundle: its folder and the values of its Info.plist, which a test may change.
#import <Foundation/Foundation.h>
#include <filesystem>

#include "tests/macos/runtime/foundation/Bundle.h"
#import "tests/macos/runtime/foundation/Strings.h"
#include "tests/macos/runtime/objc/Census.h"
#include "tests/macos/runtime/objc/Runtime.h"

using namespace quorin;

@implementation NSBundle {
  std::string _path;
}

+ (NSBundle*)mainBundle {
  static NSBundle* one = [] {
    NSBundle* made = [[NSBundle alloc] init];
    objc::exemptFromCensus((__bridge objc::Object*)made);
    return made;
  }();
  one->_path = mainBundle().folder.native();
  return one;
}
// "Returns nil if there is no bundle at the path."
+ (instancetype)bundleWithPath:(NSString*)path {
  if (!std::filesystem::is_directory(read(path))) return nil;
  NSBundle* made = [[self alloc] init];
  made->_path = read(path);
  return made;
}
+ (instancetype)bundleWithURL:(NSURL*)url {
  return [self bundleWithPath:url.path];
}
- (BOOL)load {
  return std::filesystem::exists(_path + "/loads");
}
- (NSURL*)bundleURL {
  return [NSURL fileURLWithPath:made(_path)];
}
- (NSURL*)resourceURL {
  return [NSURL fileURLWithPath:made(_path)];
}
- (NSURL*)privateFrameworksURL {
  return [NSURL fileURLWithPath:made(_path + "/Contents/Frameworks")];
}
- (id)objectForInfoDictionaryKey:(NSString*)key {
  if (_path != mainBundle().folder) return nil;
  const auto number = mainBundle().numbers.find(read(key));
  if (number != mainBundle().numbers.end()) return [NSNumber numberWithInt:number->second];
  const auto found = mainBundle().info.find(read(key));
  return found == mainBundle().info.end() ? nil : made(found->second);
}

@end

namespace quorin {

MainBundle& mainBundle() {
  static auto& one = *new MainBundle{
      std::filesystem::canonical("/proc/self/exe").parent_path(),
      {{"CFBundleShortVersionString", "0.1.0"}, {"CFBundleIdentifier", "com.quorin.contract"}}};
  return one;
}

}  // namespace quorin
