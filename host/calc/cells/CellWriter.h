// Writes values into cells of a workbook of ours so that a formula finds in them what it would find
// in the cells they come from.
#pragma once

#include <com/sun/star/sheet/XSpreadsheet.hpp>
#include <vector>

#include "host/Spreadsheet.h"

namespace quorin::host::calc {

enum class CellKind : char { constant, formula, subtotal };

// Row by row; empty when all are constants.
using CellKinds = std::vector<CellKind>;

void writeValues(const css::uno::Reference<css::sheet::XSpreadsheet>& sheet, const Area& area,
                 const Grid<CellValue>& values, const CellKinds& kinds = {});

}  // namespace quorin::host::calc
