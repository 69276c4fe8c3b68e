// ReferenceWriter: references of an Excel expression in Calc's grammar. Pure functions over text
// and what the expression's context tells.
#pragma once

#include <optional>
#include <string>

#include "host/calc/grammar/CalcExpression.h"
#include "host/calc/grammar/ExcelReference.h"

namespace quorin::host::calc {

// Where a sheet is; nothing when the workbook or the sheet is not there. No book is the
// expression's own.
std::optional<SheetPlace> placeOf(const ExpressionContext& context, const std::string& book,
                                  const std::string& sheet);

struct WrittenReference {
  std::string text;
  bool several;  // it is more than one cell
};

// Adds its cells to what is reached. Nothing when a sheet is not there.
std::optional<WrittenReference> writeReference(const std::optional<SheetSpan>& span,
                                               const RangeText& range,
                                               const ExpressionContext& context, Reach& reach);

}  // namespace quorin::host::calc
