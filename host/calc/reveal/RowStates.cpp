#include "host/calc/reveal/RowStates.h"

#include <algorithm>
#include <com/sun/star/sheet/XCellRangesQuery.hpp>
#include <com/sun/star/table/XColumnRowRange.hpp>
#include <utility>

#include "host/Address.h"
#include "host/calc/uno/Answered.h"
#include "host/calc/workbook/CalcRanges.h"

namespace quorin::host::calc {
namespace {

using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;

// In one step of the office's, which the user waits for.
constexpr std::size_t mostSpans = 50;

Reference<css::container::XIndexAccess> rowsOf(const Reference<css::sheet::XSpreadsheet>& sheet,
                                               Axis axis) {
  const Reference<css::table::XColumnRowRange> cells(sheet, UNO_QUERY_THROW);
  if (axis == Axis::rows) return {cells->getRows(), UNO_QUERY_THROW};
  return {cells->getColumns(), UNO_QUERY_THROW};
}

bool flagOf(const Reference<css::container::XIndexAccess>& rows, int number, const char* name) {
  bool value = false;
  Reference<css::beans::XPropertySet>(rows->getByIndex(number - 1), UNO_QUERY_THROW)
      ->getPropertyValue(rtl::OUString::createFromAscii(name)) >>= value;
  return value;
}

}  // namespace

RowStates::RowStates(Reference<css::sheet::XSpreadsheet> sheet, Axis axis)
    : sheet_(std::move(sheet)),
      axis_(axis),
      rows_(rowsOf(sheet_, axis)),
      count_(rows_->getCount()) {}

// Asks for all rows at once: for the visible cells of a column that is visible itself; for all
// columns likewise. Where none of those that are tried is, each is asked for when it is needed.
void RowStates::look() const {
  if (shown_) return;
  constexpr int mostTries = 20;
  const bool rows = axis_ == Axis::rows;
  const auto across = rowsOf(sheet_, rows ? Axis::columns : Axis::rows);
  for (int crossing = 1; crossing <= mostTries; ++crossing) {
    if (!flagOf(across, crossing, "IsVisible")) continue;
    const Area strip =
        rows ? Area{1, crossing, count_, crossing} : Area{crossing, 1, crossing, count_};
    const Reference<css::sheet::XCellRangesQuery> query(cellsOf(sheet_, strip), UNO_QUERY_THROW);
    shown_.emplace();
    for (const auto& address : answered(query->queryVisibleCells())->getRangeAddresses()) {
      const Area part = areaOf(address);
      shown_->emplace_back(firstOn(part, axis_), lastOn(part, axis_));
    }
    std::sort(shown_->begin(), shown_->end());
    return;
  }
}

// True if none of these is hidden, also when there are none.
bool RowStates::allShown(int first, int last) const {
  if (first > last) return true;
  look();
  if (!shown_) return false;
  const auto behind = std::upper_bound(shown_->begin(), shown_->end(), std::pair(first, count_));
  return behind != shown_->begin() && last <= std::prev(behind)->second;
}

bool RowStates::isHidden(int number) const {
  if (number < 1 || number > count_) return false;
  look();
  return shown_ ? !allShown(number, number) : !flagOf(rows_, number, "IsVisible");
}

bool RowStates::isFiltered(int number) const {
  return axis_ == Axis::rows && number >= 1 && number <= count_ &&
         flagOf(rows_, number, "IsFiltered");
}

// A row that a filter hides stays the filter's while it is shown: it does not count in subtotals,
// and ending the filter shows it again. Showing it would make it the user's own.
void RowStates::setHidden(QuietChanges& changes, const Workbook& workbook, std::vector<int> numbers,
                          bool hide) {
  std::sort(numbers.begin(), numbers.end());
  numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
  std::erase_if(numbers, [&](int number) { return isHidden(number) == hide; });
  if (numbers.empty()) return;
  QuietChanges::RowSpans spans, filtered;
  const auto change = [&] {
    changes.setRows(workbook, sheet_, axis_, spans, filtered, hide);
    spans.clear();
    filtered.clear();
  };
  for (const int number : numbers) {
    const int next = spans.empty() ? 0 : spans.back().second + 1;
    const bool goesOn = !spans.empty() && (number == next || (!hide && allShown(next, number - 1)));
    if (!goesOn && spans.size() == mostSpans) change();
    if (goesOn) {
      spans.back().second = number;
    } else {
      spans.emplace_back(number, number);
    }
    if (!isFiltered(number)) continue;
    if (!filtered.empty() && number == filtered.back().second + 1) {
      filtered.back().second = number;
    } else {
      filtered.emplace_back(number, number);
    }
  }
  change();
  shown_.reset();
}

}  // namespace quorin::host::calc
