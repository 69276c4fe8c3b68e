// The pieces of a reference in Excel's grammar: the sheets before "!", a range. Pure functions over
// text; positions are bytes and move behind what was read, or stay when nothing was.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/calc/grammar/ReferenceText.h"

namespace quorin::host::calc {

// "Sheet!", "First:Last!", "[Book]Sheet!" and the same in quotes, with whatever folder stands
// before the book left out. Each part but one is empty where the text has none.
struct SheetSpan {
  std::string book, first, last;
  bool operator==(const SheetSpan&) const = default;
};
std::optional<SheetSpan> readSheetSpan(std::string_view text, std::size_t& position);

// "A1", "$A$1:B2", "A:C", "2:5". A lone column or row is no range, and neither is the beginning of
// a function's name (LOG10) or of a spill reference (A1#).
std::optional<RangeText> readRange(std::string_view text, std::size_t& position);

}  // namespace quorin::host::calc
