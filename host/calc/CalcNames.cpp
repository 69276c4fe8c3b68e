#include "host/calc/CalcNames.h"

#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/sheet/XNamedRange.hpp>
#include <com/sun/star/sheet/XNamedRanges.hpp>

#include "host/calc/CalcRanges.h"
#include "host/calc/FormulaTranslator.h"
#include "host/calc/Text.h"

namespace quorin::host::calc {
namespace {

using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;

void addNames(std::vector<DefinedName>& list, const Reference<css::uno::XInterface>& owner,
              const std::string& sheet, const IsSheet& isSheet, const CallLimits& limits) {
  limits.check();
  const Reference<css::sheet::XNamedRanges> names(
      Reference<css::beans::XPropertySet>(owner, UNO_QUERY_THROW)->getPropertyValue("NamedRanges"),
      UNO_QUERY_THROW);
  for (const rtl::OUString& name : names->getElementNames()) {
    limits.check();
    if (name.startsWithIgnoreAsciiCase("_xlnm.")) continue;  // a file's print areas and filters
    const Reference<css::sheet::XNamedRange> entry(names->getByName(name), UNO_QUERY_THROW);
    const std::string content = "=" + toText(entry->getContent());
    list.push_back({toText(name), sheet, excelFormula(content, ReferenceStyle::a1, {}, isSheet)});
  }
}

}  // namespace

std::vector<DefinedName> listNames(const Workbook& workbook, const CallLimits& limits) {
  std::vector<DefinedName> list;
  const IsSheet isSheet = sheetTest(workbook);
  addNames(list, workbook.document, {}, isSheet, limits);
  for (const std::string& sheet : sheetNames(workbook)) {
    addNames(list, sheetOf(workbook, sheet), sheet, isSheet, limits);
  }
  return list;
}

}  // namespace quorin::host::calc
