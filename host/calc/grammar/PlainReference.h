// PlainReference: references that Calc's grammar and Excel's write alike, $AB$12 or A1:B2, as most
// are. Pure functions over text; each gives the position itself where it finds nothing.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace quorin::host::calc {

// True if the operand ends at `position`: an operator stands there, or the text ends.
inline bool endsOperand(std::string_view text, std::size_t position) {
  static constexpr auto operators = [] {
    std::array<bool, 256> are{};
    for (const char each : std::string_view(");+-*/^&=<>%|}~! "))
      are[static_cast<unsigned char>(each)] = true;
    return are;
  }();
  return position == text.size() || operators[static_cast<unsigned char>(text[position])];
}

// Behind a cell that is on no sheet's last row or column: $AB$12.
std::size_t behindPlainCell(std::string_view text, std::size_t position);

// Behind one such cell or a range of them, where the operand is over. Inline, because a formula is
// hardly more than its references.
inline std::size_t behindPlainReference(std::string_view text, std::size_t position) {
  std::size_t end = behindPlainCell(text, position);
  if (end == position) return position;
  if (end < text.size() && text[end] == ':') {
    const std::size_t second = end + 1;
    end = behindPlainCell(text, second);
    if (end == second) return position;
  }
  return endsOperand(text, end) ? end : position;
}

}  // namespace quorin::host::calc
