#include "host/calc/reveal/SheetRows.h"

#include <algorithm>
#include <com/sun/star/sheet/XCellRangeAddressable.hpp>
#include <com/sun/star/sheet/XUsedAreaCursor.hpp>

#include "host/Address.h"
#include "host/calc/uno/Text.h"
#include "host/calc/workbook/CalcRanges.h"

namespace quorin::host::calc {
namespace {

using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;

constexpr int blockSize = 64;
// How far a row is looked at: the labels at its beginning tell it from others.
constexpr int cellsOfRow = 64, cellsOfColumn = 200;

// Formulas change when rows move, and what they give may change at any time.
std::string steady(const rtl::OUString& content) {
  return content.startsWith("=") || content.startsWith("{") ? "=" : toText(content);
}

}  // namespace

SheetRows::SheetRows(const Workbook& workbook, const std::string& sheet, Axis axis)
    : sheet_(sheetOf(workbook, sheet)), axis_(axis) {
  const Reference<css::sheet::XUsedAreaCursor> cursor(sheet_->createCursor(), UNO_QUERY_THROW);
  cursor->gotoEndOfUsedArea(false);
  used_ = areaOf(
      Reference<css::sheet::XCellRangeAddressable>(cursor, UNO_QUERY_THROW)->getRangeAddress());
  used_.firstRow = used_.firstColumn = 1;
  last_ = lastOn(used_, axis);
  int& across = axis == Axis::rows ? used_.lastColumn : used_.lastRow;
  across = std::min(across, axis == Axis::rows ? cellsOfRow : cellsOfColumn);
}

AreaTrace SheetRows::traceOf(const Area& area) {
  Area rows = area;
  const RowDigests digests = [this](int number) { return digest(number); };
  const RowTrace first = calc::traceOf(firstOn(rows, axis_), last_, digests);
  if (firstOn(rows, axis_) == lastOn(rows, axis_)) return {first, first};
  return {first, calc::traceOf(lastOn(rows, axis_), last_, digests)};
}

std::optional<Area> SheetRows::find(const AreaTrace& trace, Area area) {
  const RowDigests digests = [this](int number) { return digest(number); };
  int &first = firstOn(area, axis_), &last = lastOn(area, axis_);
  const int size = last - first;
  const auto begin = findRow(trace.first, first, last_, digests);
  const auto end = size == 0 ? begin : findRow(trace.last, last, last_, digests);
  if (!begin || !end || *end - *begin != size) return std::nullopt;
  first = *begin;
  last = *end;
  return area;
}

RowDigest SheetRows::digest(int number) {
  if (number > last_) return blankRow;
  const int index = (number - 1) / blockSize;
  auto found = blocks_.find(index);
  if (found == blocks_.end()) found = blocks_.emplace(index, block(index)).first;
  return found->second.at(static_cast<std::size_t>((number - 1) % blockSize));
}

std::vector<RowDigest> SheetRows::block(int index) const {
  Area area = used_;
  firstOn(area, axis_) = index * blockSize + 1;
  lastOn(area, axis_) = std::min((index + 1) * blockSize, last_);
  const auto rows = formulasOf(cellsOf(sheet_, area), area);
  std::vector<std::vector<std::string>> held(static_cast<std::size_t>(countOn(area, axis_)));
  for (std::size_t row = 0; row < static_cast<std::size_t>(rowCount(area)); ++row) {
    const auto& cells = rows[static_cast<sal_Int32>(row)];
    for (std::size_t column = 0; column < static_cast<std::size_t>(columnCount(area)); ++column)
      held[axis_ == Axis::rows ? row : column].push_back(
          steady(cells[static_cast<sal_Int32>(column)]));
  }
  std::vector<RowDigest> digests(held.size());
  std::transform(held.begin(), held.end(), digests.begin(), digestOf);
  return digests;
}

}  // namespace quorin::host::calc
