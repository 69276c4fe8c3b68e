#include "host/calc/cells/CalcTables.h"

#include <algorithm>
#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/sheet/XCellRangeReferrer.hpp>

#include "host/Address.h"
#include "host/calc/cells/CalcLookup.h"
#include "host/calc/cells/CalcTexts.h"
#include "host/calc/grammar/ReferenceText.h"
#include "host/calc/workbook/CalcRanges.h"
#include "kit/value/Unicode.h"

namespace quorin::host::calc {
namespace {

using css::beans::XPropertySet;
using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;

bool flag(const Reference<XPropertySet>& properties, const char* name) {
  bool value = false;
  properties->getPropertyValue(rtl::OUString::createFromAscii(name)) >>= value;
  return value;
}

// The column whose header has that text; 0 when none has.
int columnNamed(const Workbook& workbook, const RangeRef& headers, const std::string& name,
                const CallLimits& limits) {
  const Grid<std::string> texts =
      readTexts(workbook, headers, Errors::none, Texts::anyLength, limits);
  for (std::size_t i = 0; i < texts.cells.size(); ++i) {
    if (caselesslyEqual(texts.cells[i], name)) {
      return headers.areas.front().firstColumn + static_cast<int>(i);
    }
  }
  return 0;
}

bool chooseRows(Area& area, bool header, bool total, const TableItems& items,
                std::optional<int> row) {
  const int dataFirst = area.firstRow + (header ? 1 : 0);
  const int dataLast = area.lastRow - (total ? 1 : 0);
  if (items.all) return true;
  if (items.thisRow) {
    if (!row || *row < dataFirst || *row > dataLast) return false;
    area.firstRow = area.lastRow = *row;
    return true;
  }
  if ((items.headers && !header) || (items.totals && !total)) return false;
  const int first = items.headers ? area.firstRow : items.data ? dataFirst : area.lastRow;
  const int last = items.totals ? area.lastRow : items.data ? dataLast : area.firstRow;
  area.firstRow = first;
  area.lastRow = last;
  return first <= last;
}

}  // namespace

std::optional<RangeRef> tableArea(const Workbook& workbook, const std::string& table,
                                  const TableItems& items, std::optional<int> row,
                                  const CallLimits& limits) {
  const Reference<css::uno::XInterface> entry = workbook.entries.table(workbook, table);
  if (!entry.is()) return std::nullopt;
  auto range = referredCells(workbook, entry);
  if (!range) return std::nullopt;
  const Reference<XPropertySet> properties(entry, UNO_QUERY_THROW);
  const bool header = flag(properties, "ContainsHeader"), total = flag(properties, "TotalsRow");
  Area& area = range->areas.front();
  RangeRef headers = *range;
  headers.areas.front().lastRow = headers.areas.front().firstRow;
  if (!chooseRows(area, header, total, items, row)) return std::nullopt;
  if (!items.firstColumn.empty()) {
    if (!header) return std::nullopt;
    const int first = columnNamed(workbook, headers, items.firstColumn, limits);
    const int last = columnNamed(workbook, headers, items.lastColumn, limits);
    if (first == 0 || last == 0) return std::nullopt;
    area.firstColumn = std::min(first, last);
    area.lastColumn = std::max(first, last);
  }
  return range;
}

std::optional<RangeRef> tablePart(const Workbook& workbook, const std::string& text,
                                  const CallLimits& limits) {
  std::size_t at = text.find('[');
  if (at == std::string::npos || at == 0) return std::nullopt;
  const std::string table = text.substr(0, at);
  const auto items = readTableItems(text, at);
  if (!items || items->thisRow || at != text.size()) return std::nullopt;
  return tableArea(workbook, table, *items, std::nullopt, limits);
}

}  // namespace quorin::host::calc
