// NSString over UTF-8. A constant string is what the compiler writes, in UTF-8 or UTF-16.
#include <map>
#include <mutex>
#include <vector>

#include "kit/value/Unicode.h"
#include "tests/macos/runtime/foundation/Raise.h"
#import "tests/macos/runtime/foundation/Strings.h"
#include "tests/macos/runtime/objc/Runtime.h"

using namespace quorin;

namespace {

// The constant string's own layout.
struct Constant {
  void* isa;
  int flags;
  const char* bytes;
  long length;  // in units
};
constexpr int sixteenBits = 0x7d0;

void append(std::string& text, std::uint32_t point) {
  if (point < 0x80) {
    text += static_cast<char>(point);
  } else if (point < 0x800) {
    text += static_cast<char>(0xC0 | point >> 6);
    text += static_cast<char>(0x80 | (point & 63));
  } else if (point < 0x10000) {
    text += static_cast<char>(0xE0 | point >> 12);
    text += static_cast<char>(0x80 | (point >> 6 & 63));
    text += static_cast<char>(0x80 | (point & 63));
  } else {
    text += static_cast<char>(0xF0 | point >> 18);
    text += static_cast<char>(0x80 | (point >> 12 & 63));
    text += static_cast<char>(0x80 | (point >> 6 & 63));
    text += static_cast<char>(0x80 | (point & 63));
  }
}

const std::string& utf8Of(const Constant* constant) {
  static std::mutex& lock = *new std::mutex;
  static auto& all = *new std::map<const Constant*, std::string>;
  const std::lock_guard guard(lock);
  const auto [found, isNew] = all.try_emplace(constant);
  if (!isNew) return found->second;
  if (constant->flags != sixteenBits)
    return found->second = {constant->bytes, static_cast<std::size_t>(constant->length)};
  const auto* units = reinterpret_cast<const std::uint16_t*>(constant->bytes);
  for (long i = 0; i < constant->length; ++i) {
    std::uint32_t point = units[i];
    if (point >= 0xD800 && point < 0xDC00 && i + 1 < constant->length)
      point = 0x10000 + ((point - 0xD800) << 10) + (units[++i] - 0xDC00);
    append(found->second, point);
  }
  return found->second;
}

}  // namespace

@interface NSConstantString : NSString
@end

@implementation NSString {
 @public
  std::string _text;
}

// "Returns nil if the bytes cannot be represented in the encoding"
// (initWithBytes:length:encoding:).
- (instancetype)initWithBytes:(const void*)bytes
                       length:(NSUInteger)length
                     encoding:(NSStringEncoding)encoding {
  if (encoding != NSUTF8StringEncoding)
    raise("NSInvalidArgumentException", "this fake reads UTF-8 alone");
  std::string text(static_cast<const char*>(bytes), length);
  if (!isValidUTF8(text)) return nil;
  _text = std::move(text);
  return self;
}
+ (instancetype)stringWithUTF8String:(const char*)text {
  if (!text) raise("NSInvalidArgumentException", "stringWithUTF8String: of NULL");
  return [[self alloc] initWithBytes:text
                              length:std::string_view(text).size()
                            encoding:NSUTF8StringEncoding];
}
- (const char*)UTF8String {
  return _text.c_str();
}
- (NSUInteger)lengthOfBytesUsingEncoding:(NSStringEncoding)encoding {
  return read(self).size();
}
- (NSUInteger)length {
  NSUInteger units = 0;
  for (const char byte : read(self)) {
    const auto value = static_cast<unsigned char>(byte);
    if ((value & 0xC0) != 0x80) units += value >= 0xF0 ? 2 : 1;
  }
  return units;
}
- (BOOL)isEqual:(id)other {
  return [other isKindOfClass:NSString.class] && [self isEqualToString:other];
}
- (BOOL)isEqualToString:(NSString*)other {
  return read(self) == read(other);
}
- (NSUInteger)hash {
  return std::hash<std::string>()(read(self));
}
- (BOOL)hasPrefix:(NSString*)start {
  return read(self).starts_with(read(start));
}
- (NSString*)stringByAppendingString:(NSString*)other {
  return made(read(self) + read(other));
}
- (id)copyWithZone:(NSZone*)zone {
  return self;
}
- (NSString*)description {
  return self;
}

@end

@implementation NSConstantString

- (const char*)UTF8String {
  return utf8Of((__bridge const Constant*)self).c_str();
}

@end

namespace quorin {

NSString* made(const std::string& utf8) {
  NSString* text = [[NSString alloc] init];
  text->_text = utf8;
  return text;
}

std::string read(NSString* text) {
  if (!text) return {};
  if (objc::isImmortal((__bridge const objc::Object*)text))
    return utf8Of((__bridge const Constant*)text);
  return text->_text;
}

}  // namespace quorin
