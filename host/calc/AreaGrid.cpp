#include "host/calc/AreaGrid.h"

#include <algorithm>

#include "host/calc/Answered.h"
#include "host/calc/CalcRanges.h"

namespace quorin::host::calc {

void refuseTooMany(const Area& area) {
  if (cellCount({area}) > mostCells) throw SpreadsheetError(-50, "The range has too many cells");
}

std::vector<Area> piecesFrom(int row, const Area& area, int most) {
  std::vector<Area> pieces;
  const int columns = std::min(columnCount(area), most);
  const int rows = columns < columnCount(area) ? 1 : most / columns;
  const int lastRow = std::min(row + rows - 1, area.lastRow);
  for (int column = area.firstColumn; column <= area.lastColumn; column += columns) {
    pieces.push_back({row, column, lastRow, std::min(column + columns - 1, area.lastColumn)});
  }
  return pieces;
}

std::vector<Area> piecesOf(const Area& area, int most) {
  std::vector<Area> pieces;
  for (int row = area.firstRow; row <= area.lastRow; row = pieces.back().lastRow + 1) {
    const std::vector<Area> beside = piecesFrom(row, area, most);
    pieces.insert(pieces.end(), beside.begin(), beside.end());
  }
  return pieces;
}

std::size_t TextRoom::take(const Grid<CellValue>& values) {
  std::size_t bytes = 0;
  for (const CellValue& value : values.cells) {
    if (const auto* text = std::get_if<std::string>(&value)) bytes += take(text->size());
  }
  return bytes;
}

std::size_t TextRoom::take(const Grid<std::string>& texts) {
  std::size_t bytes = 0;
  for (const std::string& text : texts.cells) bytes += take(text.size());
  return bytes;
}

std::vector<Area> areasWithin(const css::uno::Reference<css::sheet::XSheetCellRanges>& found,
                              const Area& area) {
  std::vector<Area> parts;
  for (const auto& address : answered(found)->getRangeAddresses()) {
    if (const auto part = intersection(areaOf(address), area)) parts.push_back(*part);
  }
  return parts;
}

void forEachCell(const css::uno::Reference<css::sheet::XSheetCellRanges>& found, const Area& area,
                 const std::function<void(int row, int column)>& visit) {
  for (const Area& part : areasWithin(found, area)) {
    for (int row = part.firstRow; row <= part.lastRow; ++row) {
      for (int column = part.firstColumn; column <= part.lastColumn; ++column) {
        visit(row - area.firstRow, column - area.firstColumn);
      }
    }
  }
}

}  // namespace quorin::host::calc
