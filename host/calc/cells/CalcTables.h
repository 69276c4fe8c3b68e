// CalcTables: the workbook's tables, which Calc keeps as database ranges. Call thread.
#pragma once

#include <optional>
#include <string>

#include "host/Spreadsheet.h"
#include "host/calc/grammar/TableItems.h"
#include "host/calc/workbook/CalcWorkbooks.h"
#include "host/calc/workbook/CallLimits.h"

namespace quorin::host::calc {

// The cells of that part of the table, its name in any case. `row` is the one that "this row"
// means. Nothing when there is no such table, part or column.
std::optional<RangeRef> tableArea(const Workbook& workbook, const std::string& table,
                                  const TableItems& items, std::optional<int> row,
                                  const CallLimits& limits);

// The cells of "Sales[Net]"; nothing for a text of another form and for "this row".
std::optional<RangeRef> tablePart(const Workbook& workbook, const std::string& text,
                                  const CallLimits& limits);

}  // namespace quorin::host::calc
