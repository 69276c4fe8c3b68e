// A small evaluator of Excel formulas for the spreadsheet of the tests: arithmetic, comparisons,
// text joining, errors, references, array constants and a handful of functions. What it does not
// know is #NAME?, text that does not parse too. Functions of several cells work on single values.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/Spreadsheet.h"

namespace quorin::fakes {

// What a formula may ask about the workbooks around it.
class FormulaContext {
 public:
  virtual ~FormulaContext() = default;
  virtual std::optional<host::SheetRef> sheet(const host::SheetRef& from,
                                              const std::optional<std::string>& book,
                                              const std::string& sheet) const = 0;
  virtual std::optional<host::RangeRef> name(const host::SheetRef& from,
                                             const std::string& name) const = 0;
  virtual host::Grid<host::CellValue> cells(const host::SheetRef& sheet,
                                            const host::Area& area) const = 0;
};

// `formula` with or without its "=", as seen from a sheet.
host::Evaluation evaluateFormula(std::string_view formula, const host::SheetRef& from,
                                 const FormulaContext& context);

}  // namespace quorin::fakes
