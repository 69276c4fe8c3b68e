// ExpressionScope: what the words of an expression mean, as seen from one sheet: the workbook's
// sheets, defined names and tables. Call thread.
#pragma once

#include "host/calc/grammar/CalcExpression.h"
#include "host/calc/workbook/CalcWorkbooks.h"
#include "host/calc/workbook/CallLimits.h"

namespace quorin::host::calc {

// The context refers to the workbooks and the limits, which have to outlive it. The caller adds
// `elsewhere`.
ExpressionContext expressionScope(CalcWorkbooks& workbooks, const SheetRef& from,
                                  std::vector<std::string> sheets, const CallLimits& limits);

// Lets an expression of a workbook of ours name what is in the user's. The context refers to the
// workbooks and the limits, which have to outlive it.
void lookElsewhere(ExpressionContext& context, CalcWorkbooks& workbooks, const CallLimits& limits);

// The sheet as it is spelled there; nothing when one of the two names is unknown.
std::optional<SheetRef> findSheet(CalcWorkbooks& workbooks, const std::string& book,
                                  const std::string& sheet);

// The range's first area with its sheet, and with its workbook where that is not `book`.
std::string excelText(const RangeRef& range, const std::string& book);

// What stands in the cells; nothing where these are too many to be told one by one.
std::optional<Grid<CellValue>> formulasOf(CalcWorkbooks& workbooks, const RangeRef& cells,
                                          const CallLimits& limits);

// "/folder/[Book.xlsx]Sheet"; empty when the workbook has no file.
std::string fileNameOf(CalcWorkbooks& workbooks, const SheetRef& sheet);

}  // namespace quorin::host::calc
