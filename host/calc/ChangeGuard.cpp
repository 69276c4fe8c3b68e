#include "host/calc/ChangeGuard.h"

#include <com/sun/star/document/XUndoManagerSupplier.hpp>
#include <com/sun/star/util/NotLockedException.hpp>

namespace quorin::host::calc {
namespace {

using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;

Reference<css::document::XUndoManager> undoManagerOf(const Workbook& workbook) {
  return Reference<css::document::XUndoManagerSupplier>(workbook.document, UNO_QUERY_THROW)
      ->getUndoManager();
}

// The keeper of a dead owner may be at work in the same workbook, and have opened it already.
void unlock(const Reference<css::document::XUndoManager>& undo) {
  try {
    undo->unlock();
  } catch (const css::util::NotLockedException&) {
  }
}

}  // namespace

ChangeGuard::ChangeGuard(const Workbook& workbook)
    : undo_(undoManagerOf(workbook)),
      flag_(workbook.document, UNO_QUERY_THROW),
      modified_(flag_->isModified()) {
  undo_->lock();
}

ChangeGuard::~ChangeGuard() {
  try {
    unlock(undo_);
    if (!modified_) flag_->setModified(false);
  } catch (const css::uno::Exception&) {
    // The workbook was closed, or the office is gone.
  }
}

void ChangeGuard::heal(const Workbook& workbook) {
  const Reference<css::document::XUndoManager> undo = undoManagerOf(workbook);
  constexpr int mostLocks = 100;
  for (int i = 0; i < mostLocks && undo->isLocked(); ++i) unlock(undo);
}

}  // namespace quorin::host::calc
