// CalcLookup: finding ranges by what they are: named, a region, in use, depending on others.
#pragma once

#include "host/Spreadsheet.h"
#include "host/calc/CalcWorkbooks.h"

namespace quorin::host::calc {

std::optional<RangeRef> findNamed(const Workbook& workbook, const std::string& sheet,
                                  const std::string& name);
std::optional<RangeRef> findCurrentRegion(const Workbook& workbook, const RangeRef& range);
std::optional<RangeRef> findUsedRange(const Workbook& workbook, const std::string& sheet);
std::optional<RangeRef> findDependents(const Workbook& workbook, const RangeRef& range,
                                       DependentLevels levels);

}  // namespace quorin::host::calc
