// RowStates: whether the rows or columns of one sheet are hidden, as the office has them when that
// is first asked, and the change of that. Used for one handler at most, on any thread that may call
// the office.
#pragma once

#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/container/XIndexAccess.hpp>
#include <com/sun/star/sheet/XSpreadsheet.hpp>
#include <optional>
#include <vector>

#include "host/Spreadsheet.h"
#include "host/calc/workbook/QuietChanges.h"

namespace quorin::host::calc {

class RowStates {
 public:
  RowStates(css::uno::Reference<css::sheet::XSpreadsheet> sheet, Axis axis);

  // Of the row with that number, from 1. False beyond the end of the sheet.
  bool isHidden(int number) const;
  bool isFiltered(int number) const;  // a filter hides it, or would; no column is

  // Hides or shows the rows. Those that are as wanted are left alone, and those that stand
  // together, or with nothing hidden between them that is to be shown, change in one go. Throws
  // UNO's exceptions; some may have changed by then. What was known of the rows is forgotten.
  void setHidden(QuietChanges& changes, const Workbook& workbook, std::vector<int> numbers,
                 bool hide);

 private:
  void look() const;
  bool allShown(int first, int last) const;

  const css::uno::Reference<css::sheet::XSpreadsheet> sheet_;
  const Axis axis_;
  const css::uno::Reference<css::container::XIndexAccess> rows_;
  const int count_;
  mutable std::optional<QuietChanges::RowSpans> shown_;  // all runs of visible rows, sorted
};

}  // namespace quorin::host::calc
