// Calc keeps TRUE and FALSE as the numbers 1 and 0; only a cell's number format tells.
#pragma once

#include <com/sun/star/table/XCellRange.hpp>
#include <functional>

#include "host/Spreadsheet.h"
#include "host/calc/CalcWorkbooks.h"

namespace quorin::host::calc {

// Calls `visit` with each area of the range whose number format is one of booleans.
void forEachBooleanArea(Workbook& workbook,
                        const css::uno::Reference<css::table::XCellRange>& cells,
                        const std::function<void(const Area&)>& visit);

}  // namespace quorin::host::calc
