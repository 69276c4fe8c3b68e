// CalcNames: the list of a workbook's defined names. Call thread.
#pragma once

#include <com/sun/star/sheet/XNamedRanges.hpp>
#include <string>
#include <vector>

#include "host/Spreadsheet.h"
#include "host/calc/grammar/FormulaTranslator.h"
#include "host/calc/workbook/CalcWorkbooks.h"
#include "host/calc/workbook/CallLimits.h"
#include "host/calc/workbook/OfficeMacro.h"

namespace quorin::host::calc {

// The names of a workbook's document or of a sheet.
css::uno::Reference<css::sheet::XNamedRanges> definedNamesOf(
    const css::uno::Reference<css::uno::XInterface>& owner);

class CalcNames {
 public:
  explicit CalcNames(const css::uno::Reference<css::uno::XComponentContext>& context);

  // The workbook's own names, then those of its sheets in their order.
  // SpreadsheetError -1712 when the limits are reached.
  std::vector<DefinedName> of(const Workbook& workbook, const CallLimits& limits);

 private:
  void add(std::vector<DefinedName>& list, const css::uno::Reference<css::uno::XInterface>& owner,
           const std::string& sheet, FormulaTranslator& translator, const CallLimits& limits);
  css::uno::Sequence<rtl::OUString> contents(
      const css::uno::Reference<css::sheet::XNamedRanges>& entries,
      const css::uno::Sequence<rtl::OUString>& names);

  OfficeMacro macro_;
};

}  // namespace quorin::host::calc
