// What the system needs to know of Unicode, over UTF-8 text. Pure functions for any thread.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace quorin {

// Well-formed UTF-8: no overlong forms, no surrogates, nothing above U+10FFFF.
bool isValidUTF8(std::string_view text);

// Canonical composition (NFC). Text that is not valid UTF-8 comes back as it is.
std::string toNFC(std::string text);

// Canonical equivalence: e + combining acute equals the precomposed letter. Text that is not valid
// UTF-8 equals only the same bytes.
bool canonicallyEqual(std::string_view a, std::string_view b);

// User-perceived characters (extended grapheme clusters); none when the text is not valid UTF-8.
std::optional<std::size_t> graphemeCount(std::string_view text);

// UTF-16 for the interfaces that speak it; none when the input is not well formed.
std::optional<std::u16string> toUTF16(std::string_view text);
std::optional<std::string> fromUTF16(std::u16string_view text);

}  // namespace quorin
