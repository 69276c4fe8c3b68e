// Writes values into cells of a workbook of ours so that a formula finds in them what it would find
// in the cells they come from.
#pragma once

#include <com/sun/star/sheet/XSpreadsheet.hpp>

#include "host/Spreadsheet.h"

namespace quorin::host::calc {

void writeValues(const css::uno::Reference<css::sheet::XSpreadsheet>& sheet, const Area& area,
                 const Grid<CellValue>& values);

}  // namespace quorin::host::calc
