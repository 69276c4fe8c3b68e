#include "host/SheetPrefix.h"

#include <algorithm>

#include "host/Address.h"

namespace quorin::host {
namespace {

// Everything before the "!" of a quoted prefix, quotes undone; moves `text` behind the "!".
std::optional<std::string> takeQuoted(std::string_view& text) {
  std::string name;
  for (std::size_t i = 1; i < text.size(); ++i) {
    if (text[i] != '\'') {
      name += text[i];
    } else if (i + 1 < text.size() && text[i + 1] == '\'') {
      name += '\'';
      ++i;
    } else if (i + 1 < text.size() && text[i + 1] == '!') {
      text.remove_prefix(i + 2);
      return name;
    } else {
      return std::nullopt;
    }
  }
  return std::nullopt;
}

// Where one of the signs stands outside of quotes and of brackets, in which a quote escapes the
// next character; the text's length for nowhere, npos where a bracket never closes.
std::size_t findOutside(std::string_view text, char wanted) {
  bool quoted = false;
  int depth = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (depth > 0) {
      if (c == '\'') ++i;
      if (c == '[') ++depth;
      if (c == ']') --depth;
    } else if (c == '\'') {
      quoted = !quoted;
    } else if (!quoted) {
      if (c == wanted) return i;
      if (c == '[') ++depth;
    }
  }
  return depth > 0 ? std::string_view::npos : text.size();
}

bool isPlain(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_' ||
         c == '.' || static_cast<unsigned char>(c) >= 0x80;
}

// "R", "C", "RC", "R1C1" and the like would be read as references.
bool looksLikeR1C1(std::string_view name) {
  const auto skip = [&name](char upper) {
    if (name.empty() || (name.front() & ~0x20) != upper) return false;
    name.remove_prefix(1);
    while (!name.empty() && name.front() >= '0' && name.front() <= '9') name.remove_prefix(1);
    return true;
  };
  const bool row = skip('R'), column = skip('C');
  return (row || column) && name.empty();
}

bool needsQuotes(std::string_view book, std::string_view sheet) {
  if (!std::all_of(book.begin(), book.end(), isPlain)) return true;
  if (sheet.empty() || !std::all_of(sheet.begin(), sheet.end(), isPlain)) return true;
  if (sheet.front() >= '0' && sheet.front() <= '9') return true;
  return parseA1Area(sheet).has_value() || looksLikeR1C1(sheet);
}

}  // namespace

std::optional<QualifiedText> splitSheetPrefix(std::string_view text) {
  QualifiedText parts;
  std::string prefix;
  if (!text.empty() && text.front() == '\'') {
    auto quoted = takeQuoted(text);
    if (!quoted) return std::nullopt;
    prefix = std::move(*quoted);
  } else {
    const auto mark = findOutside(text, '!');
    if (mark == std::string_view::npos) return std::nullopt;
    if (mark == text.size()) {
      parts.rest = text;
      return parts;
    }
    prefix = text.substr(0, mark);
    text.remove_prefix(mark + 1);
  }
  parts.rest = text;
  if (!prefix.empty() && prefix.front() == '[') {
    const auto close = prefix.rfind(']');
    if (close == std::string::npos || close == 1) return std::nullopt;
    parts.book = prefix.substr(1, close - 1);
    prefix.erase(0, close + 1);
  }
  if (prefix.empty()) return std::nullopt;
  parts.sheet = std::move(prefix);
  return parts;
}

std::string_view takeArea(std::string_view& text) {
  const std::size_t end = std::min(findOutside(text, ','), text.size());
  std::string_view area = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  while (!area.empty() && area.front() == ' ') area.remove_prefix(1);
  while (!area.empty() && area.back() == ' ') area.remove_suffix(1);
  return area;
}

std::string sheetPrefix(std::string_view book, std::string_view sheet) {
  std::string text;
  if (!book.empty()) text.append("[").append(book).append("]");
  text += sheet;
  if (!needsQuotes(book, sheet)) return text + "!";
  std::string quoted = "'";
  for (char c : text) quoted.append(c == '\'' ? 2U : 1U, c);
  return quoted + "'!";
}

}  // namespace quorin::host
