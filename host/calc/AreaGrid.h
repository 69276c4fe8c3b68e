// AreaGrid: grids of what the cells of one area hold, and the cells in them that a query found.
// Call thread.
#pragma once

#include <com/sun/star/sheet/XSheetCellRanges.hpp>
#include <functional>

#include "host/Address.h"
#include "host/Spreadsheet.h"
#include "host/calc/CallLimits.h"

namespace quorin::host::calc {

// At most this many cells are handed over at once; more is SpreadsheetError -50.
inline constexpr long long mostCells = 4'000'000;
void refuseTooMany(const Area& area);

// At most as many are read at once, so that the work can end between pieces and no more is held
// than one may hold, 130 MB of text.
inline constexpr int cellsOfPiece = 2'000;

// The area in pieces of at most so many cells. They follow each other as the cells do, or lie side
// by side in one row.
std::vector<Area> piecesOf(const Area& area, int most = cellsOfPiece);

// How many bytes of text one reading may bring: SpreadsheetError -50 for more. A file of a few
// kilobytes can hold gigabytes of it.
class TextRoom {
 public:
  void take(std::size_t bytes) {
    constexpr std::size_t most = 32'000'000;
    taken_ += bytes;
    if (taken_ > most) throw SpreadsheetError(-50, "The cells hold too much text");
  }
  void take(const Grid<CellValue>& values);
  void take(const Grid<std::string>& texts);

 private:
  std::size_t taken_ = 0;
};

template <typename T>
Grid<T> gridFor(const Area& area) {
  refuseTooMany(area);
  Grid<T> grid;
  grid.rows = rowCount(area);
  grid.columns = columnCount(area);
  grid.cells.resize(static_cast<std::size_t>(grid.rows) * static_cast<std::size_t>(grid.columns));
  return grid;
}

template <typename T>
T& cellAt(Grid<T>& grid, int row, int column) {  // 0-based
  return grid.cells[static_cast<std::size_t>(row) * static_cast<std::size_t>(grid.columns) +
                    static_cast<std::size_t>(column)];
}

// Puts what was read of a part of the area in its place.
template <typename T>
void place(Grid<T> part, const Area& at, Grid<T>& whole, const Area& area) {
  for (int row = 0; row < part.rows; ++row) {
    for (int column = 0; column < part.columns; ++column) {
      cellAt(whole, at.firstRow - area.firstRow + row, at.firstColumn - area.firstColumn + column) =
          std::move(cellAt(part, row, column));
    }
  }
}

// What `read` gives for each piece of the area, put together. SpreadsheetError for too many cells,
// too much text, or when the limits are reached.
template <typename T, typename Read>
Grid<T> readInPieces(const Area& area, const CallLimits& limits, Read read) {
  Grid<T> grid = gridFor<T>(area);
  TextRoom room;
  for (const Area& piece : piecesOf(area)) {
    limits.check();
    Grid<T> part = read(piece);
    room.take(part);
    place(std::move(part), piece, grid, area);
  }
  return grid;
}

// Calls `visit` with the 0-based position of every cell of `found` that lies in the area.
void forEachCell(const css::uno::Reference<css::sheet::XSheetCellRanges>& found, const Area& area,
                 const std::function<void(int row, int column)>& visit);

}  // namespace quorin::host::calc
