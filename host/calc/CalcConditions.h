// CalcConditions: the format conditions of a sheet: the user's rules, which are read alone, and
// after them our own marks, which are drawn over the cells. A cell with several marks is coloured
// by the first of them. Call thread.
//
// Changing a rule of the user's is SpreadsheetError -10006, making a condition with another formula
// than a mark's -1708.
#pragma once

#include "host/Spreadsheet.h"
#include "host/calc/CalcWorkbooks.h"

namespace quorin::host::calc {

std::vector<FormatCondition> listConditions(const Workbook& workbook, const RangeRef& range);
std::string addMark(const Workbook& workbook, const RangeRef& range, const std::string& formula);
void fillMark(const Workbook& workbook, const SheetRef& sheet, const std::string& id,
              const std::optional<Color>& fill);
// Marks keep their place; what is asked is only looked at.
void checkPriority(const Workbook& workbook, const SheetRef& sheet, const std::string& id,
                   int priority);
void moveMark(const Workbook& workbook, const RangeRef& range, const std::string& id);
void eraseMark(const Workbook& workbook, const RangeRef& range, const std::string& id);

}  // namespace quorin::host::calc
