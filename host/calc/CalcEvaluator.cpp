#include "host/calc/CalcEvaluator.h"

#include <algorithm>
#include <com/sun/star/sheet/CellFlags.hpp>
#include <com/sun/star/sheet/XCellRangesQuery.hpp>
#include <com/sun/star/sheet/XSheetCellRanges.hpp>
#include <com/sun/star/sheet/XSpreadsheets.hpp>

#include "host/Address.h"
#include "host/SheetPrefix.h"
#include "host/calc/CalcLookup.h"
#include "host/calc/CalcRanges.h"
#include "host/calc/ExpressionScope.h"
#include "host/calc/FormulaCells.h"
#include "host/calc/ReferenceText.h"
#include "host/calc/Text.h"

namespace quorin::host::calc {
namespace {

using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;

// A copy of so many filled cells takes the office less than about a second.
constexpr long long mostCellsToCopy = 1'000;

long long filledCells(const Workbook& workbook, const std::vector<std::string>& sheets) {
  constexpr sal_Int16 contents = css::sheet::CellFlags::VALUE | css::sheet::CellFlags::DATETIME |
                                 css::sheet::CellFlags::STRING | css::sheet::CellFlags::FORMULA;
  long long cells = 0;
  for (const std::string& sheet : sheets) {
    const Reference<css::sheet::XCellRangesQuery> query(sheetOf(workbook, sheet), UNO_QUERY_THROW);
    for (const auto& address : query->queryContentCells(contents)->getRangeAddresses()) {
      cells += cellCount({areaOf(address)});
    }
    if (cells > mostCellsToCopy) break;
  }
  return cells;
}

// An expression that is nothing but a range or a name of one.
std::optional<RangeRef> asReference(CalcWorkbooks& workbooks, std::string_view text,
                                    const SheetRef& from) {
  const auto trim = [&text] {
    while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  };
  trim();
  if (text.starts_with('=')) text.remove_prefix(1);
  trim();
  if (text.starts_with('(') && text.find(')') == text.size() - 1) {
    text = text.substr(1, text.size() - 2);
  }
  const auto split = splitSheetPrefix(text);
  if (!split || split->rest.empty()) return std::nullopt;
  const auto areas = parseA1(split->rest);
  const bool word = std::all_of(split->rest.begin(), split->rest.end(), isWordCharacter);
  if (!areas && !word) return std::nullopt;
  const auto sheet =
      findSheet(workbooks, split->book.value_or(from.book), split->sheet.value_or(from.sheet));
  if (!sheet) return std::nullopt;
  if (areas) return RangeRef{*sheet, *areas};
  return findNamed(*workbooks.named(sheet->book), sheet->sheet, std::string(split->rest));
}

}  // namespace

Evaluation CalcEvaluator::evaluate(CalcWorkbooks& workbooks, const std::string& expression,
                                   const SheetRef& from) {
  const std::shared_ptr<Workbook> original = workbooks.named(from.book);
  sheetOf(*original, from.sheet);
  if (const auto reference = asReference(workbooks, expression, from)) return *reference;
  ExpressionContext context = expressionScope(workbooks, from, sheetNames(*original));
  context.elsewhere = [](const std::string& book, const std::string& sheet) {
    return std::optional<SheetPlace>({{book, sheet}, calcSheet(sheet)});
  };
  const auto dryRun = calcExpression(expression, context);
  if (!dryRun) return CellValue(CellError{"#NAME?"});
  context.qualify = !dryRun->reach.anywhere;  // text counts from the formula's own sheet
  return dryRun->reach.contents ? inCopy(workbooks, expression, context)
                                : inMirror(workbooks, expression, context);
}

ValueMirror& CalcEvaluator::mirrorOf(const Workbook& workbook,
                                     const std::vector<std::string>& sheets) {
  if (!mirror_ || !mirror_->isOf(workbook, sheets)) {
    mirror_.reset();
    mirror_ = std::make_unique<ValueMirror>(context_, workbook, sheets);
  }
  return *mirror_;
}

Evaluation CalcEvaluator::inMirror(CalcWorkbooks& workbooks, const std::string& expression,
                                   ExpressionContext& context) {
  const std::shared_ptr<Workbook> original = workbooks.named(context.from.book);
  ValueMirror& mirror = mirrorOf(*original, context.sheets);
  context.elsewhere = [&](const std::string& book,
                          const std::string& sheet) -> std::optional<SheetPlace> {
    const auto found = findSheet(workbooks, book, sheet);
    return found ? std::optional(mirror.foreignSheet(*found)) : std::nullopt;
  };
  const CalcExpression calc = calcExpression(expression, context).value();
  mirror.bring(workbooks, calc.reach);
  if (!calc.reach.anywhere) {
    return calculate(mirror.workbook(), mirror.formulaSheet(), 1, 1, calc.text);
  }
  mirror.bringNames(*original);
  const auto [row, column] = mirror.freePlace();
  return calculate(mirror.workbook(), context.from.sheet, row, column, calc.text);
}

// Only for what values do not tell. The office does nothing else while the copy is made.
Evaluation CalcEvaluator::inCopy(CalcWorkbooks& workbooks, const std::string& expression,
                                 ExpressionContext& context) {
  const std::shared_ptr<Workbook> original = workbooks.named(context.from.book);
  if (filledCells(*original, context.sheets) > mostCellsToCopy) {
    throw SpreadsheetError(
        -50,
        "What CELL, FORMULATEXT and the like tell cannot be worked out in a workbook of more than "
        "1000 filled cells");
  }
  HiddenWorkbook copy(context_, *original);
  context.elsewhere = [&](const std::string& book,
                          const std::string& sheet) -> std::optional<SheetPlace> {
    const auto found = findSheet(workbooks, book, sheet);
    if (!found || workbooks.named(book)->url.empty()) return std::nullopt;
    return SheetPlace{*found, "'" + workbooks.named(book)->url + "'#" + calcSheet(found->sheet)};
  };
  const std::string formulaSheet = "quorin";
  Reference<css::sheet::XSpreadsheets>(copy.workbook().sheets, UNO_QUERY_THROW)
      ->insertNewByName(toUno(formulaSheet), std::numeric_limits<sal_Int16>::max());
  return calculate(copy.workbook(), formulaSheet, 1, 1,
                   calcExpression(expression, context).value().text);
}

}  // namespace quorin::host::calc
