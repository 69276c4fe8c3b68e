// CalcNames: the list of a workbook's defined names. Call thread.
#pragma once

#include <vector>

#include "host/Spreadsheet.h"
#include "host/calc/CalcWorkbooks.h"

namespace quorin::host::calc {

// The workbook's own names, then those of its sheets in their order.
std::vector<DefinedName> listNames(const Workbook& workbook);

}  // namespace quorin::host::calc
