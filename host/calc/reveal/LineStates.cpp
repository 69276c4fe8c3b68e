#include "host/calc/reveal/LineStates.h"

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

Reference<css::container::XIndexAccess> linesOf(const Reference<css::sheet::XSpreadsheet>& sheet,
                                                Lines kind) {
  const Reference<css::table::XColumnRowRange> cells(sheet, UNO_QUERY_THROW);
  if (kind == Lines::rows) return {cells->getRows(), UNO_QUERY_THROW};
  return {cells->getColumns(), UNO_QUERY_THROW};
}

bool flagOf(const Reference<css::container::XIndexAccess>& lines, int number, const char* name) {
  bool value = false;
  Reference<css::beans::XPropertySet>(lines->getByIndex(number - 1), UNO_QUERY_THROW)
      ->getPropertyValue(rtl::OUString::createFromAscii(name)) >>= value;
  return value;
}

}  // namespace

LineStates::LineStates(Reference<css::sheet::XSpreadsheet> sheet, Lines kind)
    : sheet_(std::move(sheet)),
      kind_(kind),
      lines_(linesOf(sheet_, kind)),
      count_(lines_->getCount()) {}

// Asks for all lines at once: for the cells that are visible where they cross a line that is. Where
// none of those that are tried is, each line is asked for when it is needed.
void LineStates::look() const {
  if (shown_) return;
  constexpr int mostTries = 20;
  const bool rows = kind_ == Lines::rows;
  const auto across = linesOf(sheet_, rows ? Lines::columns : Lines::rows);
  for (int crossing = 1; crossing <= mostTries; ++crossing) {
    if (!flagOf(across, crossing, "IsVisible")) continue;
    const Area strip =
        rows ? Area{1, crossing, count_, crossing} : Area{crossing, 1, crossing, count_};
    const Reference<css::sheet::XCellRangesQuery> query(cellsOf(sheet_, strip), UNO_QUERY_THROW);
    shown_.emplace();
    for (const auto& address : answered(query->queryVisibleCells())->getRangeAddresses()) {
      const Area part = areaOf(address);
      shown_->emplace_back(firstLine(part, kind_), lastLine(part, kind_));
    }
    std::sort(shown_->begin(), shown_->end());
    return;
  }
}

// True if none of these is hidden, also when there are none.
bool LineStates::allShown(int first, int last) const {
  if (first > last) return true;
  look();
  if (!shown_) return false;
  const auto behind = std::upper_bound(shown_->begin(), shown_->end(), std::pair(first, count_));
  return behind != shown_->begin() && last <= std::prev(behind)->second;
}

bool LineStates::isHidden(int number) const {
  if (number < 1 || number > count_) return false;
  look();
  return shown_ ? !allShown(number, number) : !flagOf(lines_, number, "IsVisible");
}

bool LineStates::isFiltered(int number) const {
  return kind_ == Lines::rows && number >= 1 && number <= count_ &&
         flagOf(lines_, number, "IsFiltered");
}

// A row that a filter hides stays the filter's while it is shown: it does not count in subtotals,
// and ending the filter shows it again. Showing it would make it the user's own.
void LineStates::setHidden(QuietChanges& changes, const Workbook& workbook,
                           std::vector<int> numbers, bool hide) {
  std::sort(numbers.begin(), numbers.end());
  numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
  std::erase_if(numbers, [&](int number) { return isHidden(number) == hide; });
  if (numbers.empty()) return;
  QuietChanges::LineSpans spans, filtered;
  const auto change = [&] {
    changes.setLines(workbook, sheet_, kind_, spans, filtered, hide);
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
