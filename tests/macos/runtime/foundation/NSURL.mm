// URLs as far as they are asked for: those of files, whose text is escaped, and those of the net.
#import <Foundation/Foundation.h>

#include "tests/macos/runtime/foundation/Raise.h"
#import "tests/macos/runtime/foundation/Strings.h"

using namespace quorin;

namespace {

bool isPlain(unsigned char byte) {
  return std::isalnum(byte) ||
         std::string_view("-._~/!$&'()*+,:@=").find(static_cast<char>(byte)) !=
             std::string_view::npos;
}

std::string escaped(const std::string& path) {
  std::string text;
  for (const char byte : path) {
    const auto value = static_cast<unsigned char>(byte);
    if (isPlain(value)) {
      text += byte;
    } else {
      constexpr char digits[] = "0123456789ABCDEF";
      text += {'%', digits[value >> 4], digits[value & 15]};
    }
  }
  return text;
}

// "If the URL string was malformed or nil, returns nil": no blank, no letter outside of ASCII.
bool isURL(const std::string& text) {
  if (text.empty()) return false;
  for (const char byte : text) {
    const auto value = static_cast<unsigned char>(byte);
    if (value <= ' ' || value >= 0x7f ||
        std::string_view("\"<>\\^`{|}").find(byte) != std::string_view::npos)
      return false;
  }
  return true;
}

}  // namespace

@implementation NSURL {
  std::string _text, _filePath;
}

+ (instancetype)URLWithString:(NSString*)text {
  if (!isURL(read(text))) return nil;
  NSURL* made = [[self alloc] init];
  made->_text = read(text);
  return made;
}
+ (NSURL*)fileURLWithPath:(NSString*)path {
  if (!path) raise("NSInvalidArgumentException", "fileURLWithPath: of nil");
  NSURL* one = [[NSURL alloc] init];
  one->_filePath = read(path);
  one->_text = "file://" + escaped(one->_filePath);
  return one;
}
- (NSString*)absoluteString {
  return made(_text);
}
- (NSString*)path {
  if (!_filePath.empty()) return made(_filePath);
  const auto host = _text.find("://");
  if (host == std::string::npos) return nil;
  const auto path = _text.find('/', host + 3);
  return path == std::string::npos ? @"" : made(_text.substr(path));
}
- (NSString*)scheme {
  const auto colon = _text.find(':');
  return colon == std::string::npos ? nil : made(_text.substr(0, colon));
}
- (BOOL)isFileURL {
  return !_filePath.empty();
}
- (NSURL*)URLByAppendingPathComponent:(NSString*)component {
  return [NSURL fileURLWithPath:made(_filePath + "/" + read(component))];
}
- (BOOL)isEqual:(id)other {
  return [other isKindOfClass:NSURL.class] && static_cast<NSURL*>(other)->_text == _text;
}
- (id)copyWithZone:(NSZone*)zone {
  return self;
}

@end

@implementation NSURLRequest {
 @public
  NSTimeInterval _seconds;
}

+ (instancetype)requestWithURL:(NSURL*)url
                   cachePolicy:(NSURLRequestCachePolicy)policy
               timeoutInterval:(NSTimeInterval)seconds {
  NSURLRequest* made = [[self alloc] init];
  made->_URL = url;
  made->_seconds = seconds;
  return made;
}
- (id)copyWithZone:(NSZone*)zone {
  return self;
}

@end

namespace quorin {

double secondsOf(NSURLRequest* request) {
  return request->_seconds;
}

}  // namespace quorin
