#include "host/calc/workbook/QuietChanges.h"

#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/document/XUndoManagerSupplier.hpp>
#include <com/sun/star/table/XColumnRowRange.hpp>
#include <com/sun/star/util/NotLockedException.hpp>
#include <optional>
#include <utility>

#include "host/calc/uno/Arguments.h"
#include "host/calc/uno/Text.h"

namespace quorin::host::calc {
namespace {

using css::uno::Any;
using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;
using css::uno::XInterface;

// Answers with what went wrong. A macro that takes its time would let the user's next key stroke
// in between; ours does not. A shape that is gone already is left alone without an error, hence the
// counting: the fresh one must not come where the old one was taken out to be saved without it.
// What rows change costs mostly in what the office shows and computes after each of them, hence
// the locked controllers. Its first change opens the undo list, whatever was locked before.
// So many runs of rows change by the flag alone that files are read with, which is 80 times as
// fast: the office computes subtotals anew at each, and the rest, such as where drawings are, the
// pages and what it shows, with the first run, which is changed last and in its usual way. So is
// each run of which a chart shows something, for charts would not notice.
constexpr const char* macroText = R"(
Function perform(model, what, target, first, second)
  EnableReschedule False
  On Error Goto failed
  Dim undo, modified, locked, still, count, message
  message = ""
  locked = False
  still = False
  undo = model.getUndoManager()
  modified = model.isModified()
  undo.lock()
  locked = True
  Select Case what
    Case "add"
      target.add(first)
    Case "remove"
      target.remove(first)
    Case "replace"
      count = target.getCount()
      target.remove(first)
      If target.getCount() = count Then
        message = "The shape is gone"
      Else
        target.add(second)
      End If
    Case Else
      model.lockControllers()
      still = True
      setRows(model, undo, target, what, first, second)
  End Select
leave:
  On Error Resume Next
  If still Then model.unlockControllers()
  If locked Then
    undo.unlock()
    If Not modified Then model.setModified(False)
  End If
  EnableReschedule True
  perform = message
  Exit Function
failed:
  message = "Error " & Err & ": " & Error$
  Resume leave
End Function

Sub setRows(model, undo, sheet, what, spans, filtered)
  Dim i, group, shown, few, charted
  shown = (Left(what, 4) = "show")
  few = (Right(what, 4) <> "rows" Or UBound(spans) < 4)
  If Not few Then charted = chartedRows(model, sheet.getRangeAddress().Sheet)
  For i = UBound(spans) - 1 To 0 Step -2
    group = rowsOf(sheet, what, spans(i), spans(i + 1))
    If Not few And i > 0 Then
      If Not touches(charted, spans(i), spans(i + 1)) Then
        setFlag(group, shown)
      End If
    End If
    If group.IsVisible <> shown Then
      group.IsVisible = shown
      undo.unlock()
      undo.lock()
    End If
  Next
  For i = 0 To UBound(filtered) Step 2
    group = rowsOf(sheet, what, filtered(i), filtered(i + 1))
    group.IsFiltered = True
    undo.unlock()
    undo.lock()
  Next
End Sub

Sub setFlag(group, shown)
  On Error Resume Next
  group.setPropertyValue("VisibleFlag", shown)
End Sub

Function chartedRows(model, position)
  Dim found(), sheets, charts, ranges, i, j, k, count
  count = 0
  sheets = model.getSheets()
  For i = 0 To sheets.getCount() - 1
    charts = sheets.getByIndex(i).getCharts()
    For j = 0 To charts.getCount() - 1
      ranges = charts.getByIndex(j).getRanges()
      For k = 0 To UBound(ranges)
        If ranges(k).Sheet = position Then
          ReDim Preserve found(count)
          found(count) = Array(ranges(k).StartRow, ranges(k).EndRow)
          count = count + 1
        End If
      Next
    Next
  Next
  chartedRows = found()
End Function

Function touches(runs, first, last)
  Dim i
  touches = False
  For i = 0 To UBound(runs)
    If runs(i)(0) <= last And first <= runs(i)(1) Then touches = True
  Next
End Function

Function rowsOf(sheet, what, first, last)
  If Right(what, 4) = "rows" Then
    rowsOf = sheet.getCellRangeByPosition(0, first, 0, last).getRows()
  Else
    rowsOf = sheet.getCellRangeByPosition(first, 0, last, 0).getColumns()
  End If
End Function
)";

Reference<css::document::XUndoManager> undoManagerOf(const Workbook& workbook) {
  return Reference<css::document::XUndoManagerSupplier>(workbook.document, UNO_QUERY_THROW)
      ->getUndoManager();
}

// Somebody else may have opened it already.
void unlock(const Reference<css::document::XUndoManager>& undo) {
  try {
    undo->unlock();
  } catch (const css::util::NotLockedException&) {
  }
}

// Pairs of positions, from 0.
css::uno::Sequence<sal_Int32> positionsOf(const QuietChanges::RowSpans& spans) {
  std::vector<sal_Int32> positions;
  for (const auto& [first, last] : spans) {
    positions.push_back(first - 1);
    positions.push_back(last - 1);
  }
  return sequenceOf(positions);
}

Reference<css::beans::XPropertySet> groupOf(const Reference<css::sheet::XSpreadsheet>& sheet,
                                            bool rows, const std::pair<int, int>& span) {
  const auto [first, last] = std::pair(span.first - 1, span.second - 1);
  const Reference<css::table::XColumnRowRange> cells(
      rows ? sheet->getCellRangeByPosition(0, first, 0, last)
           : sheet->getCellRangeByPosition(first, 0, last, 0),
      UNO_QUERY_THROW);
  if (rows) return {cells->getRows(), UNO_QUERY_THROW};
  return {cells->getColumns(), UNO_QUERY_THROW};
}

void setFlag(const Reference<css::beans::XPropertySet>& object, const char* name, bool value) {
  object->setPropertyValue(rtl::OUString::createFromAscii(name), Any(value));
}

}  // namespace

