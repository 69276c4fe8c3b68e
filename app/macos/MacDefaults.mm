#include "app/macos/MacDefaults.h"

#import "app/macos/Text.h"

namespace quorin {

std::optional<std::string> MacDefaults::string(const std::string& key) const {
  NSString* value = [NSUserDefaults.standardUserDefaults stringForKey:toNSString(key)];
  if (!value) return std::nullopt;
  return fromNSString(value);
}

void MacDefaults::setString(const std::string& key, const std::string& value) {
  [NSUserDefaults.standardUserDefaults setObject:toNSString(value) forKey:toNSString(key)];
}

}  // namespace quorin
