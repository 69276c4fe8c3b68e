#include "host/calc/ScratchWorkbook.h"

#include <algorithm>
#include <com/sun/star/sheet/XArrayFormulaRange.hpp>
#include <com/sun/star/sheet/XSheetOperation.hpp>

#include "host/Address.h"
#include "host/calc/CalcCells.h"
#include "host/calc/CalcEvaluator.h"
#include "host/calc/CalcLookup.h"
#include "host/calc/CalcRanges.h"
#include "host/calc/CellWriter.h"
#include "host/calc/ExpressionScope.h"
#include "host/calc/FormulaCells.h"
#include "host/calc/Text.h"

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

  ExpressionContext context{
      .from = {name_, onlySheet}, .asked = limits.terms().asked, .sheets = {onlySheet}};
  context.elsewhere = [&](const std::string& book,
                          const std::string& sheet) -> std::optional<SheetPlace> {
    const auto found = findSheet(workbooks, book, sheet);
    return found ? std::optional(mirror_.foreignSheet(*found)) : std::nullopt;
  };
  lookElsewhere(context, workbooks);
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
  const auto calc = calcExpression(formula, context);
  if (!calc) {
    enter(own, "=#NAME?");
    return;
  }
  refuseLargeArrays(*calc);
  if (calc->reach.untold) throw SpreadsheetError(-50, untoldText);
  if (calc->reach.contents) {
    throw SpreadsheetError(-50, std::string(onlyInCopyText) + " cannot be worked out in a chain");
  }
  add(reach_, calc->reach);
  mirror_.bring(workbooks, reach_, limits);
  context.qualify = true;
  const ResultSize size = mirror_.formulaCells().sizeOf(calcExpression(formula, context).value());
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
  enter(entered, "=" + calc->text);
  if (entered != own) spills_[cell] = entered;
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
