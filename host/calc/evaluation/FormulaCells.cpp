#include "host/calc/evaluation/FormulaCells.h"

#include <algorithm>
#include <utility>

#include "host/calc/cells/CalcCells.h"
#include "host/calc/uno/Text.h"
#include "host/calc/workbook/CalcRanges.h"
#include "kit/value/EventErrors.h"

namespace quorin::host::calc {
namespace {

using css::table::XCellRange;
using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;

constexpr int mostResultCells = 200'000;
constexpr int columnsLimit = 65536;

// From rows * columnsLimit + columns; one cell where the expression is no array.
ResultSize sizeFrom(double number) {
  if (number < columnsLimit) return {};
  const auto both = static_cast<long long>(number);
  return {static_cast<int>(both / columnsLimit),
          std::max(1, static_cast<int>(both % columnsLimit))};
}

}  // namespace

bool ResultSize::isTooLarge() const {
  return static_cast<long long>(rows) * columns > mostResultCells;
}

class FormulaCells::Formula {
 public:
  Formula(const Reference<css::sheet::XArrayFormulaRange>& cells,
          Reference<css::sheet::XSheetOperation> contents, const std::string& text)
      : contents_(std::move(contents)) {
    try {
      cells->setArrayFormula(toUno(text));
    } catch (...) {
      clear();
      throw;
    }
  }
  ~Formula() { clear(); }
  Formula(const Formula&) = delete;
  Formula& operator=(const Formula&) = delete;

 private:
  void clear() {
    try {  // formats too: a boolean result leaves one behind
      constexpr sal_Int32 everything = 1023;
      contents_->clearContents(everything);
    } catch (const css::uno::Exception&) {
      // The workbook is gone, and with it what stood there.
    }
  }

  const Reference<css::sheet::XSheetOperation> contents_;
};

FormulaCells::FormulaCells(Workbook& workbook, std::string sheet, int row, int column)
    : workbook_(workbook),
      sheet_(std::move(sheet)),
      first_{row, column, row, column},
      cell_(cellsOf(workbook, sheet_, first_)),
      formula_(cell_, UNO_QUERY_THROW),
      data_(cell_, UNO_QUERY_THROW),
      contents_(cell_, UNO_QUERY_THROW) {}

ResultSize FormulaCells::sizeOf(const CalcExpression& expression, const CallLimits& limits) {
  if (expression.single) return {};
  const std::string& text = expression.text;
  const auto told = [&](const std::string& asked) {
    const Formula asking(formula_, contents_, "=" + asked);
    double number = 0;
    data_->getDataArray()[0][0] >>= number;
    return number;
  };
  const std::string rows = "ROWS(" + text + ")*" + std::to_string(columnsLimit);
  // Each of the two works the expression out, and Calc does nothing else meanwhile.
  constexpr double longWork = 1e6;
  if (expression.work.values < longWork) return sizeFrom(told(rows + "+COLUMNS(" + text + ")"));
  const double height = told(rows);
  if (sizeFrom(height).isTooLarge()) return sizeFrom(height);
  limits.check();
  return sizeFrom(height + told("COLUMNS(" + text + ")"));
}

Evaluation FormulaCells::valueOf(const CalcExpression& expression, const CallLimits& limits) {
  const ResultSize size = sizeOf(expression, limits);
  limits.check();
  if (size.isTooLarge())
    throw SpreadsheetError(eventErrors::badParameter, "The result has too many cells");
  const std::string text = "=" + expression.text;
  if (size.rows == 1 && size.columns == 1) {
    const Formula formula(formula_, contents_, text);
    auto one = valuesFrom(data_->getDataArray(), workbook_, sheet_, first_, cell_, limits);
    return std::move(one.cells.front());
  }
  const Area area{first_.firstRow, first_.firstColumn, first_.firstRow + size.rows - 1,
                  first_.firstColumn + size.columns - 1};
  const Reference<XCellRange> cells = cellsOf(workbook_, sheet_, area);
  const Formula formula({cells, UNO_QUERY_THROW}, {cells, UNO_QUERY_THROW}, text);
  return readValues(workbook_, {{{}, sheet_}, {area}}, limits);
}

}  // namespace quorin::host::calc
