// UserRules: the conditional formats that the user has made on a sheet. They are only ever read:
// what the office offers for changing them leaves stale colours behind, or cuts cells out of them.
// Call thread.
#pragma once

#include <com/sun/star/sheet/XConditionalFormat.hpp>

#include "host/Spreadsheet.h"
#include "host/calc/workbook/CalcWorkbooks.h"
#include "host/calc/workbook/CallLimits.h"

namespace quorin::host::calc {

class UserRules {
 public:
  // SpreadsheetError -1712 when the limits are reached, here and in touching().
  UserRules(const Workbook& workbook, const css::uno::Reference<css::sheet::XSpreadsheet>& sheet,
            const CallLimits& limits);

  int count() const { return count_; }  // on the whole sheet
  // Those that touch the range, by priority. What was read of one is kept.
  std::vector<FormatCondition> touching(const std::vector<Area>& range, const CallLimits& limits);

 private:
  struct Format {
    css::uno::Reference<css::sheet::XConditionalFormat> format;
    std::vector<Area> areas;
    int first, count;  // priority of the first of its rules, and how many they are
    std::vector<FormatCondition> rules;  // empty before they are read
  };
  std::vector<FormatCondition> rulesOf(const Format& format, const CallLimits& limits) const;

  const css::uno::Reference<css::sheet::XSpreadsheetDocument> document_;
  std::vector<Format> formats_;
  int count_ = 0;
};

// True if UserRules gave out this id.
bool isUserRule(const std::string& id);

}  // namespace quorin::host::calc
