#include "host/calc/AreaGrid.h"

#include <algorithm>

#include "host/calc/CalcRanges.h"

namespace quorin::host::calc {

void refuseTooMany(const Area& area) {
  if (cellCount({area}) > mostCells) throw SpreadsheetError(-50, "The range has too many cells");
}

void forEachCell(const css::uno::Reference<css::sheet::XSheetCellRanges>& found, const Area& area,
                 const std::function<void(int row, int column)>& visit) {
  for (const auto& address : found->getRangeAddresses()) {
    const Area part = areaOf(address);
    for (int row = std::max(part.firstRow, area.firstRow);
         row <= std::min(part.lastRow, area.lastRow); ++row) {
      for (int column = std::max(part.firstColumn, area.firstColumn);
           column <= std::min(part.lastColumn, area.lastColumn); ++column) {
        visit(row - area.firstRow, column - area.firstColumn);
      }
    }
  }
}

}  // namespace quorin::host::calc
