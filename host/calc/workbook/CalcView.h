// CalcView: where the user is, and going elsewhere. Nothing here ends an edit: while a cell is
// being edited in any window, whatever would move the selection is SpreadsheetError -10000. Call
// thread.
#pragma once

#include <com/sun/star/sheet/XViewPane.hpp>

#include "host/Spreadsheet.h"
#include "host/calc/workbook/CalcWorkbooks.h"

namespace quorin::host::calc {

SheetRef activeSheetOf(CalcWorkbooks& workbooks, const Window& window);
RangeRef activeCellOf(const Window& window);
RangeRef selectionOf(const Window& window);  // the active cell while a shape is selected

std::optional<Bounds> boundsOf(const Window& window);
// The pane that the user scrolls: the last one where others are frozen, else the one in use.
css::uno::Reference<css::sheet::XViewPane> scrollingPane(const Window& window);
bool isFrontmost(const Window& window);
void bringToFront(const Window& window);

class CalcNavigation {
 public:
  explicit CalcNavigation(CalcWorkbooks& workbooks) : workbooks_(workbooks) {}

  void select(const RangeRef& range);
  void activateWorkbook(const std::string& book);
  void activateSheet(const SheetRef& sheet);
  void activateCell(const RangeRef& range);
  void scrollTo(const RangeRef& range);

 private:
  Window enter(const std::string& book);  // after the check for an edit
  Window enter(const SheetRef& sheet);

  CalcWorkbooks& workbooks_;
};

}  // namespace quorin::host::calc
