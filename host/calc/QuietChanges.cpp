#include "host/calc/QuietChanges.h"

#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/document/XUndoManagerSupplier.hpp>
#include <com/sun/star/util/NotLockedException.hpp>
#include <optional>
#include <utility>

#include "host/calc/Arguments.h"
#include "host/calc/Text.h"

namespace quorin::host::calc {
namespace {

using css::uno::Any;
using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;
using css::uno::XInterface;

// Answers with what went wrong. A macro that takes its time would let the user's next key stroke
// in between; ours does not. A shape that is gone already is left alone without an error, hence the
// counting: the fresh one must not come where the old one was taken out to be saved without it.
constexpr const char* macroText = R"(
Function perform(model, what, target, first, second)
  EnableReschedule False
  On Error Goto failed
  Dim undo, modified, locked, count, message
  message = ""
  locked = False
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
    Case "set"
      target.setPropertyValue(first, second)
  End Select
leave:
  On Error Resume Next
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

void QuietChanges::set(const Workbook& workbook, const Reference<XInterface>& object,
                       const char* property, bool value) {
  const rtl::OUString name = rtl::OUString::createFromAscii(property);
  const Reference<css::beans::XPropertySet> properties(object, UNO_QUERY_THROW);
  change(workbook, "set", properties, Any(name), Any(value),
         [&] { properties->setPropertyValue(name, Any(value)); });
}

void QuietChanges::heal(const Workbook& workbook) {
  const Reference<css::document::XUndoManager> undo = undoManagerOf(workbook);
  constexpr int mostLocks = 100;
  for (int i = 0; i < mostLocks && undo->isLocked(); ++i) unlock(undo);
}

}  // namespace quorin::host::calc
