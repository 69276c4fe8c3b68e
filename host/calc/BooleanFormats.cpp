#include "host/calc/BooleanFormats.h"

#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/container/XIndexAccess.hpp>
#include <com/sun/star/sheet/XCellFormatRangesSupplier.hpp>
#include <com/sun/star/sheet/XCellRangeAddressable.hpp>
#include <com/sun/star/sheet/XSheetCellRanges.hpp>
#include <com/sun/star/sheet/XUniqueCellFormatRangesSupplier.hpp>
#include <com/sun/star/util/NumberFormat.hpp>
#include <com/sun/star/util/XNumberFormatsSupplier.hpp>

#include "host/calc/CalcRanges.h"

namespace quorin::host::calc {
namespace {

using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;

bool isBoolean(Workbook& workbook, sal_Int32 format) {
  const auto known = workbook.booleanFormats.find(format);
  if (known != workbook.booleanFormats.end()) return known->second;
  const Reference<css::util::XNumberFormatsSupplier> supplier(workbook.document, UNO_QUERY_THROW);
  sal_Int16 type = 0;
  supplier->getNumberFormats()->getByKey(format)->getPropertyValue("Type") >>= type;
  const bool boolean = (type & css::util::NumberFormat::LOGICAL) != 0;
  workbook.booleanFormats[format] = boolean;
  return boolean;
}

sal_Int32 numberFormat(const Reference<css::uno::XInterface>& cells) {
  const Reference<css::beans::XPropertySet> properties(cells, UNO_QUERY_THROW);
  sal_Int32 format = 0;
  properties->getPropertyValue("NumberFormat") >>= format;
  return format;
}

}  // namespace

void forEachBooleanArea(Workbook& workbook, const Reference<css::table::XCellRange>& cells,
                        const std::function<void(const Area&)>& visit) {
  const css::table::CellRangeAddress whole =
      Reference<css::sheet::XCellRangeAddressable>(cells, UNO_QUERY_THROW)->getRangeAddress();
  if (whole.StartRow == whole.EndRow && whole.StartColumn == whole.EndColumn) {
    if (isBoolean(workbook, numberFormat(cells))) visit(areaOf(whole));
    return;
  }
  // A range of several cells gives the format of its first one, so ask for each group alike.
  const Reference<css::sheet::XUniqueCellFormatRangesSupplier> supplier(cells, UNO_QUERY_THROW);
  const Reference<css::container::XIndexAccess> groups = supplier->getUniqueCellFormatRanges();
  for (sal_Int32 i = 0; i < groups->getCount(); ++i) {
    const Reference<css::sheet::XSheetCellRanges> group(groups->getByIndex(i), UNO_QUERY_THROW);
    if (!isBoolean(workbook, numberFormat(group))) continue;
    for (const auto& address : group->getRangeAddresses()) visit(areaOf(address));
  }
}

}  // namespace quorin::host::calc
