#include "host/Address.h"

#include <algorithm>
#include <tuple>

namespace quorin::host {
namespace {

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}
bool isLetter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

// Takes letters off the front as a column: 0 when there are none, nothing when out of range.
std::optional<int> takeColumn(std::string_view& text) {
  int column = 0;
  while (!text.empty() && isLetter(text.front())) {
    column = column * 26 + ((text.front() & 0x1F));
    if (column > maxColumn) return std::nullopt;
    text.remove_prefix(1);
  }
  return column;
}

std::optional<int> takeRow(std::string_view& text) {
  if (!text.empty() && text.front() == '0') return std::nullopt;
  int row = 0;
  while (!text.empty() && isDigit(text.front())) {
    row = row * 10 + (text.front() - '0');
    if (row > maxRow) return std::nullopt;
    text.remove_prefix(1);
  }
  return row;
}

bool takeDollar(std::string_view& text) {
  if (text.empty() || text.front() != '$') return false;
  text.remove_prefix(1);
  return true;
}

bool spansAllRows(const Area& area) {
  return area.firstRow == 1 && area.lastRow == maxRow;
}
bool spansAllColumns(const Area& area) {
  return area.firstColumn == 1 && area.lastColumn == maxColumn;
}

std::string a1Row(int row, const AddressStyle& style) {
  return (style.rows == Anchor::absolute ? "$" : "") + std::to_string(row);
}

std::string a1Column(int column, const AddressStyle& style) {
  return (style.columns == Anchor::absolute ? "$" : "") + columnLetters(column);
}

std::string r1c1Part(char letter, int index, Anchor anchor, int origin) {
  std::string text(1, letter);
  if (anchor == Anchor::absolute) return text + std::to_string(index);
  return index == origin ? text : text + "[" + std::to_string(index - origin) + "]";
}

std::string r1c1Row(int row, const AddressStyle& style) {
  return r1c1Part('R', row, style.rows, style.origin.firstRow);
}

std::string r1c1Column(int column, const AddressStyle& style) {
  return r1c1Part('C', column, style.columns, style.origin.firstColumn);
}

// In R1C1 a whole row or column is written once: "R5", "R5:R9".
std::string r1c1Area(const Area& area, const AddressStyle& style) {
  const auto pair = [](const std::string& first, const std::string& last) {
    return first == last ? first : first + ":" + last;
  };
  if (spansAllColumns(area))
    return pair(r1c1Row(area.firstRow, style), r1c1Row(area.lastRow, style));
  if (spansAllRows(area))
    return pair(r1c1Column(area.firstColumn, style), r1c1Column(area.lastColumn, style));
  return pair(r1c1Row(area.firstRow, style) + r1c1Column(area.firstColumn, style),
              r1c1Row(area.lastRow, style) + r1c1Column(area.lastColumn, style));
}

std::string a1Area(const Area& area, const AddressStyle& style) {
  if (spansAllColumns(area)) return a1Row(area.firstRow, style) + ":" + a1Row(area.lastRow, style);
  if (spansAllRows(area))
    return a1Column(area.firstColumn, style) + ":" + a1Column(area.lastColumn, style);
  std::string text = a1Column(area.firstColumn, style) + a1Row(area.firstRow, style);
  if (area.firstRow != area.lastRow || area.firstColumn != area.lastColumn)
    text += ":" + a1Column(area.lastColumn, style) + a1Row(area.lastRow, style);
  return text;
}

}  // namespace

std::optional<A1Corner> parseA1Corner(std::string_view text) {
  A1Corner corner;
  bool dollar = takeDollar(text);
  const auto column = takeColumn(text);
  if (!column) return std::nullopt;
  corner.column = *column;
  if (corner.column > 0) {
    corner.columnAbsolute = dollar;
    dollar = takeDollar(text);
  }
  const auto row = takeRow(text);
  if (!row || !text.empty()) return std::nullopt;
  corner.row = *row;
  if (corner.row > 0)
    corner.rowAbsolute = dollar;
  else if (dollar || corner.column == 0)
    return std::nullopt;
  return corner;
}

