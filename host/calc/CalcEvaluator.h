// CalcEvaluator: what an expression gives, worked out in a hidden workbook in the office that holds
// the values the expression looks at. The user's workbooks are only read. Call thread.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "host/Spreadsheet.h"
#include "host/calc/CalcExpression.h"
#include "host/calc/ValueMirror.h"

namespace quorin::host::calc {

// Of an expression with a call that depends on what no call of this kind can know.
constexpr const char* untoldText =
    "What CELL or FORMULATEXT tells here depends on the cell that was changed last, "
    "or on cells that are calculated";

class CalcEvaluator {
 public:
  explicit CalcEvaluator(css::uno::Reference<css::uno::XComponentContext> context)
      : context_(std::move(context)) {}

  // Throws SpreadsheetError -1728 when the workbook has no such sheet, -50 when the expression
  // looks at more cells than can be read in passing, or asks for what only a copy of the whole
  // workbook could tell and that is too large to be made in passing.
  Evaluation evaluate(CalcWorkbooks& workbooks, const std::string& expression,
                      const SheetRef& from);

 private:
  std::optional<std::string> referent(CalcWorkbooks& workbooks, const std::string& argument,
                                      const SheetRef& from);
  ValueMirror& mirrorOf(const Workbook& workbook, const std::vector<std::string>& sheets);
  Evaluation inMirror(CalcWorkbooks& workbooks, const std::string& expression,
                      ExpressionContext& context);
  Evaluation inCopy(CalcWorkbooks& workbooks, const std::string& expression,
                    ExpressionContext& context);

  const css::uno::Reference<css::uno::XComponentContext> context_;
  std::unique_ptr<ValueMirror> mirror_;  // of the workbook asked about last
};

}  // namespace quorin::host::calc
