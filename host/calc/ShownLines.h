// ShownLines: knows where the rows and columns are now that were shown for the user to look at, so
// that these are hidden again and no others, wherever edits have moved them. Call thread.
//
// The memory is the office's own: range objects in its component context. They follow the user's
// edits by themselves, call nobody, and outlive this process and its connection. They end with
// their workbook; from then on a line is the one of its number.
#pragma once

#include <com/sun/star/container/XNameContainer.hpp>
#include <com/sun/star/uno/XComponentContext.hpp>
#include <optional>
#include <string>
#include <vector>

#include "host/Spreadsheet.h"
#include "host/calc/CalcWorkbooks.h"

namespace quorin::host::calc {

class ShownLines {
 public:
  explicit ShownLines(const css::uno::Reference<css::uno::XComponentContext>& context);

  // Remembers each area of whole lines as one, which is asked for again by the same numbers.
  void remember(const Workbook& workbook, const RangeRef& lines, Lines kind);
  void forget(const Workbook& workbook, const RangeRef& lines, Lines kind);

  // Where one area is now; no areas when it is deleted or has another size. Nothing when it is not
  // remembered.
  std::optional<RangeRef> find(const Workbook& workbook, const RangeRef& lines, Lines kind) const;

  // What is remembered of the workbook under a name that it or the sheet has no longer.
  struct Unreachable {
    std::string key;
    Lines kind;
    RangeRef now;
  };
  std::vector<Unreachable> unreachable(const Workbook& workbook) const;
  void forget(const std::string& key);

 private:
  std::optional<RangeRef> now(const Workbook& workbook, const std::string& key, Lines kind) const;

  const css::uno::Reference<css::container::XNameContainer> memory_;  // or none
};

}  // namespace quorin::host::calc
