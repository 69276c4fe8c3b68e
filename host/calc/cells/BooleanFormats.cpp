#include "host/calc/cells/BooleanFormats.h"

#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/util/NumberFormat.hpp>
#include <com/sun/star/util/XNumberFormatsSupplier.hpp>

namespace quorin::host::calc {

using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;

bool isBoolean(Workbook& workbook, const Reference<css::table::XCell>& cell) {
  sal_Int32 format = 0;
  Reference<css::beans::XPropertySet>(cell, UNO_QUERY_THROW)->getPropertyValue("NumberFormat") >>=
      format;
  const auto known = workbook.booleanFormats.find(format);
  if (known != workbook.booleanFormats.end()) return known->second;
  const Reference<css::util::XNumberFormatsSupplier> supplier(workbook.document, UNO_QUERY_THROW);
  sal_Int16 type = 0;
  supplier->getNumberFormats()->getByKey(format)->getPropertyValue("Type") >>= type;
  const bool boolean = (type & css::util::NumberFormat::LOGICAL) != 0;
  workbook.booleanFormats[format] = boolean;
  return boolean;
}

}  // namespace quorin::host::calc
