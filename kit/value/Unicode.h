// What the system needs to know of Unicode, over UTF-8 text. Pure functions for any thread.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace quorin {

// The length of the well-formed UTF-8 sequence at the front of a text that is not empty; 0 when
// there is none.
inline std::size_t sequenceLength(const char* text, const char* end) {
  const auto byte = [&](std::ptrdiff_t i) {
    return text + i < end ? static_cast<unsigned char>(text[i]) : 0u;
  };
  const auto follows = [&](std::ptrdiff_t i) { return (byte(i) & 0xC0u) == 0x80u; };
  const unsigned first = byte(0);
  if (first < 0x80) return 1;
  if (first < 0xC2) return 0;  // a following byte, or a longer form of ASCII
  if (first < 0xE0) return follows(1) ? 2 : 0;
  // Of the three-byte forms E0 80 is too long and ED A0 a surrogate; of the four-byte ones F0 80
  // is too long and F4 90 beyond U+10FFFF.
  if (first < 0xF0) {
    const bool allowed = first == 0xE0 ? byte(1) >= 0xA0 : first != 0xED || byte(1) < 0xA0;
    return allowed && follows(1) && follows(2) ? 3 : 0;
  }
  if (first > 0xF4) return 0;
  const bool allowed = first == 0xF0 ? byte(1) >= 0x90 : first != 0xF4 || byte(1) < 0x90;
  return allowed && follows(1) && follows(2) && follows(3) ? 4 : 0;
}

// Well-formed UTF-8: no overlong forms, no surrogates, nothing above U+10FFFF.
bool isValidUTF8(std::string_view text);

// Canonical composition (NFC). Text that is not valid UTF-8 comes back as it is.
std::string toNFC(std::string text);

// Canonical equivalence: e + combining acute equals the precomposed letter. Text that is not valid
// UTF-8 equals only the same bytes.
bool canonicallyEqual(std::string_view a, std::string_view b);

// Canonical equivalence but for the case of letters, one by one: "Ä" equals "ä", "ß" only itself.
// Text that is not valid UTF-8 equals only the same bytes.
bool caselesslyEqual(std::string_view a, std::string_view b);

// The same for all texts that are caselesslyEqual, and for no others.
std::string withoutCase(std::string_view text);

// User-perceived characters (extended grapheme clusters); none when the text is not valid UTF-8.
std::optional<std::size_t> graphemeCount(std::string_view text);

// UTF-16 for the interfaces that speak it; none when the input is not well formed.
std::optional<std::u16string> toUTF16(std::string_view text);
std::optional<std::string> fromUTF16(std::u16string_view text);

}  // namespace quorin
