// What stands in cells: values, formulas and displayed texts, read a rectangle at a time. Call
// thread.
#pragma once

#include <string>

#include "host/Spreadsheet.h"
#include "host/calc/CalcWorkbooks.h"

namespace quorin::host::calc {

// At most this many cells are handed over at once; more is SpreadsheetError -50.
inline constexpr long long mostCells = 4'000'000;

// All of the first area.
Grid<CellValue> readValues(Workbook& workbook, const RangeRef& range);
// `values` are those of the same cells: a constant is its own formula.
Grid<CellValue> readFormulas(const Workbook& workbook, const RangeRef& range, ReferenceStyle style,
                             const Grid<CellValue>& values);
Grid<CellValue> readLocalFormulas(Workbook& workbook, const RangeRef& range);
// The smallest rectangle with all that stands in the first area; nothing when it is blank.
std::optional<Area> filledPart(const Workbook& workbook, const RangeRef& range);

// Whether any of the cells may hold an error, which is asked for then.
enum class Errors { possible, none };
Grid<std::string> readTexts(const Workbook& workbook, const RangeRef& range,
                            Errors errors = Errors::possible);

// The values of cells whose data were read already: what data alone do not say is asked for.
Grid<CellValue> valuesFrom(const css::uno::Sequence<css::uno::Sequence<css::uno::Any>>& data,
                           Workbook& workbook, const std::string& sheet, const Area& area,
                           const css::uno::Reference<css::table::XCellRange>& cells);

}  // namespace quorin::host::calc
