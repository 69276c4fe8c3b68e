// CellLooks: what CELL tells of how a cell of the user's looks: of its number format, alignment,
// protection and column. One cell of a workbook of ours is given the same, and Calc's own CELL
// asked about that. Call thread.
#pragma once

#include <optional>
#include <string>

#include "host/Spreadsheet.h"
#include "host/calc/evaluation/FormulaCells.h"
#include "host/calc/workbook/CalcWorkbooks.h"

namespace quorin::host::calc {

// The workbook's styles of cells, by their names.
css::uno::Reference<css::container::XNameAccess> cellStylesOf(
    const css::uno::Reference<css::sheet::XSpreadsheetDocument>& document);

// `sheet` is one of ours, with the cells for formulas and nothing else. Nothing where the look
// cannot be had here.
std::optional<CellValue> cellLooks(FormulaCells& formulas, Workbook& ours, const std::string& sheet,
                                   Workbook& theirs, const RangeRef& cell, const std::string& kind);

}  // namespace quorin::host::calc
