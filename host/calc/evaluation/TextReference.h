// TextReference: text that is a reference, as seen from one sheet. Call thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/calc/workbook/CalcWorkbooks.h"
#include "host/calc/workbook/CallLimits.h"

namespace quorin::host::calc {

// An expression that is nothing but a range or the name of one, with or without brackets and "=".
std::optional<RangeRef> asReference(CalcWorkbooks& workbooks, std::string_view text,
                                    const SheetRef& from, const CallLimits& limits);

// The cells that INDIRECT finds by the text, as Excel text for the formula: a range, or what a name
// or a part of a table stands for. Empty where there is nothing of that name. Nothing at all where
// either is not certain: then Calc has to tell.
std::optional<std::string> namedByText(CalcWorkbooks& workbooks, const std::string& text,
                                       const SheetRef& from, const CallLimits& limits);

}  // namespace quorin::host::calc
