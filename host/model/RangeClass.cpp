// The class `range`, which is `cell`, `row` and `column` too. Reading several areas gives the first
// one, counting cells all of them.
#include <algorithm>
#include <array>
#include <tuple>

#include "host/Address.h"
#include "host/model/Answers.h"
#include "host/model/Codes.h"
#include "host/model/ObjectClass.h"
#include "kit/value/EventErrors.h"

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
    throw EventError(eventErrors::badParameter, specifierOf(object.range),
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

std::optional<Axis> axisOf(const RangeRef& range) {
  const auto all = [&range](auto fits) {
    return std::all_of(range.areas.begin(), range.areas.end(), fits);
  };
  if (all([](const Area& area) { return columnCount(area) == maxColumn; })) return Axis::rows;
  if (all([](const Area& area) { return rowCount(area) == maxRow; })) return Axis::columns;
  return std::nullopt;
}

// A cell without dependents does not understand the question.
template <DependentLevels levels>
Resolved dependents(Session& session, const RangeObject& object) {
  auto found = session.spreadsheet.dependents(object.range, levels);
  if (!found) throw EventError(eventErrors::notUnderstood, specifierOf(object.range));
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

// Whole rows or columns say whether they are hidden: missing value when some are, and of cells.
Resolved hidden(Session& session, const RangeObject& object) {
  const auto axis = axisOf(object.range);
  if (!axis) return Descriptor::missingValue();
  const auto answer = session.spreadsheet.hidden(object.range, *axis);
  return answer ? Descriptor::boolean(*answer) : Descriptor::missingValue();
}

void setHidden(Session& session, const RangeObject& object, const Descriptor& value) {
  const auto axis = axisOf(object.range);
  const auto flag = value.booleanValue();
  if (!axis || !flag) throw EventError(eventErrors::notModifiable, specifierOf(object.range));
  session.spreadsheet.setHidden(object.range, *axis, *flag);
}

// Excel leaves text of more than 255 characters out without a word; nothing is cut here.
void setFormula(Session& session, const RangeObject& object, const Descriptor& value) {
  const auto text = value.stringValue();
  if (!text || cellCount(object.range.areas) != 1)
    throw EventError(eventErrors::notModifiable, specifierOf(object.range));
  session.spreadsheet.setFormula(object.range, std::string(*text));
}

const std::array properties = {
    Property{codes::value2, value},
    Property{codes::value, value},
    Property{codes::formula, formula},
    Property{codes::formula2, formula, setFormula},
    Property{codes::hidden, hidden, setHidden},
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
  throw EventError(eventErrors::noSuchObject);
}

long long cellsOfRange(Session&, const RangeObject& object) {
  return cellCount(object.range.areas);
}

Object conditionOf(const RangeObject& object, std::vector<FormatCondition>& all,
                   std::size_t place) {
  return ConditionObject{object.range, static_cast<int>(place) + 1, std::move(all.at(place))};
}

const std::array elements = {
    Element{codes::cell, cellsOfRange, cellAt},
    Element{codes::formatCondition,
            [](Session& session, const RangeObject& object) -> long long {
              return std::ssize(session.spreadsheet.formatConditions(object.range));
            },
            [](Session& session, const RangeObject& object, long long index) {
              auto all = session.spreadsheet.formatConditions(object.range);
              return conditionOf(object, all, static_cast<std::size_t>(index - 1));
            },
            nullptr,
            [](Session& session, const RangeObject& object) {
              auto all = session.spreadsheet.formatConditions(object.range);
              Objects conditions;
              for (std::size_t place = 0; place < all.size(); ++place)
                conditions.push_back(conditionOf(object, all, place));
              return conditions;
            }},
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
