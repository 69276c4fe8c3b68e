// Texts and paths between the two worlds. Any thread.
#pragma once

#import <Foundation/Foundation.h>
#include <filesystem>
#include <string>
#include <string_view>

NS_ASSUME_NONNULL_BEGIN

namespace quorin {

// Text that is not valid UTF-8 becomes the empty text.
NSString* toNSString(std::string_view utf8);

// The empty text for none, and for text that UTF-8 cannot hold (half a surrogate pair).
std::string fromNSString(NSString* _Nullable text);

NSURL* toFileURL(const std::filesystem::path& path);

// The empty path for a URL without one.
std::filesystem::path fromFileURL(NSURL* _Nullable url);

}  // namespace quorin

NS_ASSUME_NONNULL_END
