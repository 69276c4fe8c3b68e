#include "host/calc/grammar/PlainReference.h"

namespace quorin::host::calc {

std::size_t behindPlainCell(std::string_view text, std::size_t position) {
  constexpr std::size_t mostLetters = 2, mostDigits = 6;
  const auto skip = [&](std::size_t start, std::size_t most, char first, char last) {
    std::size_t at = start;
    while (at < text.size() && at - start < most && text[at] >= first && text[at] <= last) ++at;
    return at;
  };
  const auto skipDollar = [&](std::size_t at) {
    return at < text.size() && text[at] == '$' ? at + 1 : at;
  };
  const std::size_t column = skipDollar(position);
  const std::size_t behindColumn = skip(column, mostLetters, 'A', 'Z');
  if (behindColumn == column) return position;
  const std::size_t row = skipDollar(behindColumn);
  const std::size_t end = skip(row, mostDigits, '0', '9');
  return end == row || text[row] == '0' ? position : end;
}

}  // namespace quorin::host::calc
