// QuietChanges: changes to a user's workbook that leave no trace in its undo list and its modified
// flag. Each is one step inside the office, in which nothing else happens: a user's edit comes
// before it or after it, keeps its place in the undo list and its right to be saved, and a process
// that dies or stops leaves the step done or not begun.
//
// What takes the step is a macro in a hidden workbook of ours. Where the office runs no macros, the
// change is made from here, and the workbook then counts as changed: an edit that closes without
// being asked about would be worse. For any thread, once prepare() has returned.
#pragma once

#include <com/sun/star/drawing/XDrawPage.hpp>
#include <com/sun/star/drawing/XShape.hpp>
#include <com/sun/star/sheet/XSpreadsheet.hpp>
#include <com/sun/star/uno/XComponentContext.hpp>
#include <functional>
#include <utility>
#include <vector>

#include "host/calc/workbook/CalcWorkbooks.h"
#include "host/calc/workbook/OfficeMacro.h"

namespace quorin::host::calc {

class QuietChanges {
 public:
  using Page = css::uno::Reference<css::drawing::XDrawPage>;
  using Shape = css::uno::Reference<css::drawing::XShape>;

  explicit QuietChanges(css::uno::Reference<css::uno::XComponentContext> context);

  // What the first change would do otherwise, about a tenth of a second.
  void prepare() { macro_.prepare(); }

  // All of these throw UNO's exceptions, with nothing changed; setRows() with some rows changed.
  void add(const Workbook& workbook, const Page& page, const Shape& shape);
  void remove(const Workbook& workbook, const Page& page, const Shape& shape);
  // Fails where the old one is no longer there.
  void replace(const Workbook& workbook, const Page& page, const Shape& old, const Shape& fresh);

  // Shows or hides all rows of the spans, the numbers of their first and last, from 1. The
  // filtered ones are the filter's as before.
  using RowSpans = std::vector<std::pair<int, int>>;
  void setRows(const Workbook& workbook, const css::uno::Reference<css::sheet::XSpreadsheet>& sheet,
               Axis axis, const RowSpans& spans, const RowSpans& filtered, bool hide);

  // Opens an undo list that a process which died in the middle of a change left locked.
  static void heal(const Workbook& workbook);

 private:
  void change(const Workbook& workbook, const char* what,
              const css::uno::Reference<css::uno::XInterface>& target, const css::uno::Any& first,
              const css::uno::Any& second, const std::function<void()>& otherwise);

  OfficeMacro macro_;
};

}  // namespace quorin::host::calc
