// Four-character codes: 32-bit numbers whose bytes, most significant first, are the characters.
#pragma once

#include <cstdint>

namespace quorin {

using FourCharCode = std::uint32_t;

// The code of a literal of exactly four characters: fourCharCode("list").
consteval FourCharCode fourCharCode(const char (&text)[5]) {
  FourCharCode code = 0;
  for (int i = 0; i < 4; ++i) code = (code << 8) | static_cast<unsigned char>(text[i]);
  return code;
}

}  // namespace quorin
