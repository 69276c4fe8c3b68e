// CalcRows: rows and columns that are hidden, and what a window shows. Call thread.
#pragma once

#include <optional>

#include "host/Spreadsheet.h"
#include "host/calc/workbook/CalcWorkbooks.h"
#include "host/calc/workbook/CallLimits.h"

namespace quorin::host::calc {

std::optional<bool> areHidden(const Workbook& workbook, const RangeRef& range, Axis axis,
                              const CallLimits& limits);
// SpreadsheetError -10000 when they are in more pieces than anything could be done with.
std::optional<RangeRef> findVisibleCells(const Workbook& workbook, const RangeRef& range,
                                         const CallLimits& limits);
RangeRef visibleRangeOf(CalcWorkbooks& workbooks, const Window& window);

}  // namespace quorin::host::calc
