#include "host/calc/cells/CalcRows.h"

#include <algorithm>
#include <com/sun/star/sheet/XCellRangesQuery.hpp>
#include <com/sun/star/sheet/XSheetCellRanges.hpp>
#include <com/sun/star/sheet/XViewPane.hpp>
#include <utility>

#include "host/Address.h"
#include "host/calc/uno/Answered.h"
#include "host/calc/workbook/CalcRanges.h"
#include "host/calc/workbook/CalcView.h"
#include "kit/value/EventErrors.h"

namespace quorin::host::calc {
namespace {

using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;

struct Run {
  int first, last;
};

// Sorted, and joined where they touch.
std::vector<Run> joined(std::vector<Run> runs) {
  std::sort(runs.begin(), runs.end(), [](const Run& a, const Run& b) { return a.first < b.first; });
  std::vector<Run> result;
  for (const Run& run : runs) {
    if (!result.empty() && run.first <= result.back().last + 1) {
      result.back().last = std::max(result.back().last, run.last);
    } else {
      result.push_back(run);
    }
  }
  return result;
}

// The rows and columns of the area of which something is shown.
struct Shown {
  std::vector<Run> rows, columns;
};

Shown shownRows(const Workbook& workbook, const std::string& sheet, const Area& area) {
  const Reference<css::sheet::XCellRangesQuery> query(cellsOf(workbook, sheet, area),
                                                      UNO_QUERY_THROW);
  Shown shown;
  for (const auto& address : answered(query->queryVisibleCells())->getRangeAddresses()) {
    const Area part = areaOf(address);
    shown.rows.push_back({part.firstRow, part.lastRow});
    shown.columns.push_back({part.firstColumn, part.lastColumn});
  }
  return {joined(std::move(shown.rows)), joined(std::move(shown.columns))};
}

}  // namespace

std::optional<bool> areHidden(const Workbook& workbook, const RangeRef& range, Axis axis,
                              const CallLimits& limits) {
  long long total = 0, visible = 0;
  for (const Area& area : range.areas) {
    limits.check();
    total += countOn(area, axis);
    // In a part of a row hidden columns would count, and in a part of a column hidden rows.
    const Shown shown = shownRows(workbook, range.sheet.sheet, wholeRows(area, axis));
    for (const Run& run : axis == Axis::rows ? shown.rows : shown.columns) {
      visible += run.last - run.first + 1;
    }
  }
  if (visible != 0 && visible != total) return std::nullopt;
  return visible == 0;
}

std::optional<RangeRef> findVisibleCells(const Workbook& workbook, const RangeRef& range,
                                         const CallLimits& limits) {
  constexpr std::size_t mostPieces = 1'000'000;
  RangeRef visible{range.sheet, {}};
  for (const Area& area : range.areas) {
    limits.check();
    const Shown shown = shownRows(workbook, range.sheet.sheet, area);
    if (shown.rows.size() * shown.columns.size() > mostPieces) {
      throw SpreadsheetError(eventErrors::handlerFailed,
                             "Too many of the rows and columns are hidden");
    }
    for (const Run& rows : shown.rows) {
      for (const Run& columns : shown.columns) {
        visible.areas.push_back({rows.first, columns.first, rows.last, columns.last});
      }
    }
  }
  return visible.areas.empty() ? std::nullopt : std::optional(visible);
}

RangeRef visibleRangeOf(CalcWorkbooks& workbooks, const Window& window) {
  return {activeSheetOf(workbooks, window), {areaOf(scrollingPane(window)->getVisibleRange())}};
}

}  // namespace quorin::host::calc
