#include "host/calc/workbook/CalcView.h"

#include <algorithm>
#include <com/sun/star/awt/XTopWindow.hpp>
#include <com/sun/star/awt/XWindow2.hpp>
#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/container/XIndexAccess.hpp>
#include <com/sun/star/lang/XMultiServiceFactory.hpp>
#include <com/sun/star/sheet/XCellRangeAddressable.hpp>
#include <com/sun/star/sheet/XSheetCellRangeContainer.hpp>
#include <com/sun/star/sheet/XViewFreezable.hpp>
#include <com/sun/star/view/XSelectionSupplier.hpp>

#include "host/calc/uno/Answered.h"
#include "host/calc/uno/Text.h"
#include "host/calc/workbook/CalcRanges.h"
#include "host/calc/workbook/CellEdit.h"
#include "host/calc/workbook/ViewData.h"
#include "kit/value/EventErrors.h"

namespace quorin::host::calc {
namespace {

using css::uno::Any;
using css::uno::Reference;
using css::uno::UNO_QUERY;
using css::uno::UNO_QUERY_THROW;

ViewPosition positionIn(const Window& window) {
  rtl::OUString text;
  window.controller->getViewData() >>= text;
  const auto position = viewPosition(toText(text));
  if (!position)
    throw SpreadsheetError(eventErrors::handlerFailed,
                           "LibreOffice does not say where its cursor is");
  return *position;
}

std::string sheetAt(const std::vector<std::string>& names, int tab) {
  const auto position = static_cast<std::size_t>(tab);
  if (position >= names.size())
    throw SpreadsheetError(eventErrors::noSuchObject, "There is no active sheet");
  return names[position];
}

css::table::CellRangeAddress addressOf(int sheet, const Area& area) {
  css::table::CellRangeAddress address;
  address.Sheet = static_cast<sal_Int16>(sheet);
  address.StartRow = area.firstRow - 1;
  address.StartColumn = area.firstColumn - 1;
  address.EndRow = area.lastRow - 1;
  address.EndColumn = area.lastColumn - 1;
  return address;
}

Any selectionFor(const Workbook& workbook, const RangeRef& range) {
  const Reference<css::sheet::XSpreadsheet> sheet = sheetOf(workbook, range.sheet.sheet);
  if (range.areas.size() == 1) return Any(cellsOf(sheet, firstArea(range)));
  const Reference<css::sheet::XCellRangeAddressable> whole(sheet, UNO_QUERY_THROW);
  const Reference<css::lang::XMultiServiceFactory> factory(workbook.document, UNO_QUERY_THROW);
  const Reference<css::sheet::XSheetCellRangeContainer> several(
      factory->createInstance("com.sun.star.sheet.SheetCellRanges"), UNO_QUERY_THROW);
  for (const Area& area : range.areas) {
    several->addRangeAddress(addressOf(whole->getRangeAddress().Sheet, area), false);
  }
  return Any(several);
}

bool isVisible(const Reference<css::sheet::XSpreadsheet>& sheet) {
  const Reference<css::beans::XPropertySet> properties(sheet, UNO_QUERY_THROW);
  return properties->getPropertyValue("IsVisible").get<bool>();
}

}  // namespace

SheetRef activeSheetOf(CalcWorkbooks& workbooks, const Window& window) {
  const int tab = positionIn(window).tab;
  return {window.workbook->name, sheetAt(workbooks.readSheets(*window.workbook), tab)};
}

RangeRef activeCellOf(const Window& window) {
  const ViewPosition position = positionIn(window);
  return {{window.workbook->name, sheetAt(sheetNames(*window.workbook), position.tab)},
          {{position.row, position.column, position.row, position.column}}};
}

RangeRef selectionOf(const Window& window) {
  const Reference<css::view::XSelectionSupplier> supplier(window.controller, UNO_QUERY);
  Reference<css::uno::XInterface> selected;
  if (supplier.is()) supplier->getSelection() >>= selected;
  const auto range = selected.is() ? rangeOf(*window.workbook, selected) : std::nullopt;
  return range ? *range : activeCellOf(window);
}

Reference<css::sheet::XViewPane> scrollingPane(const Window& window) {
  const Reference<css::sheet::XViewFreezable> view(window.controller, UNO_QUERY_THROW);
  if (view->hasFrozenPanes()) {
    const Reference<css::container::XIndexAccess> panes(window.controller, UNO_QUERY_THROW);
    return {panes->getByIndex(panes->getCount() - 1), UNO_QUERY_THROW};
  }
  return {window.controller, UNO_QUERY_THROW};
}

std::optional<Bounds> boundsOf(const Window& window) {
  const Reference<css::awt::XWindow> shown = answered(window.frame->getContainerWindow());
  const css::awt::Rectangle place = shown->getPosSize();
  return Bounds{static_cast<double>(place.X), static_cast<double>(place.Y),
                static_cast<double>(place.X) + place.Width,
                static_cast<double>(place.Y) + place.Height};
}

bool isFrontmost(const Window& window) {
  const Reference<css::awt::XWindow2> shown(window.frame->getContainerWindow(), UNO_QUERY);
  return shown.is() && shown->isActive();
}

void bringToFront(const Window& window) {
  const Reference<css::awt::XTopWindow> top(window.frame->getContainerWindow(), UNO_QUERY);
  if (top.is()) top->toFront();
}

Window CalcNavigation::enter(const std::string& book) {
  Window target = workbooks_.windowOf(book);
  bool inFront = false;
  for (const Window& window : workbooks_.windows()) {
    if (isEditing(window.frame)) {
      throw SpreadsheetError(eventErrors::handlerFailed, "A cell is being edited in LibreOffice");
    }
    inFront = inFront || isFrontmost(window);
  }
  const auto front = workbooks_.active();
  if (!front || front->frame != target.frame) {
    target.frame->activate();
    if (inFront) bringToFront(target);  // another application keeps its place in front
    workbooks_.forgetActive();
  }
  return target;
}

Window CalcNavigation::enter(const SheetRef& sheet) {
  const Reference<css::sheet::XSpreadsheet> page =
      sheetOf(*workbooks_.named(sheet.book), sheet.sheet);
  if (!isVisible(page)) throw SpreadsheetError(eventErrors::badParameter, "The sheet is hidden");
  const Window window = enter(sheet.book);
  if (!window.view.is())
    throw SpreadsheetError(eventErrors::handlerFailed, "The workbook shows a print preview");
  if (activeSheetOf(workbooks_, window).sheet != sheet.sheet) window.view->setActiveSheet(page);
  return window;
}

void CalcNavigation::activateWorkbook(const std::string& book) {
  enter(book);
}

void CalcNavigation::activateSheet(const SheetRef& sheet) {
  enter(sheet);
}

void CalcNavigation::select(const RangeRef& range) {
  firstArea(range);
  const Any selection = selectionFor(*workbooks_.named(range.sheet.book), range);
  const Window window = enter(range.sheet);
  const Reference<css::view::XSelectionSupplier> supplier(window.controller, UNO_QUERY_THROW);
  if (!supplier->select(selection))
    throw SpreadsheetError(eventErrors::badParameter, "The range cannot be selected");
}

void CalcNavigation::activateCell(const RangeRef& range) {
  const Area& area = firstArea(range);
  const Area cell{area.firstRow, area.firstColumn, area.firstRow, area.firstColumn};
  const Window window = enter(range.sheet);
  if (activeCellOf(window).areas.front() == cell) return;
  select({range.sheet, {cell}});
}

void CalcNavigation::scrollTo(const RangeRef& range) {
  const Area& area = firstArea(range);
  const Window window = enter(range.sheet);
  const Reference<css::sheet::XViewPane> pane = scrollingPane(window);
  pane->setFirstVisibleColumn(area.firstColumn - 1);
  pane->setFirstVisibleRow(area.firstRow - 1);
}

}  // namespace quorin::host::calc
