// CalcLookup: finding ranges by what they are: named, a region, in use, depending on others.
#pragma once

#include "host/Spreadsheet.h"
#include "host/calc/workbook/CalcWorkbooks.h"
#include "host/calc/workbook/CallLimits.h"

namespace quorin::host::calc {

// The cells of a name or of a part of a table; without a sheet, of the workbook's own. Nothing when
// there is no such name, or it stands for something else than cells of one sheet.
std::optional<RangeRef> findNamed(const Workbook& workbook, const std::string& sheet,
                                  const std::string& name, const CallLimits& limits);
// What a defined name stands for, in Calc's grammar without "="; nothing when there is none.
std::optional<std::string> nameContent(const Workbook& workbook, const std::string& sheet,
                                       const std::string& name);

// The cells that a defined name or a table refers to, if they are a range.
std::optional<RangeRef> referredCells(const Workbook& workbook,
                                      const css::uno::Reference<css::uno::XInterface>& entry);

std::optional<RangeRef> findCurrentRegion(const Workbook& workbook, const RangeRef& range);
std::optional<RangeRef> findUsedRange(const Workbook& workbook, const std::string& sheet);
// The smallest rectangle with all that stands in the cells; nothing when they are blank.
std::optional<Area> findFilledPart(const css::uno::Reference<css::table::XCellRange>& cells,
                                   const Area& area);
// The rectangles in which each cell is filled; they do not overlap.
std::vector<Area> findFilledParts(const css::uno::Reference<css::table::XCellRange>& cells,
                                  const Area& area);
std::optional<RangeRef> findDependents(const Workbook& workbook, const RangeRef& range,
                                       DependentLevels levels, const CallLimits& limits);

}  // namespace quorin::host::calc
