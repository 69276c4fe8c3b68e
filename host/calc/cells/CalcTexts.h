// CalcTexts: the displayed texts of cells, read a rectangle at a time. Call thread.
#pragma once

#include <string>

#include "host/Spreadsheet.h"
#include "host/calc/workbook/CalcWorkbooks.h"
#include "host/calc/workbook/CallLimits.h"

namespace quorin::host::calc {

// What is known of errors among the cells: possible ones are asked for, and are told by Excel's
// text.
enum class Errors { possible, none };

// What is known of the length of the texts: of any length, few are read at once.
enum class Texts { anyLength, shortOnes };

// All of the first area.
Grid<std::string> readTexts(const Workbook& workbook, const RangeRef& range, Errors errors,
                            Texts texts, const CallLimits& limits);

// Errors in the user's language. A call or two for all of them, which for one cell takes longer
// than its own text.
Grid<std::string> bulkTexts(const Workbook& workbook, const std::string& sheet, const Area& area,
                            const CallLimits& limits);

}  // namespace quorin::host::calc
