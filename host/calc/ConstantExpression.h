// ConstantExpression: tells an expression that needs no workbook. A pure function over text.
#pragma once

#include <string_view>

namespace quorin::host::calc {

// Whether an Excel expression is made of numbers, texts, TRUE, FALSE, operators and nothing that a
// workbook could give another meaning: no reference, no name, and of functions only IFERROR and
// ERROR.TYPE. False when in doubt.
bool isConstantExpression(std::string_view excel);

}  // namespace quorin::host::calc
