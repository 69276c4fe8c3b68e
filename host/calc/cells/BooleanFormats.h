// Calc keeps TRUE and FALSE as the numbers 1 and 0; only a cell's number format tells.
#pragma once

#include <com/sun/star/table/XCell.hpp>

#include "host/calc/workbook/CalcWorkbooks.h"

namespace quorin::host::calc {

// True if the cell's number format is one of booleans.
bool isBoolean(Workbook& workbook, const css::uno::Reference<css::table::XCell>& cell);

}  // namespace quorin::host::calc
