#include "host/calc/evaluation/MirrorNames.h"

#include <algorithm>
#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/container/XNamed.hpp>
#include <com/sun/star/sheet/XCellRangeReferrer.hpp>
#include <com/sun/star/sheet/XDatabaseRange.hpp>
#include <com/sun/star/sheet/XDatabaseRanges.hpp>
#include <com/sun/star/sheet/XNamedRange.hpp>
#include <com/sun/star/sheet/XNamedRanges.hpp>

#include "host/calc/cells/CalcNames.h"
#include "host/calc/uno/Text.h"
#include "host/calc/workbook/CalcRanges.h"

namespace quorin::host::calc {
namespace {

using css::beans::XPropertySet;
using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;

css::uno::Any propertyOf(const Reference<css::uno::XInterface>& owner, const char* name) {
  return Reference<XPropertySet>(owner, UNO_QUERY_THROW)
      ->getPropertyValue(rtl::OUString::createFromAscii(name));
}

// Calc takes a name like "Rate.2024" from a file, and by renaming, but not for a new name.
void addName(const Reference<css::sheet::XNamedRanges>& names, const rtl::OUString& name,
             const Reference<css::sheet::XNamedRange>& like) {
  const rtl::OUString newName("quorin_name");
  try {
    names->addNewByName(newName, like->getContent(), like->getReferencePosition(), 0);
    Reference<css::container::XNamed>(names->getByName(newName), UNO_QUERY_THROW)->setName(name);
  } catch (const css::uno::RuntimeException&) {
    // A file may hold names that no text can refer to.
    if (names->hasByName(newName)) names->removeByName(newName);
  }
}

bool isOfCells(const Reference<css::uno::XInterface>& name) {
  const Reference<css::sheet::XCellRangeReferrer> referrer(name, css::uno::UNO_QUERY);
  return referrer.is() && referrer->getReferredCells().is();
}

template <typename Entries>
void removeAll(const Reference<Entries>& entries, const CallLimits& limits) {
  for (const rtl::OUString& name : entries->getElementNames()) {
    limits.check();
    entries->removeByName(name);
  }
}

void copyDefinedNames(const Reference<css::uno::XInterface>& from,
                      const Reference<css::uno::XInterface>& to, const CallLimits& limits) {
  const Reference<css::sheet::XNamedRanges> source = definedNamesOf(from),
                                            target = definedNamesOf(to);
  removeAll(target, limits);
  for (const rtl::OUString& name : source->getElementNames()) {
    limits.check();
    const Reference<css::sheet::XNamedRange> entry(source->getByName(name), UNO_QUERY_THROW);
    if (isOfCells(entry)) addName(target, name, entry);
  }
}

void copyTables(const Workbook& from, const Workbook& to, const CallLimits& limits) {
  const auto tablesOf = [](const Workbook& workbook) {
    return Reference<css::sheet::XDatabaseRanges>(propertyOf(workbook.document, "DatabaseRanges"),
                                                  UNO_QUERY_THROW);
  };
  const Reference<css::sheet::XDatabaseRanges> source = tablesOf(from), target = tablesOf(to);
  removeAll(target, limits);
  for (const rtl::OUString& name : source->getElementNames()) {
    limits.check();
    const Reference<css::sheet::XDatabaseRange> table(source->getByName(name), UNO_QUERY_THROW);
    target->addNewByName(name, table->getDataArea());
    const Reference<XPropertySet> copy(target->getByName(name), UNO_QUERY_THROW);
    for (const char* property : {"ContainsHeader", "TotalsRow"}) {
      copy->setPropertyValue(rtl::OUString::createFromAscii(property), propertyOf(table, property));
    }
  }
}

}  // namespace

void copyNames(const Workbook& from, const Workbook& to, const CallLimits& limits) {
  copyDefinedNames(from.document, to.document, limits);
  for (const std::string& sheet : namedSheets(from)) {
    limits.check();
    copyDefinedNames(sheetOf(from, sheet), sheetOf(to, sheet), limits);
  }
  copyTables(from, to, limits);
}

}  // namespace quorin::host::calc
