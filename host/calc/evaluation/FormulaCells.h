// FormulaCells: cells of a hidden workbook in which one expression after the other is calculated.
// They are held on to, because finding them costs as much as a calculation. Blank in between. Call
// thread.
#pragma once

#include <com/sun/star/sheet/XArrayFormulaRange.hpp>
#include <com/sun/star/sheet/XCellRangeData.hpp>
#include <com/sun/star/sheet/XSheetOperation.hpp>
#include <string>

#include "host/Spreadsheet.h"
#include "host/calc/grammar/CalcExpression.h"
#include "host/calc/workbook/CalcWorkbooks.h"
#include "host/calc/workbook/CallLimits.h"

namespace quorin::host::calc {

struct ResultSize {
  int rows = 1, columns = 1;

  bool isTooLarge() const;  // to be calculated in passing
};

class FormulaCells {
 public:
  // From that cell on. The workbook outlives them, and its sheet keeps its name.
  FormulaCells(Workbook& workbook, std::string sheet, int row, int column);

  // How many cells the expression, in Calc's grammar without "=", fills.
  ResultSize sizeOf(const CalcExpression& expression, const CallLimits& limits);
  // What it gives as an array formula. SpreadsheetError -50 when that is too many cells
  // or too much text.
  Evaluation valueOf(const CalcExpression& expression, const CallLimits& limits);

 private:
  // One array formula in some of the cells, which are blank again afterwards.
  class Formula;

  Workbook& workbook_;
  const std::string sheet_;
  const Area first_;
  const css::uno::Reference<css::table::XCellRange> cell_;
  const css::uno::Reference<css::sheet::XArrayFormulaRange> formula_;
  const css::uno::Reference<css::sheet::XCellRangeData> data_;
  const css::uno::Reference<css::sheet::XSheetOperation> contents_;
};

}  // namespace quorin::host::calc
