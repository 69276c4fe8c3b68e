#include "host/calc/evaluation/ScratchWorkbook.h"

#include <algorithm>
#include <com/sun/star/sheet/XArrayFormulaRange.hpp>
#include <com/sun/star/sheet/XSheetOperation.hpp>

#include "host/Address.h"
#include "host/calc/cells/CalcCells.h"
#include "host/calc/cells/CalcLookup.h"
#include "host/calc/cells/CellWriter.h"
#include "host/calc/evaluation/CalcEvaluator.h"
#include "host/calc/evaluation/ExpressionScope.h"
#include "host/calc/evaluation/FormulaCells.h"
#include "host/calc/uno/Text.h"
#include "host/calc/workbook/CalcRanges.h"
#include "kit/value/EventErrors.h"

namespace quorin::host::calc {
namespace {

using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;

// Calc knows no #SPILL!.
constexpr const char* noRoom = "=#VALUE!";

void add(Reach& all, const Reach& more) {
  all.cells.insert(all.cells.end(), more.cells.begin(), more.cells.end());
  all.shifts = all.shifts || more.shifts;
  all.spans = all.spans || more.spans;
  all.traits = all.traits || more.traits;
}

}  // namespace

ScratchWorkbook::ScratchWorkbook(const Reference<css::uno::XComponentContext>& context,
                                 std::string name, const Workbook* like)
    : name_(std::move(name)), mirror_(context, name_, {onlySheet}, like) {
  workbook().name = name_;
}

void ScratchWorkbook::setFormula(CalcWorkbooks& workbooks, const RangeRef& range,
                                 const std::string& formula, const CallLimits& limits) {
  limits.check();
  sheetOf(workbook(), range.sheet.sheet);
  const Area& given = firstArea(range);
  const Cell cell{given.firstRow, given.firstColumn};
  const Area own{cell.first, cell.second, cell.first, cell.second};
  for (auto spill = spills_.begin(); spill != spills_.end();) {
    if (!intersection(spill->second, own)) {
      ++spill;
      continue;
    }
    const auto [row, column] = spill->first;
    clear(spill->second);
    if (spill->first != cell) enter({row, column, row, column}, noRoom);
    spill = spills_.erase(spill);
  }
  clear(own);
  written_[cell] = formula;
  if (!formula.starts_with('=')) {
    writeValues(sheetOf(workbook(), onlySheet), own, {1, 1, {formula}});
    return;
  }

  questions_ = 0;
  ExpressionContext context = scope(workbooks, limits);
  const auto written = calcExpression(formula, context);
  if (!written) {
    enter(own, "=#NAME?");
    return;
  }
  const CalcExpression calc = possible(*written);
  add(reach_, calc.reach);
  mirror_.bring(workbooks, reach_, limits);
  mirror_.refuseLongSearches(calc.work, longestText(calc, limits));
  context.qualify = true;
  const ResultSize size =
      mirror_.formulaCells().sizeOf(calcExpression(formula, context).value(), limits);
  const Area target{cell.first, cell.second, cell.first + size.rows - 1,
                    cell.second + size.columns - 1};
  if (target.lastRow > maxRow || target.lastColumn > maxColumn || !isBlank(target)) {
    enter(own, noRoom);
    return;
  }
  Area entered = target;
  if (size.isTooLarge()) {  // no more than shows that it spills
    entered.lastRow = std::min(target.lastRow, target.firstRow + 1);
    entered.lastColumn = std::min(target.lastColumn, target.firstColumn + 1);
  }
  enter(entered, "=" + calc.text);
  if (entered != own) spills_[cell] = entered;
}

// Refuses what would take too long, or what a chain does not come to.
CalcExpression ScratchWorkbook::possible(CalcExpression calc) const {
  refuseLargeArrays(calc.work);
  if (calc.reach.untold) throw SpreadsheetError(eventErrors::badParameter, untoldText);
  if (calc.reach.contents) {
    throw SpreadsheetError(eventErrors::badParameter,
                           std::string(onlyInCopyText) + " cannot be worked out in a chain");
  }
  return calc;
}

ExpressionContext ScratchWorkbook::scope(CalcWorkbooks& workbooks, const CallLimits& limits) {
  ExpressionContext context{
      .from = {name_, onlySheet}, .asked = limits.terms().asked, .sheets = {onlySheet}};
  context.knows = [this](const std::string& function) {
    return functions_.has(workbook(), function);
  };
  context.valueOf = [&](const std::string& argument) {
    return valueOf(workbooks, argument, limits);
  };
  context.elsewhere = [&](const std::string& book,
                          const std::string& sheet) -> std::optional<SheetPlace> {
    const auto found = findSheet(workbooks, book, sheet);
    return found ? std::optional(mirror_.foreignSheet(*found)) : std::nullopt;
  };
  lookElsewhere(context, workbooks, limits);
  context.formulas = [&](const RangeRef& cells) {
    return cells.sheet.book == name_ ? std::optional(formulas(cells, limits))
                                     : formulasOf(workbooks, cells, limits);
  };
  context.fileName = [&](const SheetRef& sheet) {
    return sheet.book == name_ ? std::string() : fileNameOf(workbooks, sheet);
  };
  context.looks = [&](const std::string& kind, const RangeRef& asked) {
    const std::string& book = asked.sheet.book;
    return mirror_.looks(book == name_ ? workbook() : *workbooks.named(book), kind, asked);
  };
  return context;
}

// Of the size of an array that the present formula makes; it may lead to further questions.
std::optional<CellValue> ScratchWorkbook::valueOf(CalcWorkbooks& workbooks,
                                                  const std::string& argument,
                                                  const CallLimits& limits) {
  constexpr int most = 50;
  limits.check();
  if (++questions_ > most)
    throw SpreadsheetError(eventErrors::badParameter, "The expression leads to too many others");
  ExpressionContext context = scope(workbooks, limits);
  context.qualify = true;
  const auto written = calcExpression(argument, context);
  if (!written) return CellValue(CellError{"#NAME?"});
  const CalcExpression calc = possible(*written);
  Reach all = reach_;
  add(all, calc.reach);
  mirror_.bring(workbooks, all, limits);
  mirror_.refuseLongSearches(calc.work, longestText(calc, limits));
  const Evaluation value = mirror_.formulaCells().valueOf(calc, limits);
  const auto* one = std::get_if<CellValue>(&value);
  return one != nullptr ? std::optional(*one) : std::nullopt;
}

// Of the cells of its own that the expression looks at.
double ScratchWorkbook::longestText(const CalcExpression& calc, const CallLimits& limits) {
  constexpr long long mostRead = 1000;
  double longest = 0;
  if (!calc.work.isOfTexts()) return longest;
  for (const RangeRef& range : calc.reach.cells) {
    if (range.sheet.book != name_) continue;
    if (cellCount(range.areas) > mostRead) return longestOfCell;
    for (const CellValue& value : readValues(workbook(), range, limits).cells) {
      const auto* text = std::get_if<std::string>(&value);
      if (text != nullptr) longest = std::max(longest, static_cast<double>(text->size()));
    }
  }
  return longest;
}

void ScratchWorkbook::enter(const Area& area, const std::string& formula) {
  Reference<css::sheet::XArrayFormulaRange>(cellsOf(workbook(), onlySheet, area), UNO_QUERY_THROW)
      ->setArrayFormula(toUno(formula));
}

void ScratchWorkbook::clear(const Area& area) {
  constexpr sal_Int32 everything = 1023;
  Reference<css::sheet::XSheetOperation>(cellsOf(workbook(), onlySheet, area), UNO_QUERY_THROW)
      ->clearContents(everything);
}

bool ScratchWorkbook::isBlank(const Area& area) {
  return !findFilledPart(cellsOf(workbook(), onlySheet, area), area);
}

Grid<CellValue> ScratchWorkbook::formulas(const RangeRef& range, const CallLimits& limits) {
  Grid<CellValue> grid = readValues(workbook(), range, limits);
  const Area& area = firstArea(range);
  for (const auto& [cell, text] : written_) {
    const auto [row, column] = cell;
    if (!intersection(area, {row, column, row, column})) continue;
    const int place = (row - area.firstRow) * grid.columns + column - area.firstColumn;
    grid.cells[static_cast<std::size_t>(place)] = text;
  }
  return grid;
}

}  // namespace quorin::host::calc
