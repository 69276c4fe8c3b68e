// CellTraits: what the cells of an area are beside their values, as far as SUBTOTAL, AGGREGATE and
// ISFORMULA ask for it: which rows are hidden, by a filter or otherwise, and which cells are
// formulas, subtotals among them. Read from a user's workbook, written into one of ours. Call
// thread.
#pragma once

#include <vector>

#include "host/Spreadsheet.h"
#include "host/calc/cells/CellWriter.h"
#include "host/calc/workbook/CalcWorkbooks.h"
#include "host/calc/workbook/CallLimits.h"

namespace quorin::host::calc {

struct RowRun {
  int first = 1, last = 1;
  bool filtered = false;
  bool operator==(const RowRun&) const = default;
};

struct CellTraits {
  std::vector<RowRun> hiddenRows;
  CellKinds kinds;
  bool operator==(const CellTraits&) const = default;
};

// Of one area. SpreadsheetError -50 when more of its rows are hidden than can be asked about.
CellTraits readTraits(const Workbook& workbook, const RangeRef& range, const CallLimits& limits);

// Hides the rows, or shows them again.
void hideRows(Workbook& ours, const std::string& sheet, const std::vector<RowRun>& runs,
              bool hidden, const CallLimits& limits);

}  // namespace quorin::host::calc
