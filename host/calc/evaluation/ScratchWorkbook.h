// ScratchWorkbook: a workbook made for a client, which nobody else sees. Formulas written into it
// spill as Excel's do. The cells of the user's workbooks that they refer to stand beside it, with
// the values they had when the last formula was written. Call thread.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "host/Spreadsheet.h"
#include "host/calc/evaluation/OfficeFunctions.h"
#include "host/calc/evaluation/ValueMirror.h"

namespace quorin::host::calc {

class ScratchWorkbook {
 public:
  static constexpr const char* onlySheet = "Sheet1";

  // It calculates as `like` does.
  ScratchWorkbook(const css::uno::Reference<css::uno::XComponentContext>& context, std::string name,
                  const Workbook* like);

  const std::string& name() const { return name_; }
  Workbook& workbook() { return mirror_.workbook(); }

  // Into the range's first cell; anything without "=" is a text. Of a result too large to be
  // calculated in passing only the first cells are there.
  void setFormula(CalcWorkbooks& workbooks, const RangeRef& range, const std::string& formula,
                  const CallLimits& limits);
  // As they were written, and the values of cells without one.
  Grid<CellValue> formulas(const RangeRef& range, const CallLimits& limits);

 private:
  using Cell = std::pair<int, int>;  // row and column
  ExpressionContext scope(CalcWorkbooks& workbooks, const CallLimits& limits);
  std::optional<CellValue> valueOf(CalcWorkbooks& workbooks, const std::string& argument,
                                   const CallLimits& limits);
  CalcExpression possible(CalcExpression calc) const;
  void enter(const Area& area, const std::string& formula);
  void clear(const Area& area);
  bool isBlank(const Area& area);
  double longestText(const CalcExpression& calc, const CallLimits& limits);

  const std::string name_;
  ValueMirror mirror_;
  Reach reach_;  // of all formulas
  std::map<Cell, std::string> written_;
  std::map<Cell, Area> spills_;
  OfficeFunctions functions_;
  int questions_ = 0;  // that the present formula leads to
};

}  // namespace quorin::host::calc
