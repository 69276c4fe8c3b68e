// The shapes in which Excel answers: reals for all numbers of cells, "" for a blank cell, missing
// value for an error, a scalar for one cell and a list of rows for more.
#pragma once

#include <optional>
#include <string>

#include "host/Spreadsheet.h"
#include "host/model/Object.h"
#include "kit/value/AppleEventDescriptor.h"

namespace quorin::host {

AppleEventDescriptor valueAnswer(CellValue value);
AppleEventDescriptor valueAnswer(Grid<CellValue> grid);
// As values, but an error constant is its text.
AppleEventDescriptor formulaAnswer(Grid<CellValue> grid);
AppleEventDescriptor textAnswer(Grid<std::string> grid);

// An integer, or a real above 2147483647.
AppleEventDescriptor countAnswer(long long count);

// Missing value for nothing.
Resolved objectAnswer(std::optional<RangeRef> range);
Resolved objectAnswer(std::optional<SheetRef> sheet);

}  // namespace quorin::host
