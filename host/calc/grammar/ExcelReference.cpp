#include "host/calc/grammar/ExcelReference.h"

namespace quorin::host::calc {
namespace {

bool followedBy(std::string_view text, std::size_t position, std::string_view any) {
  return position < text.size() && any.find(text[position]) != std::string_view::npos;
}

// The end of an unquoted prefix, where its "!" should stand.
std::optional<std::size_t> endOfPlainPrefix(std::string_view text, std::size_t at) {
  if (followedBy(text, at, "[")) {
    const std::size_t end = text.find(']', at);
    if (end == std::string_view::npos) return std::nullopt;
    at = end + 1;
  }
  while (at < text.size() && (isWordCharacter(text[at]) || text[at] == ':')) ++at;
  return at;
}

bool alike(const CellText& a, const CellText& b) {
  return !b.lost && (a.row == 0) == (b.row == 0) && (a.column == 0) == (b.column == 0);
}

}  // namespace

std::optional<SheetSpan> readSheetSpan(std::string_view text, std::size_t& position) {
  std::size_t at = position;
  std::string content;
  if (const auto quoted = readQuoted(text, at)) {
    content = *quoted;
  } else {
    const auto end = endOfPlainPrefix(text, at);
    if (!end) return std::nullopt;
    at = *end;
    content = text.substr(position, at - position);
  }
  if (!followedBy(text, at, "!") || content.empty()) return std::nullopt;
  if (errorLiteral(text, position) == "#REF!") return std::nullopt;
  position = at + 1;
  SheetSpan span;
  const std::size_t opening = content.find('['), closing = content.rfind(']');
  if (opening != std::string::npos && closing != std::string::npos && opening < closing) {
    span.book = content.substr(opening + 1, closing - opening - 1);
    content.erase(0, closing + 1);
  }
  const std::size_t colon = content.find(':');
  span.first = content.substr(0, colon);
  if (colon != std::string::npos) span.last = content.substr(colon + 1);
  return span;
}

std::optional<RangeText> readRange(std::string_view text, std::size_t& position) {
  std::size_t at = position;
  const auto from = readCell(text, at);
  if (!from || from->lost) return std::nullopt;
  if (followedBy(text, at, ":")) {
    std::size_t behind = at + 1;
    const auto to = readCell(text, behind);
    if (to && alike(*from, *to) && !followedBy(text, behind, "(")) {
      position = behind;
      return RangeText{*from, to};
    }
  }
  if (from->row == 0 || from->column == 0 || followedBy(text, at, "(!#")) return std::nullopt;
  position = at;
  return RangeText{*from, std::nullopt};
}

}  // namespace quorin::host::calc
