#include "kit/shapes/Rect.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <set>

#include "kit/shapes/AddressShapes.h"
#include "kit/shapes/HiddenRuns.h"

namespace quorin::BridgeShapes {

namespace {

constexpr std::int64_t lastRow = 1048576;
constexpr std::int64_t lastColumn = 16384;

bool isLetter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

// One corner; a missing half means all rows or all columns.
struct Corner {
  std::optional<std::int64_t> row;
  std::optional<std::int64_t> column;
};

std::optional<std::int64_t> rowNumber(std::string_view digits) {
  std::int64_t row = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), row);
  if (error != std::errc() || end != digits.data() + digits.size() || row < 1) return std::nullopt;
  return row;
}

std::optional<Corner> cornerOf(std::string_view part) {
  const std::string bare = stripDollars(part);
  const auto letters =
      static_cast<std::size_t>(std::find_if_not(bare.begin(), bare.end(), isLetter) - bare.begin());
  const std::string_view text = bare;
  Corner corner;
  if (letters > 0 && !(corner.column = columnIndex(text.substr(0, letters)))) return std::nullopt;
  if (letters < text.size() && !(corner.row = rowNumber(text.substr(letters)))) return std::nullopt;
  if (!corner.row && !corner.column) return std::nullopt;
  return corner;
}

// The parts between colons; empty ones do not count.
std::vector<std::string_view> partsOf(std::string_view address) {
  std::vector<std::string_view> parts;
  while (!address.empty()) {
    const std::size_t end = std::min(address.find(':'), address.size());
    if (end > 0) parts.push_back(address.substr(0, end));
    address.remove_prefix(std::min(end + 1, address.size()));
  }
  return parts;
}

}  // namespace

std::string columnLetters(std::int64_t column) {
  std::string letters;
  for (; column >= 1; column = (column - 1) / 26)
    letters.insert(letters.begin(), static_cast<char>('A' + (column - 1) % 26));
  return letters;
}

std::optional<std::int64_t> columnIndex(std::string_view letters) {
  constexpr std::int64_t safe = (std::numeric_limits<std::int64_t>::max() - 26) / 26;
  std::int64_t column = 0;
  for (const char c : letters) {
    if (!isLetter(c) || column > safe) return std::nullopt;
    column = column * 26 + ((c | 0x20) - 'a' + 1);
  }
  if (column == 0) return std::nullopt;
  return column;
}

std::optional<Rect> areaRect(std::string_view address) {
  const std::vector<std::string_view> parts = partsOf(address);
  if (parts.empty() || parts.size() > 2) return std::nullopt;
  const std::optional<Corner> from = cornerOf(parts.front());
  const std::optional<Corner> to = cornerOf(parts.back());
  if (!from || !to) return std::nullopt;
  const Rect rect{from->row.value_or(1), from->column.value_or(1), to->row.value_or(lastRow),
                  to->column.value_or(lastColumn)};
  const bool onSheet =
      rect.r1 <= rect.r2 && rect.r2 <= lastRow && rect.c1 <= rect.c2 && rect.c2 <= lastColumn;
  return onSheet ? std::optional(rect) : std::nullopt;
}

// Between two edges that follow each other the same rectangles lie side by side in every row.
std::int64_t cellsIn(const std::vector<Rect>& rects) {
  constexpr std::size_t mostCompared = 1000;
  std::int64_t cells = 0;
  if (rects.size() > mostCompared) {
    for (const Rect& rect : rects) cells += (rect.r2 - rect.r1 + 1) * (rect.c2 - rect.c1 + 1);
    return cells;
  }
  std::set<std::int64_t> edges;
  for (const Rect& rect : rects) edges.insert({rect.r1, rect.r2 + 1});
  std::int64_t top = 0;
  for (const std::int64_t bottom : edges) {
    std::vector<Run> columns;
    for (const Rect& rect : rects) {
      if (rect.r1 <= top && top <= rect.r2) columns.push_back({rect.c1, rect.c2});
    }
    cells += (bottom - top) * count(mergeRuns(columns));
    top = bottom;
  }
  return cells;
}

}  // namespace quorin::BridgeShapes
