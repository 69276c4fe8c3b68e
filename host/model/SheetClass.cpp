// The class `worksheet`, which is the class `sheet` too.
#include <array>

#include "host/Address.h"
#include "host/model/Answers.h"
#include "host/model/Codes.h"
#include "host/model/ObjectClass.h"
#include "host/model/RangeText.h"
#include "kit/value/EventErrors.h"

namespace quorin::host {
namespace {

using Descriptor = AppleEventDescriptor;
using Property = PropertyEntry<SheetObject>;
using Element = ElementEntry<SheetObject>;

const std::array properties = {
    Property{codes::name,
             [](Session&, const SheetObject& object) -> Resolved {
               return Descriptor::text(object.sheet.sheet);
             }},
    Property{codes::usedRange,
             [](Session& session, const SheetObject& object) {
               return objectAnswer(session.spreadsheet.usedRange(object.sheet));
             }},
    Property{codes::entryIndex,
             [](Session& session, const SheetObject& object) -> Resolved {
               const auto names = session.spreadsheet.worksheets(object.sheet.book);
               for (std::size_t i = 0; i < names.size(); ++i)
                 if (names[i] == object.sheet.sheet)
                   return Descriptor::integer(static_cast<std::int32_t>(i + 1));
               throw EventError(eventErrors::noSuchObject);
             }},
};

Object area(const SheetObject& object, const Area& area) {
  return RangeObject{{object.sheet, {area}}};
}

std::optional<Object> rangeNamed(Session& session, const SheetObject& object,
                                 const std::string& name) {
  auto range = bindRangeText(session, object.sheet, name);
  if (!range) return std::nullopt;
  return RangeObject{std::move(*range)};
}

// Whole rows by "5:5", whole columns by "B:D", single cells by "A1"; `row "5"` fails as in Excel.
template <typename Fits>
std::optional<Object> areaNamed(const SheetObject& object, const std::string& name, Fits fits) {
  const auto found = parseA1Area(name);
  if (!found || !fits(*found)) return std::nullopt;
  return area(object, *found);
}

// Cells, and ranges by index, count row by row.
long long cellsOfSheet(Session&, const SheetObject&) {
  return static_cast<long long>(maxRow) * maxColumn;
}

Object cellAt(Session&, const SheetObject& object, long long index) {
  const int row = static_cast<int>((index - 1) / maxColumn) + 1;
  const int column = static_cast<int>((index - 1) % maxColumn) + 1;
  return area(object, {row, column, row, column});
}

const std::array elements = {
    Element{codes::range, cellsOfSheet, cellAt, rangeNamed},
    Element{codes::cell, cellsOfSheet, cellAt,
            [](Session&, const SheetObject& object, const std::string& name) {
              return areaNamed(object, name, [](const Area& found) {
                return rowCount(found) == 1 && columnCount(found) == 1;
              });
            }},
    Element{codes::row, [](Session&, const SheetObject&) -> long long { return maxRow; },
            [](Session&, const SheetObject& object, long long index) {
              const int row = static_cast<int>(index);
              return area(object, {row, 1, row, maxColumn});
            },
            [](Session&, const SheetObject& object, const std::string& name) {
              return areaNamed(object, name,
                               [](const Area& found) { return columnCount(found) == maxColumn; });
            }},
    Element{codes::column, [](Session&, const SheetObject&) -> long long { return maxColumn; },
            [](Session&, const SheetObject& object, long long index) {
              const int column = static_cast<int>(index);
              return area(object, {1, column, maxRow, column});
            },
            [](Session&, const SheetObject& object, const std::string& name) {
              return areaNamed(object, name,
                               [](const Area& found) { return rowCount(found) == maxRow; });
            }},
};

}  // namespace

const ClassTable<SheetObject>& classTable(const SheetObject&) {
  static const ClassTable<SheetObject> table{codes::worksheet, properties, elements};
  return table;
}

}  // namespace quorin::host
