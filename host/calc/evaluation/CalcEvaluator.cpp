#include "host/calc/evaluation/CalcEvaluator.h"

#include <algorithm>
#include <com/sun/star/sheet/CellFlags.hpp>
#include <com/sun/star/sheet/XCellRangesQuery.hpp>
#include <com/sun/star/sheet/XSheetCellRanges.hpp>
#include <com/sun/star/sheet/XSpreadsheets.hpp>

#include "host/Address.h"
#include "host/calc/cells/CalcCells.h"
#include "host/calc/evaluation/CopyGuard.h"
#include "host/calc/evaluation/ExpressionScope.h"
#include "host/calc/evaluation/FormulaCells.h"
#include "host/calc/evaluation/TextReference.h"
#include "host/calc/uno/Answered.h"
#include "host/calc/uno/Text.h"
#include "host/calc/workbook/CalcRanges.h"
#include "kit/value/EventErrors.h"

namespace quorin::host::calc {
namespace {

using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;

// A copy of so many filled cells takes the office less than about a second.
constexpr long long mostCellsToCopy = 1'000;

long long filledCells(const Workbook& workbook, const std::vector<std::string>& sheets,
                      const CallLimits& limits) {
  constexpr sal_Int16 contents = css::sheet::CellFlags::VALUE | css::sheet::CellFlags::DATETIME |
                                 css::sheet::CellFlags::STRING | css::sheet::CellFlags::FORMULA;
  long long cells = 0;
  for (const std::string& sheet : sheets) {
    limits.check();
    const Reference<css::sheet::XCellRangesQuery> query(sheetOf(workbook, sheet), UNO_QUERY_THROW);
    for (const auto& address : answered(query->queryContentCells(contents))->getRangeAddresses()) {
      cells += cellCount({areaOf(address)});
    }
    if (cells > mostCellsToCopy) break;
  }
  return cells;
}

// The error's text, empty for any other single value. Of cells Calc tells itself.
std::optional<std::string> oneError(const Evaluation& value) {
  const auto* cell = std::get_if<CellValue>(&value);
  if (cell == nullptr) return std::nullopt;
  const auto* error = std::get_if<CellError>(cell);
  return error == nullptr ? "" : error->text;
}

// The one value that it is; nothing for several.
std::optional<CellValue> oneValue(CalcWorkbooks& workbooks, const Evaluation& value,
                                  const CallLimits& limits) {
  if (const auto* cell = std::get_if<CellValue>(&value)) return *cell;
  const auto* range = std::get_if<RangeRef>(&value);
  if (range == nullptr || cellCount(range->areas) != 1) return std::nullopt;
  return readValues(*workbooks.named(range->sheet.book), *range, limits).cells.front();
}

}  // namespace

Evaluation CalcEvaluator::evaluate(CalcWorkbooks& workbooks, const std::string& expression,
                                   const SheetRef& from, const CallLimits& limits) {
  Request request{workbooks, from, limits};
  // What the user asked for may leave a link behind, whether or not it gives a value.
  const struct Forget {
    std::unique_ptr<ValueMirror>& mirror;
    const bool asked;
    ~Forget() {
      if (asked) mirror.reset();
    }
  } forget{mirror_, limits.terms().asked};
  return answer(request, expression);
}

// A name or a text may lead to further questions, and those to further ones, with no end.
Evaluation CalcEvaluator::answer(Request& request, const std::string& expression) {
  constexpr int deepest = 20, most = 500;
  request.limits.check();
  if (request.depth >= deepest || request.count >= most) {
    throw SpreadsheetError(eventErrors::badParameter, "The expression leads to too many others");
  }
  ++request.count;
  ++request.depth;
  Evaluation value = calculated(request, expression);
  --request.depth;
  return value;
}

Evaluation CalcEvaluator::calculated(Request& request, const std::string& expression) {
  CalcWorkbooks& workbooks = request.workbooks;
  const SheetRef& from = request.from;
  const std::shared_ptr<Workbook> original = workbooks.named(from.book);
  const std::vector<std::string> sheets = workbooks.sheets(*original);
  if (std::find(sheets.begin(), sheets.end(), from.sheet) == sheets.end()) {
    throw noSuchSheet(from.sheet);
  }
  if (const auto reference = asReference(workbooks, expression, from, request.limits))
    return *reference;
  ExpressionContext context = scope(request, sheets);
  const auto dryRun = calcExpression(expression, context);
  if (!dryRun) return CellValue(CellError{"#NAME?"});
  refuseLargeArrays(dryRun->work);
  if (dryRun->reach.untold) throw SpreadsheetError(eventErrors::badParameter, untoldText);
  context.qualify = !dryRun->reach.anywhere;  // text counts from the formula's own sheet
  try {
    return dryRun->reach.contents ? inCopy(request, expression, context)
                                  : inMirror(request, expression, context);
  } catch (const TooManyCells&) {
    context = scope(request, sheets);
    context.placesAreAsked = true;
    const auto fewer = calcExpression(expression, context);  // asks before the mirror is filled
    if (!fewer || fewer->reach.anywhere || fewer->reach.contents) throw;
    context.qualify = true;
    return inMirror(request, expression, context);
  }
}

ExpressionContext CalcEvaluator::scope(Request& request, std::vector<std::string> sheets) {
  ExpressionContext context =
      expressionScope(request.workbooks, request.from, std::move(sheets), request.limits);
  context.elsewhere = [](const std::string& book, const std::string& sheet) {
    return std::optional<SheetPlace>({{book, sheet}, calcSheet(sheet)});
  };
  context.asked = request.limits.terms().asked;
  context.knows = [this, &request](const std::string& function) {
    return functions_.has(*request.workbooks.named(request.from.book), function);
  };
  context.checkpoint = [&request] { request.limits.check(); };
  context.referent = [this, &request](const std::string& argument) {
    const auto [entry, isNew] = request.referents.try_emplace(argument);
    if (isNew) entry->second = referent(request, argument);
    return entry->second;
  };
  context.errorOf = [this, &request](const std::string& argument) {
    const auto [entry, isNew] = request.errors.try_emplace(argument);
    if (isNew) entry->second = oneError(answer(request, argument));
    return entry->second;
  };
  context.valueOf = [this, &request](const std::string& argument) {
    const auto [entry, isNew] = request.values.try_emplace(argument);
    if (isNew) entry->second = valueOf(request, argument);
    return entry->second;
  };
  context.looks = [this, &request](const std::string& kind, const RangeRef& cell) {
    const auto [entry, isNew] =
        request.looks.try_emplace(kind + "\n" + excelText(cell, std::string()));
    if (isNew) {
      request.limits.check();
      CalcWorkbooks& workbooks = request.workbooks;
      const std::shared_ptr<Workbook> own = workbooks.named(request.from.book);
      entry->second = mirrorOf(*own, workbooks.sheets(*own), request.limits)
                          .looks(*workbooks.named(cell.sheet.book), kind, cell);
    }
    return entry->second;
  };
  return context;
}

// What cannot be worked out by itself may be part of something that can.
std::optional<CellValue> CalcEvaluator::valueOf(Request& request, const std::string& argument) {
  const int depth = request.depth;
  try {
    return oneValue(request.workbooks, answer(request, argument), request.limits);
  } catch (const TooManyCells&) {
    request.depth = depth;
    return std::nullopt;
  }
}

// The cells are found without looking at all that the workbook holds, where the argument gives one
// text that names them.
std::optional<std::string> CalcEvaluator::referent(Request& request, const std::string& argument) {
  const auto value = oneValue(request.workbooks, answer(request, argument), request.limits);
  const auto* text = value ? std::get_if<std::string>(&*value) : nullptr;
  return text != nullptr ? namedByText(request.workbooks, *text, request.from, request.limits)
                         : std::nullopt;
}

ValueMirror& CalcEvaluator::mirrorOf(const Workbook& workbook,
                                     const std::vector<std::string>& sheets,
                                     const CallLimits& limits) {
  if (!mirror_ || !mirror_->isOf(workbook, sheets)) {
    mirror_.reset();
    mirror_ = std::make_unique<ValueMirror>(context_, workbook, sheets, limits);
  }
  return *mirror_;
}

Evaluation CalcEvaluator::inMirror(Request& request, const std::string& expression,
                                   ExpressionContext& context) {
  CalcWorkbooks& workbooks = request.workbooks;
  const std::shared_ptr<Workbook> original = workbooks.named(context.from.book);
  ValueMirror& mirror = mirrorOf(*original, context.sheets, request.limits);
  context.elsewhere = [&](const std::string& book,
                          const std::string& sheet) -> std::optional<SheetPlace> {
    const auto found = findSheet(workbooks, book, sheet);
    return found ? std::optional(mirror.foreignSheet(*found)) : std::nullopt;
  };
  const CalcExpression calc = calcExpression(expression, context).value();
  mirror.bring(workbooks, calc.reach, request.limits);
  mirror.refuseLongSearches(calc.work);
  if (!calc.reach.anywhere) {
    return mirror.formulaCells().valueOf(calc, request.limits);
  }
  mirror.bringNames(*original, request.limits);
  const auto [row, column] = mirror.freePlace();
  return FormulaCells(mirror.workbook(), context.from.sheet, row, column)
      .valueOf(calc, request.limits);
}

// Only for what values do not tell. The office does nothing else while the copy is made.
Evaluation CalcEvaluator::inCopy(Request& request, const std::string& expression,
                                 ExpressionContext& context) {
  CalcWorkbooks& workbooks = request.workbooks;
  const std::shared_ptr<Workbook> original = workbooks.named(context.from.book);
  if (filledCells(*original, context.sheets, request.limits) > mostCellsToCopy) {
    throw SpreadsheetError(eventErrors::badParameter,
                           std::string(onlyInCopyText) +
                               " cannot be worked out in a workbook of more than 1000 filled "
                               "cells");
  }
  if (!context.asked) refuseCopyThatReaches(*original, context, request.limits);
  refuseLongSearches(
      calcExpression(expression, context).value().work,
      [](const RangeRef& cells) {
        return static_cast<double>(std::min(cellCount(cells.areas), mostCellsToCopy));
      },
      longestOfCell);
  HiddenWorkbook copy(context_, *original);
  context.elsewhere = [&](const std::string& book,
                          const std::string& sheet) -> std::optional<SheetPlace> {
    const auto found = findSheet(workbooks, book, sheet);
    if (!found) return std::nullopt;
    if (found->book == original->name) return SheetPlace{*found, calcSheet(found->sheet)};
    const std::string url = workbooks.named(found->book)->url;
    if (url.empty()) return std::nullopt;
    return SheetPlace{*found, "'" + url + "'#" + calcSheet(found->sheet)};
  };
  const std::string formulaSheet = "quorin";
  Reference<css::sheet::XSpreadsheets>(copy.workbook().sheets, UNO_QUERY_THROW)
      ->insertNewByName(toUno(formulaSheet), std::numeric_limits<sal_Int16>::max());
  return FormulaCells(copy.workbook(), formulaSheet, 1, 1)
      .valueOf(calcExpression(expression, context).value(), request.limits);
}

}  // namespace quorin::host::calc
