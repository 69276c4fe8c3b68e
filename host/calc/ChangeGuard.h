// ChangeGuard: lets one change to a user's workbook leave no trace in its undo list and its
// modified flag. One for each change. It only ever reads the flag and puts "unmodified" back where
// it was so: when this process dies in the middle, the worst is a workbook that counts as changed
// and a locked undo list, which heal() opens again. Call thread.
#pragma once

#include <com/sun/star/document/XUndoManager.hpp>
#include <com/sun/star/util/XModifiable.hpp>

#include "host/calc/CalcWorkbooks.h"

namespace quorin::host::calc {

class ChangeGuard {
 public:
  explicit ChangeGuard(const Workbook& workbook);
  ~ChangeGuard();
  ChangeGuard(const ChangeGuard&) = delete;
  ChangeGuard& operator=(const ChangeGuard&) = delete;

  // Opens an undo list that a guard of a process left locked.
  static void heal(const Workbook& workbook);

 private:
  const css::uno::Reference<css::document::XUndoManager> undo_;
  const css::uno::Reference<css::util::XModifiable> flag_;
  const bool modified_;
};

}  // namespace quorin::host::calc
