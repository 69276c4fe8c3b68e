#include "kit/shapes/RevealShapes.h"

#include <algorithm>
#include <string_view>

#include "kit/shapes/ShapeError.h"
#include "kit/value/WholeNumber.h"

namespace quorin::BridgeShapes {

namespace {

using Array = JSONValue::Array;

// From first row, first column, number of rows, number of columns.
Rect rectAt(const Array& items, std::size_t start) {
  std::int64_t numbers[4] = {};
  for (std::size_t i = 0; i < 4; ++i) {
    const std::optional<std::int64_t> number = wholeNumber(items[start + i]);
    if (!number || *number <= 0) throw ShapeError("revealread rect unreadable");
    numbers[i] = *number;
  }
  Rect rect{numbers[0], numbers[1], 0, 0};
  if (__builtin_add_overflow(numbers[0], numbers[2] - 1, &rect.r2) ||
      __builtin_add_overflow(numbers[1], numbers[3] - 1, &rect.c2))
    throw ShapeError("revealread rect unreadable");
  return rect;
}

std::optional<bool> flag(const JSONValue& item) {
  return item.boolean() ? std::optional(*item.boolean()) : std::nullopt;
}

std::vector<Rect> areasOf(const JSONValue& item) {
  std::vector<Rect> areas;
  if (!item.string()) return areas;
  std::string_view rest = *item.string();
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find(','), rest.size());
    if (const auto area = areaRect(rest.substr(0, end))) areas.push_back(*area);
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return areas;
}

// One direction of the target: its rows, or its columns.
struct Span {
  std::int64_t first, last;
  std::optional<bool> hidden;
  std::vector<Run> covered;
};

std::vector<Run> hiddenIn(const Span& span, const Span& across) {
  if (span.hidden == true) return {{span.first, span.last}};
  // Of several, some may be hidden.
  if (span.hidden == false && span.first == span.last) return {};
  // Where all rows are hidden no cell is in view, which says nothing about the columns. Taking them
  // for hidden would hide the user's own columns later on.
  if (across.hidden == true && span.covered.empty() && span.first != span.last) return {};
  return gaps(span.first, span.last, span.covered);
}

}  // namespace

RevealRead revealRead(const std::string& targetSheet, const JSONValue& answer) {
  const Array* const items = answer.array();
  if (!items || (items->size() != 9 && items->size() != 12) || !(*items)[4].string())
    throw ShapeError("revealread payload has an unexpected shape");
  RevealRead read;
  read.target = rectAt(*items, 0);
  read.visible = rectAt(*items, 5);
  read.activeSheet = *(*items)[4].string();
  read.targetSheet = targetSheet;
  if (items->size() == 12) {
    read.rowsHidden = flag((*items)[9]);
    read.colsHidden = flag((*items)[10]);
    read.visibleAreas = areasOf((*items)[11]);
  }
  return read;
}

HiddenRuns rawRuns(const RevealRead& read) {
  Span rows{read.target.r1, read.target.r2, read.rowsHidden, {}};
  Span cols{read.target.c1, read.target.c2, read.colsHidden, {}};
  for (const Rect& area : read.visibleAreas) {
    rows.covered.push_back({area.r1, area.r2});
    cols.covered.push_back({area.c1, area.c2});
  }
  return {hiddenIn(rows, cols), hiddenIn(cols, rows)};
}

RevealDecision revealDecision(const RevealRead& read) {
  constexpr std::int64_t rowMargin = 3, colMargin = 2;
  const bool elsewhere = read.activeSheet != read.targetSheet;
  if (!elsewhere && read.visible.contains(read.target)) return std::nullopt;
  return RevealScroll{std::max<std::int64_t>(1, read.target.r1 - rowMargin),
                      std::max<std::int64_t>(1, read.target.c1 - colMargin), elsewhere};
}

}  // namespace quorin::BridgeShapes
