// HiddenWorkbook: a workbook of ours inside the user's office, in which formulas can be put into
// cells without the user's workbooks knowing. It is no window, no entry in any list and no file of
// ours: the office keeps it as an embedded object for as long as we hold on to it, so it goes when
// this object goes, and also when this process dies. The office never calls us about it. Call
// thread.
#pragma once

#include <com/sun/star/embed/XEmbeddedObject.hpp>
#include <com/sun/star/uno/XComponentContext.hpp>

#include "host/calc/workbook/CalcWorkbooks.h"

namespace quorin::host::calc {

class HiddenWorkbook {
 public:
  // An empty one of one sheet.
  explicit HiddenWorkbook(const css::uno::Reference<css::uno::XComponentContext>& context);
  // A copy of everything. The office does nothing else meanwhile: seconds for a large workbook.
  HiddenWorkbook(const css::uno::Reference<css::uno::XComponentContext>& context,
                 const Workbook& original);
  ~HiddenWorkbook();
  HiddenWorkbook(const HiddenWorkbook&) = delete;
  HiddenWorkbook& operator=(const HiddenWorkbook&) = delete;

  Workbook& workbook() { return workbook_; }

 private:
  void run();  // the embedded object, and nothing of it shown or undone

  css::uno::Reference<css::embed::XEmbeddedObject> object_;
  Workbook workbook_;
};

}  // namespace quorin::host::calc
