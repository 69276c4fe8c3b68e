// AreaGrid: grids of what the cells of one area hold, and the cells in them that a query found.
// Call thread.
#pragma once

#include <com/sun/star/sheet/XSheetCellRanges.hpp>
#include <functional>

#include "host/Address.h"
#include "host/Spreadsheet.h"

namespace quorin::host::calc {

// At most this many cells are handed over at once; more is SpreadsheetError -50.
inline constexpr long long mostCells = 4'000'000;
void refuseTooMany(const Area& area);

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

// Calls `visit` with the 0-based position of every cell of `found` that lies in the area.
void forEachCell(const css::uno::Reference<css::sheet::XSheetCellRanges>& found, const Area& area,
                 const std::function<void(int row, int column)>& visit);

}  // namespace quorin::host::calc
