#include "app/macos/MacBundle.h"

#import "app/macos/Text.h"

namespace quorin {

std::string MacBundle::infoString(const std::string& key) const {
  id value = [NSBundle.mainBundle objectForInfoDictionaryKey:toNSString(key)];
  return [value isKindOfClass:NSString.class] ? fromNSString(value) : std::string();
}

std::optional<std::filesystem::path> MacBundle::resourceFolder() const {
  NSURL* folder = NSBundle.mainBundle.resourceURL;
  if (!folder) return std::nullopt;
  return fromFileURL(folder);
}

}  // namespace quorin