QuietChanges::QuietChanges(Reference<css::uno::XComponentContext> context)
    : macro_(std::move(context), macroText) {}

void QuietChanges::change(const Workbook& workbook, const char* what,
                          const Reference<XInterface>& target, const Any& first, const Any& second,
                          const std::function<void()>& otherwise) {
  const std::optional<Any> told =
      macro_.run(sequenceOf<Any>({Any(workbook.model), Any(rtl::OUString::createFromAscii(what)),
                                  Any(target), first, second}));
  if (!told) {
    const Reference<css::document::XUndoManager> undo = undoManagerOf(workbook);
    undo->lock();
    try {
      otherwise();
    } catch (...) {
      unlock(undo);
      throw;
    }
    return unlock(undo);
  }
  rtl::OUString message;
  *told >>= message;
  if (!message.isEmpty()) throw css::uno::RuntimeException(message, nullptr);
}

void QuietChanges::add(const Workbook& workbook, const Page& page, const Shape& shape) {
  change(workbook, "add", page, Any(shape), {}, [&] { page->add(shape); });
}

void QuietChanges::remove(const Workbook& workbook, const Page& page, const Shape& shape) {
  change(workbook, "remove", page, Any(shape), {}, [&] { page->remove(shape); });
}

void QuietChanges::replace(const Workbook& workbook, const Page& page, const Shape& old,
                           const Shape& fresh) {
  change(workbook, "replace", page, Any(old), Any(fresh), [&] {
    page->add(fresh);
    page->remove(old);
  });
}

void QuietChanges::setRows(const Workbook& workbook,
                           const Reference<css::sheet::XSpreadsheet>& sheet, Axis axis,
                           const RowSpans& spans, const RowSpans& filtered, bool hide) {
  const bool rows = axis == Axis::rows;
  const std::string what = std::string(hide ? "hide " : "show ") + (rows ? "rows" : "columns");
  change(workbook, what.c_str(), sheet, Any(positionsOf(spans)), Any(positionsOf(filtered)), [&] {
    for (const auto& span : spans) setFlag(groupOf(sheet, rows, span), "IsVisible", !hide);
    for (const auto& span : filtered) setFlag(groupOf(sheet, rows, span), "IsFiltered", true);
  });
}

void QuietChanges::heal(const Workbook& workbook) {
  const Reference<css::document::XUndoManager> undo = undoManagerOf(workbook);
  constexpr int mostLocks = 100;
  for (int i = 0; i < mostLocks && undo->isLocked(); ++i) unlock(undo);
}

}  // namespace quorin::host::calc
