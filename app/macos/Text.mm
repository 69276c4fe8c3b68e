#import "app/macos/Text.h"

namespace quorin {

NSString* toNSString(std::string_view utf8) {
  NSString* text = [[NSString alloc] initWithBytes:utf8.data()
                                            length:utf8.size()
                                          encoding:NSUTF8StringEncoding];
  return text ? text : @"";
}

std::string fromNSString(NSString* text) {
  const char* bytes = text.UTF8String;
  if (!bytes) return {};
  // The length is asked for because a text may hold the character 0.
  return {bytes, [text lengthOfBytesUsingEncoding:NSUTF8StringEncoding]};
}

NSURL* toFileURL(const std::filesystem::path& path) {
  return [NSURL fileURLWithPath:toNSString(path.native())];
}

std::filesystem::path fromFileURL(NSURL* url) {
  return fromNSString(url.path);
}

}  // namespace quorin
