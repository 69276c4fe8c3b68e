// CalcEvaluator: what an expression gives, worked out in a hidden copy of the workbook. The copy is
// made when an expression is asked for and the workbook has changed since the last one. Call
// thread.
#pragma once

#include <memory>

#include "host/Spreadsheet.h"
#include "host/calc/CalcExpression.h"
#include "host/calc/HiddenClone.h"

namespace quorin::host::calc {

class CalcEvaluator {
 public:
  explicit CalcEvaluator(css::uno::Reference<css::uno::XComponentContext> context)
      : context_(std::move(context)) {}

  // Throws SpreadsheetError -1728 when the workbook has no such sheet.
  Evaluation evaluate(CalcWorkbooks& workbooks, const std::string& expression,
                      const SheetRef& from);

 private:
  std::optional<RangeRef> asReference(CalcWorkbooks& workbooks, const std::string& expression,
                                      const SheetRef& from);
  static Evaluation inClone(HiddenClone& clone, const std::string& calcText,
                            const std::string& sheet);

  const css::uno::Reference<css::uno::XComponentContext> context_;
  std::unique_ptr<HiddenClone> clone_;  // of the workbook asked about last
  std::unique_ptr<HiddenClone> empty_;  // where expressions without references are evaluated
};

}  // namespace quorin::host::calc
