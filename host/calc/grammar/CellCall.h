// CellCall: calls of CELL, written anew in Calc's grammar where Calc would not find in a workbook
// of ours what they ask for. A pure function over text and what the expression's context tells.
#pragma once

#include <optional>
#include <string>

#include "host/calc/grammar/FunctionCalls.h"

namespace quorin::host::calc {

// What stands for the call; nothing for it to stay as it is. Sets what the answer depends on.
std::optional<std::string> cellCall(const FunctionCall& call, const ExpressionContext& context,
                                    Reach& reach);

}  // namespace quorin::host::calc
