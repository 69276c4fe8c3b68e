// What MemorySpreadsheet tells about its cells, names and formulas.
#include <algorithm>

#include "host/Address.h"
#include "tests/fakes/FormulaTokens.h"
#include "tests/fakes/MemorySpreadsheet.h"

namespace quorin::fakes {

using host::Area;
using host::CellValue;
using host::Grid;
using host::RangeRef;
using host::SheetRef;
using host::SpreadsheetError;

std::optional<RangeRef> MemorySpreadsheet::named(const SheetRef& from, const std::string& name) {
  enter("named", described(from) + name);
  return this->name(from, name);
}

std::optional<RangeRef> MemorySpreadsheet::currentRegion(const RangeRef& range) {
  enter("currentRegion", described(range));
  return RangeRef{range.sheet, {sheetOf(range.sheet).regionAround(range.areas.front())}};
}

std::optional<RangeRef> MemorySpreadsheet::usedRange(const SheetRef& sheet) {
  enter("usedRange", described(sheet));
  return RangeRef{sheet, {sheetOf(sheet).usedArea()}};
}

bool MemorySpreadsheet::refersTo(const MemoryCell& cell, const RangeRef& range) const {
  for (const FormulaToken& token : formulaTokens(cell.formula)) {
    if (token.sheet && !sameName(*token.sheet, range.sheet.sheet)) continue;
    if (token.kind == FormulaToken::Kind::reference) {
      for (const Area& area : token.areas)
        if (overlaps(range.areas, area)) return true;
    } else if (token.kind == FormulaToken::Kind::name) {
      const auto target = name(range.sheet, token.spelling);
      if (!target || target->sheet != range.sheet) continue;
      for (const Area& area : target->areas)
        if (overlaps(range.areas, area)) return true;
    }
  }
  return false;
}

std::vector<Area> MemorySpreadsheet::directDependents(const RangeRef& range) const {
  std::vector<Area> found;
  for (const auto& [position, cell] : sheetOf(range.sheet).cells) {
    const Area area{position.first, position.second, position.first, position.second};
    if (refersTo(cell, range)) found.push_back(area);
  }
  return found;
}

std::optional<RangeRef> MemorySpreadsheet::dependents(const RangeRef& range,
                                                      host::DependentLevels levels) {
  enter("dependents", described(range));
  for (const auto& [precedent, given] : dependents_)
    if (precedent == range) return given;
  std::vector<Area> found = directDependents(range);
  for (std::size_t i = 0; levels == host::DependentLevels::all && i < found.size(); ++i)
    for (const Area& next : directDependents({range.sheet, {found[i]}}))
      if (!overlaps(found, next)) found.push_back(next);
  if (found.empty()) return std::nullopt;
  return RangeRef{range.sheet, std::move(found)};
}

template <typename T, typename CellToItem>
Grid<T> MemorySpreadsheet::gridOf(const RangeRef& range, CellToItem item) const {
  const MemorySheet& sheet = sheetOf(range.sheet);
  const Area& area = range.areas.front();
  if (host::cellCount({area}) > program.mostCells)
    throw SpreadsheetError(-50, "The range is too large to be read at once.");
  Grid<T> grid{host::rowCount(area), host::columnCount(area), {}};
  grid.cells.reserve(static_cast<std::size_t>(host::cellCount({area})));
  for (int row = area.firstRow; row <= area.lastRow; ++row)
    for (int column = area.firstColumn; column <= area.lastColumn; ++column) {
      const MemoryCell* const cell = sheet.at(row, column);
      grid.cells.push_back(cell == nullptr ? T() : item(*cell, row, column));
    }
  return grid;
}

Grid<CellValue> MemorySpreadsheet::values(const RangeRef& range) {
  enter("values", described(range));
  return gridOf<CellValue>(range, [](const MemoryCell& cell, int, int) { return cell.value; });
}

Grid<CellValue> MemorySpreadsheet::formulas(const RangeRef& range, host::ReferenceStyle style) {
  enter("formulas", described(range));
  return gridOf<CellValue>(range, [style](const MemoryCell& cell, int row, int column) {
    if (cell.formula.empty()) return cell.value;
    return CellValue(style == host::ReferenceStyle::a1 ? cell.formula
                                                       : formulaInR1C1(cell.formula, row, column));
  });
}

Grid<CellValue> MemorySpreadsheet::localFormulas(const RangeRef& range) {
  enter("localFormulas", described(range));
  return gridOf<CellValue>(range, [](const MemoryCell& cell, int, int) {
    return cell.formula.empty() ? cell.value : CellValue(cell.localFormula);
  });
}

Grid<std::string> MemorySpreadsheet::displayedTexts(const RangeRef& range) {
  enter("displayedTexts", described(range));
  return gridOf<std::string>(range, [](const MemoryCell& cell, int, int) { return cell.text; });
}

host::Evaluation MemorySpreadsheet::evaluate(const std::string& expression, const SheetRef& from) {
  enter("evaluate", described(from) + " " + expression);
  sheetOf(from);
  if (const auto it = answers_.find(expression); it != answers_.end()) return it->second;
  return evaluateFormula(expression, from, *this);
}

std::optional<SheetRef> MemorySpreadsheet::sheet(const SheetRef& from,
                                                 const std::optional<std::string>& book,
                                                 const std::string& sheet) const {
  MemoryBook* const found = find(book.value_or(from.book));
  const MemorySheet* const there = found == nullptr ? nullptr : found->sheet(sheet);
  if (there == nullptr) return std::nullopt;
  return SheetRef{found->name, there->name};
}

std::optional<RangeRef> MemorySpreadsheet::name(const SheetRef& from,
                                                const std::string& name) const {
  const MemoryBook& book = bookOf(from.book);
  const NameDescription* found = nullptr;
  for (const NameDescription& candidate : book.names) {
    if (!sameName(candidate.name, name)) continue;
    if (candidate.sheet.empty() && found == nullptr) found = &candidate;
    if (!candidate.sheet.empty() && sameName(candidate.sheet, from.sheet)) found = &candidate;
  }
  if (found == nullptr) return std::nullopt;
  const auto tokens = formulaTokens(std::string_view(found->refersTo).substr(1));
  if (tokens.size() != 1 || tokens[0].kind != FormulaToken::Kind::reference || !tokens[0].sheet)
    return std::nullopt;
  const auto target = sheet(from, tokens[0].book, *tokens[0].sheet);
  if (!target) return std::nullopt;
  return RangeRef{*target, tokens[0].areas};
}

Grid<CellValue> MemorySpreadsheet::cells(const SheetRef& sheet, const Area& area) const {
  return gridOf<CellValue>({sheet, {area}},
                           [](const MemoryCell& cell, int, int) { return cell.value; });
}

}  // namespace quorin::fakes
