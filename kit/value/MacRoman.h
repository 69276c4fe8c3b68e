// The Mac OS Roman character set, in which four-character codes are spelled.
#pragma once

#include <string>

namespace quorin {

// Appends the UTF-8 form of one Mac OS Roman character; every byte is one.
void appendMacRoman(std::string& text, unsigned char character);

}  // namespace quorin
