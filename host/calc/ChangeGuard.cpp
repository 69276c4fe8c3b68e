#include "host/calc/ChangeGuard.h"

#include <com/sun/star/document/XUndoManagerSupplier.hpp>

namespace quorin::host::calc {
namespace {

using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;

Reference<css::document::XUndoManager> undoManagerOf(const Workbook& workbook) {
  return Reference<css::document::XUndoManagerSupplier>(workbook.document, UNO_QUERY_THROW)
      ->getUndoManager();
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
    undo_->unlock();
    if (!modified_) flag_->setModified(false);
  } catch (const css::uno::Exception&) {
    // The workbook was closed, or the office is gone.
  }
}

void ChangeGuard::heal(const Workbook& workbook) {
  const Reference<css::document::XUndoManager> undo = undoManagerOf(workbook);
  constexpr int mostLocks = 100;
  for (int i = 0; i < mostLocks && undo->isLocked(); ++i) undo->unlock();
}

}  // namespace quorin::host::calc
