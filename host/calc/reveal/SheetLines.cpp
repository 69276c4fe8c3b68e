#include "host/calc/reveal/SheetLines.h"

#include <algorithm>
#include <com/sun/star/sheet/XCellRangeAddressable.hpp>
#include <com/sun/star/sheet/XCellRangeFormula.hpp>
#include <com/sun/star/sheet/XUsedAreaCursor.hpp>

#include "host/Address.h"
#include "host/calc/uno/Text.h"
#include "host/calc/workbook/CalcRanges.h"

namespace quorin::host::calc {
namespace {

using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;

constexpr int blockSize = 64;
// How far a line is looked at: the labels at its beginning tell it from others.
constexpr int cellsOfRow = 64, cellsOfColumn = 200;

// Formulas change when lines move, and what they give may change at any time.
std::string steady(const rtl::OUString& content) {
  return content.startsWith("=") || content.startsWith("{") ? "=" : toText(content);
}

}  // namespace

SheetLines::SheetLines(const Workbook& workbook, const std::string& sheet, Lines kind)
    : sheet_(sheetOf(workbook, sheet)), kind_(kind) {
  const Reference<css::sheet::XUsedAreaCursor> cursor(sheet_->createCursor(), UNO_QUERY_THROW);
  cursor->gotoEndOfUsedArea(false);
  used_ = areaOf(
      Reference<css::sheet::XCellRangeAddressable>(cursor, UNO_QUERY_THROW)->getRangeAddress());
  used_.firstRow = used_.firstColumn = 1;
  last_ = lastLine(used_, kind);
  int& across = kind == Lines::rows ? used_.lastColumn : used_.lastRow;
  across = std::min(across, kind == Lines::rows ? cellsOfRow : cellsOfColumn);
}

AreaTrace SheetLines::traceOf(const Area& area) {
  Area lines = area;
  const LineDigests digests = [this](int number) { return digest(number); };
  const LineTrace first = calc::traceOf(firstLine(lines, kind_), last_, digests);
  if (firstLine(lines, kind_) == lastLine(lines, kind_)) return {first, first};
  return {first, calc::traceOf(lastLine(lines, kind_), last_, digests)};
}

std::optional<Area> SheetLines::find(const AreaTrace& trace, Area area) {
  const LineDigests digests = [this](int number) { return digest(number); };
  int &first = firstLine(area, kind_), &last = lastLine(area, kind_);
  const int size = last - first;
  const auto begin = findLine(trace.first, first, last_, digests);
  const auto end = size == 0 ? begin : findLine(trace.last, last, last_, digests);
  if (!begin || !end || *end - *begin != size) return std::nullopt;
  first = *begin;
  last = *end;
  return area;
}

LineDigest SheetLines::digest(int number) {
  if (number > last_) return blankLine;
  const int index = (number - 1) / blockSize;
  auto found = blocks_.find(index);
  if (found == blocks_.end()) found = blocks_.emplace(index, block(index)).first;
  return found->second.at(static_cast<std::size_t>((number - 1) % blockSize));
}

std::vector<LineDigest> SheetLines::block(int index) const {
  Area area = used_;
  firstLine(area, kind_) = index * blockSize + 1;
  lastLine(area, kind_) = std::min((index + 1) * blockSize, last_);
  const auto rows = Reference<css::sheet::XCellRangeFormula>(cellsOf(sheet_, area), UNO_QUERY_THROW)
                        ->getFormulaArray();
  std::vector<std::vector<std::string>> lines(static_cast<std::size_t>(lineCount(area, kind_)));
  for (std::size_t row = 0; row < static_cast<std::size_t>(rowCount(area)); ++row) {
    const auto& cells = rows[static_cast<sal_Int32>(row)];
    for (std::size_t column = 0; column < static_cast<std::size_t>(columnCount(area)); ++column)
      lines[kind_ == Lines::rows ? row : column].push_back(
          steady(cells[static_cast<sal_Int32>(column)]));
  }
  std::vector<LineDigest> digests(lines.size());
  std::transform(lines.begin(), lines.end(), digests.begin(), digestOf);
  return digests;
}

}  // namespace quorin::host::calc
