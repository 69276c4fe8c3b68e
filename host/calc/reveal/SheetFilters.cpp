#include "host/calc/reveal/SheetFilters.h"

#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/container/XNameAccess.hpp>
#include <com/sun/star/sheet/XCellRangeAddressable.hpp>
#include <com/sun/star/sheet/XDatabaseRange.hpp>
#include <com/sun/star/sheet/XSheetFilterDescriptor3.hpp>
#include <com/sun/star/sheet/XUnnamedDatabaseRanges.hpp>

#include "host/calc/uno/Text.h"

namespace quorin::host::calc {
namespace {

using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;
using Range = Reference<css::sheet::XDatabaseRange>;

// In a form of their own, for comparing.
std::string conditionsOf(const Reference<css::sheet::XSheetFilterDescriptor3>& filter) {
  std::string text;
  for (const auto& field : filter->getFilterFields3()) {
    text += std::to_string(field.Field) + " " + std::to_string(static_cast<int>(field.Connection)) +
            " " + std::to_string(field.Operator);
    for (const auto& value : field.Values) {
      text += value.IsNumeric ? " " + std::to_string(value.NumericValue)
                              : " \"" + toText(value.StringValue) + "\"";
    }
    text += "\n";
  }
  return text;
}

bool hasHeader(const Reference<css::sheet::XSheetFilterDescriptor3>& filter) {
  bool has = false;
  Reference<css::beans::XPropertySet>(filter, UNO_QUERY_THROW)
      ->getPropertyValue("ContainsHeader") >>= has;
  return has;
}

}  // namespace

SheetFilters::SheetFilters(const Workbook& workbook,
                           const Reference<css::sheet::XSpreadsheet>& sheet) {
  const sal_Int16 position =
      Reference<css::sheet::XCellRangeAddressable>(sheet, UNO_QUERY_THROW)->getRangeAddress().Sheet;
  const auto add = [&](const Range& range) {
    const css::table::CellRangeAddress area = range->getDataArea();
    if (area.Sheet != position) return;
    const Reference<css::sheet::XSheetFilterDescriptor3> filter(range->getFilterDescriptor(),
                                                                UNO_QUERY_THROW);
    std::string conditions = conditionsOf(filter);
    if (conditions.empty()) return;
    const int first = area.StartRow + 1;
    filters_.push_back({hasHeader(filter) ? first + 1 : first, area.EndRow + 1, conditions});
  };
  const Reference<css::beans::XPropertySet> properties(workbook.model, UNO_QUERY_THROW);
  const Reference<css::container::XNameAccess> named(properties->getPropertyValue("DatabaseRanges"),
                                                     UNO_QUERY_THROW);
  for (const rtl::OUString& name : named->getElementNames())
    add(Range(named->getByName(name), UNO_QUERY_THROW));
  const Reference<css::sheet::XUnnamedDatabaseRanges> unnamed(
      properties->getPropertyValue("UnnamedDatabaseRanges"), UNO_QUERY_THROW);
  if (unnamed->hasByTable(position)) add(Range(unnamed->getByTable(position), UNO_QUERY_THROW));
}

std::string SheetFilters::over(int row) const {
  std::string all;
  for (const Filter& each : filters_)
    if (each.firstRow <= row && row <= each.lastRow) all += each.conditions + ";";
  return all;
}

}  // namespace quorin::host::calc
