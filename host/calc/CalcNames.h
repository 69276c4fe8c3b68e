// CalcNames: the list of a workbook's defined names. Call thread.
#pragma once

#include <vector>

#include "host/Spreadsheet.h"
#include "host/calc/CalcWorkbooks.h"
#include "host/calc/CallLimits.h"

namespace quorin::host::calc {

// The workbook's own names, then those of its sheets in their order.
// SpreadsheetError -1712 when the limits are reached.
std::vector<DefinedName> listNames(const Workbook& workbook, const CallLimits& limits);

}  // namespace quorin::host::calc
