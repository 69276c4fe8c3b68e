// HiddenClone: a copy of a workbook inside the office, in which expressions can be put into cells
// without the user's workbook knowing. It is no window, no entry in any list and no file of ours:
// the office keeps it as an embedded object for as long as we hold on to it, so it goes when this
// object goes, and also when this process dies. Call thread.
#pragma once

#include <atomic>
#include <com/sun/star/embed/XEmbeddedObject.hpp>
#include <com/sun/star/uno/XComponentContext.hpp>
#include <com/sun/star/util/XModifyListener.hpp>
#include <map>
#include <memory>
#include <string>

#include "host/calc/CalcWorkbooks.h"

namespace quorin::host::calc {

class HiddenClone {
 public:
  HiddenClone(const css::uno::Reference<css::uno::XComponentContext>& context,
              const Workbook& original);
  // An empty workbook of one sheet, for expressions that need nothing of any other.
  explicit HiddenClone(const css::uno::Reference<css::uno::XComponentContext>& context);
  ~HiddenClone();
  HiddenClone(const HiddenClone&) = delete;
  HiddenClone& operator=(const HiddenClone&) = delete;

  // False once the original was changed, or when the workbook is another one.
  bool isOf(const Workbook& workbook) const;
  Workbook& workbook() { return clone_; }

  // A cell well below and to the right of all that the sheet holds.
  struct Place {
    int row = 1, column = 1;
  };
  Place freePlace(const std::string& sheet);

 private:
  void run();  // the embedded object, and nothing of it shown or undone

  const css::uno::Reference<css::frame::XModel> original_;  // none for an empty workbook
  const std::shared_ptr<std::atomic<bool>> changed_ = std::make_shared<std::atomic<bool>>(false);
  css::uno::Reference<css::util::XModifyListener> listener_;
  css::uno::Reference<css::embed::XEmbeddedObject> object_;
  Workbook clone_;
  std::map<std::string, Place> places_;
};

}  // namespace quorin::host::calc
