#include "host/calc/CellWriter.h"

#include <com/sun/star/sheet/XCellRangeData.hpp>
#include <com/sun/star/sheet/XCellRangeFormula.hpp>

#include "host/calc/CalcRanges.h"
#include "host/calc/Text.h"

namespace quorin::host::calc {
namespace {

using css::uno::Any;
using css::uno::Reference;
using css::uno::Sequence;
using css::uno::UNO_QUERY_THROW;

// What data alone cannot say: truth, an error, and a text that is empty without being blank.
rtl::OUString formulaFor(const CellValue& value) {
  if (const auto* boolean = std::get_if<bool>(&value)) {
    return rtl::OUString::createFromAscii(*boolean ? "=TRUE()" : "=FALSE()");
  }
  if (const auto* error = std::get_if<CellError>(&value)) {
    return error->text == "#CALC!" ? rtl::OUString("=#ERR533!") : "=" + toUno(error->text);
  }
  const auto* text = std::get_if<std::string>(&value);
  return text != nullptr && text->empty() ? rtl::OUString("=\"\"") : rtl::OUString();
}

Any dataFor(const CellValue& value) {
  if (const auto* number = std::get_if<double>(&value)) return Any(*number);
  if (const auto* text = std::get_if<std::string>(&value)) return Any(toUno(*text));
  return Any(rtl::OUString());
}

}  // namespace

void writeValues(const Reference<css::sheet::XSpreadsheet>& sheet, const Area& area,
                 const Grid<CellValue>& values) {
  Sequence<Sequence<Any>> rows(values.rows);
  for (int row = 0; row < values.rows; ++row) {
    Sequence<Any> cells(values.columns);
    Any* cell = cells.getArray();
    for (int column = 0; column < values.columns; ++column) {
      cell[column] = dataFor(values.at(row, column));
    }
    rows.getArray()[row] = cells;
  }
  Reference<css::sheet::XCellRangeData>(cellsOf(sheet, area), UNO_QUERY_THROW)->setDataArray(rows);

  for (int column = 0; column < values.columns; ++column) {
    for (int row = 0; row < values.rows; ++row) {
      const int first = row;
      std::vector<Sequence<rtl::OUString>> run;
      for (; row < values.rows; ++row) {
        const rtl::OUString formula = formulaFor(values.at(row, column));
        if (formula.isEmpty()) break;
        run.push_back(Sequence<rtl::OUString>(&formula, 1));
      }
      if (run.empty()) continue;
      const Area place{area.firstRow + first, area.firstColumn + column, area.firstRow + row - 1,
                       area.firstColumn + column};
      Reference<css::sheet::XCellRangeFormula>(cellsOf(sheet, place), UNO_QUERY_THROW)
          ->setFormulaArray({run.data(), static_cast<sal_Int32>(run.size())});
    }
  }
}

}  // namespace quorin::host::calc
