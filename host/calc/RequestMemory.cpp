#include "host/calc/RequestMemory.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "host/Address.h"
#include "host/calc/cells/AreaGrid.h"

namespace quorin::host::calc {

namespace {

bool holds(const RangeRef& known, const RangeRef& wanted) {
  if (wanted.sheet != known.sheet || wanted.areas.empty()) return false;
  return intersection(known.areas.front(), wanted.areas.front()) == wanted.areas.front();
}

bool isError(const CellValue& value) {
  return std::holds_alternative<CellError>(value);
}

}  // namespace

void RequestMemory::begin() {
  forget();
  lasts_ = true;
}

void RequestMemory::end() {
  forget();
  lasts_ = false;
}

void RequestMemory::forget() {
  workbooks_.reset();
  definedNames_.clear();
  activeWorkbook_.reset();
  activeSheet_.reset();
  values_.reset();
  texts_.reset();
  withoutErrors_.reset();
}

std::optional<Grid<CellValue>> RequestMemory::values(const RangeRef& range) const {
  if (!values_ || !holds(valuesRange_, range)) return std::nullopt;
  if (range.areas.front() == valuesRange_.areas.front()) return values_;
  return partOf(*values_, valuesRange_.areas.front(), range.areas.front());
}

std::optional<Grid<CellValue>> RequestMemory::takeFirstColumn(const RangeRef& range) {
  if (!values_ || valuesRange_.sheet != range.sheet || range.areas.size() != 1) return std::nullopt;
  Area column = range.areas.front();
  column.lastColumn = column.firstColumn;
  if (valuesRange_.areas.front() != column) return std::nullopt;
  return std::exchange(values_, std::nullopt);
}

void RequestMemory::keepValues(const RangeRef& range, Grid<CellValue> values) {
  if (!lasts_ || range.areas.empty()) return;
  valuesRange_ = range;
  values_ = std::move(values);
}

bool RequestMemory::hasNoErrors(const RangeRef& range) const {
  return withoutErrors_ && holds(*withoutErrors_, range);
}

bool RequestMemory::hasShortTexts(const RangeRef& range) const {
  constexpr std::size_t shortText = 100;
  const auto isShort = [](const CellValue& value) {
    const auto* const text = std::get_if<std::string>(&value);
    return text == nullptr || text->size() <= shortText;
  };
  return values_ && holds(valuesRange_, range) &&
         std::all_of(values_->cells.begin(), values_->cells.end(), isShort);
}

RangeRef RequestMemory::textsAskedNext(const RangeRef& range) const {
  if (!values_ || range.areas.size() != 1 || valuesRange_.sheet != range.sheet) return range;
  const Area& all = valuesRange_.areas.front();
  Area first = all;
  first.lastColumn = first.firstColumn;
  if (range.areas.front() != first || valuesRange_.areas.size() != 1 ||
      cellCount({all}) > mostCellsWithTexts)
    return range;
  for (int row = 0; row < values_->rows; ++row)
    if (isError(values_->at(row, 0))) return range;
  return valuesRange_;
}

std::optional<Grid<std::string>> RequestMemory::takeTexts(const RangeRef& range) {
  if (!texts_ || textsRange_ != range) return std::nullopt;
  return std::exchange(texts_, std::nullopt);
}

void RequestMemory::keepTexts(const RangeRef& range, Grid<std::string> texts) {
  if (!lasts_) return;
  textsRange_ = range;
  texts_ = std::move(texts);
}

bool RequestMemory::knowsErrors(const RangeRef& range) const {
  return values_ && holds(valuesRange_, range);
}

void RequestMemory::nameErrors(const RangeRef& range, Grid<std::string>& texts) const {
  const Area& all = valuesRange_.areas.front();
  const Area& part = range.areas.front();
  for (int row = 0; row < texts.rows; ++row) {
    for (int column = 0; column < texts.columns; ++column) {
      const CellValue& value = values_->at(part.firstRow - all.firstRow + row,
                                           part.firstColumn - all.firstColumn + column);
      if (isError(value)) cellAt(texts, row, column) = std::get<CellError>(value).text;
    }
  }
}

void RequestMemory::noteErrors(const RangeRef& range, const Grid<CellValue>& values) {
  withoutErrors_.reset();
  if (!lasts_ || range.areas.empty()) return;
  if (std::none_of(values.cells.begin(), values.cells.end(), isError)) withoutErrors_ = range;
}

Grid<CellValue> withFirstColumn(Grid<CellValue> first, Grid<CellValue> rest) {
  Grid<CellValue> all{rest.rows, rest.columns + 1, {}};
  all.cells.reserve(first.cells.size() + rest.cells.size());
  auto next = rest.cells.begin();
  for (CellValue& cell : first.cells) {
    all.cells.push_back(std::move(cell));
    std::move(next, next + rest.columns, std::back_inserter(all.cells));
    next += rest.columns;
  }
  return all;
}

}  // namespace quorin::host::calc
