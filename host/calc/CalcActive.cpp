#include "host/calc/CalcActive.h"

#include <algorithm>

#include "host/calc/cells/CalcRows.h"
#include "host/calc/workbook/CalcView.h"

namespace quorin::host::calc {
namespace {

RangeRef firstCellOf(const ScratchWorkbook& scratch) {
  return {{scratch.name(), ScratchWorkbook::onlySheet}, {Area{}}};
}

}  // namespace

std::optional<std::string> activeWorkbook(CalcSession& office) {
  if (const auto* scratch = office.scratch().active()) return scratch->name();
  const auto window = office.workbooks().active();
  return !window ? std::nullopt : std::optional(window->workbook->name);
}

std::optional<SheetRef> activeSheet(CalcSession& office) {
  if (const auto* scratch = office.scratch().active()) {
    return SheetRef{scratch->name(), ScratchWorkbook::onlySheet};
  }
  const auto window = office.workbooks().active();
  return !window ? std::nullopt : std::optional(activeSheetOf(office.workbooks(), *window));
}

std::optional<RangeRef> activeCell(CalcSession& office) {
  if (const auto* scratch = office.scratch().active()) return firstCellOf(*scratch);
  const auto window = office.workbooks().active();
  return !window ? std::nullopt : std::optional(activeCellOf(*window));
}

std::optional<RangeRef> selection(CalcSession& office) {
  if (const auto* scratch = office.scratch().active()) return firstCellOf(*scratch);
  const auto window = office.workbooks().active();
  return !window ? std::nullopt : std::optional(selectionOf(*window));
}

SheetRef activeSheetOf(CalcSession& office, const std::string& book) {
  if (office.scratch().find(book) != nullptr) return {book, ScratchWorkbook::onlySheet};
  return activeSheetOf(office.workbooks(), office.workbooks().windowOf(book));
}

std::optional<RangeRef> visibleRange(CalcSession& office) {
  const auto window = office.workbooks().active();
  return !window ? std::nullopt : std::optional(visibleRangeOf(office.workbooks(), *window));
}

std::optional<Bounds> windowBounds(CalcSession& office, int index) {
  const auto active = office.workbooks().active();
  if (!active || index < 1) return std::nullopt;
  if (index == 1) return boundsOf(*active);
  int position = 1;
  for (const Window& window : office.workbooks().windows()) {
    if (window.frame != active->frame && ++position == index) return boundsOf(window);
  }
  return std::nullopt;
}

bool isFrontmost(CalcSession& office) {
  const std::vector<Window> windows = office.workbooks().windows();
  return std::any_of(windows.begin(), windows.end(),
                     [](const Window& window) { return isFrontmost(window); });
}

}  // namespace quorin::host::calc
