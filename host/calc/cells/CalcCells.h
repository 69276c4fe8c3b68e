// CalcCells: what stands in cells, values and formulas, read a rectangle at a time. Call thread.
#pragma once

#include <string>

#include "host/Spreadsheet.h"
#include "host/calc/workbook/CalcWorkbooks.h"
#include "host/calc/workbook/CallLimits.h"

namespace quorin::host::calc {

// All of these: SpreadsheetError -1712 when the limits are reached, -50 for more cells or more text
// than can be handed over at once.

// All of the first area.
Grid<CellValue> readValues(Workbook& workbook, const RangeRef& range, const CallLimits& limits);
// Both in one reading. A constant is its own formula.
struct CellContents {
  Grid<CellValue> values, formulas;
};
CellContents readContents(Workbook& workbook, const RangeRef& range, ReferenceStyle style,
                          const CallLimits& limits);
Grid<CellValue> readLocalFormulas(Workbook& workbook, const RangeRef& range,
                                  const CallLimits& limits);

// The values of cells whose data were read already: what data alone do not say is asked for.
Grid<CellValue> valuesFrom(const css::uno::Sequence<css::uno::Sequence<css::uno::Any>>& data,
                           Workbook& workbook, const std::string& sheet, const Area& area,
                           const css::uno::Reference<css::table::XCellRange>& cells,
                           const CallLimits& limits);

}  // namespace quorin::host::calc
