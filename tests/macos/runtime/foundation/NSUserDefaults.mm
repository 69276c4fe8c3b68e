// The user's defaults, kept while the program runs.
#import <Foundation/Foundation.h>
#include <map>

#include "tests/macos/runtime/foundation/Raise.h"
#import "tests/macos/runtime/foundation/Strings.h"
#include "tests/macos/runtime/objc/Census.h"
#include "tests/macos/runtime/objc/Runtime.h"

using namespace quorin;

@implementation NSUserDefaults {
  std::map<std::string, std::string> _texts;
}

+ (NSUserDefaults*)standardUserDefaults {
  static NSUserDefaults* one = [] {
    NSUserDefaults* made = [[NSUserDefaults alloc] init];
    objc::exemptFromCensus((__bridge objc::Object*)made);
    return made;
  }();
  return one;
}
- (NSString*)stringForKey:(NSString*)key {
  const auto found = _texts.find(read(key));
  return found == _texts.end() ? nil : made(found->second);
}
// "The value parameter can be only property list objects"; other objects raise.
- (void)setObject:(id)value forKey:(NSString*)key {
  if (!value) return [self removeObjectForKey:key];
  if (![value isKindOfClass:NSString.class])
    raise("NSInvalidArgumentException", "this fake's defaults hold texts");
  _texts[read(key)] = read(value);
}
- (void)removeObjectForKey:(NSString*)key {
  _texts.erase(read(key));
}

@end
