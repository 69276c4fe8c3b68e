// What MemorySpreadsheet shows, hides, marks and writes.
#include <algorithm>

#include "host/Address.h"
#include "tests/fakes/FormulaValues.h"
#include "tests/fakes/MemorySpreadsheet.h"

namespace quorin::fakes {
namespace {

using host::Area;
using host::Axis;
using host::CellValue;
using host::Grid;
using host::RangeRef;
using host::SheetRef;
using host::SpreadsheetError;

// The last of `wanted` rows that a window shows from `first` on.
int lastShown(int first, int wanted, int limit, const std::set<int>& hidden) {
  int row = first;
  for (; row < limit; ++row)
    if (!hidden.contains(row) && --wanted == 0) break;
  return row;
}

CellDescription cellAt(int row, int column, CellValue value, std::string formula = {}) {
  return {host::columnLetters(column) + std::to_string(row), std::move(value), std::move(formula)};
}

}  // namespace

std::optional<RangeRef> MemorySpreadsheet::visibleRange() {
  enter("visibleRange");
  if (active_ == nullptr) return std::nullopt;
  const MemorySheet& top = active_->sheets[active_->activeSheet];
  return RangeRef{
      {active_->name, top.name},
      {{top.topRow, top.leftColumn,
        lastShown(top.topRow, program.windowRows, host::maxRow, top.hiddenRows),
        lastShown(top.leftColumn, program.windowColumns, host::maxColumn, top.hiddenColumns)}}};
}

std::vector<host::DefinedName> MemorySpreadsheet::definedNames(const std::string& book) {
  enter("definedNames", book);
  std::vector<host::DefinedName> names;
  for (const NameDescription& name : bookOf(book).names)
    names.push_back({name.name, name.sheet, name.refersTo, true});
  std::stable_sort(names.begin(), names.end(), [](const auto& a, const auto& b) {
    return formula::upper(a.name) < formula::upper(b.name);
  });
  return names;
}

std::optional<bool> MemorySpreadsheet::hidden(const RangeRef& range, Axis axis) {
  enter("hidden", described(range));
  const MemorySheet& sheet = sheetOf(range.sheet);
  const std::set<int>& hidden = axis == Axis::rows ? sheet.hiddenRows : sheet.hiddenColumns;
  long long total = 0, found = 0;
  for (const Area& area : range.areas) {
    const int first = host::firstOn(area, axis), last = host::lastOn(area, axis);
    total += last - first + 1;
    found += std::distance(hidden.lower_bound(first), hidden.upper_bound(last));
  }
  if (found != 0 && found != total) return std::nullopt;
  return found != 0;
}

void MemorySpreadsheet::setHidden(const RangeRef& range, Axis axis, bool hide) {
  enter("setHidden", described(range));
  MemorySheet& sheet = sheetOf(range.sheet);
  std::set<int>& hidden = axis == Axis::rows ? sheet.hiddenRows : sheet.hiddenColumns;
  for (const Area& area : range.areas) {
    const int first = host::firstOn(area, axis), last = host::lastOn(area, axis);
    hidden.erase(hidden.lower_bound(first), hidden.upper_bound(last));
    for (int row = first; hide && row <= last; ++row) hidden.insert(row);
  }
}

std::optional<RangeRef> MemorySpreadsheet::visibleCells(const RangeRef& range) {
  enter("visibleCells", described(range));
  RangeRef shown{range.sheet, {}};
  for (const Area& area : range.areas)
    for (const Area& part : sheetOf(range.sheet).shownParts(area)) shown.areas.push_back(part);
  if (shown.areas.empty()) return std::nullopt;
  return shown;
}

std::vector<host::FormatCondition> MemorySpreadsheet::formatConditions(const RangeRef& range) {
  enter("formatConditions", described(range));
  std::vector<host::FormatCondition> found;
  for (const host::FormatCondition& each : sheetOf(range.sheet).conditions)
    if (std::any_of(range.areas.begin(), range.areas.end(),
                    [&](const Area& area) { return overlaps(each.areas, area); }))
      found.push_back(each);
  return found;
}

std::string MemorySpreadsheet::addFormatCondition(const RangeRef& range,
                                                  const std::string& formula) {
  enter("addFormatCondition", described(range));
  MemorySheet& sheet = sheetOf(range.sheet);
  sheet.addCondition(host::ConditionKind::expression, formula, range.areas);
  return sheet.conditions.back().id;
}

void MemorySpreadsheet::setConditionFill(const SheetRef& sheet, const std::string& id,
                                         const std::optional<host::Color>& fill) {
  enter("setConditionFill", described(sheet) + id);
  sheetOf(sheet).condition(id).fill = fill;
}

void MemorySpreadsheet::setConditionPriority(const SheetRef& sheet, const std::string& id,
                                             int priority) {
  enter("setConditionPriority", described(sheet) + id);
  if (priority < 1) throw SpreadsheetError(-50, "A priority is 1 or more.");
  bookOf(sheet.book).undoable = 0;  // as in Excel
  sheetOf(sheet).putCondition(id, static_cast<std::size_t>(priority - 1));
}

void MemorySpreadsheet::setConditionRange(const RangeRef& range, const std::string& id) {
  enter("setConditionRange", described(range) + " " + id);
  sheetOf(range.sheet).condition(id).areas = range.areas;
}

void MemorySpreadsheet::deleteCondition(const RangeRef& range, const std::string& id) {
  enter("deleteCondition", described(range) + " " + id);
  MemorySheet& sheet = sheetOf(range.sheet);
  std::vector<Area>& areas = sheet.condition(id).areas;
  for (const Area& hole : range.areas) areas = host::without(areas, hole);
  if (areas.empty()) sheet.removeCondition(id);
}

std::string MemorySpreadsheet::makeWorkbook() {
  enter("makeWorkbook");
  std::string name;
  do name = "Book" + std::to_string(++made_);
  while (find(name) != nullptr);
  open({.name = name, .sheets = {{"Sheet1", {}}}});
  active_->scratch = true;
  return name;
}

MemoryBook& MemorySpreadsheet::scratchOf(const std::string& book) const {
  MemoryBook& found = bookOf(book);
  if (!found.scratch) throw SpreadsheetError(-10006, "not ours to change: " + book);
  return found;
}

namespace {

// What is written over a part of a spilled result ends the spilling; what is written over its cell
// ends it too.
void endSpillAt(MemorySheet& sheet, int row, int column) {
  std::pair anchor(row, column);
  const MemoryCell* const there = sheet.at(row, column);
  const bool within = there != nullptr && there->spilledFrom.first != 0;
  if (within) anchor = there->spilledFrom;
  std::erase_if(sheet.cells, [&](const auto& each) { return each.second.spilledFrom == anchor; });
  if (!within) return;
  MemoryCell& broken = sheet.cells.at(anchor);
  broken.value = formula::error("#SPILL!");
  broken.text = "#SPILL!";
}

}  // namespace

// Cells in the way make it #SPILL!, as in Excel. A blank that a formula refers to counts as 0.
void MemorySpreadsheet::setFormula(const RangeRef& cell, const std::string& formula) {
  enter("setFormula", described(cell) + " " + formula);
  scratchOf(cell.sheet.book);
  MemorySheet& sheet = sheetOf(cell.sheet);
  const auto [row, column, lastRow, lastColumn] = cell.areas.front();
  endSpillAt(sheet, row, column);
  sheet.cells.erase({row, column});
  if (!formula.starts_with('=')) return sheet.set(cellAt(row, column, formula));
  host::Evaluation result = evaluateFormula(formula, cell.sheet, *this);
  if (const auto* const range = std::get_if<RangeRef>(&result))
    result = cells(range->sheet, range->areas.front());
  if (const auto* const value = std::get_if<CellValue>(&result))
    result = Grid<CellValue>{1, 1, {*value}};
  auto& grid = std::get<Grid<CellValue>>(result);
  for (CellValue& value : grid.cells)
    if (std::holds_alternative<host::Blank>(value)) value = 0.0;
  const Area target{row, column, row + grid.rows - 1, column + grid.columns - 1};
  const bool blocked = std::any_of(sheet.cells.begin(), sheet.cells.end(), [&](const auto& other) {
    const auto [otherRow, otherColumn] = other.first;
    return host::intersection(target, {otherRow, otherColumn, otherRow, otherColumn}).has_value();
  });
  if (blocked) grid = {1, 1, {formula::error("#SPILL!")}};
  for (int r = 0; r < grid.rows; ++r)
    for (int c = 0; c < grid.columns; ++c) {
      const bool first = r + c == 0;
      sheet.set(cellAt(row + r, column + c, grid.at(r, c), first ? formula : std::string()));
      if (!first) sheet.cells.at({row + r, column + c}).spilledFrom = {row, column};
    }
}

void MemorySpreadsheet::closeWorkbook(const std::string& book) {
  enter("closeWorkbook", book);
  close(scratchOf(book).name);
}

}  // namespace quorin::fakes
