#include "host/calc/cells/CalcNames.h"

#include <algorithm>
#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/container/NoSuchElementException.hpp>
#include <com/sun/star/sheet/XNamedRange.hpp>

#include "host/calc/uno/Arguments.h"
#include "host/calc/uno/Text.h"
#include "host/calc/workbook/CalcRanges.h"

namespace quorin::host::calc {
namespace {

using css::sheet::XNamedRanges;
using css::uno::Any;
using css::uno::Reference;
using css::uno::Sequence;
using css::uno::UNO_QUERY_THROW;

// Gives "=" and what each name stands for, and nothing for one that is gone meanwhile. Two calls
// from outside for each name would take several times as long.
constexpr const char* macroText = R"(
Function perform(entries, names)
  EnableReschedule False
  On Error Resume Next
  Dim i, found
  ReDim found(UBound(names))
  For i = 0 To UBound(names)
    found(i) = ""
    found(i) = "=" & entries.getByName(names(i)).getContent()
  Next
  EnableReschedule True
  perform = found
End Function
)";

constexpr sal_Int32 fewNames = 100;      // not worth the macro
constexpr sal_Int32 namesAtOnce = 1000;  // the office does nothing else for these

Sequence<rtl::OUString> contentsOneByOne(const Reference<XNamedRanges>& entries,
                                         const Sequence<rtl::OUString>& names) {
  Sequence<rtl::OUString> contents(names.getLength());
  for (sal_Int32 i = 0; i < names.getLength(); ++i) {
    try {
      const Reference<css::sheet::XNamedRange> entry(entries->getByName(names[i]), UNO_QUERY_THROW);
      contents.getArray()[i] = "=" + entry->getContent();
    } catch (const css::container::NoSuchElementException&) {
      // Gone meanwhile.
    }
  }
  return contents;
}

}  // namespace

Reference<XNamedRanges> definedNamesOf(const Reference<css::uno::XInterface>& owner) {
  const Reference<css::beans::XPropertySet> properties(owner, UNO_QUERY_THROW);
  return {properties->getPropertyValue("NamedRanges"), UNO_QUERY_THROW};
}

CalcNames::CalcNames(const Reference<css::uno::XComponentContext>& context)
    : macro_(context, macroText) {}

Sequence<rtl::OUString> CalcNames::contents(const Reference<XNamedRanges>& entries,
                                            const Sequence<rtl::OUString>& names) {
  Sequence<rtl::OUString> found;
  const auto told = names.getLength() > fewNames
                        ? macro_.run(sequenceOf<Any>({Any(entries), Any(names)}))
                        : std::nullopt;
  const bool isTold = told && (*told >>= found) && found.getLength() == names.getLength();
  return isTold ? found : contentsOneByOne(entries, names);
}

void CalcNames::add(std::vector<DefinedName>& list, const Reference<css::uno::XInterface>& owner,
                    const std::string& sheet, FormulaTranslator& translator,
                    const CallLimits& limits) {
  limits.check();
  const Reference<XNamedRanges> entries = definedNamesOf(owner);
  const Sequence<rtl::OUString> names = entries->getElementNames();
  for (sal_Int32 first = 0; first < names.getLength(); first += namesAtOnce) {
    limits.check();
    const sal_Int32 count = std::min(namesAtOnce, names.getLength() - first);
    const Sequence<rtl::OUString> some(names.getConstArray() + first, count);
    const Sequence<rtl::OUString> told = contents(entries, some);
    for (sal_Int32 i = 0; i < count; ++i) {
      if (some[i].startsWithIgnoreAsciiCase("_xlnm.")) continue;  // a file's print areas, filters
      if (told[i].isEmpty()) continue;
      list.push_back({toText(some[i]), sheet, translator.excelFormula(toText(told[i]), {})});
    }
  }
}

std::vector<DefinedName> CalcNames::of(const Workbook& workbook, const CallLimits& limits) {
  std::vector<DefinedName> list;
  FormulaTranslator translator(ReferenceStyle::a1, sheetTest(workbook));
  add(list, workbook.document, {}, translator, limits);
  for (const std::string& sheet : namedSheets(workbook)) {
    add(list, sheetOf(workbook, sheet), sheet, translator, limits);
  }
  return list;
}

}  // namespace quorin::host::calc
