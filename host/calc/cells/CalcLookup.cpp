#include "host/calc/cells/CalcLookup.h"

#include <algorithm>
#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/sheet/CellFlags.hpp>
#include <com/sun/star/sheet/XCellRangeReferrer.hpp>
#include <com/sun/star/sheet/XCellRangesQuery.hpp>
#include <com/sun/star/sheet/XFormulaQuery.hpp>
#include <com/sun/star/sheet/XNamedRange.hpp>
#include <com/sun/star/sheet/XNamedRanges.hpp>
#include <com/sun/star/sheet/XSheetCellCursor.hpp>
#include <com/sun/star/sheet/XSheetCellRanges.hpp>
#include <com/sun/star/sheet/XUsedAreaCursor.hpp>
#include <map>

#include "host/Address.h"
#include "host/SheetPrefix.h"
#include "host/calc/cells/AreaGrid.h"
#include "host/calc/cells/CalcTables.h"
#include "host/calc/grammar/CalcExpression.h"
#include "host/calc/grammar/FormulaTranslator.h"
#include "host/calc/grammar/ReferenceText.h"
#include "host/calc/uno/Answered.h"
#include "host/calc/uno/Text.h"
#include "host/calc/workbook/CalcRanges.h"
#include "kit/value/EventErrors.h"
#include "kit/value/Unicode.h"

