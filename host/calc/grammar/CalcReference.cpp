#include "host/calc/grammar/CalcReference.h"

namespace quorin::host::calc {

std::optional<std::string> readCalcSheet(std::string_view text, std::size_t& position) {
  std::size_t at = position;
  if (at < text.size() && text[at] == '$') ++at;
  std::optional<std::string> name = readQuoted(text, at);
  if (!name && errorLiteral(text, at) == "#REF!") {
    name = "#REF!";
    at += name->size();
  } else if (!name) {  // an unquoted name has no full stop in it
    const std::size_t start = at;
    while (at < text.size() && isWordCharacter(text[at]) && text[at] != '.') ++at;
    if (at == start || at >= text.size() || text[at] != '.') return std::nullopt;
    name = text.substr(start, at - start);
  }
  if (!name || at >= text.size() || text[at] != '.') return std::nullopt;
  position = at + 1;
  return name;
}

std::optional<CellText> readCalcEnd(std::string_view text, std::size_t& position, bool ofRange) {
  std::size_t at = position;
  const auto cell = readCell(text, at);
  if (!cell) return std::nullopt;
  const bool whole = !cell->lost && (cell->row == 0 || cell->column == 0);
  if (whole && !ofRange && (at >= text.size() || text[at] != ':')) return std::nullopt;
  if (at < text.size() && text[at] == '(') return std::nullopt;  // a function such as LOG10
  position = at;
  return cell;
}

}  // namespace quorin::host::calc
