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

struct Size {
  int rows = 1, columns = 1;
};

constexpr int columnsLimit = 65536;

// From rows * columnsLimit + columns; one cell where the expression is no array.
Size sizeFrom(const Grid<CellValue>& result) {
  const auto* number = std::get_if<double>(&result.cells.front());
  if (number == nullptr || *number < columnsLimit) return {};
  const auto both = static_cast<long long>(*number);
  return {static_cast<int>(both / columnsLimit),
          std::max(1, static_cast<int>(both % columnsLimit))};
}

}  // namespace

Evaluation calculate(Workbook& workbook, const std::string& sheetName, int row, int column,
                     const std::string& expression) {
  const Reference<css::sheet::XSpreadsheet> sheet = sheetOf(workbook, sheetName);
  const auto in = [&](const Area& area, const std::string& formula) {
    return FormulaCells(sheet, area).values(workbook, formula);
  };
  const Area one{row, column, row, column};
  const Size size = sizeFrom(in(one, "=ROWS(" + expression + ")*" + std::to_string(columnsLimit) +
                                         "+COLUMNS(" + expression + ")"));
  if (size.rows == 1 && size.columns == 1) return in(one, "=" + expression).cells.front();
  if (static_cast<long long>(size.rows) * size.columns > mostResultCells) {
    throw SpreadsheetError(-50, "The result has too many cells");
  }
  return in({row, column, row + size.rows - 1, column + size.columns - 1}, "=" + expression);
}

}  // namespace quorin::host::calc
