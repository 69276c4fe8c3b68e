// ScratchWorkbooks: those that clients have made and not closed. They end with the handler, or with
// the connection. Call thread.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/calc/evaluation/ScratchWorkbook.h"

namespace quorin::host::calc {

class ScratchWorkbooks {
 public:
  ScratchWorkbooks(css::uno::Reference<css::uno::XComponentContext> context,
                   CalcWorkbooks& workbooks)
      : context_(std::move(context)), workbooks_(workbooks) {}

  std::string make();                   // which becomes the active one
  void close(const std::string& book);  // SpreadsheetError -10006 when it is not one
  void closeAll();                      // a handler that could not close its own leaves it
  ScratchWorkbook& named(const std::string& book);  // SpreadsheetError -10006
  ScratchWorkbook* find(const std::string& book);   // null when there is none of that name
  ScratchWorkbook* active() { return find(active_); }
  void deactivate() { active_.clear(); }
  std::vector<std::string> names() const;

 private:
  const css::uno::Reference<css::uno::XComponentContext> context_;
  CalcWorkbooks& workbooks_;
  std::vector<std::unique_ptr<ScratchWorkbook>> made_;
  std::string active_;
};

}  // namespace quorin::host::calc
