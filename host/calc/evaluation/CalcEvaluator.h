// CalcEvaluator: what an expression gives, worked out in a hidden workbook in the office that holds
// the values the expression looks at. The user's workbooks are only read. Call thread.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>

#include "host/Spreadsheet.h"
#include "host/calc/evaluation/OfficeFunctions.h"
#include "host/calc/evaluation/ValueMirror.h"
#include "host/calc/grammar/CalcExpression.h"
#include "host/calc/workbook/CallLimits.h"

namespace quorin::host::calc {

// Of an expression with a call that depends on what no call of this kind can know.
constexpr const char* untoldText =
    "What CELL or FORMULATEXT tells here depends on the cell that was changed last, "
    "or on cells that are calculated";

// What takes a copy of the whole workbook.
constexpr const char* onlyInCopyText =
    "What GETPIVOTDATA, TABLE and CELL tell of pivot tables, data tables and the formats of "
    "calculated cells";

class CalcEvaluator {
 public:
  explicit CalcEvaluator(css::uno::Reference<css::uno::XComponentContext> context)
      : context_(std::move(context)) {}

  // Throws SpreadsheetError -1728 when the workbook has no such sheet, -50 when the expression
  // looks at more cells than can be read in passing, or asks for what only a copy of the whole
  // workbook could tell and that is too large to be made in passing, onlyWhenAsked when it would
  // call a function that may reach out of the workbook, -1712 when the limits are reached.
  Evaluation evaluate(CalcWorkbooks& workbooks, const std::string& expression, const SheetRef& from,
                      const CallLimits& limits);

 private:
  // One request, with all the questions that answering it leads to.
  struct Request {
    CalcWorkbooks& workbooks;
    const SheetRef& from;
    const CallLimits& limits;
    std::map<std::string, std::optional<std::string>> referents = {};  // asked for once
    std::map<std::string, std::optional<std::string>> errors = {};
    std::map<std::string, std::optional<CellValue>> values = {}, looks = {};
    int depth = 0;  // of questions within questions
    int count = 0;
  };
  Evaluation answer(Request& request, const std::string& expression);
  Evaluation calculated(Request& request, const std::string& expression);
  std::optional<CellValue> valueOf(Request& request, const std::string& argument);
  std::optional<std::string> referent(Request& request, const std::string& argument);
  ValueMirror& mirrorOf(const Workbook& workbook, const std::vector<std::string>& sheets,
                        const CallLimits& limits);
  ExpressionContext scope(Request& request, std::vector<std::string> sheets);
  Evaluation inMirror(Request& request, const std::string& expression, ExpressionContext& context);
  Evaluation inCopy(Request& request, const std::string& expression, ExpressionContext& context);

  const css::uno::Reference<css::uno::XComponentContext> context_;
  std::unique_ptr<ValueMirror> mirror_;  // of the workbook asked about last
  OfficeFunctions functions_;
};

}  // namespace quorin::host::calc
