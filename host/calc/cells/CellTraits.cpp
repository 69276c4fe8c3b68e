#include "host/calc/cells/CellTraits.h"

#include <algorithm>
#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/sheet/XCellRangesQuery.hpp>
#include <com/sun/star/sheet/XSheetCellRanges.hpp>
#include <com/sun/star/table/XColumnRowRange.hpp>

#include "host/Address.h"
#include "host/calc/cells/AreaGrid.h"
#include "host/calc/cells/CalcRows.h"
#include "host/calc/uno/Answered.h"
#include "host/calc/uno/Text.h"
#include "host/calc/workbook/CalcRanges.h"
#include "kit/value/EventErrors.h"

namespace quorin::host::calc {
namespace {

using css::beans::XPropertySet;
using css::uno::Any;
using css::uno::Reference;
using css::uno::Sequence;
using css::uno::UNO_QUERY_THROW;

// Each is asked about by itself, some thousand a second.
constexpr int mostHiddenRows = 10'000;

Reference<css::table::XTableRows> rowsOf(const Workbook& workbook, const std::string& sheet,
                                         int first, int last) {
  return answered(Reference<css::table::XColumnRowRange>(
                      cellsOf(workbook, sheet, {first, 1, last, 1}), UNO_QUERY_THROW)
                      ->getRows());
}

// The runs of rows between those of which something is shown.
std::vector<RowRun> hiddenRuns(const Workbook& workbook, const SheetRef& sheet, const Area& area,
                               const CallLimits& limits) {
  const auto shown =
      findVisibleCells(workbook, {sheet, {{area.firstRow, 1, area.lastRow, maxColumn}}}, limits);
  std::vector<RowRun> runs;
  int next = area.firstRow;
  for (const Area& part : shown ? shown->areas : std::vector<Area>()) {
    if (part.firstRow > next) runs.push_back({next, part.firstRow - 1});
    next = std::max(next, part.lastRow + 1);
  }
  if (next <= area.lastRow) runs.push_back({next, area.lastRow});
  return runs;
}

std::vector<RowRun> hiddenRows(const Workbook& workbook, const SheetRef& sheet, const Area& area,
                               const CallLimits& limits) {
  std::vector<RowRun> result;
  int asked = 0;
  for (const RowRun& run : hiddenRuns(workbook, sheet, area, limits)) {
    const auto rows = rowsOf(workbook, sheet.sheet, run.first, run.last);
    asked += run.last - run.first + 1;
    if (asked > mostHiddenRows) {
      throw SpreadsheetError(eventErrors::badParameter,
                             "Too many of the rows that the expression looks at are hidden");
    }
    for (int row = run.first; row <= run.last; ++row) {
      limits.check();
      bool filtered = false;
      Reference<XPropertySet>(rows->getByIndex(row - run.first), UNO_QUERY_THROW)
          ->getPropertyValue("IsFiltered") >>= filtered;
      if (row > run.first && result.back().filtered == filtered) {
        result.back().last = row;
      } else {
        result.push_back({row, row, filtered});
      }
    }
  }
  return result;
}

bool isSubtotal(const rtl::OUString& formula) {
  bool quoted = false;
  for (sal_Int32 i = 0; i < formula.getLength(); ++i) {
    if (formula[i] == '"') quoted = !quoted;
    if (!quoted && (formula.match("SUBTOTAL(", i) || formula.match("AGGREGATE(", i))) return true;
  }
  return false;
}

CellKinds readKinds(const Workbook& workbook, const RangeRef& range, const CallLimits& limits) {
  const Area& area = firstArea(range);
  const auto cells = cellsOf(workbook, range.sheet.sheet, area);
  const Reference<css::sheet::XCellRangesQuery> query(cells, UNO_QUERY_THROW);
  const std::vector<Area> formulas = areasWithin(query->queryFormulaCells(anyResult), area);
  if (formulas.empty()) return {};
  const Sequence<Sequence<rtl::OUString>> texts = formulasOf(cells, area);
  CellKinds kinds(static_cast<std::size_t>(cellCount({area})), CellKind::constant);
  for (const Area& part : formulas) {
    for (int row = part.firstRow; row <= part.lastRow; ++row) {
      limits.check();
      for (int column = part.firstColumn; column <= part.lastColumn; ++column) {
        const int down = row - area.firstRow, across = column - area.firstColumn;
        const long long place = static_cast<long long>(down) * columnCount(area) + across;
        kinds[static_cast<std::size_t>(place)] =
            isSubtotal(texts[down][across]) ? CellKind::subtotal : CellKind::formula;
      }
    }
  }
  return kinds;
}

}  // namespace

CellTraits readTraits(const Workbook& workbook, const RangeRef& range, const CallLimits& limits) {
  return {hiddenRows(workbook, range.sheet, firstArea(range), limits),
          readKinds(workbook, range, limits)};
}

void hideRows(Workbook& ours, const std::string& sheet, const std::vector<RowRun>& runs,
              bool hidden, const CallLimits& limits) {
  for (const RowRun& run : runs) {
    limits.check();
    const Reference<XPropertySet> rows(rowsOf(ours, sheet, run.first, run.last), UNO_QUERY_THROW);
    rows->setPropertyValue("IsVisible", Any(!hidden));
    if (run.filtered) rows->setPropertyValue("IsFiltered", Any(hidden));
  }
}

}  // namespace quorin::host::calc
