#include "host/calc/CalcLookup.h"

#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/sheet/XCellRangeReferrer.hpp>
#include <com/sun/star/sheet/XDatabaseRange.hpp>
#include <com/sun/star/sheet/XFormulaQuery.hpp>
#include <com/sun/star/sheet/XNamedRanges.hpp>
#include <com/sun/star/sheet/XSheetCellCursor.hpp>
#include <com/sun/star/sheet/XUsedAreaCursor.hpp>

#include "host/calc/CalcRanges.h"
#include "host/calc/ReferenceText.h"
#include "host/calc/Text.h"

namespace quorin::host::calc {
namespace {

using css::container::XNameAccess;
using css::uno::Reference;
using css::uno::UNO_QUERY;
using css::uno::UNO_QUERY_THROW;

Reference<css::uno::XInterface> entryOf(const Reference<css::uno::XInterface>& owner,
                                        const char* property, const std::string& name) {
  const Reference<css::beans::XPropertySet> properties(owner, UNO_QUERY_THROW);
  const Reference<XNameAccess> entries(
      properties->getPropertyValue(rtl::OUString::createFromAscii(property)), UNO_QUERY);
  if (!entries.is()) return nullptr;
  for (const rtl::OUString& candidate : entries->getElementNames()) {
    if (candidate.equalsIgnoreAsciiCase(toUno(name))) {
      return {entries->getByName(candidate), UNO_QUERY};
    }
  }
  return nullptr;
}

std::optional<RangeRef> referredCells(const Workbook& workbook,
                                      const Reference<css::uno::XInterface>& entry) {
  const Reference<css::sheet::XCellRangeReferrer> referrer(entry, UNO_QUERY);
  const Reference<css::table::XCellRange> cells =
      referrer.is() ? referrer->getReferredCells() : nullptr;
  return cells.is() ? rangeOf(workbook, cells) : std::nullopt;
}

// A table's name stands for its rows without the header, as in Excel.
std::optional<RangeRef> tableBody(const Workbook& workbook,
                                  const Reference<css::uno::XInterface>& entry) {
  std::optional<RangeRef> range = referredCells(workbook, entry);
  if (!range) return std::nullopt;
  const Reference<css::beans::XPropertySet> properties(entry, UNO_QUERY_THROW);
  bool header = false, totals = false;
  properties->getPropertyValue("ContainsHeader") >>= header;
  properties->getPropertyValue("TotalsRow") >>= totals;
  Area& area = range->areas.front();
  if (header && area.firstRow < area.lastRow) ++area.firstRow;
  if (totals && area.firstRow < area.lastRow) --area.lastRow;
  return range;
}

}  // namespace

std::optional<RangeRef> findNamed(const Workbook& workbook, const std::string& sheet,
                                  const std::string& name) {
  Reference<css::uno::XInterface> entry = entryOf(sheetOf(workbook, sheet), "NamedRanges", name);
  if (!entry.is()) entry = entryOf(workbook.document, "NamedRanges", name);
  if (entry.is()) return referredCells(workbook, entry);
  entry = entryOf(workbook.document, "DatabaseRanges", name);
  return entry.is() ? tableBody(workbook, entry) : std::nullopt;
}

std::optional<RangeRef> findCurrentRegion(const Workbook& workbook, const RangeRef& range) {
  const Reference<css::sheet::XSpreadsheet> sheet = sheetOf(workbook, range.sheet.sheet);
  const Reference<css::sheet::XSheetCellRange> cells(cellsOf(sheet, firstArea(range)),
                                                     UNO_QUERY_THROW);
  const Reference<css::sheet::XSheetCellCursor> cursor = sheet->createCursorByRange(cells);
  cursor->collapseToCurrentRegion();
  return rangeOf(workbook, cursor);
}

std::optional<RangeRef> findUsedRange(const Workbook& workbook, const std::string& sheet) {
  const Reference<css::sheet::XSheetCellCursor> cursor = sheetOf(workbook, sheet)->createCursor();
  const Reference<css::sheet::XUsedAreaCursor> used(cursor, UNO_QUERY_THROW);
  used->gotoStartOfUsedArea(false);
  used->gotoEndOfUsedArea(true);
  return rangeOf(workbook, cursor);
}

std::optional<RangeRef> findDependents(const Workbook& workbook, const RangeRef& range,
                                       DependentLevels levels) {
  const Reference<css::sheet::XSpreadsheet> sheet = sheetOf(workbook, range.sheet.sheet);
  RangeRef found{range.sheet, {}};
  for (const Area& area : range.areas) {
    const Reference<css::sheet::XFormulaQuery> query(cellsOf(sheet, area), UNO_QUERY_THROW);
    const auto dependents =
        rangeOf(workbook, query->queryDependents(levels == DependentLevels::all));
    if (!dependents) continue;
    std::vector<Area> fresh = dependents->areas;  // and nothing twice
    for (const Area& known : found.areas) fresh = without(fresh, known);
    found.areas.insert(found.areas.end(), fresh.begin(), fresh.end());
  }
  for (const Area& own : range.areas) found.areas = without(found.areas, own);
  return found.areas.empty() ? std::nullopt : std::optional(found);
}

}  // namespace quorin::host::calc
