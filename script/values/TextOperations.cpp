#include "script/values/TextOperations.h"

#include <algorithm>
#include <utf8proc.h>

#include "script/values/TextComparison.h"

namespace quorin::script {
namespace {

bool isASCII(std::string_view text) {
  return std::none_of(text.begin(), text.end(),
                      [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
}

struct CodePoint {
  utf8proc_int32_t value = 0;
  std::size_t size = 1;
};

// Bytes that are no UTF-8 count as one character each.
CodePoint codePointAt(std::string_view text, std::size_t at) {
  CodePoint point;
  const auto* bytes = reinterpret_cast<const utf8proc_uint8_t*>(text.data() + at);
  const utf8proc_ssize_t size =
      utf8proc_iterate(bytes, static_cast<utf8proc_ssize_t>(text.size() - at), &point.value);
  if (size > 0)
    point.size = static_cast<std::size_t>(size);
  else
    point.value = 0xFFFD;
  return point;
}

std::vector<TextSpan> characters(std::string_view text) {
  std::vector<TextSpan> spans;
  if (isASCII(text)) spans.reserve(text.size());
  forEachCharacter(text, [&](TextSpan span) {
    spans.push_back(span);
    return true;
  });
  return spans;
}

bool isWordPoint(utf8proc_int32_t point) {
  switch (utf8proc_category(point)) {
    case UTF8PROC_CATEGORY_LU:
    case UTF8PROC_CATEGORY_LL:
    case UTF8PROC_CATEGORY_LT:
    case UTF8PROC_CATEGORY_LM:
    case UTF8PROC_CATEGORY_LO:
    case UTF8PROC_CATEGORY_MN:
    case UTF8PROC_CATEGORY_MC:
    case UTF8PROC_CATEGORY_ND:
    case UTF8PROC_CATEGORY_NL:
      return true;
    default:
      return point == '_';
  }
}

// An apostrophe between letters and a point or comma between digits belong to the word.
bool joinsWord(std::string_view text, std::size_t at, utf8proc_int32_t before) {
  const CodePoint mark = codePointAt(text, at);
  if (at + mark.size >= text.size()) return false;
  const utf8proc_int32_t after = codePointAt(text, at + mark.size).value;
  const auto isDigit = [](utf8proc_int32_t point) { return point >= '0' && point <= '9'; };
  if (mark.value == '\'' || mark.value == 0x2019) {
    return isWordPoint(after) && !isDigit(after) && !isDigit(before);
  }
  return (mark.value == '.' || mark.value == ',') && isDigit(before) && isDigit(after);
}

std::vector<TextSpan> words(std::string_view text) {
  std::vector<TextSpan> spans;
  bool inside = false;
  utf8proc_int32_t previous = 0;
  for (std::size_t at = 0; at < text.size();) {
    const CodePoint point = codePointAt(text, at);
    if (isWordPoint(point.value)) {
      if (!inside) spans.push_back({at, at});
      inside = true;
      spans.back().end = at + point.size;
    } else if (!inside || !joinsWord(text, at, previous)) {
      inside = false;
    }
    previous = point.value;
    at += point.size;
  }
  return spans;
}

// The size of the paragraph end at a place, or 0.
std::size_t paragraphEnd(std::string_view text, std::size_t at) {
  const std::string_view rest = text.substr(at);
  if (rest.starts_with("\r\n")) return 2;
  if (rest.starts_with('\r') || rest.starts_with('\n')) return 1;
  return rest.starts_with("\xE2\x80\xA8") || rest.starts_with("\xE2\x80\xA9") ? 3 : 0;
}

std::vector<TextSpan> paragraphs(std::string_view text) {
  std::vector<TextSpan> spans = {{0, 0}};
  for (std::size_t at = 0; at < text.size();) {
    if (const std::size_t size = paragraphEnd(text, at)) {
      spans.back().end = at;
      at += size;
      spans.push_back({at, at});
    } else {
      ++at;
    }
  }
  spans.back().end = text.size();
  return spans;
}

}  // namespace

void forEachCharacter(std::string_view text, const std::function<bool(TextSpan)>& visit) {
  if (isASCII(text)) {
    for (std::size_t i = 0; i < text.size(); ++i) {
      if (!visit({i, i + 1})) return;
    }
    return;
  }
  utf8proc_int32_t state = 0;
  utf8proc_int32_t previous = -1;
  std::size_t begin = 0;
  for (std::size_t at = 0; at < text.size();) {
    const CodePoint point = codePointAt(text, at);
    const bool breaks =
        previous >= 0 && utf8proc_grapheme_break_stateful(previous, point.value, &state);
    if (breaks && !visit({begin, at})) return;
    if (breaks) begin = at;
    at += point.size;
    previous = point.value;
  }
  visit({begin, text.size()});
}

std::vector<TextSpan> textElements(std::string_view text, TextUnit unit) {
  switch (unit) {
    case TextUnit::character:
      return characters(text);
    case TextUnit::word:
      return words(text);
    case TextUnit::paragraph:
      return paragraphs(text);
  }
  return {};
}

std::vector<TextSpan> textItems(std::string_view text, const TextRules& rules) {
  const bool delimited = std::any_of(rules.delimiters.begin(), rules.delimiters.end(),
                                     [](const std::string& each) { return !each.empty(); });
  if (!delimited) return characters(text);
  std::vector<TextSpan> spans = {{0, 0}};
  if (text.empty()) return {};
  TextSearch search(text, rules);
  std::size_t from = 0;
  for (const auto& found : search.all(rules.delimiters)) {
    spans.back().end = found.begin;
    from = found.end;
    spans.push_back({from, from});
  }
  spans.back().end = text.size();
  return spans;
}

std::optional<std::vector<TextSpan>> textElements(std::string_view text, FourCharCode type,
                                                  const TextRules& rules) {
  switch (type) {
    case fourCharCode("cha "):
    case fourCharCode("cobj"):
    case fourCharCode("ctxt"):
      return characters(text);
    case fourCharCode("cwor"):
      return words(text);
    case fourCharCode("cpar"):
      return paragraphs(text);
    case fourCharCode("citm"):
      return textItems(text, rules);
    default:
      return std::nullopt;
  }
}

std::size_t textLength(std::string_view text) {
  if (isASCII(text)) return text.size();
  std::size_t count = 0;
  forEachCharacter(text, [&](TextSpan) {
    ++count;
    return true;
  });
  return count;
}

}  // namespace quorin::script
