// CopyGuard: whether a workbook may be copied to be calculated there. In a copy the office works
// out cells of the workbook anew, and follows its links. Call thread.
#pragma once

#include "host/calc/grammar/CalcExpression.h"
#include "host/calc/workbook/CalcWorkbooks.h"
#include "host/calc/workbook/CallLimits.h"

namespace quorin::host::calc {

// SpreadsheetError onlyWhenAsked when one of its cells calls a function that is not known to be
// harmless, by itself or by a name, or finds cells by a text that is worked out, or when it has
// links; -1712 when the limits are reached. For workbooks of few filled cells. The context is that
// of the expression which is worked out there.
void refuseCopyThatReaches(Workbook& workbook, ExpressionContext context, const CallLimits& limits);

}  // namespace quorin::host::calc
