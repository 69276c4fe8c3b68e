// Texts of the fakes, ours and Foundation's.
#pragma once

#import <Foundation/Foundation.h>
#include <string>

namespace quorin {

NSString* made(const std::string& utf8);
std::string read(NSString* text);  // the empty text for none

}  // namespace quorin
