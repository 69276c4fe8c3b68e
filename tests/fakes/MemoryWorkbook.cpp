#include "tests/fakes/MemoryWorkbook.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <stdexcept>

#include "host/Address.h"
#include "host/SheetPrefix.h"

namespace quorin::fakes {
namespace {

std::string displayed(const host::CellValue& value) {
  if (const auto* text = std::get_if<std::string>(&value)) return *text;
  if (const auto* error = std::get_if<host::CellError>(&value)) return error->text;
  if (const bool* flag = std::get_if<bool>(&value)) return *flag ? "TRUE" : "FALSE";
  if (const double* number = std::get_if<double>(&value)) {
    std::array<char, 32> digits;
    const int length = std::snprintf(digits.data(), digits.size(), "%.10g", *number);
    return std::string(digits.data(), static_cast<std::size_t>(length));
  }
  return {};
}

}  // namespace

const MemoryCell* MemorySheet::at(int row, int column) const {
  const auto it = cells.find({row, column});
  return it == cells.end() ? nullptr : &it->second;
}

void MemorySheet::set(const CellDescription& cell) {
  const auto corner = host::parseA1Corner(cell.address);
  if (!corner || corner->row == 0 || corner->column == 0)
    throw std::invalid_argument("no cell: " + cell.address);
  const std::pair position(corner->row, corner->column);
  if (std::holds_alternative<host::Blank>(cell.value) && cell.formula.empty()) {
    cells.erase(position);
    return;
  }
  cells[position] = {cell.value,
                     cell.formula,
                     cell.localFormula.empty() ? cell.formula : cell.localFormula,
                     cell.text.empty() ? displayed(cell.value) : cell.text,
                     {}};
}

host::Area MemorySheet::usedArea() const {
  if (cells.empty()) return {1, 1, 1, 1};
  host::Area used{cells.begin()->first.first, host::maxColumn, cells.rbegin()->first.first, 1};
  for (const auto& [position, cell] : cells) {
    used.firstColumn = std::min(used.firstColumn, position.second);
    used.lastColumn = std::max(used.lastColumn, position.second);
  }
  return used;
}

host::Area MemorySheet::regionAround(host::Area area) const {
  // Grows by one row or column at a time towards any side where a cell touches the block.
  for (;;) {
    const int top = std::max(area.firstRow - 1, 1), left = std::max(area.firstColumn - 1, 1);
    const int bottom = std::min(area.lastRow + 1, host::maxRow);
    const int right = std::min(area.lastColumn + 1, host::maxColumn);
    host::Area grown = area;
    if (top < area.firstRow && hasCellIn({top, left, top, right})) grown.firstRow = top;
    if (bottom > area.lastRow && hasCellIn({bottom, left, bottom, right})) grown.lastRow = bottom;
    if (left < area.firstColumn && hasCellIn({top, left, bottom, left})) grown.firstColumn = left;
    if (right > area.lastColumn && hasCellIn({top, right, bottom, right})) grown.lastColumn = right;
    if (grown == area) return area;
    area = grown;
  }
}

bool MemorySheet::hasCellIn(const host::Area& area) const {
  return std::any_of(cells.begin(), cells.end(), [&area](const auto& item) {
    const auto [row, column] = item.first;
    return host::intersection(area, {row, column, row, column}).has_value();
  });
}

std::vector<host::Area> MemorySheet::shownParts(const host::Area& area) const {
  using Runs = std::vector<std::pair<int, int>>;
  const auto runs = [](int first, int last, const std::set<int>& gaps) {
    Runs found;
    for (auto it = gaps.lower_bound(first); it != gaps.end() && *it <= last; ++it) {
      if (*it > first) found.emplace_back(first, *it - 1);
      first = *it + 1;
    }
    if (first <= last) found.emplace_back(first, last);
    return found;
  };
  const Runs columns = runs(area.firstColumn, area.lastColumn, hiddenColumns);
  std::vector<host::Area> parts;
  for (const auto& [top, bottom] : runs(area.firstRow, area.lastRow, hiddenRows))
    for (const auto& [left, right] : columns) parts.push_back({top, left, bottom, right});
  return parts;
}

void MemorySheet::addCondition(host::ConditionKind kind, std::string formula,
                               std::vector<host::Area> areas) {
  conditions.push_back({"condition " + std::to_string(nextCondition++), kind, std::move(formula),
                        std::move(areas), 0, false, std::nullopt});
  numberConditions();
}

host::FormatCondition& MemorySheet::condition(const std::string& id) {
  const auto it = std::find_if(conditions.begin(), conditions.end(),
                               [&](const host::FormatCondition& each) { return each.id == id; });
  if (it == conditions.end()) throw host::SpreadsheetError(-1728, "no such condition: " + id);
  return *it;
}

void MemorySheet::putCondition(const std::string& id, std::size_t place) {
  host::FormatCondition moved = condition(id);
  removeCondition(id);
  place = std::min(place, conditions.size());
  conditions.insert(conditions.begin() + static_cast<std::ptrdiff_t>(place), std::move(moved));
  numberConditions();
}

void MemorySheet::removeCondition(const std::string& id) {
  std::erase_if(conditions, [&](const host::FormatCondition& each) { return each.id == id; });
  numberConditions();
}

// `now` gives where a row that stays is from now on, and 0 for one that goes.
template <typename RowNow>
void MemorySheet::moveRows(RowNow now) {
  std::map<std::pair<int, int>, MemoryCell> movedCells;
  for (auto& [place, cell] : cells)
    if (const int row = now(place.first); row != 0)
      movedCells.emplace(std::pair(row, place.second), std::move(cell));
  cells = std::move(movedCells);
  std::set<int> movedRows;
  for (const int old : hiddenRows)
    if (const int row = now(old); row != 0) movedRows.insert(row);
  hiddenRows = std::move(movedRows);
}

void MemorySheet::insertRows(int row, int count) {
  const auto now = [&](int old) { return old < row ? old : old + count; };
  moveRows(now);
  for (host::FormatCondition& each : conditions)
    for (host::Area& area : each.areas) {
      area.firstRow = now(area.firstRow);
      area.lastRow = std::min(now(area.lastRow), host::maxRow);
    }
}

void MemorySheet::deleteRows(int row, int count) {
  const int after = row + count;
  moveRows([&](int old) { return old < row ? old : old < after ? 0 : old - count; });
  for (host::FormatCondition& each : conditions) {
    each.areas = host::without(each.areas, {row, 1, after - 1, host::maxColumn});
    for (host::Area& area : each.areas) {
      if (area.firstRow >= after) area.firstRow -= count;
      if (area.lastRow >= after) area.lastRow -= count;
    }
  }
  std::erase_if(conditions, [](const auto& each) { return each.areas.empty(); });
  numberConditions();
}

void MemorySheet::numberConditions() {
  int number = 0;
  for (host::FormatCondition& each : conditions) each.priority = ++number;
}

MemoryBook::MemoryBook(const WorkbookDescription& description)
    : name(description.name), names(description.names) {
  for (const SheetDescription& sheet : description.sheets) {
    MemorySheet& made = sheets.emplace_back();
    made.name = sheet.name;
    made.hidden = sheet.hidden;
    for (const CellDescription& cell : sheet.cells) made.set(cell);
    for (const ConditionDescription& rule : sheet.conditions)
      made.addCondition(rule.kind, rule.formula, host::parseA1(rule.addresses).value());
  }
  if (sheets.empty()) throw std::invalid_argument("a workbook has at least one sheet");
}

MemorySheet* MemoryBook::sheet(const std::string& sheetName) {
  const auto it = std::find_if(sheets.begin(), sheets.end(), [&](const MemorySheet& sheet) {
    return sameName(sheet.name, sheetName);
  });
  return it == sheets.end() ? nullptr : &*it;
}

std::string described(const host::SheetRef& sheet) {
  return host::sheetPrefix(sheet.book, sheet.sheet);
}
std::string described(const host::RangeRef& range) {
  return described(range.sheet) + host::addressText(range.areas);
}

bool overlaps(const std::vector<host::Area>& areas, const host::Area& area) {
  return std::any_of(areas.begin(), areas.end(),
                     [&](const host::Area& other) { return host::intersection(other, area); });
}

bool sameName(const std::string& a, const std::string& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](unsigned char x, unsigned char y) {
    return std::toupper(x) == std::toupper(y);
  });
}

}  // namespace quorin::fakes
