// The data of many cells, read without the copy that UNO's C++ binding makes of what it returns.
// Call thread.
#pragma once

#include <com/sun/star/sheet/XCellRangeData.hpp>

namespace quorin::host::calc {

// As XCellRangeData::getDataArray gives it: a number, a text or nothing (an error) for each cell.
css::uno::Sequence<css::uno::Sequence<css::uno::Any>> cellData(
    const css::uno::Reference<css::sheet::XCellRangeData>& cells);

}  // namespace quorin::host::calc