namespace quorin::host::calc {
namespace {

using css::uno::Reference;
using css::uno::Sequence;
using css::uno::UNO_QUERY;
using css::uno::UNO_QUERY_THROW;

Area enclosing(const Area& a, const Area& b) {
  return {std::min(a.firstRow, b.firstRow), std::min(a.firstColumn, b.firstColumn),
          std::max(a.lastRow, b.lastRow), std::max(a.lastColumn, b.lastColumn)};
}

}  // namespace

std::vector<Area> findFilledParts(const Reference<css::table::XCellRange>& cells,
                                  const Area& area) {
  const Reference<css::sheet::XCellRangesQuery> query(cells, UNO_QUERY_THROW);
  constexpr sal_Int16 contents = css::sheet::CellFlags::VALUE | css::sheet::CellFlags::DATETIME |
                                 css::sheet::CellFlags::STRING | css::sheet::CellFlags::FORMULA;
  return areasWithin(query->queryContentCells(contents), area);
}

std::optional<RangeRef> referredCells(const Workbook& workbook,
                                      const Reference<css::uno::XInterface>& entry) {
  const Reference<css::sheet::XCellRangeReferrer> referrer(entry, UNO_QUERY);
  const Reference<css::table::XCellRange> cells =
      referrer.is() ? referrer->getReferredCells() : nullptr;
  return cells.is() ? rangeOf(workbook, cells) : std::nullopt;
}

namespace {

Reference<css::uno::XInterface> definedName(const Workbook& workbook, const std::string& sheet,
                                            const std::string& name) {
  const auto own = sheet.empty() ? nullptr : workbook.entries.name(workbook, sheet, name);
  return own.is() ? own : workbook.entries.name(workbook, {}, name);
}

// The areas that a name unites, which Calc itself does not tell; nothing when one of them is not on
// one sheet with the others.
std::optional<RangeRef> unitedCells(const Workbook& workbook, std::string_view excel) {
  if (excel.starts_with('(') && excel.ends_with(')')) excel = excel.substr(1, excel.size() - 2);
  std::optional<RangeRef> united;
  while (!excel.empty()) {
    const auto parts = splitSheetPrefix(takeArea(excel));
    const auto area = parts && parts->sheet ? parseA1Area(parts->rest) : std::nullopt;
    if (!area || !workbook.sheets->hasByName(toUno(*parts->sheet))) return std::nullopt;
    if (!united) united = RangeRef{{workbook.name, *parts->sheet}, {}};
    if (united->sheet.sheet != *parts->sheet) return std::nullopt;
    united->areas.push_back(*area);
  }
  return united;
}

std::optional<RangeRef> cellsOfName(const Workbook& workbook,
                                    const Reference<css::uno::XInterface>& entry) {
  const Reference<css::sheet::XNamedRange> name(entry, UNO_QUERY_THROW);
  const std::string content = excelFormula(toText(name->getContent()), ReferenceStyle::a1, {});
  std::string_view rest = content;
  const auto first = splitSheetPrefix(takeArea(rest));
  if (!rest.empty() || content.starts_with("(")) return unitedCells(workbook, content);
  // Of cells of several sheets Calc tells those of the first.
  if (first && first->sheet && first->sheet->find(':') != std::string::npos) return std::nullopt;
  return referredCells(workbook, entry);
}

}  // namespace

std::optional<std::string> nameContent(const Workbook& workbook, const std::string& sheet,
                                       const std::string& name) {
  const Reference<css::sheet::XNamedRange> entry(definedName(workbook, sheet, name), UNO_QUERY);
  return entry.is() ? std::optional(toText(entry->getContent())) : std::nullopt;
}

std::optional<RangeRef> findNamed(const Workbook& workbook, const std::string& sheet,
                                  const std::string& name, const CallLimits& limits) {
  if (name.find('[') != std::string::npos) return tablePart(workbook, name, limits);
  const auto entry = definedName(workbook, sheet, name);
  if (entry.is()) return cellsOfName(workbook, entry);
  // A table's name stands for its rows without the header, as in Excel.
  return tableArea(workbook, name, {.data = true}, std::nullopt, limits);
}

std::optional<RangeRef> findCurrentRegion(const Workbook& workbook, const RangeRef& range) {
  const Reference<css::sheet::XSpreadsheet> sheet = sheetOf(workbook, range.sheet.sheet);
  const Reference<css::sheet::XSheetCellRange> cells(cellsOf(sheet, firstArea(range)),
                                                     UNO_QUERY_THROW);
  const Reference<css::sheet::XSheetCellCursor> cursor =
      answered(sheet->createCursorByRange(cells));
  cursor->collapseToCurrentRegion();
  std::optional<RangeRef> region = rangeOf(workbook, cursor);
  if (!region) return std::nullopt;
  // From a blank cell outside the used area Calc answers cells of the used area's edge instead,
  // which belong to the region only when something stands in them.
  const Area& start = firstArea(range);
  Area& found = region->areas.front();
  if (host::intersection(found, start) != start) {
    const Reference<css::table::XCellRange> edge(cursor, UNO_QUERY_THROW);
    found = findFilledParts(edge, found).empty() ? start : enclosing(found, start);
  }
  return region;
}

std::optional<RangeRef> findUsedRange(const Workbook& workbook, const std::string& sheet) {
  const Reference<css::sheet::XSheetCellCursor> cursor =
      answered(sheetOf(workbook, sheet)->createCursor());
  const Reference<css::sheet::XUsedAreaCursor> used(cursor, UNO_QUERY_THROW);
  used->gotoStartOfUsedArea(false);
  used->gotoEndOfUsedArea(true);
  return rangeOf(workbook, cursor);
}

std::optional<Area> findFilledPart(const Reference<css::table::XCellRange>& cells,
                                   const Area& area) {
  std::optional<Area> filled;
  for (const Area& part : findFilledParts(cells, area)) {
    filled = filled ? enclosing(*filled, part) : part;
  }
  return filled;
}

namespace {

// The cells that a formula names; none where it is too long, with its names written out, to be
// read.
std::vector<RangeRef> cellsIn(const std::string& formula, const ExpressionContext& context) {
  try {
    auto read = calcExpression(formula, context);
    return read ? std::move(read->reach.cells) : std::vector<RangeRef>();
  } catch (const SpreadsheetError& failure) {
    if (failure.number() != eventErrors::badParameter) throw;
    return {};
  }
}

// Those cells of the range whose formulas look at one of the sources, which lie on the same sheet.
std::vector<Area> dependentCells(const Workbook& workbook, const RangeRef& range,
                                 const std::vector<Area>& sources, const CallLimits& limits) {
  const Reference<css::sheet::XCellRangesQuery> query(
      cellsOf(workbook, range.sheet.sheet, firstArea(range)), UNO_QUERY_THROW);
  // Nothing is calculated, so any function may stand there.
  ExpressionContext context{.from = range.sheet, .asked = true};
  context.checkpoint = [&limits] { limits.check(); };
  context.meaning =
      [&workbook, &limits, known = std::map<std::string, std::optional<std::string>>()](
          const SheetRef& scope, const std::string& name) mutable -> std::optional<std::string> {
    const auto [entry, isNew] = known.try_emplace(scope.sheet + "!" + name);
    if (isNew) {
      const auto cells = scope.book == workbook.name
                             ? findNamed(workbook, scope.sheet, name, limits)
                             : std::nullopt;
      if (cells && cells->areas.size() == 1) {
        entry->second = excelSheet(cells->sheet.sheet) + "!" + addressText(cells->areas);
      }
    }
    return entry->second;
  };
  context.tablePart = [&workbook, &limits](const std::string&, const std::string& table,
                                           const TableItems& items) -> std::string {
    const auto cells = tableArea(workbook, table, items, std::nullopt, limits);
    if (!cells) return "#REF!";
    return excelSheet(cells->sheet.sheet) + "!" + addressText(cells->areas);
  };
  std::vector<Area> found;
  FormulaTranslator translator(ReferenceStyle::a1, sheetTest(workbook));
  const auto look = [&](const std::string& text, int row, int column) {
    limits.check();
    const auto reached = cellsIn(translator.excelFormula(text, {row, column}), context);
    if (std::any_of(reached.begin(), reached.end(), [&](const RangeRef& cells) {
          return caselesslyEqual(cells.sheet.sheet, range.sheet.sheet) &&
                 cells.sheet.book == range.sheet.book && touch(cells.areas, sources);
        })) {
      found.push_back({row, column, row, column});
    }
  };
  for (const Area& part : areasWithin(query->queryFormulaCells(anyResult), firstArea(range))) {
    for (const Area& piece : piecesOf(part)) {
      limits.check();
      const auto rows = formulasOf(cellsOf(workbook, range.sheet.sheet, piece), piece);
      for (int row = piece.firstRow; row <= piece.lastRow; ++row) {
        for (int column = piece.firstColumn; column <= piece.lastColumn; ++column) {
          look(toText(rows[row - piece.firstRow][column - piece.firstColumn]), row, column);
        }
      }
    }
  }
  return found;
}

}  // namespace

std::optional<RangeRef> findDependents(const Workbook& workbook, const RangeRef& range,
                                       DependentLevels levels, const CallLimits& limits) {
  const Reference<css::sheet::XSpreadsheet> sheet = sheetOf(workbook, range.sheet.sheet);
  RangeRef found{range.sheet, {}};
  for (const Area& area : range.areas) {
    const Reference<css::sheet::XFormulaQuery> query(cellsOf(sheet, area), UNO_QUERY_THROW);
    const auto dependents =
        rangeOf(workbook, answered(query->queryDependents(levels == DependentLevels::all)));
    if (!dependents) continue;
    std::vector<Area> fresh = dependents->areas;  // and nothing twice
    for (const Area& known : found.areas) {
      limits.check();
      fresh = without(fresh, known);
    }
    found.areas.insert(found.areas.end(), fresh.begin(), fresh.end());
  }
  // Calc counts the range itself among them, whatever stands there.
  for (const Area& own : range.areas) {
    limits.check();
    found.areas = without(found.areas, own);
  }
  std::vector<Area> sources = range.areas;
  if (levels == DependentLevels::all) {
    sources.insert(sources.end(), found.areas.begin(), found.areas.end());
  }
  for (const Area& own : range.areas) {
    for (const Area& cell : dependentCells(workbook, {range.sheet, {own}}, sources, limits)) {
      found.areas.push_back(cell);
    }
  }
  return found.areas.empty() ? std::nullopt : std::optional(found);
}

}  // namespace quorin::host::calc
