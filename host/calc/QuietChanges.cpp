#include "host/calc/QuietChanges.h"

#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/container/XNameContainer.hpp>
#include <com/sun/star/document/XUndoManagerSupplier.hpp>
#include <com/sun/star/script/XLibraryContainer.hpp>
#include <com/sun/star/script/provider/XScriptProviderSupplier.hpp>
#include <com/sun/star/util/NotLockedException.hpp>
#include <utility>

#include "host/calc/Arguments.h"
#include "host/calc/HiddenWorkbook.h"
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
Function change(model, what, target, first, second)
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
  change = message
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

Reference<css::script::provider::XScript> installMacro(const Workbook& home) {
  const Reference<css::script::XLibraryContainer> libraries(
      Reference<css::beans::XPropertySet>(home.model, UNO_QUERY_THROW)
          ->getPropertyValue("BasicLibraries"),
      UNO_QUERY_THROW);
  libraries->createLibrary("Quorin")->insertByName("Changes", Any(toUno(macroText)));
  return Reference<css::script::provider::XScriptProviderSupplier>(home.model, UNO_QUERY_THROW)
      ->getScriptProvider()
      ->getScript("vnd.sun.star.script:Quorin.Changes.change?language=Basic&location=document");
}

}  // namespace

QuietChanges::QuietChanges(Reference<css::uno::XComponentContext> context)
    : context_(std::move(context)) {}

QuietChanges::~QuietChanges() = default;

void QuietChanges::prepare() {
  std::call_once(prepared_, [this] {
    try {
      home_ = std::make_unique<HiddenWorkbook>(context_);
      macro_ = installMacro(home_->workbook());
    } catch (const css::uno::Exception&) {
      home_.reset();
    }
  });
}

void QuietChanges::change(const Workbook& workbook, const char* what,
                          const Reference<XInterface>& target, const Any& first, const Any& second,
                          const std::function<void()>& otherwise) {
  prepare();
  if (!macro_.is()) {
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
  css::uno::Sequence<sal_Int16> places;
  css::uno::Sequence<Any> results;
  rtl::OUString message;
  macro_->invoke(sequenceOf<Any>({Any(workbook.model), Any(rtl::OUString::createFromAscii(what)),
                                  Any(target), first, second}),
                 places, results) >>= message;
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
