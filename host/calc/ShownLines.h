// ShownLines: knows where the rows and columns are now that were shown for the user to look at, so
// that these are hidden again and no others, wherever edits have moved them. Call thread.
//
// The memory is the office's own: range objects in its component context. They follow the user's
// edits by themselves, call nobody, and outlive this process and its connection. They end with
// their workbook; from then on LineTraces tell the lines.
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

  // Remembers each area of whole lines as one, which is asked for again by the same numbers. What
  // had these numbers before and has moved since is still asked for by them.
  void remember(const Workbook& workbook, const RangeRef& lines, Lines kind);
  void forget(const Workbook& workbook, const RangeRef& lines, Lines kind);

  // Where everything is now that had the numbers of the one area; no areas where it is deleted or
  // has another size. Empty when nothing is remembered.
  std::vector<RangeRef> find(const Workbook& workbook, const RangeRef& lines, Lines kind) const;

  // What is remembered of the workbook under a name that it or the sheet has no longer.
  struct Unreachable {
    std::string key;
    Lines kind;
    RangeRef asked;  // as it was shown
    RangeRef now;
  };
  std::vector<Unreachable> unreachable(const Workbook& workbook) const;
  bool forget(const std::string& key);  // false when there is none

 private:
  bool isAt(const Workbook& workbook, const std::string& key, const SheetRef& sheet,
            const Area& area, Lines kind) const;
  std::optional<RangeRef> now(const Workbook& workbook, const std::string& key, Lines kind) const;

  const css::uno::Reference<css::container::XNameContainer> memory_;  // or none
};

}  // namespace quorin::host::calc