std::optional<Area> parseA1Area(std::string_view text) {
  const auto colon = text.find(':');
  const auto first = parseA1Corner(text.substr(0, colon));
  if (!first) return std::nullopt;
  const bool isPair = colon != std::string_view::npos;
  const auto last = isPair ? parseA1Corner(text.substr(colon + 1)) : first;
  if (!last) return std::nullopt;
  const bool hasRows = first->row > 0, hasColumns = first->column > 0;
  if (hasRows != (last->row > 0) || hasColumns != (last->column > 0)) return std::nullopt;
  if (!isPair && !(hasRows && hasColumns)) return std::nullopt;
  Area area{1, 1, maxRow, maxColumn};
  if (hasRows) std::tie(area.firstRow, area.lastRow) = std::minmax({first->row, last->row});
  if (hasColumns)
    std::tie(area.firstColumn, area.lastColumn) = std::minmax({first->column, last->column});
  return area;
}

std::optional<std::vector<Area>> parseA1(std::string_view text) {
  std::vector<Area> areas;
  for (;;) {
    const auto comma = text.find(',');
    const auto area = parseA1Area(trimmed(text.substr(0, comma)));
    if (!area) return std::nullopt;
    areas.push_back(*area);
    if (comma == std::string_view::npos) return areas;
    text.remove_prefix(comma + 1);
  }
}

std::string columnLetters(int column) {
  std::string letters;
  for (; column > 0; column = (column - 1) / 26)
    letters.insert(letters.begin(), static_cast<char>('A' + (column - 1) % 26));
  return letters;
}

std::string addressText(const std::vector<Area>& areas, const AddressStyle& style) {
  std::string text;
  for (const Area& area : areas) {
    if (!text.empty()) text += ',';
    text += style.notation == ReferenceStyle::a1 ? a1Area(area, style) : r1c1Area(area, style);
  }
  return text;
}

int rowCount(const Area& area) {
  return area.lastRow - area.firstRow + 1;
}
int columnCount(const Area& area) {
  return area.lastColumn - area.firstColumn + 1;
}

int& firstOn(Area& area, Axis axis) {
  return axis == Axis::rows ? area.firstRow : area.firstColumn;
}
int& lastOn(Area& area, Axis axis) {
  return axis == Axis::rows ? area.lastRow : area.lastColumn;
}
int firstOn(const Area& area, Axis axis) {
  return axis == Axis::rows ? area.firstRow : area.firstColumn;
}
int lastOn(const Area& area, Axis axis) {
  return axis == Axis::rows ? area.lastRow : area.lastColumn;
}
int countOn(const Area& area, Axis axis) {
  return lastOn(area, axis) - firstOn(area, axis) + 1;
}

Area wholeRows(Area area, Axis axis) {
  const bool rows = axis == Axis::rows;
  (rows ? area.firstColumn : area.firstRow) = 1;
  (rows ? area.lastColumn : area.lastRow) = rows ? maxColumn : maxRow;
  return area;
}

long long cellCount(const std::vector<Area>& areas) {
  long long cells = 0;
  for (const Area& area : areas)
    cells += static_cast<long long>(rowCount(area)) * columnCount(area);
  return cells;
}

std::optional<Area> intersection(const Area& a, const Area& b) {
  const Area common{std::max(a.firstRow, b.firstRow), std::max(a.firstColumn, b.firstColumn),
                    std::min(a.lastRow, b.lastRow), std::min(a.lastColumn, b.lastColumn)};
  if (common.firstRow > common.lastRow || common.firstColumn > common.lastColumn)
    return std::nullopt;
  return common;
}

bool touch(const std::vector<Area>& a, const std::vector<Area>& b) {
  return std::any_of(a.begin(), a.end(), [&](const Area& one) {
    return std::any_of(b.begin(), b.end(),
                       [&](const Area& other) { return intersection(one, other).has_value(); });
  });
}

std::vector<Area> without(const std::vector<Area>& areas, const Area& hole) {
  std::vector<Area> left;
  const auto keep = [&left](const Area& part) {
    if (part.firstRow <= part.lastRow && part.firstColumn <= part.lastColumn) left.push_back(part);
  };
  for (const Area& area : areas) {
    const auto common = intersection(area, hole);
    if (!common) {
      left.push_back(area);
      continue;
    }
    keep({area.firstRow, area.firstColumn, common->firstRow - 1, area.lastColumn});
    keep({common->firstRow, area.firstColumn, common->lastRow, common->firstColumn - 1});
    keep({common->firstRow, common->lastColumn + 1, common->lastRow, area.lastColumn});
    keep({common->lastRow + 1, area.firstColumn, area.lastRow, area.lastColumn});
  }
  return left;
}

}  // namespace quorin::host
