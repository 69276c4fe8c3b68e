// The class `range`, which is `cell`, `row` and `column` too. Reading several areas gives the first
// one, counting cells all of them.
#include <algorithm>
#include <array>
#include <tuple>

#include "host/Address.h"
#include "host/Answers.h"
#include "host/Codes.h"
#include "host/ObjectClass.h"

namespace quorin::host {
namespace {

using Descriptor = AppleEventDescriptor;
using Property = PropertyEntry<RangeObject>;
using Element = ElementEntry<RangeObject>;

// More cells than this are refused before the spreadsheet is asked: an answer of that size would
// hold the program for minutes.
constexpr long long mostCellsRead = 2'000'000;

const RangeRef& readable(const RangeObject& object) {
  if (cellCount({object.range.areas.front()}) > mostCellsRead)
    throw EventError(EventError::parameterError, specifierOf(object.range),
                     "The range is too large to be read at once.");
  return object.range;
}

// Dates are serial numbers here, also where Excel's `value` gives AppleScript dates.
Resolved value(Session& session, const RangeObject& object) {
  return valueAnswer(session.spreadsheet.values(readable(object)));
}

Resolved formula(Session& session, const RangeObject& object) {
  return formulaAnswer(session.spreadsheet.formulas(readable(object), ReferenceStyle::a1));
}

Resolved formulaR1C1(Session& session, const RangeObject& object) {
  return formulaAnswer(session.spreadsheet.formulas(readable(object), ReferenceStyle::r1c1));
}

Resolved formulaLocal(Session& session, const RangeObject& object) {
  return formulaAnswer(session.spreadsheet.localFormulas(readable(object)));
}

Resolved stringValue(Session& session, const RangeObject& object) {
  return textAnswer(session.spreadsheet.displayedTexts(readable(object)));
}

// Missing value when some cells have a formula and some have none.
Resolved hasFormula(Session& session, const RangeObject& object) {
  const auto grid = session.spreadsheet.formulas(readable(object), ReferenceStyle::a1);
  const auto isFormula = [](const CellValue& cell) {
    const auto* const text = std::get_if<std::string>(&cell);
    return text != nullptr && text->starts_with('=');
  };
  const auto formulas = std::count_if(grid.cells.begin(), grid.cells.end(), isFormula);
  if (formulas == 0) return Descriptor::boolean(false);
  if (formulas == std::ssize(grid.cells)) return Descriptor::boolean(true);
  return Descriptor::missingValue();
}

// A cell without dependents does not understand the question.
template <DependentLevels levels>
Resolved dependents(Session& session, const RangeObject& object) {
  auto found = session.spreadsheet.dependents(object.range, levels);
  if (!found) throw EventError(EventError::notUnderstood, specifierOf(object.range));
  return Object(RangeObject{std::move(*found)});
}

Resolved entireRow(Session&, const RangeObject& object) {
  RangeRef rows = object.range;
  for (Area& area : rows.areas)
    std::tie(area.firstColumn, area.lastColumn) = std::pair(1, maxColumn);
  return objectAnswer(std::move(rows));
}

Resolved entireColumn(Session&, const RangeObject& object) {
  RangeRef columns = object.range;
  for (Area& area : columns.areas) std::tie(area.firstRow, area.lastRow) = std::pair(1, maxRow);
  return objectAnswer(std::move(columns));
}

Resolved areas(Session&, const RangeObject& object) {
  Descriptor::Items items;
  for (const Area& area : object.range.areas)
    items.push_back(specifierOf(RangeRef{object.range.sheet, {area}}));
  return Descriptor::list(std::move(items));
}

const std::array properties = {
    Property{codes::value2, value},
    Property{codes::value, value},
    Property{codes::formula, formula},
    Property{codes::formula2, formula},
    Property{codes::formulaLocal, formulaLocal},
    Property{codes::formula2Local, formulaLocal},
    Property{codes::formulaR1C1, formulaR1C1},
    Property{codes::formula2R1C1, formulaR1C1},
    Property{codes::stringValue, stringValue},
    Property{codes::hasFormula, hasFormula},
    Property{codes::firstRowIndex,
             [](Session&, const RangeObject& object) -> Resolved {
               return Descriptor::integer(object.range.areas.front().firstRow);
             }},
    Property{codes::firstColumnIndex,
             [](Session&, const RangeObject& object) -> Resolved {
               return Descriptor::integer(object.range.areas.front().firstColumn);
             }},
    Property{codes::countLarge,
             [](Session&, const RangeObject& object) -> Resolved {
               return countAnswer(cellCount(object.range.areas));
             }},
    Property{codes::currentRegion,
             [](Session& session, const RangeObject& object) {
               return objectAnswer(session.spreadsheet.currentRegion(object.range));
             }},
    Property{codes::dependents, dependents<DependentLevels::all>},
    Property{codes::directDependents, dependents<DependentLevels::direct>},
    Property{codes::entireRow, entireRow},
    Property{codes::entireColumn, entireColumn},
    Property{codes::areas, areas},
    Property{codes::worksheetObject,
             [](Session&, const RangeObject& object) { return objectAnswer(object.range.sheet); }},
};

Object part(const RangeObject& object, const Area& area) {
  return RangeObject{{object.range.sheet, {area}}};
}

// Row by row through each area in turn.
Object cellAt(Session&, const RangeObject& object, long long index) {
  for (const Area& area : object.range.areas) {
    const long long cells = cellCount({area});
    if (index > cells) {
      index -= cells;
      continue;
    }
    const int row = area.firstRow + static_cast<int>((index - 1) / columnCount(area));
    const int column = area.firstColumn + static_cast<int>((index - 1) % columnCount(area));
    return part(object, {row, column, row, column});
  }
  throw EventError(EventError::noSuchObject);
}

long long cellsOfRange(Session&, const RangeObject& object) {
  return cellCount(object.range.areas);
}

const std::array elements = {
    Element{codes::cell, cellsOfRange, cellAt},
    Element{codes::range, cellsOfRange, cellAt},
    Element{codes::row,
            [](Session&, const RangeObject& object) -> long long {
              return rowCount(object.range.areas.front());
            },
            [](Session&, const RangeObject& object, long long index) {
              Area area = object.range.areas.front();
              area.firstRow += static_cast<int>(index) - 1;
              area.lastRow = area.firstRow;
              return part(object, area);
            }},
    Element{codes::column,
            [](Session&, const RangeObject& object) -> long long {
              return columnCount(object.range.areas.front());
            },
            [](Session&, const RangeObject& object, long long index) {
              Area area = object.range.areas.front();
              area.firstColumn += static_cast<int>(index) - 1;
              area.lastColumn = area.firstColumn;
              return part(object, area);
            }},
};

}  // namespace

const ClassTable<RangeObject>& classTable(const RangeObject&) {
  static const ClassTable<RangeObject> table{codes::range, properties, elements};
  return table;
}

}  // namespace quorin::host
