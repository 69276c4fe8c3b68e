// AreaGrid: grids of what the cells of one area hold, and the cells in them that a query found.
// Call thread.
#pragma once

#include <com/sun/star/sheet/XSheetCellRanges.hpp>
#include <functional>
#include <optional>
#include <vector>

#include "host/Address.h"
#include "host/Spreadsheet.h"
#include "host/calc/workbook/CallLimits.h"
#include "kit/value/EventErrors.h"

namespace quorin::host::calc {

// At most this many cells are handed over at once; more is SpreadsheetError -50.
inline constexpr long long mostCells = 4'000'000;
void refuseTooMany(const Area& area);

// So many are read at once, so that the work can end between pieces.
inline constexpr int cellsOfPiece = 2'500;

// So many where their texts are long, or where nothing is known of how long they are.
inline constexpr int cellsOfFirstPiece = 200;

// How many cells are read at once.
struct PieceSizes {
  int next = cellsOfFirstPiece;  // as far as is known of those that were read before
  int most = cellsOfPiece;
};

// The displayed texts of at most so many cells are asked for by one request.
inline constexpr int mostCellsWithTexts = 5'000;

// The piece of at most so many cells that follows `last`, or the first one: whole rows, or a part
// of one row where it is longer. Nothing behind the last piece.
std::optional<Area> nextPiece(const Area& area, const std::optional<Area>& last, int most);

// All of them.
std::vector<Area> piecesOf(const Area& area, int most = cellsOfPiece);

// Calls `work` with one piece of the area after the other, as they follow each other above. It
// gives the bytes of text that the piece brought: where cells hold long texts, of which 2,500 may
// be 160 MB, few are read at once. SpreadsheetError -1712 between two of them when the limits are
// reached.
template <typename Work>
void inPieces(const Area& area, const CallLimits& limits, PieceSizes& sizes, Work work) {
  constexpr long long longText = 1'000;  // bytes for each cell
  std::optional<Area> piece;
  while ((piece = nextPiece(area, piece, sizes.next))) {
    limits.check();
    const auto bytes = static_cast<long long>(work(*piece));
    sizes.next = bytes > longText * cellCount({*piece}) ? cellsOfFirstPiece : sizes.most;
  }
}

// How many bytes of text one reading may bring: SpreadsheetError -50 for more. A file of a few
// kilobytes can hold gigabytes of it.
class TextRoom {
 public:
  // Each gives how many bytes these are.
  std::size_t take(std::size_t bytes) {
    constexpr std::size_t most = 12'000'000;
    taken_ += bytes;
    if (taken_ > most)
      throw SpreadsheetError(eventErrors::badParameter, "The cells hold too much text");
    return bytes;
  }
  std::size_t take(const Grid<CellValue>& values);
  std::size_t take(const Grid<std::string>& texts);

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

// What a grid of one area holds of a part of that area.
template <typename T>
Grid<T> partOf(const Grid<T>& whole, const Area& area, const Area& part) {
  Grid<T> grid{rowCount(part), columnCount(part), {}};
  grid.cells.reserve(static_cast<std::size_t>(cellCount({part})));
  for (int row = part.firstRow; row <= part.lastRow; ++row) {
    for (int column = part.firstColumn; column <= part.lastColumn; ++column) {
      grid.cells.push_back(whole.at(row - area.firstRow, column - area.firstColumn));
    }
  }
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
Grid<T> readInPieces(const Area& area, const CallLimits& limits, PieceSizes& sizes, Read read) {
  refuseTooMany(area);
  Grid<T> grid;
  TextRoom room;
  inPieces(area, limits, sizes, [&](const Area& piece) {
    Grid<T> part = read(piece);
    const std::size_t bytes = room.take(part);
    if (piece == area) {
      grid = std::move(part);
    } else {
      if (grid.cells.empty()) grid = gridFor<T>(area);
      place(std::move(part), piece, grid, area);
    }
    return bytes;
  });
  return grid;
}

// What of the area a query on it found. Asked of columns behind the last in which anything has ever
// stood, Calc tells cells of that one, which belong to no answer.
std::vector<Area> areasWithin(const css::uno::Reference<css::sheet::XSheetCellRanges>& found,
                              const Area& area);

// Calls `visit` with the 0-based position of every cell of `found` that lies in the area.
void forEachCell(const css::uno::Reference<css::sheet::XSheetCellRanges>& found, const Area& area,
                 const std::function<void(int row, int column)>& visit);

}  // namespace quorin::host::calc
