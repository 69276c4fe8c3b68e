#include "host/calc/workbook/ShownTexts.h"

#include "host/calc/uno/Arguments.h"

namespace quorin::host::calc {
namespace {

using css::uno::Any;
using css::uno::Reference;

// A document that was closed has no sheets.
constexpr const char* macroText = R"(
Function perform(document)
  EnableReschedule False
  On Error Goto closed
  If Not IsNull(document.getSheets()) Then
    perform = document.createInstance("com.sun.star.chart2.data.DataProvider")
  End If
closed:
  EnableReschedule True
End Function
)";

}  // namespace

ShownTexts::ShownTexts(const Reference<css::uno::XComponentContext>& context)
    : macro_(context, macroText) {}

Reference<css::chart2::data::XDataProvider> ShownTexts::of(
    const Reference<css::sheet::XSpreadsheetDocument>& document) {
  Reference<css::chart2::data::XDataProvider> provider;
  if (const auto made = macro_.run(sequenceOf<Any>({Any(document)}))) *made >>= provider;
  return provider;
}

}  // namespace quorin::host::calc
