// SheetFilters: what filters the rows of one sheet, as it is when this is made. Any thread that may
// call the office.
#pragma once

#include <com/sun/star/sheet/XSpreadsheet.hpp>
#include <string>
#include <vector>

#include "host/calc/workbook/CalcWorkbooks.h"

namespace quorin::host::calc {

class SheetFilters {
 public:
  SheetFilters(const Workbook& workbook,
               const css::uno::Reference<css::sheet::XSpreadsheet>& sheet);

  // The conditions of the filters that this row is among the rows of; empty where there are none.
  // Setting, changing and ending a filter shows and hides every one of its rows anew, whoever had
  // hidden it, so a row is as the user's last filter has left it when this has changed.
  std::string over(int row) const;

 private:
  struct Filter {
    int firstRow = 0, lastRow = 0;
    std::string conditions;
  };
  std::vector<Filter> filters_;
};

}  // namespace quorin::host::calc
