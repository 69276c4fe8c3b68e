#include "host/calc/cells/AreaGrid.h"

#include <algorithm>

#include "host/calc/uno/Answered.h"
#include "host/calc/workbook/CalcRanges.h"
#include "kit/value/EventErrors.h"

namespace quorin::host::calc {

void refuseTooMany(const Area& area) {
  if (cellCount({area}) > mostCells)
    throw SpreadsheetError(eventErrors::badParameter, "The range has too many cells");
}

std::optional<Area> nextPiece(const Area& area, const std::optional<Area>& last, int most) {
  int row = area.firstRow, column = area.firstColumn;
  if (last && last->lastColumn < area.lastColumn) {
    row = last->firstRow;
    column = last->lastColumn + 1;
  } else if (last) {
    row = last->lastRow + 1;
  }
  if (row > area.lastRow) return std::nullopt;
  const int columns = std::min(area.lastColumn - column + 1, most);
  const int rows = columns == columnCount(area) ? most / columns : 1;
  return Area{row, column, std::min(row + rows - 1, area.lastRow), column + columns - 1};
}

std::vector<Area> piecesOf(const Area& area, int most) {
  std::vector<Area> pieces;
  std::optional<Area> piece;
  while ((piece = nextPiece(area, piece, most))) pieces.push_back(*piece);
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
