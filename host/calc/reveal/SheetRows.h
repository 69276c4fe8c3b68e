// SheetRows: digests of the rows or columns of one sheet as they are now. Reads as much as it is
// asked for and keeps it, so it is for one handler at most. Call thread.
#pragma once

#include <com/sun/star/sheet/XSpreadsheet.hpp>
#include <map>
#include <string>
#include <vector>

#include "host/Spreadsheet.h"
#include "host/calc/reveal/RowTrace.h"
#include "host/calc/reveal/RowTraces.h"
#include "host/calc/workbook/CalcWorkbooks.h"

namespace quorin::host::calc {

class SheetRows {
 public:
  SheetRows(const Workbook& workbook, const std::string& sheet, Axis axis);

  AreaTrace traceOf(const Area& area);
  // Where the area that left the trace is now, or nothing.
  std::optional<Area> find(const AreaTrace& trace, Area area);

 private:
  RowDigest digest(int number);
  std::vector<RowDigest> block(int index) const;

  const css::uno::Reference<css::sheet::XSpreadsheet> sheet_;
  const Axis axis_;
  Area used_;
  int last_ = 0;  // that holds anything
  std::map<int, std::vector<RowDigest>> blocks_;
};

}  // namespace quorin::host::calc
