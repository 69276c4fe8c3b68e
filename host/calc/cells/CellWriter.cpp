#include "host/calc/cells/CellWriter.h"

#include <algorithm>
#include <com/sun/star/sheet/XCellRangeData.hpp>
#include <com/sun/star/sheet/XCellRangeFormula.hpp>

#include "host/calc/grammar/ReferenceText.h"
#include "host/calc/uno/Text.h"
#include "host/calc/workbook/CalcRanges.h"

namespace quorin::host::calc {
namespace {

using css::uno::Any;
using css::uno::Reference;
using css::uno::Sequence;
using css::uno::UNO_QUERY_THROW;

// What data alone cannot say: truth, an error, and a text that is empty without being blank.
rtl::OUString ownFormula(const CellValue& value) {
  if (const auto* boolean = std::get_if<bool>(&value)) {
    return rtl::OUString::createFromAscii(*boolean ? "=TRUE()" : "=FALSE()");
  }
  if (const auto* error = std::get_if<CellError>(&value)) {
    return error->text == "#CALC!" ? rtl::OUString("=#ERR533!") : "=" + toUno(error->text);
  }
  const auto* text = std::get_if<std::string>(&value);
  return text != nullptr && text->empty() ? rtl::OUString("=\"\"") : rtl::OUString();
}

// A text in pieces that Calc takes.
rtl::OUString quoted(const rtl::OUString& text) {
  constexpr sal_Int32 longest = 400;
  rtl::OUString result;
  for (sal_Int32 at = 0; at == 0 || at < text.getLength(); at += longest) {
    if (at > 0) result += "&";
    const sal_Int32 length = std::min(longest, text.getLength() - at);
    result += "\"" + text.copy(at, length).replaceAll("\"", "\"\"") + "\"";
  }
  return result;
}

// A formula of that kind which gives the value.
rtl::OUString formulaFor(const CellValue& value, CellKind kind) {
  rtl::OUString formula = ownFormula(value);
  if (kind == CellKind::constant) return formula;
  if (const auto* number = std::get_if<double>(&value)) {
    formula = "=" + toUno(numberText(*number));
  } else if (const auto* text = std::get_if<std::string>(&value)) {
    formula = "=" + quoted(toUno(*text));
  }
  if (formula.isEmpty() || kind == CellKind::formula) return formula;
  return "=IF(TRUE();" + formula.copy(1) + ";SUBTOTAL(9;0))";
}

Any dataFor(const CellValue& value) {
  if (const auto* number = std::get_if<double>(&value)) return Any(*number);
  if (const auto* text = std::get_if<std::string>(&value)) return Any(toUno(*text));
  return Any(rtl::OUString());
}

}  // namespace

void writeValues(const Reference<css::sheet::XSpreadsheet>& sheet, const Area& area,
                 const Grid<CellValue>& values, const CellKinds& kinds) {
  const auto formulaAt = [&](int row, int column) {
    const long long place = static_cast<long long>(row) * values.columns + column;
    return formulaFor(values.at(row, column),
                      kinds.empty() ? CellKind::constant : kinds[static_cast<std::size_t>(place)]);
  };
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
        const rtl::OUString formula = formulaAt(row, column);
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
