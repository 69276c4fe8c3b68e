#include "host/calc/evaluation/CellLooks.h"

#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/lang/DisposedException.hpp>
#include <com/sun/star/lang/Locale.hpp>
#include <com/sun/star/sheet/XSheetOperation.hpp>
#include <com/sun/star/style/XStyleFamiliesSupplier.hpp>
#include <com/sun/star/table/XColumnRowRange.hpp>
#include <com/sun/star/util/XNumberFormatsSupplier.hpp>

#include "host/calc/cells/CalcCells.h"
#include "host/calc/cells/CellWriter.h"
#include "host/calc/uno/Answered.h"
#include "host/calc/uno/Text.h"
#include "host/calc/workbook/CalcRanges.h"

namespace quorin::host::calc {
namespace {

using css::beans::XPropertySet;
using css::uno::Any;
using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;

const Area standIn{1, 3, 1, 3};  // beside the formula

Reference<XPropertySet> columnOf(const Reference<css::table::XCellRange>& cell) {
  const Reference<css::table::XColumnRowRange> lines(cell, UNO_QUERY_THROW);
  return {answered(lines->getColumns())->getByIndex(0), UNO_QUERY_THROW};
}

// The style that says in which font a column's width counts.
Reference<XPropertySet> defaultStyle(const Workbook& workbook) {
  return {cellStylesOf(workbook.document)->getByName("Default"), UNO_QUERY_THROW};
}

void adopt(const Reference<XPropertySet>& ours, const Reference<XPropertySet>& theirs,
           std::initializer_list<const char*> names) {
  for (const char* name : names) {
    const rtl::OUString property = rtl::OUString::createFromAscii(name);
    const Any value = theirs->getPropertyValue(property);
    if (ours->getPropertyValue(property) != value) ours->setPropertyValue(property, value);
  }
}

// The number of a format counts in its own workbook alone.
Any sameFormat(const Workbook& ours, const Workbook& theirs, const Any& number) {
  sal_Int32 format = 0;
  number >>= format;
  const Reference<css::util::XNumberFormatsSupplier> from(theirs.document, UNO_QUERY_THROW),
      to(ours.document, UNO_QUERY_THROW);
  const auto properties = from->getNumberFormats()->getByKey(format);
  rtl::OUString text;
  css::lang::Locale locale;
  properties->getPropertyValue("FormatString") >>= text;
  properties->getPropertyValue("Locale") >>= locale;
  const auto formats = to->getNumberFormats();
  const sal_Int32 known = formats->queryKey(text, locale, false);
  return Any(known != -1 ? known : formats->addNew(text, locale));
}

}  // namespace

Reference<css::container::XNameAccess> cellStylesOf(
    const Reference<css::sheet::XSpreadsheetDocument>& document) {
  const Reference<css::style::XStyleFamiliesSupplier> supplier(document, UNO_QUERY_THROW);
  return {answered(supplier->getStyleFamilies())->getByName("CellStyles"), UNO_QUERY_THROW};
}

std::optional<CellValue> cellLooks(FormulaCells& formulas, Workbook& ours, const std::string& sheet,
                                   Workbook& theirs, const RangeRef& cell,
                                   const std::string& kind) {
  const auto source = cellsOf(theirs, cell.sheet.sheet, firstArea(cell));
  const auto target = cellsOf(ours, sheet, standIn);
  const Reference<XPropertySet> from(source, UNO_QUERY_THROW), to(target, UNO_QUERY_THROW);
  const bool ofColumn = kind == "WIDTH";
  try {
    if (ofColumn) {
      adopt(columnOf(target), columnOf(source), {"Width", "IsVisible"});
      adopt(defaultStyle(ours), defaultStyle(theirs),
            {"CharFontName", "CharHeight", "CharWeight", "CharPosture"});
    } else {
      writeValues(sheetOf(ours, sheet), standIn, readValues(theirs, cell, CallLimits()));
      adopt(to, from, {"HoriJustify", "CellProtection"});
      to->setPropertyValue("NumberFormat",
                           sameFormat(ours, theirs, from->getPropertyValue("NumberFormat")));
    }
  } catch (const css::lang::DisposedException&) {
    throw;
  } catch (const css::uno::Exception&) {
    return std::nullopt;
  }
  const Evaluation told = formulas.valueOf(
      {"CELL(\"" + kind + "\";" + calcAddress(sheet, standIn) + ")", {}, true}, CallLimits());
  constexpr sal_Int32 everything = 1023;
  if (!ofColumn)
    Reference<css::sheet::XSheetOperation>(target, UNO_QUERY_THROW)->clearContents(everything);
  const auto* value = std::get_if<CellValue>(&told);
  if (value == nullptr) return std::nullopt;
  // Calc tells of no prefix as of a NUL.
  const auto* text = std::get_if<std::string>(value);
  return text != nullptr && *text == std::string(1, '\0') ? CellValue("") : *value;
}

}  // namespace quorin::host::calc
