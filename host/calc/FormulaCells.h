// Cells of a hidden workbook in which one expression is calculated. Call thread.
#pragma once

#include <string>

#include "host/Spreadsheet.h"
#include "host/calc/CalcWorkbooks.h"

namespace quorin::host::calc {

struct ResultSize {
  int rows = 1, columns = 1;
};

// How many cells the expression fills, worked out in that cell. SpreadsheetError -50 when they are
// too many.
ResultSize resultSize(Workbook& workbook, const std::string& sheet, int row, int column,
                      const std::string& expression);

// What the expression, in Calc's grammar without "=", gives as an array formula whose first cell
// is that one. Its cells are blank again afterwards. SpreadsheetError -50 when they are too many.
Evaluation calculate(Workbook& workbook, const std::string& sheet, int row, int column,
                     const std::string& expression);

}  // namespace quorin::host::calc
