#include "kit/value/Unicode.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <utf8proc.h>
#include <vector>

namespace quorin {
namespace {

struct Free {
  void operator()(utf8proc_uint8_t* text) const { std::free(text); }
};

const utf8proc_uint8_t* bytes(std::string_view text) {
  return reinterpret_cast<const utf8proc_uint8_t*>(text.data());
}

// The length of the leading part that is ASCII, found eight bytes at a time.
std::size_t asciiPrefix(std::string_view text) {
  std::size_t position = 0;
  while (position + 8 <= text.size()) {
    std::uint64_t chunk;
    std::memcpy(&chunk, text.data() + position, 8);
    if (chunk & 0x8080808080808080u) break;
    position += 8;
  }
  while (position < text.size() && static_cast<unsigned char>(text[position]) < 0x80) ++position;
  return position;
}

// Every character below U+0300 is its own canonical composition; in UTF-8 their bytes are below
// 0xCC.
bool isComposedForSure(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return static_cast<unsigned char>(c) < 0xCC; });
}

char lowerASCII(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c;
}

// Of well-formed text.
std::vector<utf8proc_int32_t> lowerCodePoints(std::string_view text) {
  const std::string composed = toNFC(std::string(text));
  std::vector<utf8proc_int32_t> points;
  for (std::size_t position = 0; position < composed.size();) {
    utf8proc_int32_t point = 0;
    const auto length =
        utf8proc_iterate(bytes(composed) + position,
                         static_cast<utf8proc_ssize_t>(composed.size() - position), &point);
    points.push_back(utf8proc_tolower(point));
    position += static_cast<std::size_t>(std::max<utf8proc_ssize_t>(length, 1));
  }
  return points;
}

}  // namespace

bool isValidUTF8(std::string_view text) {
  const char* const end = text.data() + text.size();
  for (const char* next = text.data() + asciiPrefix(text); next < end;) {
    const std::size_t length = sequenceLength(next, end);
    if (length == 0) return false;
    next += length;
  }
  return true;
}

std::string toNFC(std::string text) {
  if (isComposedForSure(text)) return text;
  utf8proc_uint8_t* mapped = nullptr;
  const auto length =
      utf8proc_map(bytes(text), static_cast<utf8proc_ssize_t>(text.size()), &mapped,
                   static_cast<utf8proc_option_t>(UTF8PROC_STABLE | UTF8PROC_COMPOSE));
  const std::unique_ptr<utf8proc_uint8_t, Free> owned(mapped);
  if (length < 0) return text;
  return std::string(reinterpret_cast<const char*>(mapped), static_cast<std::size_t>(length));
}

bool canonicallyEqual(std::string_view a, std::string_view b) {
  if (a == b) return true;
  if (isComposedForSure(a) && isComposedForSure(b)) return false;
  if (!isValidUTF8(a) || !isValidUTF8(b)) return false;
  return toNFC(std::string(a)) == toNFC(std::string(b));
}

bool caselesslyEqual(std::string_view a, std::string_view b) {
  if (a == b) return true;
  if (asciiPrefix(a) == a.size() && asciiPrefix(b) == b.size()) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return lowerASCII(x) == lowerASCII(y); });
  }
  if (!isValidUTF8(a) || !isValidUTF8(b)) return false;
  return lowerCodePoints(a) == lowerCodePoints(b);
}

std::string withoutCase(std::string_view text) {
  std::string lower(text);
  if (asciiPrefix(text) == text.size()) {
    std::transform(lower.begin(), lower.end(), lower.begin(), lowerASCII);
    return lower;
  }
  if (!isValidUTF8(text)) return lower;
  lower.clear();
  for (const utf8proc_int32_t point : lowerCodePoints(text)) {
    utf8proc_uint8_t bytesOfPoint[4];
    const auto length = utf8proc_encode_char(point, bytesOfPoint);
    lower.append(reinterpret_cast<const char*>(bytesOfPoint), static_cast<std::size_t>(length));
  }
  return lower;
}

std::optional<std::size_t> graphemeCount(std::string_view text) {
  std::size_t count = 0;
  std::size_t position = 0;
  utf8proc_int32_t previous = 0;
  utf8proc_int32_t state = 0;
  while (position < text.size()) {
    utf8proc_int32_t codePoint;
    const auto length = utf8proc_iterate(
        bytes(text) + position, static_cast<utf8proc_ssize_t>(text.size() - position), &codePoint);
    if (length <= 0) return std::nullopt;
    if (position == 0 || utf8proc_grapheme_break_stateful(previous, codePoint, &state)) ++count;
    previous = codePoint;
    position += static_cast<std::size_t>(length);
  }
  return count;
}

std::optional<std::u16string> toUTF16(std::string_view text) {
  std::u16string result;
  result.reserve(text.size());
  std::size_t position = 0;
  while (position < text.size()) {
    utf8proc_int32_t codePoint;
    const auto length = utf8proc_iterate(
        bytes(text) + position, static_cast<utf8proc_ssize_t>(text.size() - position), &codePoint);
    if (length <= 0) return std::nullopt;
    position += static_cast<std::size_t>(length);
    if (codePoint < 0x10000) {
      result.push_back(static_cast<char16_t>(codePoint));
    } else {
      const auto offset = static_cast<unsigned>(codePoint - 0x10000);
      result.push_back(static_cast<char16_t>(0xD800 + (offset >> 10)));
      result.push_back(static_cast<char16_t>(0xDC00 + (offset & 0x3FF)));
    }
  }
  return result;
}

std::optional<std::string> fromUTF16(std::u16string_view text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    utf8proc_int32_t codePoint = text[i];
    if (codePoint >= 0xDC00 && codePoint <= 0xDFFF) return std::nullopt;
    if (codePoint >= 0xD800 && codePoint <= 0xDBFF) {
      if (i + 1 == text.size()) return std::nullopt;
      const utf8proc_int32_t low = text[++i];
      if (low < 0xDC00 || low > 0xDFFF) return std::nullopt;
      codePoint = 0x10000 + ((codePoint - 0xD800) << 10) + (low - 0xDC00);
    }
    utf8proc_uint8_t encoded[4];
    const auto length = utf8proc_encode_char(codePoint, encoded);
    result.append(reinterpret_cast<const char*>(encoded), static_cast<std::size_t>(length));
  }
  return result;
}

}  // namespace quorin
