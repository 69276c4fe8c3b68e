// CalcActive: what is active, a workbook that a client made or what the user's window shows. Each
// is nothing while no workbook is open. Call thread.
#pragma once

#include <optional>
#include <string>

#include "host/Spreadsheet.h"
#include "host/calc/CalcSession.h"

namespace quorin::host::calc {

std::optional<std::string> activeWorkbook(CalcSession& office);
std::optional<SheetRef> activeSheet(CalcSession& office);
std::optional<RangeRef> activeCell(CalcSession& office);
std::optional<RangeRef> selection(CalcSession& office);

// Of any workbook; -1728 when it is not open.
SheetRef activeSheetOf(CalcSession& office, const std::string& book);

// Of the user's windows alone. They count from 1, the active one first.
std::optional<RangeRef> visibleRange(CalcSession& office);
std::optional<Bounds> windowBounds(CalcSession& office, int index);
bool isFrontmost(CalcSession& office);

}  // namespace quorin::host::calc
