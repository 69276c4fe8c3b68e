// UserRules: the conditional formats that the user has made on a sheet. They are only ever read:
// what the office offers for changing them leaves stale colours behind, or cuts cells out of them.
// Call thread.
#pragma once

#include "host/Spreadsheet.h"
#include "host/calc/CalcWorkbooks.h"

namespace quorin::host::calc {

struct UserRules {
  int total = 0;                         // on the whole sheet
  std::vector<FormatCondition> onRange;  // those that touch the range, by priority
};

UserRules readUserRules(const Workbook& workbook,
                        const css::uno::Reference<css::sheet::XSpreadsheet>& sheet,
                        const std::vector<Area>& range);

// Whether readUserRules() gave out this id.
bool isUserRule(const std::string& id);

}  // namespace quorin::host::calc
