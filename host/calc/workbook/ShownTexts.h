// ShownTexts: what tells the displayed texts of a user's workbook, those of many cells in one call.
// Calc ends when a document that was closed is asked for it, and the user may close his at any
// moment. So looking whether it is open and asking are one step inside the office, that of a macro.
// Call thread.
#pragma once

#include <com/sun/star/chart2/data/XDataProvider.hpp>
#include <com/sun/star/sheet/XSpreadsheetDocument.hpp>

#include "host/calc/workbook/OfficeMacro.h"

namespace quorin::host::calc {

class ShownTexts {
 public:
  explicit ShownTexts(const css::uno::Reference<css::uno::XComponentContext>& context);

  // Nothing when the document was closed, or where the office runs no macros.
  css::uno::Reference<css::chart2::data::XDataProvider> of(
      const css::uno::Reference<css::sheet::XSpreadsheetDocument>& document);

 private:
  OfficeMacro macro_;
};

}  // namespace quorin::host::calc
