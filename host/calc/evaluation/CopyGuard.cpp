#include "host/calc/evaluation/CopyGuard.h"

#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/container/XElementAccess.hpp>
#include <com/sun/star/sheet/CellFlags.hpp>
#include <com/sun/star/sheet/XCellRangesQuery.hpp>
#include <com/sun/star/sheet/XSheetCellRanges.hpp>

#include "host/calc/cells/CalcCells.h"
#include "host/calc/uno/Answered.h"
#include "host/calc/workbook/CalcRanges.h"

namespace quorin::host::calc {
namespace {

using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;

void refuseLinks(const Workbook& workbook) {
  const Reference<css::beans::XPropertySet> properties(workbook.document, UNO_QUERY_THROW);
  for (const char* kind : {"AreaLinks", "DDELinks", "ExternalDocLinks", "SheetLinks"}) {
    const Reference<css::container::XElementAccess> links(
        properties->getPropertyValue(rtl::OUString::createFromAscii(kind)), UNO_QUERY_THROW);
    if (links->hasElements()) {
      throw SpreadsheetError(onlyWhenAsked, "The workbook has links, so only when you ask.");
    }
  }
}

void refuseFormula(std::string formula, const ExpressionContext& context) {
  if (formula.starts_with('{') && formula.ends_with('}')) {
    formula = formula.substr(1, formula.size() - 2);
  }
  const auto written = calcExpression(formula, context);
  if (!written) {
    throw SpreadsheetError(onlyWhenAsked,
                           "The workbook has a formula that cannot be read, so only when you ask.");
  }
  // In the copy it stands as it is, and its text may name another file.
  if (written->reach.byText) {
    throw SpreadsheetError(onlyWhenAsked,
                           "The workbook finds cells by texts, so only when you ask.");
  }
}

}  // namespace

void refuseCopyThatReaches(Workbook& workbook, ExpressionContext context,
                           const CallLimits& limits) {
  refuseLinks(workbook);
  context.referent = {};  // nothing is worked out while looking
  context.errorOf = {};
  context.valueOf = {};
  context.looks = {};
  context.knows = {};
  for (const std::string& sheet : context.sheets) {
    limits.check();
    context.from.sheet = sheet;
    const Reference<css::sheet::XCellRangesQuery> query(sheetOf(workbook, sheet), UNO_QUERY_THROW);
    const auto formulas = answered(query->queryContentCells(css::sheet::CellFlags::FORMULA));
    for (const auto& address : formulas->getRangeAddresses()) {
      limits.check();
      const RangeRef cells{context.from, {areaOf(address)}};
      const Grid<CellValue> texts =
          readContents(workbook, cells, ReferenceStyle::a1, limits).formulas;
      for (const CellValue& text : texts.cells) {
        limits.check();
        if (const auto* formula = std::get_if<std::string>(&text)) refuseFormula(*formula, context);
      }
    }
  }
}

}  // namespace quorin::host::calc
