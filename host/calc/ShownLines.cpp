#include "host/calc/ShownLines.h"

#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/lang/XMultiServiceFactory.hpp>
#include <com/sun/star/sheet/XCellRangeAddressable.hpp>
#include <com/sun/star/sheet/XSheetCellRangeContainer.hpp>

#include "host/Address.h"
#include "host/calc/CalcRanges.h"
#include "host/calc/Text.h"

namespace quorin::host::calc {
namespace {

using css::uno::Any;
using css::uno::Reference;
using css::uno::UNO_QUERY;
using css::uno::UNO_QUERY_THROW;

constexpr const char* rowsMark = "rows ";
constexpr const char* columnsMark = "columns ";

// All of what is remembered of a workbook. Its own name can change; this one cannot.
std::string prefixOf(const Workbook& workbook) {
  rtl::OUString uid;
  Reference<css::beans::XPropertySet>(workbook.model, UNO_QUERY_THROW)
      ->getPropertyValue("RuntimeUID") >>= uid;
  return "/quorin/shown/" + toText(uid) + "\n";
}

std::string nameOf(const SheetRef& sheet) {
  return "\n" + sheet.book + "\n" + sheet.sheet;
}

std::string keyOf(const Workbook& workbook, const SheetRef& sheet, const Area& area, Lines kind) {
  const bool rows = kind == Lines::rows;
  return prefixOf(workbook) + (rows ? rowsMark : columnsMark) +
         std::to_string(rows ? area.firstRow : area.firstColumn) + "-" +
         std::to_string(rows ? area.lastRow : area.lastColumn) + nameOf(sheet);
}

int sizeOf(const Area& area, Lines kind) {
  return kind == Lines::rows ? rowCount(area) : columnCount(area);
}

}  // namespace

ShownLines::ShownLines(const Reference<css::uno::XComponentContext>& context)
    : memory_(context, UNO_QUERY) {}

void ShownLines::remember(const Workbook& workbook, const RangeRef& lines, Lines kind) {
  if (!memory_.is()) return;
  for (const Area& area : lines.areas) {
    const Reference<css::sheet::XSheetCellRangeContainer> cells(
        Reference<css::lang::XMultiServiceFactory>(workbook.model, UNO_QUERY_THROW)
            ->createInstance("com.sun.star.sheet.SheetCellRanges"),
        UNO_QUERY_THROW);
    cells->addRangeAddress(Reference<css::sheet::XCellRangeAddressable>(
                               cellsOf(workbook, lines.sheet.sheet, area), UNO_QUERY_THROW)
                               ->getRangeAddress(),
                           false);
    const std::string key = keyOf(workbook, lines.sheet, area, kind);
    forget(key);
    memory_->insertByName(toUno(key), Any(cells));
  }
}

void ShownLines::forget(const Workbook& workbook, const RangeRef& lines, Lines kind) {
  for (const Area& area : lines.areas) forget(keyOf(workbook, lines.sheet, area, kind));
}

void ShownLines::forget(const std::string& key) {
  if (memory_.is() && memory_->hasByName(toUno(key))) memory_->removeByName(toUno(key));
}

std::optional<RangeRef> ShownLines::find(const Workbook& workbook, const RangeRef& lines,
                                         Lines kind) const {
  if (!memory_.is()) return std::nullopt;
  const Area& area = firstArea(lines);
  std::optional<RangeRef> found = now(workbook, keyOf(workbook, lines.sheet, area, kind), kind);
  if (found && !found->areas.empty() && sizeOf(found->areas[0], kind) != sizeOf(area, kind))
    found->areas.clear();
  return found;
}

std::optional<RangeRef> ShownLines::now(const Workbook& workbook, const std::string& key,
                                        Lines kind) const {
  if (!memory_->hasByName(toUno(key))) return std::nullopt;
  const Reference<css::sheet::XSheetCellRanges> cells(memory_->getByName(toUno(key)), UNO_QUERY);
  if (!cells.is()) return std::nullopt;
  const auto addresses = cells->getRangeAddresses();
  RangeRef place{{workbook.name, {}}, {}};
  if (addresses.getLength() != 1) return place;
  place.sheet.sheet = sheetNames(workbook).at(static_cast<std::size_t>(addresses[0].Sheet));
  Area area = areaOf(addresses[0]);
  (kind == Lines::rows ? area.firstColumn : area.firstRow) = 1;
  (kind == Lines::rows ? area.lastColumn : area.lastRow) = kind == Lines::rows ? maxColumn : maxRow;
  place.areas = {area};
  return place;
}

std::vector<ShownLines::Unreachable> ShownLines::unreachable(const Workbook& workbook) const {
  std::vector<Unreachable> found;
  if (!memory_.is()) return found;
  const std::string prefix = prefixOf(workbook);
  for (const rtl::OUString& name : memory_->getElementNames()) {
    const std::string key = toText(name);
    if (!key.starts_with(prefix)) continue;
    const Lines kind = key.compare(prefix.size(), std::string(rowsMark).size(), rowsMark) == 0
                           ? Lines::rows
                           : Lines::columns;
    auto place = now(workbook, key, kind);
    if (place && !place->areas.empty() && !key.ends_with(nameOf(place->sheet)))
      found.push_back({key, kind, *std::move(place)});
  }
  return found;
}

}  // namespace quorin::host::calc
