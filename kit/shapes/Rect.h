// BridgeShapes for rectangles of cells. Pure functions for any thread. Indices are Excel's, from 1
// on; both ends are inside.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorin::BridgeShapes {

struct Rect {
  std::int64_t r1 = 0;
  std::int64_t c1 = 0;
  std::int64_t r2 = 0;
  std::int64_t c2 = 0;

  bool contains(const Rect& other) const {
    return r1 <= other.r1 && c1 <= other.c1 && other.r2 <= r2 && other.c2 <= c2;
  }
  bool operator==(const Rect&) const = default;
};

// The name of a column: 1 is "A", 16384 "XFD". "" below 1.
std::string columnLetters(std::int64_t column);

// The column of that name in either case; none for any other text.
std::optional<std::int64_t> columnIndex(std::string_view letters);

// The rectangle of one area: "$B$2:$D$9", "B2", "C:E" (all rows), "3:5" (all columns). None for
// any other text and for places beyond the sheet.
std::optional<Rect> areaRect(std::string_view address);

// How many cells the rectangles have between them, each counted once. More than 1,000 rectangles
// are added up as they are.
std::int64_t cellsIn(const std::vector<Rect>& rects);

}  // namespace quorin::BridgeShapes
