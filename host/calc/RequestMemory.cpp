#include "host/calc/RequestMemory.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "host/Address.h"

namespace quorin::host::calc {

namespace {

bool holds(const RangeRef& known, const RangeRef& wanted) {
  if (wanted.sheet != known.sheet || wanted.areas.empty()) return false;
  return intersection(known.areas.front(), wanted.areas.front()) == wanted.areas.front();
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
  withoutErrors_.reset();
}

std::optional<Grid<CellValue>> RequestMemory::values(const RangeRef& range) const {
  if (!values_ || !holds(valuesRange_, range)) return std::nullopt;
  const Area& wanted = range.areas.front();
  const Area& known = valuesRange_.areas.front();
  if (wanted == known) return values_;
  Grid<CellValue> part{rowCount(wanted), columnCount(wanted), {}};
  part.cells.reserve(static_cast<std::size_t>(cellCount({wanted})));
  for (int row = wanted.firstRow; row <= wanted.lastRow; ++row) {
    for (int column = wanted.firstColumn; column <= wanted.lastColumn; ++column) {
      part.cells.push_back(values_->at(row - known.firstRow, column - known.firstColumn));
    }
  }
  return part;
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

void RequestMemory::noteErrors(const RangeRef& range, const Grid<CellValue>& values) {
  withoutErrors_.reset();
  if (!lasts_ || range.areas.empty()) return;
  const auto isError = [](const CellValue& value) {
    return std::holds_alternative<CellError>(value);
  };
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
