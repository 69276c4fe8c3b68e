// MadeArrays: functions that make an array of a size that they are told. Calc makes it whole before
// it looks how large it is, and one too large ends the office: so the size is known before it is
// asked for one. Pure functions over text and what the expression's context tells.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "host/calc/grammar/ArrayWork.h"
#include "host/calc/grammar/CallReach.h"

namespace quorin::host::calc {

bool makesArray(std::string_view function);

// The array that such a call makes; `shapes` are those of its arguments. Its size is written into
// the arguments as the number that it comes to, for one that is worked out again may come to
// another. SpreadsheetError -50 where it is not known.
ArrayCall madeArray(std::string_view function, std::vector<CallArgument>& arguments,
                    const std::vector<ArrayShape>& shapes, const ExpressionContext& context);

}  // namespace quorin::host::calc
