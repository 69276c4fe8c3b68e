#include "host/calc/workbook/CalcRanges.h"

#include <algorithm>
#include <com/sun/star/container/NoSuchElementException.hpp>
#include <com/sun/star/lang/IndexOutOfBoundsException.hpp>
#include <com/sun/star/sheet/XCellRangeAddressable.hpp>
#include <com/sun/star/sheet/XCellRangeFormula.hpp>
#include <com/sun/star/sheet/XSheetCellRanges.hpp>
#include <utility>

#include "host/Address.h"
#include "host/calc/grammar/ReferenceText.h"
#include "host/calc/uno/Text.h"
#include "kit/value/EventErrors.h"

namespace quorin::host::calc {

using css::uno::Reference;
using css::uno::Sequence;
using css::uno::UNO_QUERY;
using css::uno::UNO_QUERY_THROW;

Reference<css::sheet::XSpreadsheet> sheetOf(const Workbook& workbook, const std::string& name) {
  try {
    return {workbook.sheets->getByName(toUno(name)), UNO_QUERY_THROW};
  } catch (const css::container::NoSuchElementException&) {
    throw noSuchSheet(name);
  }
}

SpreadsheetError noSuchSheet(const std::string& name) {
  return {eventErrors::noSuchObject, "There is no worksheet named \"" + name + "\""};
}

std::vector<std::string> sheetNames(const Workbook& workbook) {
  const css::uno::Sequence<rtl::OUString> names = workbook.sheets->getElementNames();
  std::vector<std::string> result;
  result.reserve(static_cast<std::size_t>(names.getLength()));
  for (const rtl::OUString& name : names) result.push_back(toText(name));
  return result;
}

std::vector<std::string> namedSheets(const Workbook& workbook) {
  return withoutNameless(sheetNames(workbook));
}

std::vector<std::string> withoutNameless(std::vector<std::string> sheets) {
  std::erase(sheets, "");
  return sheets;
}

std::vector<Reference<css::sheet::XSpreadsheet>> sheetsOf(const Workbook& workbook) {
  const Reference<css::container::XIndexAccess> sheets(workbook.sheets, UNO_QUERY_THROW);
  std::vector<Reference<css::sheet::XSpreadsheet>> result;
  const sal_Int32 count = sheets->getCount();
  for (sal_Int32 i = 0; i < count; ++i) result.emplace_back(sheets->getByIndex(i), UNO_QUERY_THROW);
  return result;
}

IsSheet sheetTest(const Workbook& workbook) {
  return [&workbook,
          names = std::optional<std::vector<std::string>>()](const std::string& name) mutable {
    if (!names) names = sheetNames(workbook);
    return std::find(names->begin(), names->end(), name) != names->end();
  };
}

Area areaOf(const css::table::CellRangeAddress& address) {
  return {address.StartRow + 1, address.StartColumn + 1, address.EndRow + 1, address.EndColumn + 1};
}

Reference<css::table::XCellRange> cellsOf(const Reference<css::sheet::XSpreadsheet>& sheet,
                                          const Area& area) {
  try {
    return sheet->getCellRangeByPosition(area.firstColumn - 1, area.firstRow - 1,
                                         area.lastColumn - 1, area.lastRow - 1);
  } catch (const css::lang::IndexOutOfBoundsException&) {
    throw SpreadsheetError(eventErrors::noSuchObject, "There is no such range");
  }
}

Reference<css::table::XCellRange> cellsOf(const Workbook& workbook, const std::string& sheet,
                                          const Area& area) {
  return cellsOf(sheetOf(workbook, sheet), area);
}

Sequence<Sequence<rtl::OUString>> formulasOf(const Reference<css::table::XCellRange>& cells,
                                             const Area& area) {
  auto rows = Reference<css::sheet::XCellRangeFormula>(cells, UNO_QUERY_THROW)->getFormulaArray();
  const sal_Int32 height = rowCount(area), width = columnCount(area);
  if (rows.getLength() < height) rows.realloc(height);
  for (sal_Int32 row = 0; row < height; ++row)
    if (std::as_const(rows)[row].getLength() < width) rows[row].realloc(width);
  return rows;
}

std::string calcAddress(const std::string& sheet, const Area& area) {
  const auto end = [](int row, int column) {
    return "$" + columnLetters(column) + "$" + std::to_string(row);
  };
  return calcSheet(sheet) + "." + end(area.firstRow, area.firstColumn) + ":" +
         end(area.lastRow, area.lastColumn);
}

std::optional<RangeRef> rangeOf(const Workbook& workbook,
                                const Reference<css::uno::XInterface>& cells) {
  std::vector<css::table::CellRangeAddress> addresses;
  if (const Reference<css::sheet::XCellRangeAddressable> one(cells, UNO_QUERY); one.is()) {
    addresses.push_back(one->getRangeAddress());
  } else if (const Reference<css::sheet::XSheetCellRanges> several(cells, UNO_QUERY);
             several.is()) {
    for (const auto& address : several->getRangeAddresses()) addresses.push_back(address);
  }
  if (addresses.empty()) return std::nullopt;
  const std::vector<std::string> names = sheetNames(workbook);
  const auto sheet = static_cast<std::size_t>(addresses.front().Sheet);
  if (sheet >= names.size()) return std::nullopt;
  RangeRef range{{workbook.name, names[sheet]}, {}};
  for (const auto& address : addresses) {
    if (address.Sheet == addresses.front().Sheet) range.areas.push_back(areaOf(address));
  }
  return range;
}

const Area& firstArea(const RangeRef& range) {
  if (range.areas.empty())
    throw SpreadsheetError(eventErrors::badParameter, "The range has no cells");
  return range.areas.front();
}

}  // namespace quorin::host::calc
