#include "host/calc/FormulaCells.h"

#include <algorithm>
#include <com/sun/star/sheet/XArrayFormulaRange.hpp>
#include <com/sun/star/sheet/XSheetOperation.hpp>

#include "host/calc/CalcCells.h"
#include "host/calc/CalcRanges.h"
#include "host/calc/Text.h"

namespace quorin::host::calc {
namespace {

using css::table::XCellRange;
using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;

constexpr int mostResultCells = 200'000;

// Cells that hold one array formula, and are blank again afterwards.
class FormulaCells {
 public:
  FormulaCells(const Reference<css::sheet::XSpreadsheet>& sheet, const Area& area)
      : area_(area), cells_(cellsOf(sheet, area)) {}
  ~FormulaCells() {
    try {  // formats too: a boolean result leaves one behind
      constexpr sal_Int32 everything = 1023;
      Reference<css::sheet::XSheetOperation>(cells_, UNO_QUERY_THROW)->clearContents(everything);
    } catch (const css::uno::Exception&) {
      // The workbook is gone, and with it what stood there.
    }
  }
  FormulaCells(const FormulaCells&) = delete;
  FormulaCells& operator=(const FormulaCells&) = delete;

  Grid<CellValue> values(Workbook& workbook, const std::string& formula) const {
    Reference<css::sheet::XArrayFormulaRange>(cells_, UNO_QUERY_THROW)
        ->setArrayFormula(toUno(formula));
    return readValues(workbook, cells_, area_);
  }

 private:
  const Area area_;
  const Reference<XCellRange> cells_;
};

constexpr int columnsLimit = 65536;

// From rows * columnsLimit + columns; one cell where the expression is no array.
ResultSize sizeFrom(const Grid<CellValue>& result) {
  const auto* number = std::get_if<double>(&result.cells.front());
  if (number == nullptr || *number < columnsLimit) return {};
  const auto both = static_cast<long long>(*number);
  return {static_cast<int>(both / columnsLimit),
          std::max(1, static_cast<int>(both % columnsLimit))};
}

}  // namespace

ResultSize resultSize(Workbook& workbook, const std::string& sheet, int row, int column,
                      const std::string& expression) {
  const ResultSize size =
      sizeFrom(FormulaCells(sheetOf(workbook, sheet), {row, column, row, column})
                   .values(workbook, "=ROWS(" + expression + ")*" + std::to_string(columnsLimit) +
                                         "+COLUMNS(" + expression + ")"));
  if (static_cast<long long>(size.rows) * size.columns > mostResultCells) {
    throw SpreadsheetError(-50, "The result has too many cells");
  }
  return size;
}

Evaluation calculate(Workbook& workbook, const std::string& sheet, int row, int column,
                     const std::string& expression) {
  const ResultSize size = resultSize(workbook, sheet, row, column, expression);
  const Area area{row, column, row + size.rows - 1, column + size.columns - 1};
  Grid<CellValue> result =
      FormulaCells(sheetOf(workbook, sheet), area).values(workbook, "=" + expression);
  if (result.cells.size() == 1) return std::move(result.cells.front());
  return result;
}

}  // namespace quorin::host::calc
