// union, get address and special cells.
#include <algorithm>

#include "host/Address.h"
#include "host/SheetPrefix.h"
#include "host/model/Codes.h"
#include "host/model/Commands.h"
#include "host/model/Resolver.h"
#include "kit/value/EventErrors.h"

namespace quorin::host {
namespace {

using Descriptor = AppleEventDescriptor;

// The labels range1 to range30.
constexpr FourCharCode rangeLabel(int number) {
  const auto digit = [](int value) { return static_cast<FourCharCode>('0' + value); };
  if (number < 10) return (fourCharCode("XLr0") & 0xFFFFFF00U) | digit(number);
  return (fourCharCode("Xr00") & 0xFFFF0000U) | digit(number / 10) << 8 | digit(number % 10);
}

// The rectangle that two areas fill together, when they fill one.
std::optional<Area> joined(const Area& a, const Area& b) {
  const Area hull{std::min(a.firstRow, b.firstRow), std::min(a.firstColumn, b.firstColumn),
                  std::max(a.lastRow, b.lastRow), std::max(a.lastColumn, b.lastColumn)};
  if (hull == a || hull == b) return hull;
  const bool sameRows = a.firstRow == b.firstRow && a.lastRow == b.lastRow;
  const bool sameColumns = a.firstColumn == b.firstColumn && a.lastColumn == b.lastColumn;
  const bool touchingColumns =
      std::max(a.firstColumn, b.firstColumn) <= std::min(a.lastColumn, b.lastColumn) + 1;
  const bool touchingRows = std::max(a.firstRow, b.firstRow) <= std::min(a.lastRow, b.lastRow) + 1;
  if ((sameRows && touchingColumns) || (sameColumns && touchingRows)) return hull;
  return std::nullopt;
}

// Areas that together fill a rectangle become one, in the place of the earliest.
void add(std::vector<Area>& areas, Area area) {
  std::size_t place = areas.size();
  for (std::size_t i = 0; i < areas.size();) {
    const auto both = joined(areas[i], area);
    if (!both) {
      ++i;
      continue;
    }
    area = *both;
    areas.erase(areas.begin() + static_cast<std::ptrdiff_t>(i));
    place = std::min(place, i);
    i = 0;  // the larger area may fill a rectangle with one that was passed
  }
  place = std::min(place, areas.size());
  areas.insert(areas.begin() + static_cast<std::ptrdiff_t>(place), area);
}

}  // namespace

// All ranges lie on one sheet; -50 when they do not.
CommandResult unionCommand(Session& session, const AppleEvent& event) {
  std::optional<RangeRef> whole;
  for (int number = 1; number <= 30; ++number) {
    const Descriptor* const given = event.parameter(rangeLabel(number));
    if (given == nullptr) {
      if (number <= 2) throw EventError(eventErrors::missingParameter);
      continue;
    }
    const RangeRef range = resolveRange(session, *given);
    if (!whole) whole = RangeRef{range.sheet, {}};
    if (range.sheet != whole->sheet) throw EventError(eventErrors::badParameter, *given);
    for (const Area& area : range.areas) add(whole->areas, area);
  }
  return specifierOf(*whole);
}

CommandResult getAddressCommand(Session& session, const AppleEvent& event) {
  const RangeRef range = resolveRange(session, directObject(event));
  AddressStyle style;
  if (!flag(event, codes::rowAbsolute, true)) style.rows = Anchor::relative;
  if (!flag(event, codes::columnAbsolute, true)) style.columns = Anchor::relative;
  const Descriptor* const notation = event.parameter(codes::referenceStyle);
  if (notation != nullptr && notation->codeValue() == codes::styleR1C1)
    style.notation = ReferenceStyle::r1c1;
  if (const Descriptor* const origin = event.parameter(codes::relativeTo))
    style.origin = resolveRange(session, *origin).areas.front();
  std::string address = addressText(range.areas, style);
  if (flag(event, codes::external, false))
    address.insert(0, sheetPrefix(range.sheet.book, range.sheet.sheet));
  return Descriptor::text(std::move(address));
}

// The visible cells; -50 where there are none, and for every other kind.
CommandResult specialCellsCommand(Session& session, const AppleEvent& event) {
  const RangeRef range = resolveRange(session, directObject(event));
  const Descriptor* const type = event.parameter(codes::specialCellsType);
  if (type == nullptr) throw EventError(eventErrors::missingParameter);
  auto found = type->codeValue() == codes::cellTypeVisible ? session.spreadsheet.visibleCells(range)
                                                           : std::optional<RangeRef>();
  if (!found) throw EventError(eventErrors::badParameter, specifierOf(range));
  return specifierOf(*found);
}

}  // namespace quorin::host
